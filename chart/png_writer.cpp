#include "chart/png_writer.h"

#include <zlib.h>

#include <array>
#include <cstring>

namespace nocturnel {
namespace {

// Writes one chunk (length, type, data, CRC of type and data) at `at`; returns the next offset.
// Null data: the chunk's data already stands at at + 8.
std::size_t putChunk(std::vector<uint8_t>& out, std::size_t at, const char (&type)[5], const uint8_t* data,
                     std::size_t length) {
    const auto putU32 = [&](std::size_t offset, uint32_t v) {
        for (int i = 0; i < 4; ++i) out[offset + static_cast<std::size_t>(i)] = static_cast<uint8_t>(v >> (24 - 8 * i));
    };
    putU32(at, static_cast<uint32_t>(length));
    std::memcpy(&out[at + 4], type, 4);
    if (data != nullptr && length > 0) std::memcpy(&out[at + 8], data, length);
    putU32(at + 8 + length, static_cast<uint32_t>(crc32(0, &out[at + 4], static_cast<uInt>(length + 4))));
    return at + 12 + length;
}

// The fixed Huffman code of deflate (RFC 1951, 3.2.6): each literal/length symbol's code, bit
// reversed (deflate sends Huffman codes from their top bit into a stream filled from the
// bottom), and its length in bits; and for each match length 3..258 its symbol's code with
// the extra bits already appended.
struct FixedCode {
    std::array<uint32_t, 288> code{};
    std::array<uint8_t, 288> bits{};
    std::array<uint32_t, 259> lengthCode{};
    std::array<uint8_t, 259> lengthBits{};
};

uint32_t reversed(uint32_t code, int bits) {
    uint32_t r = 0;
    for (int i = 0; i < bits; ++i) r |= ((code >> i) & 1u) << (bits - 1 - i);
    return r;
}

const FixedCode& fixedCode() {
    static const FixedCode table = [] {
        FixedCode t;
        for (uint32_t s = 0; s < 288; ++s) {
            uint32_t code = 0;
            int bits = 0;
            if (s < 144) code = 0x30 + s, bits = 8;
            else if (s < 256) code = 0x190 + (s - 144), bits = 9;
            else if (s < 280) code = s - 256, bits = 7;
            else code = 0xC0 + (s - 280), bits = 8;
            t.code[s] = reversed(code, bits);
            t.bits[s] = static_cast<uint8_t>(bits);
        }
        static constexpr std::array<int, 29> kBase = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                                      31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
        static constexpr std::array<int, 29> kExtra = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                       2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
        for (int length = 3; length <= 258; ++length) {
            int k = 28;
            while (kBase[static_cast<std::size_t>(k)] > length) --k;
            const std::size_t symbol = 257 + static_cast<std::size_t>(k);
            const int extra = kExtra[static_cast<std::size_t>(k)];
            t.lengthCode[static_cast<std::size_t>(length)] =
                t.code[symbol] | static_cast<uint32_t>(length - kBase[static_cast<std::size_t>(k)]) << t.bits[symbol];
            t.lengthBits[static_cast<std::size_t>(length)] = static_cast<uint8_t>(t.bits[symbol] + extra);
        }
        return t;
    }();
    return table;
}

// The zlib stream of the filtered rows as one deflate block of the fixed code, whose only
// matches repeat the previous byte (distance 1). After the "Sub" filter the dark sky, the
// ground and every flat tint are runs of zero bytes, so a chart is mostly runs: each costs a
// few bits per 258 bytes and is found a pixel at a time, and the Adler-32 checksum of a run is
// added in one step. The busy pixels (stars, lines, text) are literals of 8 or 9 bits.
class RunDeflater {
public:
    explicit RunDeflater(std::vector<uint8_t>& out) : out_(out), code_(fixedCode()) {}

    void begin() {
        out_.push_back(0x78);  // deflate, 32 KiB window
        out_.push_back(0x01);  // no dictionary, fastest; (0x78 << 8 | 0x01) is a multiple of 31
        put(0x3, 3);           // the last block, of the fixed code
    }

    // Room for one more row of `bytes` bytes, however it encodes (9 bits a byte at worst).
    void reserveRow(std::size_t bytes) {
        if (out_.capacity() < out_.size() + bytes * 9 / 8 + 64) out_.reserve((out_.size() + bytes * 9 / 8 + 64) * 3 / 2);
    }

    void byte(uint8_t value) {
        a_ += value;
        b_ += a_;
        if (value == last_ && started_) {
            if (++run_ == 258) flushRun();
            return;
        }
        flushRun();
        literal(value);
    }

    // `count` more zero bytes.
    void zeros(std::size_t count) {
        if (count == 0) return;
        if (last_ != 0 || !started_) {
            byte(0);
            --count;
        }
        // The checksum advances by all of them at once (zeros add nothing to the byte sum), and
        // the run is written as matches of 258 bytes, its rest kept for the next bytes.
        b_ += a_ * count;
        const std::size_t total = run_ + count;
        for (std::size_t i = 0; i < total / 258; ++i) match(258);
        run_ = total % 258;
    }

    // Ends a row: keeps the checksum's sums small (a row adds at most 255 x 24,577 to a).
    void endRow() { reduce(); }

