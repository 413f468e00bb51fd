#include "chart/png_writer.h"

#include <zlib.h>

#include <algorithm>
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

    // Rows: filter byte 1 ("Sub": each byte minus the same channel of the pixel to its left),
    // filtered a band at a time into a small buffer and deflated straight into the PNG, so no
    // image-sized buffer is allocated (and zero-filled) per chart.
    const std::size_t rowBytes = 1 + static_cast<std::size_t>(width) * 3;
    const std::size_t rawBytes = rowBytes * static_cast<std::size_t>(height);
    constexpr int kBandRows = 16;
    std::vector<uint8_t> band(rowBytes * kBandRows);
    z_stream z{};
    if (deflateInit2(&z, Z_BEST_SPEED, Z_DEFLATED, 15, 8, Z_DEFAULT_STRATEGY) != Z_OK) return false;
    // The IDAT data goes after the signature, IHDR and the IDAT chunk's length and type; the
    // PNG grows as deflate fills it (reserved to zlib's bound, zero-filled only as far as used).
    constexpr std::size_t kIdatData = 8 + (12 + 13) + 8;
    constexpr std::size_t kGrowBytes = 64 * 1024;
    png.clear();
    png.reserve(kIdatData + deflateBound(&z, static_cast<uLong>(rawBytes)) + 4 + 12);
    const auto deflateBand = [&](const uint8_t* in, std::size_t length, bool last) {
        z.next_in = const_cast<uint8_t*>(in);
        z.avail_in = static_cast<uInt>(length);
        for (;;) {
            if (z.avail_out == 0) {
                const std::size_t used = kIdatData + z.total_out;
                png.resize(used + kGrowBytes);
                z.next_out = png.data() + used;
                z.avail_out = static_cast<uInt>(kGrowBytes);
            }
            const int status = deflate(&z, last ? Z_FINISH : Z_NO_FLUSH);
            if (last && status == Z_STREAM_END) return true;
            if (status != Z_OK && status != Z_BUF_ERROR) return false;
            if (!last && z.avail_in == 0) return true;
            if (z.avail_out != 0) return false;  // no progress with room left: a zlib fault
        }
    };
    bool deflated = true;
    for (int y0 = 0; y0 < height && deflated; y0 += kBandRows) {
        const int rows = std::min(kBandRows, height - y0);
        for (int r = 0; r < rows; ++r) {
            const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y0 + r) * stride);
            uint8_t* row = &band[rowBytes * static_cast<std::size_t>(r)];
            row[0] = 1;
            uint32_t previous = 0;
            for (int x = 0; x < width; ++x) {
                const uint32_t pixel = line[x];
                row[1 + 3 * x] = static_cast<uint8_t>((pixel >> 16) - (previous >> 16));
                row[2 + 3 * x] = static_cast<uint8_t>((pixel >> 8) - (previous >> 8));
                row[3 + 3 * x] = static_cast<uint8_t>(pixel - previous);
                previous = pixel;
            }
        }
        deflated = deflateBand(band.data(), rowBytes * static_cast<std::size_t>(rows), y0 + rows >= height);
    }
    const std::size_t packedSize = z.total_out;
    deflateEnd(&z);
    if (!deflated) return false;

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
