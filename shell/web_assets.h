#pragma once
// The files of web/ compiled into the program (cmake/EmbedWeb.cmake generates the table).
#include <cstddef>
#include <span>
#include <string_view>

namespace nocturnel {

struct WebAsset {
    std::string_view path;  // relative to web/, forward slashes: "index.html", "js/chart.mjs"
    const unsigned char* data;
    std::size_t size;
};

std::span<const WebAsset> webAssets();

}  // namespace nocturnel
