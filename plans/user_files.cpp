#include "plans/user_files.h"

#include "settings/atomic_file.h"
#include "settings/folder_lock.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace fs = std::filesystem;

std::optional<std::string> readRegularFile(const fs::path& path, std::size_t limit) {
    std::string bytes;
    if (readRecordFile(path, limit, bytes) != RecordRead::Read) return std::nullopt;
    if (bytes.size() > limit) bytes.resize(limit);
    return bytes;
}

bool replaceFileContents(const fs::path& path, std::string_view bytes,
                         const std::function<bool(const fs::path&)>& isDamaged) {
    FolderLock lock(programFolder(), std::chrono::seconds(10), true);
    if (!lock.locked()) return false;
    std::error_code ec;
    if (isDamaged && fs::is_regular_file(fs::symlink_status(path, ec)) && isDamaged(path) && !setDamagedFileAside(path))
        return false;
    std::string problem;
    return writeFileAtomically(path, bytes, problem);
}

}  // namespace nocturnel
