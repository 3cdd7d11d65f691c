/// \file
/// Forms in which a bitmap can be shown.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_IMAGES_PICTURE_FORMATS_H
#define VS_WML_HOST_IMAGES_PICTURE_FORMATS_H

#include <string>
#include <string_view>
#include <vector>

#include "host/images/wbmp.h"

namespace vs_wml {

/// The bitmap as a PNG file of one bit a pixel. Throws std::runtime_error.
std::string EncodePng(const Bitmap &bitmap);

/// `data:image/png;base64,...`
std::string DataUri(std::string_view mediaType, std::string_view bytes);

/// Lines of block characters, each for two by two pixels; black pixels are drawn. Blanks
/// at the end of a line are left out.
std::vector<std::string> DrawBlocks(const Bitmap &bitmap);

}  // namespace vs_wml

#endif  // VS_WML_HOST_IMAGES_PICTURE_FORMATS_H
