/// \file
/// HTTP responses as archives hold them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_HTTP_MESSAGE_H
#define VS_WML_ARCHIVES_HTTP_MESSAGE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archives/http/fields.h"

namespace vs_wml {

enum class Coding { kChunked, kGzip, kDeflate, kBrotli, kZstd };

/// What the head of a response says.
struct HttpHead {
  std::optional<int> status;  ///< nothing for a text instead of a number
  MediaType type;
  /// The content type as it was written, for multipart bodies.
  std::string rawType;
  std::vector<Coding> codings;  ///< the outermost first, transfer codings before the others
  std::optional<std::uint64_t> length;
  std::vector<std::string> warnings;
};

/// Whether a response starts here: a status line, or what servers send for one.
bool LooksLikeHttp(std::string_view bytes);

/// Reads a status line, if there is one, and the fields behind it.
HttpHead ParseHttpHead(std::string_view head);

/// Codings undone at most, one around the other.
inline constexpr std::size_t kMostCodings = 8;

struct DecodedBody {
  std::string bytes;
  bool over = false;     ///< stopped at the limit
  bool damaged = false;  ///< a coding is broken; `bytes` are what came before
  std::vector<std::string> warnings;
};

/// Undoes what codings a body has: what its bytes show goes before what the head says, and each
/// difference is a warning.
DecodedBody DecodeBody(const HttpHead &head, std::string_view body, std::size_t limit);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_HTTP_MESSAGE_H
