#include "chart/png_writer.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <queue>
#include <utility>

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

// Match lengths 3..258: the length symbol (257..285) and its extra bits (RFC 1951, 3.2.5).
struct LengthCode {
    uint16_t symbol = 0;
    uint8_t extraBits = 0;
    uint8_t extra = 0;
};

const std::array<LengthCode, 259>& lengthCodes() {
    static const std::array<LengthCode, 259> table = [] {
        static constexpr std::array<int, 29> kBase = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                                      31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
        static constexpr std::array<int, 29> kExtra = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                       2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
        std::array<LengthCode, 259> t{};
        for (int length = 3; length <= 258; ++length) {
            int k = 28;
            while (kBase[static_cast<std::size_t>(k)] > length) --k;
            t[static_cast<std::size_t>(length)] = {static_cast<uint16_t>(257 + k), static_cast<uint8_t>(kExtra[static_cast<std::size_t>(k)]),
                                                   static_cast<uint8_t>(length - kBase[static_cast<std::size_t>(k)])};
        }
        return t;
    }();
    return table;
}

uint32_t reversed(uint32_t code, int bits) {
    uint32_t r = 0;
    for (int i = 0; i < bits; ++i) r |= ((code >> i) & 1u) << (bits - 1 - i);
    return r;
}

// Huffman code lengths for the symbol counts, none longer than `limit` (unused symbols 0). When
// the plain Huffman tree is too deep, the counts are halved (keeping every used symbol) and the
// tree built again.
std::vector<uint8_t> huffmanLengths(const std::vector<uint32_t>& counts, int limit) {
    std::vector<uint8_t> lengths(counts.size(), 0);
    for (int shift = 0;; ++shift) {
        struct Node {
            uint64_t count;
            int left, right;  // children; a leaf has left -1 and its symbol in right
        };
        std::vector<Node> nodes;
        using Entry = std::pair<uint64_t, int>;
        std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue;
        for (std::size_t s = 0; s < counts.size(); ++s)
            if (counts[s] > 0) {
                nodes.push_back({std::max<uint64_t>(1, counts[s] >> shift), -1, static_cast<int>(s)});
                queue.emplace(nodes.back().count, static_cast<int>(nodes.size() - 1));
            }
        std::fill(lengths.begin(), lengths.end(), 0);
        if (nodes.empty()) return lengths;
        if (nodes.size() == 1) {
            lengths[static_cast<std::size_t>(nodes[0].right)] = 1;
            return lengths;
        }
        while (queue.size() > 1) {
            const Entry a = queue.top();
            queue.pop();
            const Entry b = queue.top();
            queue.pop();
            nodes.push_back({a.first + b.first, a.second, b.second});
            queue.emplace(nodes.back().count, static_cast<int>(nodes.size() - 1));
        }
        int deepest = 0;
        std::vector<std::pair<int, int>> stack = {{static_cast<int>(nodes.size() - 1), 0}};
        while (!stack.empty()) {
            const auto [index, depth] = stack.back();
            stack.pop_back();
            const Node& node = nodes[static_cast<std::size_t>(index)];
            if (node.left < 0) {
                lengths[static_cast<std::size_t>(node.right)] = static_cast<uint8_t>(depth);
                deepest = std::max(deepest, depth);
            } else {
                stack.emplace_back(node.left, depth + 1);
                stack.emplace_back(node.right, depth + 1);
            }
        }
        if (deepest <= limit) return lengths;
    }
}

// The canonical codes of the lengths (RFC 1951, 3.2.2), bit reversed: deflate sends a Huffman
// code from its top bit into a stream filled from the bottom.
std::vector<uint32_t> canonicalCodes(const std::vector<uint8_t>& lengths) {
    std::array<uint32_t, 16> perLength{}, next{};
    for (uint8_t l : lengths) ++perLength[l];
    perLength[0] = 0;
    uint32_t code = 0;
    for (int bits = 1; bits < 16; ++bits) {
        code = (code + perLength[static_cast<std::size_t>(bits - 1)]) << 1;
        next[static_cast<std::size_t>(bits)] = code;
    }
    std::vector<uint32_t> codes(lengths.size(), 0);
    for (std::size_t s = 0; s < lengths.size(); ++s)
        if (lengths[s] > 0) codes[s] = reversed(next[lengths[s]]++, lengths[s]);
    return codes;
}

