#include "chart/png_writer.h"

#include <zlib.h>

#include <array>
#include <cstring>

namespace nocturnel {
namespace {

// Appends one chunk (length, type, data, CRC of type and data) at `at`; returns the next offset.
std::size_t putChunk(std::vector<uint8_t>& out, std::size_t at, const char (&type)[5], const uint8_t* data,
                     std::size_t length) {
    const auto putU32 = [&](std::size_t offset, uint32_t v) {
        for (int i = 0; i < 4; ++i) out[offset + static_cast<std::size_t>(i)] = static_cast<uint8_t>(v >> (24 - 8 * i));
    };
    putU32(at, static_cast<uint32_t>(length));
    std::memcpy(&out[at + 4], type, 4);
    if (length > 0) std::memcpy(&out[at + 8], data, length);
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

    // Rows: filter byte 1 ("Sub": each byte minus the same channel of the pixel to its left).
    const std::size_t rowBytes = 1 + static_cast<std::size_t>(width) * 3;
    std::vector<uint8_t> raw(rowBytes * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const auto* line = reinterpret_cast<const uint32_t*>(data + static_cast<std::ptrdiff_t>(y) * stride);
        uint8_t* row = &raw[rowBytes * static_cast<std::size_t>(y)];
        row[0] = 1;
        uint8_t previous[3] = {0, 0, 0};
        for (int x = 0; x < width; ++x) {
            const uint8_t rgb[3] = {static_cast<uint8_t>(line[x] >> 16), static_cast<uint8_t>(line[x] >> 8),
                                    static_cast<uint8_t>(line[x])};
            for (int c = 0; c < 3; ++c) {
                row[1 + 3 * x + c] = static_cast<uint8_t>(rgb[c] - previous[c]);
                previous[c] = rgb[c];
            }
        }
    }
    uLongf packedSize = compressBound(static_cast<uLong>(raw.size()));
    std::vector<uint8_t> packed(packedSize);
    if (compress2(packed.data(), &packedSize, raw.data(), static_cast<uLong>(raw.size()), Z_BEST_SPEED) != Z_OK)
        return false;

    // Width, height, then 8 bits, RGB, deflate, adaptive filtering, no interlace.
    std::array<uint8_t, 13> header{};
    for (int i = 0; i < 4; ++i) {
        header[static_cast<std::size_t>(i)] = static_cast<uint8_t>(static_cast<uint32_t>(width) >> (24 - 8 * i));
        header[static_cast<std::size_t>(4 + i)] = static_cast<uint8_t>(static_cast<uint32_t>(height) >> (24 - 8 * i));
    }
    header[8] = 8;
    header[9] = 2;
    static constexpr std::array<uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    png.assign(kSignature.size() + (12 + header.size()) + (12 + packedSize) + 12, 0);
    std::memcpy(png.data(), kSignature.data(), kSignature.size());
    std::size_t at = putChunk(png, kSignature.size(), "IHDR", header.data(), header.size());
    at = putChunk(png, at, "IDAT", packed.data(), packedSize);
    putChunk(png, at, "IEND", nullptr, 0);
    return true;
}

}  // namespace nocturnel
