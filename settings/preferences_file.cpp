#include "settings/preferences_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {
namespace fs = std::filesystem;

static_assert(std::endian::native == std::endian::little, "the preferences file is written in host order");

namespace {

constexpr char kMagic[8] = {'N', 'O', 'C', 'T', 'P', 'R', 'E', 'F'};

// Owns a POSIX file descriptor.
class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() { close(); }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return fd_; }
    bool close() {
        if (fd_ < 0) return true;
        const int rc = ::close(fd_);
        fd_ = -1;
        return rc == 0;
    }

private:
    int fd_;
};

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

void reportDamaged(const char* title) {
    showMessage(title, "Default settings are used; the file is kept until you save.");
}

}  // namespace

uint32_t crc32(const void* data, std::size_t size) {
    static const std::array<uint32_t, 256> table = [] {
        std::array<uint32_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            t[i] = c;
        }
        return t;
    }();
    uint32_t crc = 0xFFFFFFFFu;
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (std::size_t i = 0; i < size; ++i) crc = table[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    return crc ^ 0xFFFFFFFFu;
}

fs::path preferencesFilePath() { return programFolder() / kPreferencesFileName; }

PreferencesLoad loadPreferences(Preferences& p) {
    const fs::path path = preferencesFilePath();
    std::error_code ec;
    if (!fs::exists(path, ec)) return PreferencesLoad::Missing;
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        showMessage("Can't read the preferences file", "Default settings are used.");
        return PreferencesLoad::Damaged;
    }
    // One byte more than a valid file holds tells an over-long file apart.
    const std::size_t expected = sizeof(PreferencesFileHeader) + sizeof(Preferences);
    std::vector<char> bytes(expected + 1);
    in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    const auto got = static_cast<std::size_t>(in.gcount());

    PreferencesFileHeader header{};
    if (got < sizeof header) {
        reportDamaged("The preferences file is too short");
        return PreferencesLoad::Damaged;
    }
    std::memcpy(&header, bytes.data(), sizeof header);
    if (std::memcmp(header.magic, kMagic, sizeof kMagic) != 0) {
        reportDamaged("The preferences file is not a Nocturnel file");
        return PreferencesLoad::Damaged;
    }
    if (header.version != kPreferencesFileVersion || header.payloadSize != sizeof(Preferences)) {
        reportDamaged("The preferences file has another version");
        return PreferencesLoad::Damaged;
    }
    if (got < expected) {
        reportDamaged("The preferences file is too short");
        return PreferencesLoad::Damaged;
    }
    if (got > expected) {
        reportDamaged("The preferences file is too long");
        return PreferencesLoad::Damaged;
    }
    const char* payload = bytes.data() + sizeof header;
    if (crc32(payload, sizeof(Preferences)) != header.checksum) {
        reportDamaged("The preferences file is damaged");
        return PreferencesLoad::Damaged;
    }
    std::memcpy(static_cast<void*>(&p), payload, sizeof(Preferences));
    return PreferencesLoad::Loaded;
}

bool savePreferences(const Preferences& p) {
    const fs::path path = preferencesFilePath();
    const fs::path temp = fs::path(path).concat(".tmp");
    PreferencesFileHeader header{};
    std::memcpy(header.magic, kMagic, sizeof kMagic);
    header.version = kPreferencesFileVersion;
    header.payloadSize = sizeof(Preferences);
    header.checksum = crc32(&p, sizeof p);

    auto fail = [&](const char* what) {
        const std::string detail = std::string(what) + ": " + std::strerror(errno);
        ::unlink(temp.c_str());
        showMessage("Can't save the preferences", detail);
        return false;
    };
    {
        FileDescriptor fd(::open(temp.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
        if (fd.get() < 0) return fail(temp.c_str());
        if (!writeAll(fd.get(), reinterpret_cast<const char*>(&header), sizeof header) ||
            !writeAll(fd.get(), reinterpret_cast<const char*>(&p), sizeof p))
            return fail("write");
        if (::fsync(fd.get()) != 0) return fail("fsync");
        if (!fd.close()) return fail("close");
    }
    if (::rename(temp.c_str(), path.c_str()) != 0) return fail("rename");
    // Make the rename itself durable.
    FileDescriptor dir(::open(programFolder().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (dir.get() >= 0) ::fsync(dir.get());
    return true;
}

}  // namespace nocturnel