    void finish() {
        flushRun();
        put(code_.code[256], code_.bits[256]);  // end of block
        while (count_ > 0) emitByte();
        reduce();
        const uint32_t adler = static_cast<uint32_t>(b_ << 16 | a_);
        for (int i = 0; i < 4; ++i) out_.push_back(static_cast<uint8_t>(adler >> (24 - 8 * i)));
    }

private:
    static constexpr uint32_t kAdlerModulus = 65521;

    void put(uint64_t bits, int count) {
        acc_ |= bits << count_;
        count_ += count;
        while (count_ >= 8) emitByte();
    }
    void emitByte() {
        out_.push_back(static_cast<uint8_t>(acc_));
        acc_ >>= 8;
        count_ = count_ >= 8 ? count_ - 8 : 0;
    }
    void literal(uint8_t value) {
        put(code_.code[value], code_.bits[value]);
        last_ = value;
        started_ = true;
    }
    // A match of `length` (3..258) copies of the previous byte.
    void match(std::size_t length) {
        put(code_.lengthCode[length], code_.lengthBits[length]);
        put(0, 5);  // distance 1: distance code 0
    }
    void flushRun() {
        if (run_ == 0) return;
        const std::size_t n = run_;
        run_ = 0;
        if (n >= 3) {
            match(n);
        } else {
            for (std::size_t i = 0; i < n; ++i) put(code_.code[last_], code_.bits[last_]);
        }
    }
    void reduce() {
        a_ %= kAdlerModulus;
        b_ %= kAdlerModulus;
    }

    std::vector<uint8_t>& out_;
    const FixedCode& code_;
    uint64_t acc_ = 0;
    int count_ = 0;
    uint8_t last_ = 0;
    bool started_ = false;
    std::size_t run_ = 0;  // repeats of last_ not yet written (0..257)
    uint64_t a_ = 1, b_ = 0;
};

}  // namespace

bool encodePng(cairo_surface_t* surface, std::vector<uint8_t>& png) {
    if (surface == nullptr || cairo_surface_get_type(surface) != CAIRO_SURFACE_TYPE_IMAGE) return false;
    const cairo_format_t format = cairo_image_surface_get_format(surface);
    if (format != CAIRO_FORMAT_RGB24 && format != CAIRO_FORMAT_ARGB32) return false;
    cairo_surface_flush(surface);
    const int width = cairo_image_surface_get_width(surface), height = cairo_image_surface_get_height(surface);
    const int stride = cairo_image_surface_get_stride(surface);
    const unsigned char* data = cairo_image_surface_get_data(surface);
    if (data == nullptr || width <= 0 || height <= 0) return false;

    // Signature, IHDR, then the IDAT chunk's length and type; its data (the zlib stream) is
    // written in place after them, and the lengths and CRCs filled in at the end.
    constexpr std::size_t kIdatData = 8 + (12 + 13) + 8;
    const std::size_t rowBytes = 1 + static_cast<std::size_t>(width) * 3;
    png.clear();
    png.reserve(kIdatData + rowBytes * static_cast<std::size_t>(height) / 4 + 1024);
    png.resize(kIdatData);
    RunDeflater deflater(png);
    deflater.begin();
    // Rows: filter byte 1 ("Sub": each byte minus the same channel of the pixel to its left),
    // filtered as they are deflated. A pixel equal to the one on its left is three zero bytes.
    for (int y = 0; y < height; ++y) {
        deflater.reserveRow(rowBytes);
        const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        deflater.byte(1);
        uint32_t previous = 0;
        for (int x = 0; x < width;) {
            const uint32_t pixel = line[x] & 0xFFFFFFu;
            if (pixel == previous) {
                int same = x + 1;
                while (same < width && (line[same] & 0xFFFFFFu) == previous) ++same;
                deflater.zeros(static_cast<std::size_t>(same - x) * 3);
                x = same;
                continue;
            }
            deflater.byte(static_cast<uint8_t>((pixel >> 16) - (previous >> 16)));
            deflater.byte(static_cast<uint8_t>((pixel >> 8) - (previous >> 8)));
            deflater.byte(static_cast<uint8_t>(pixel - previous));
            previous = pixel;
            ++x;
        }
        deflater.endRow();
    }
    deflater.finish();
    const std::size_t packedSize = png.size() - kIdatData;

    // Width, height, then 8 bits, RGB, deflate, adaptive filtering, no interlace.
    std::array<uint8_t, 13> header{};
    for (int i = 0; i < 4; ++i) {
        header[static_cast<std::size_t>(i)] = static_cast<uint8_t>(static_cast<uint32_t>(width) >> (24 - 8 * i));
        header[static_cast<std::size_t>(4 + i)] = static_cast<uint8_t>(static_cast<uint32_t>(height) >> (24 - 8 * i));
    }
    header[8] = 8;
    header[9] = 2;
    static constexpr std::array<uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    png.resize(kIdatData + packedSize + 4 + 12);
    std::memcpy(png.data(), kSignature.data(), kSignature.size());
    std::size_t at = putChunk(png, kSignature.size(), "IHDR", header.data(), header.size());
    at = putChunk(png, at, "IDAT", nullptr, packedSize);  // the data is in place already
    putChunk(png, at, "IEND", nullptr, 0);
    return true;
}

}  // namespace nocturnel
