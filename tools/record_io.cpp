#include "tools/record_io.h"

#include <fstream>
#include <iterator>

#include "settings/atomic_file.h"

namespace nocturnel {

bool readWholeFile(const std::filesystem::path& path, std::string& bytes) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

bool writeWholeFile(const std::filesystem::path& path, std::string_view bytes) {
    // A temporary name, flushed, then renamed: a full disk or a killed build never leaves a
    // short catalogue under the real name.
    std::string problem;
    return writeFileAtomically(path, bytes, problem);
}

}  // namespace nocturnel
