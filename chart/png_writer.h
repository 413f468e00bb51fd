#pragma once
// PNG encoding of the finished chart (RGB, 8 bits per channel). Charts are mostly dark sky and
// flat tints, so the rows are filtered with "Sub" and deflated by our own encoder that finds
// only runs of repeated bytes and codes them and the busy pixels with a Huffman code made for
// the chart: several times faster than zlib's fastest level, for PNGs of about the same size.
#include <cairo.h>

#include <cstdint>
#include <vector>

namespace nocturnel {

// Encodes an RGB24 or ARGB32 image surface (alpha dropped); false when the surface is not an
// image of one of those formats.
bool encodePng(cairo_surface_t* surface, std::vector<uint8_t>& png);

}  // namespace nocturnel
