#include "catalog/record_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "settings/message.h"
#include "settings/program_folder.h"

namespace nocturnel {

void FileCloser::operator()(std::FILE* file) const {
    if (file) std::fclose(file);
}

namespace {
uint32_t littleEndian32(const uint8_t* p) {
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}
constexpr long kHeaderBytes = 16;
}  // namespace

void* findMemoryDatabase(uint32_t /*type*/, uint32_t /*creator*/) { return nullptr; }

bool openDatabase(DatabaseSlot& slot, uint32_t type, uint32_t creator, int /*mode*/, const char* folder,
                  const char* name) {
    closeDatabase(slot);
    slot.memoryHandle = findMemoryDatabase(type, creator);
    if (slot.memoryHandle) return true;
    if (!folder || !name) return false;

    std::string relative = std::string(folder) + name;  // "%s%s"
    const std::string path = (programFolder() / relative).string();
    // Only a regular file is a catalogue: a FIFO or a device in its place must neither block
    // the start nor feed it endless bytes, so the file is opened without waiting and checked.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) return false;
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return false;
    }
    std::unique_ptr<std::FILE, FileCloser> stream(::fdopen(fd, "rb"));
    if (!stream) {
        ::close(fd);
        return false;
    }

    return openRecordStream(slot, std::move(stream));
}

bool openRecordStream(DatabaseSlot& slot, std::unique_ptr<std::FILE, FileCloser> stream) {
    closeDatabase(slot);
    if (!stream) return false;
    uint8_t header[kHeaderBytes];
    if (std::fread(header, 1, sizeof header, stream.get()) != sizeof header) return false;

    auto file = std::make_unique<RecordFile>();
    file->version = littleEndian32(header + 0);
    file->recordCount = littleEndian32(header + 8);
    file->recordSize = littleEndian32(header + 12);
    // A record larger than any catalogue's would only come from a damaged header.
    constexpr uint32_t kLargestRecord = 1u << 16;
    if (file->recordSize > kLargestRecord) return false;
    file->buffer.assign(file->recordSize, 0);
    file->stream = std::move(stream);
    slot.file = std::move(file);
    return true;
}

void closeDatabase(DatabaseSlot& slot) {
    slot.memoryHandle = nullptr;  // nothing to release: the in-memory half never exists here
    slot.file.reset();            // closes the stream, frees the buffer
}

uint16_t recordCount(const DatabaseSlot& slot) {
    return slot.file ? static_cast<uint16_t>(slot.file->recordCount & 0xFFFFu) : 0;
}

uint16_t databaseVersion(const DatabaseSlot& slot) {
    return slot.file ? static_cast<uint16_t>(slot.file->version & 0xFFFFu) : 0;
}

uint32_t recordSize(const DatabaseSlot& slot) { return slot.file ? slot.file->recordSize : 0; }

uint32_t databaseTotalSize(const DatabaseSlot& slot, uint32_t unit) { return recordCount(slot) * unit; }

const uint8_t* fetchRecord(DatabaseSlot& slot, uint32_t index) {
    RecordFile* file = slot.file.get();
    if (!file || !file->stream || file->recordSize == 0) return nullptr;
    const uint32_t record = index & 0xFFFFu;
    const long offset = kHeaderBytes + static_cast<long>(record) * static_cast<long>(file->recordSize);
    if (std::fseek(file->stream.get(), offset, SEEK_SET) != 0) return nullptr;
    if (std::fread(file->buffer.data(), 1, file->recordSize, file->stream.get()) != file->recordSize) {
        std::clearerr(file->stream.get());
        return nullptr;
    }
    return file->buffer.data();
}

bool readRecord(DatabaseSlot& slot, uint32_t index, void* destination, std::size_t length) {
    const uint8_t* record = fetchRecord(slot, index);
    if (!record || !destination) {
        showMessage("Could not retrieve record!", "");
        return false;
    }
    const std::size_t copied = std::min<std::size_t>(length, slot.file->recordSize);
    std::memcpy(destination, record, copied);
    if (copied < length) std::memset(static_cast<uint8_t*>(destination) + copied, 0, length - copied);
    return true;
}

bool writeRecord(DatabaseSlot& slot, uint32_t /*index*/, std::size_t /*offset*/, const void* /*source*/,
                 std::size_t /*length*/) {
    if (!slot.isOpen()) {
        showMessage("Database isn't open!", "");
        return false;
    }
    // Only the in-memory half can be written, and it never exists on this platform.
    return false;
}

bool createRecord(DatabaseSlot& slot, std::size_t /*size*/) {
    if (!slot.isOpen()) {
        showMessage("Database isn't open!", "");
        return false;
    }
    return false;
}

}  // namespace nocturnel