// The zlib stream of the filtered rows as one deflate block, whose only matches repeat the
// previous byte (distance 1). After the "Sub" filter the dark sky, the ground and every flat
// tint are runs of zero bytes, so a chart is mostly runs: each is one symbol per 258 bytes,
// found a pixel at a time, and the Adler-32 checksum of a run is added in one step. The
// symbols are gathered first and then written with a Huffman code made for them (a dynamic
// block), which packs the busy pixels (stars, lines, text) about as tightly as zlib does.
class RunDeflater {
public:
    explicit RunDeflater(std::vector<uint8_t>& out) : out_(out), lengths_(lengthCodes()), symbols_(keptSymbols()) {
        symbols_.clear();
        out_.push_back(0x78);  // deflate, 32 KiB window
        out_.push_back(0x01);  // no dictionary, fastest; (0x78 << 8 | 0x01) is a multiple of 31
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

    // Ends a row: keeps the checksum's sums small (a row adds at most 255 x 24,577 to a), and
    // writes a block once a few megabytes of symbols are gathered, so that a huge chart needs
    // no more.
    void endRow() {
        reduce();
        if (symbols_.size() >= kBlockSymbols) writeBlock(false);
    }

    void finish() {
        flushRun();
        writeBlock(true);
        reduce();
        const uint32_t adler = static_cast<uint32_t>(b_ << 16 | a_);
        for (int i = 0; i < 4; ++i) out_.push_back(static_cast<uint8_t>(adler >> (24 - 8 * i)));
    }

private:
    static constexpr uint32_t kAdlerModulus = 65521;
    static constexpr uint32_t kEndOfBlock = 256;
    static constexpr std::size_t kLiteralLengthCodes = 286;
    static constexpr std::size_t kBlockSymbols = std::size_t{1} << 20;
    // A gathered symbol: literal/length symbol in the low 9 bits, its extra bits' count above
    // them (3 bits) and their value above that.
    static uint32_t symbol(uint32_t code, uint32_t extraBits = 0, uint32_t extra = 0) {
        return code | extraBits << 9 | extra << 12;
    }

    // Writes the gathered symbols as one block (the stream's last when `last`), and forgets them.
    // The bits of an unfinished byte carry over to the next block.
    void writeBlock(bool last) {
        symbols_.push_back(kEndOfBlock);
        // Every symbol takes at most 15 + 5 + 1 bits; the header well under 400 bytes.
        const std::size_t start = out_.size();
        out_.resize(start + symbols_.size() * 3 + 512);
        at_ = out_.data() + start;
        std::vector<uint32_t> counts(kLiteralLengthCodes, 0);
        for (uint32_t s : symbols_) ++counts[s & 0x1FF];
        const std::vector<uint8_t> lengths = huffmanLengths(counts, 15);
        const std::vector<uint32_t> codes = canonicalCodes(lengths);
        // Code lengths of the literal/length code, then the one distance code (distance 1, one bit).
        std::vector<uint8_t> all(lengths);
        all.push_back(1);
        std::vector<uint32_t> lengthCounts(19, 0);
        for (uint8_t l : all) ++lengthCounts[l];
        const std::vector<uint8_t> lengthLengths = huffmanLengths(lengthCounts, 7);
        const std::vector<uint32_t> lengthCodes = canonicalCodes(lengthLengths);

        put((last ? 1 : 0) | 2 << 1, 3);       // a block with dynamic codes
        put(kLiteralLengthCodes - 257, 5);     // HLIT
        put(0, 5);                             // HDIST: one distance code
        put(19 - 4, 4);                        // HCLEN: all 19 code-length codes
        static constexpr std::array<int, 19> kOrder = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
        for (int k : kOrder) put(lengthLengths[static_cast<std::size_t>(k)], 3);
        for (uint8_t l : all) put(lengthCodes[l], lengthLengths[l]);

        const uint32_t distanceCode = 0;  // the one-bit code of distance 1
        for (uint32_t s : symbols_) {
            const uint32_t code = s & 0x1FF;
            put(codes[code], lengths[code]);
            if (code > kEndOfBlock) {
                put(s >> 12, static_cast<int>((s >> 9) & 0x7));
                put(distanceCode, 1);
            }
        }
        if (last)
            while (count_ > 0) emitByte();
        else
            while (count_ >= 8) emitByte();
        out_.resize(static_cast<std::size_t>(at_ - out_.data()));
        symbols_.clear();
    }

    void put(uint64_t bits, int count) {
        acc_ |= bits << count_;
        count_ += count;
        if (count_ >= 32) {
            for (int i = 0; i < 4; ++i) *at_++ = static_cast<uint8_t>(acc_ >> (8 * i));
            acc_ >>= 32;
            count_ -= 32;
        }
    }
    void emitByte() {
        *at_++ = static_cast<uint8_t>(acc_);
        acc_ >>= 8;
        count_ = count_ >= 8 ? count_ - 8 : 0;
    }
    // Kept between charts: a chart's symbols fill it again without new allocations.
    static std::vector<uint32_t>& keptSymbols() {
        static thread_local std::vector<uint32_t> symbols;
        return symbols;
    }
    void literal(uint8_t value) {
        symbols_.push_back(value);
        last_ = value;
        started_ = true;
    }
    // A match of `length` (3..258) copies of the previous byte.
    void match(std::size_t length) {
        const LengthCode& c = lengths_[length];
        symbols_.push_back(symbol(c.symbol, c.extraBits, c.extra));
    }
    void flushRun() {
        if (run_ == 0) return;
        const std::size_t n = run_;
        run_ = 0;
        if (n >= 3) {
            match(n);
        } else {
            for (std::size_t i = 0; i < n; ++i) symbols_.push_back(last_);
        }
    }
    void reduce() {
        a_ %= kAdlerModulus;
        b_ %= kAdlerModulus;
    }

    std::vector<uint8_t>& out_;
    const std::array<LengthCode, 259>& lengths_;
    std::vector<uint32_t>& symbols_;
    uint8_t* at_ = nullptr;  // where the block's next byte goes
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
    // Rows: filter byte 1 ("Sub": each byte minus the same channel of the pixel to its left),
    // filtered as they are deflated. A pixel equal to the one on its left is three zero bytes.
    for (int y = 0; y < height; ++y) {
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
