/// \file
/// The chunked transfer coding.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_HTTP_CHUNKS_H
#define VS_WML_ARCHIVES_HTTP_CHUNKS_H

#include <cstddef>
#include <string>
#include <string_view>

#include "archives/coding/decoder.h"

namespace vs_wml {

/// Joins chunks. Sizes may have any number of digits, in any case, and blanks around them;
/// lines may end with LF alone. `taken`: where the last chunk, or its trailer, ends.
DecodedWhole JoinChunks(std::string_view body);

/// Whether a body begins as chunks do: a size, and behind so many bytes the end of a line, or
/// the end of the body before that.
bool BeginsWithChunk(std::string_view body);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_HTTP_CHUNKS_H
