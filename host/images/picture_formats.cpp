// SPDX-License-Identifier: MIT
#include "host/images/picture_formats.h"

#include <png.h>

#include <array>
#include <cstdint>
#include <stdexcept>

#include "host/text/base64.h"

namespace vs_wml {
namespace {

// By the pixels that are black: 1 upper left, 2 upper right, 4 lower left, 8 lower right.
constexpr std::array<std::string_view, 16> kQuadrants = {" ", "▘", "▝", "▀", "▖", "▌", "▞", "▛",
                                                         "▗", "▚", "▐", "▜", "▄", "▙", "▟", "█"};

}  // namespace

std::string EncodePng(const Bitmap &bitmap) {
  // The simplified interface of libpng takes eight bits a pixel; a palette of two
  // colours makes it write few.
  constexpr std::array<std::uint8_t, 2> kGrays = {0, 255};
  std::vector<std::uint8_t> pixels(std::size_t{bitmap.width} * bitmap.height);
  std::size_t at = 0;
  for (std::uint32_t y = 0; y < bitmap.height; ++y) {
    for (std::uint32_t x = 0; x < bitmap.width; ++x) pixels[at++] = bitmap.White(x, y) ? 1 : 0;
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = bitmap.width;
  image.height = bitmap.height;
  image.format = PNG_FORMAT_FLAG_COLORMAP;
  image.colormap_entries = kGrays.size();
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
  std::string png(size, '\0');
  if (png_image_write_to_memory(&image, png.data(), &size, 0, pixels.data(), 0, kGrays.data()) ==
      0) {
    throw std::runtime_error(std::string("cannot write a PNG: ") + image.message);
  }
  png.resize(size);
  return png;
}

std::string DataUri(std::string_view mediaType, std::string_view bytes) {
  std::string uri = "data:" + std::string(mediaType) + ";base64,";
  AppendBase64(uri, bytes);
  return uri;
}

std::vector<std::string> DrawBlocks(const Bitmap &bitmap) {
  std::vector<std::string> lines;
  const auto black = [&](std::uint32_t x, std::uint32_t y) {
    return x < bitmap.width && y < bitmap.height && !bitmap.White(x, y) ? 1U : 0U;
  };
  for (std::uint32_t y = 0; y < bitmap.height; y += 2) {
    std::string line;
    for (std::uint32_t x = 0; x < bitmap.width; x += 2) {
      line += kQuadrants[black(x, y) + 2 * black(x + 1, y) + 4 * black(x, y + 1) +
                         8 * black(x + 1, y + 1)];
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace vs_wml
