#pragma once
// PNG encoding of the finished chart (RGB, 8 bits per channel). Charts are mostly dark sky, so
// the rows are filtered with "Sub" and deflated at zlib's fastest level, several times faster
// than cairo's own writer at about the same size.
#include <cairo.h>

#include <cstdint>
#include <vector>

namespace nocturnel {

// Encodes an RGB24 or ARGB32 image surface (alpha dropped); false when the surface is not an
// image or zlib fails.
bool encodePng(cairo_surface_t* surface, std::vector<uint8_t>& png);

}  // namespace nocturnel
