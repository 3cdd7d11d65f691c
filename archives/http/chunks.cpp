// SPDX-License-Identifier: MIT
#include "archives/http/chunks.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

#include "archives/http/fields.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::size_t kLongestSizeLine = 4096;  // extensions included

struct SizeLine {
  std::uint64_t size = 0;
  std::size_t length = 0;  // of the line, its end included
};

enum class LineState { kFound, kCut, kNone };

LineState ReadSizeLine(std::string_view text, SizeLine &line) {
  const std::size_t end = text.substr(0, kLongestSizeLine).find('\n');
  std::string_view content = text.substr(0, std::min(end, kLongestSizeLine));
  const bool isCut = end == npos && content.size() == text.size();
  content = Trim(content.substr(0, content.find(';')));
  const char *const stop = content.data() + content.size();
  const auto result = std::from_chars(content.data(), stop, line.size, 16);
  if (content.empty()) return isCut ? LineState::kCut : LineState::kNone;
  if (result.ec != std::errc() || result.ptr != stop) return LineState::kNone;
  if (isCut) return LineState::kCut;
  if (end == npos) return LineState::kNone;
  line.length = end + 1;
  return LineState::kFound;
}

// The length of the line end at the start of a text, 0 for none.
std::size_t LineEnd(std::string_view text) {
  if (text.starts_with("\r\n")) return 2;
  return text.starts_with('\n') ? 1 : 0;
}

// Behind the trailer: its fields and an empty line, of which either may be missing.
std::size_t SkipTrailer(std::string_view body, std::size_t at) {
  if (const std::size_t line = LineEnd(body.substr(at)); line != 0) return at + line;
  const std::string_view rest = body.substr(at);
  const std::size_t end = rest.find('\n');
  if (end == npos || rest.substr(0, end).find(':') == npos) return at;
  const std::size_t trailer = HeaderLength(rest);
  return trailer == 0 ? body.size() : at + trailer;
}

}  // namespace

DecodedWhole JoinChunks(std::string_view body) {
  DecodedWhole joined;
  while (true) {
    const std::string_view rest = body.substr(joined.taken);
    SizeLine line;
    const LineState state = ReadSizeLine(rest, line);
    if (state != LineState::kFound) {
      if (state == LineState::kNone) {
        joined.state = DecodeState::kDamaged;
        joined.fault = "no chunk size at byte " + std::to_string(joined.taken);
      }
      return joined;
    }
    joined.taken += line.length;
    if (line.size == 0) {
      joined.taken = SkipTrailer(body, joined.taken);
      joined.state = DecodeState::kFinished;
      return joined;
    }
    const std::string_view data = body.substr(joined.taken);
    if (data.size() < line.size) {
      joined.bytes += data;
      joined.taken = body.size();
      return joined;
    }
    const auto size = static_cast<std::size_t>(line.size);
    joined.bytes += data.substr(0, size);
    joined.taken += size;
    joined.taken += LineEnd(body.substr(joined.taken));
  }
}

bool BeginsWithChunk(std::string_view body) {
  SizeLine line;
  if (ReadSizeLine(body, line) != LineState::kFound) return false;
  const std::string_view data = body.substr(line.length);
  if (data.size() <= line.size) return true;
  return line.size == 0 || LineEnd(data.substr(static_cast<std::size_t>(line.size))) != 0 ||
         data.substr(static_cast<std::size_t>(line.size)) == "\r";
}

}  // namespace vs_wml
