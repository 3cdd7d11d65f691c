// SPDX-License-Identifier: MIT
#include "archives/records/record.h"

#include <algorithm>
#include <charconv>

#include "archives/http/fields.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

using Start = RecordDialect::Start;
constexpr auto npos = std::string_view::npos;

std::optional<std::uint64_t> ParseLength(std::string_view text) {
  std::uint64_t value = 0;
  const char *end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, value);
  if (text.empty() || result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return value;
}

std::string WithoutBrackets(std::string_view text) {
  if (text.starts_with('<')) text.remove_prefix(1);
  if (text.ends_with('>')) text.remove_suffix(1);
  return std::string(Trim(text));
}

// WARC ------------------------------------------------------------------------------------

constexpr std::string_view kWarcMark = "WARC/";

Start MatchWarc(std::string_view bytes, bool last) {
  constexpr std::size_t kLongestLine = 32;
  const std::size_t known = std::min(bytes.size(), kWarcMark.size());
  if (bytes.substr(0, known) != kWarcMark.substr(0, known)) return Start::kNo;
  const std::string_view begin = bytes.substr(0, kLongestLine);
  const std::size_t end = begin.find('\n');
  const std::string_view version = begin.substr(known, end - known);
  const bool plain = std::all_of(version.begin(), version.end(),
                                 [](char c) { return IsDigit(c) || c == '.' || IsWhiteSpace(c); });
  if (!plain || (!version.empty() && !IsDigit(version[0]))) return Start::kNo;
  if (end != npos) return version.empty() ? Start::kNo : Start::kYes;
  return last || begin.size() == kLongestLine ? Start::kNo : Start::kMoreBytes;
}

std::size_t FindWarc(std::string_view bytes, std::size_t from) {
  for (std::size_t at = from; (at = bytes.find(kWarcMark, at)) != npos; ++at) {
    if (MatchWarc(bytes.substr(at), false) != Start::kNo) return at;
  }
  // The mark may be cut by the end of the bytes.
  for (std::size_t length = kWarcMark.size() - 1; length != 0; --length) {
    if (bytes.size() >= from + length && bytes.ends_with(kWarcMark.substr(0, length))) {
      return bytes.size() - length;
    }
  }
  return npos;
}

struct WarcField {
  std::string_view name;  // in lower case
  std::string RecordHead::*value;
  bool isAddress = false;
};

constexpr WarcField kWarcFields[] = {
    {"warc-target-uri", &RecordHead::uri, true},
    {"warc-date", &RecordHead::date},
    {"warc-record-id", &RecordHead::id, true},
    {"warc-payload-digest", &RecordHead::payloadDigest},
    {"warc-block-digest", &RecordHead::blockDigest},
    {"warc-identified-payload-type", &RecordHead::payloadType},
    {"warc-refers-to-target-uri", &RecordHead::refersTo, true},
    {"warc-truncated", &RecordHead::truncated},
    {"warc-segment-number", &RecordHead::segment},
    {"content-type", &RecordHead::contentType},
};

RecordHead ParseWarc(std::string_view header) {
  RecordHead head;
  std::string refersToRecord;
  const std::size_t line = header.find('\n') + 1;
  const std::vector<HeaderField> fields = ParseHeaderFields(header.substr(line));
  for (const HeaderField &field : fields) {
    const std::string name = Lowered(field.name);
    if (name == "warc-type") {
      head.type = Lowered(field.value);
    } else if (name == "warc-refers-to") {
      refersToRecord = WithoutBrackets(field.value);
    } else if (name == "content-length") {
      if (const auto length = ParseLength(field.value); length && !head.length) {
        head.length = length;
      }
    } else {
      for (const WarcField &known : kWarcFields) {
        std::string &value = head.*known.value;
        if (known.name != name || !value.empty()) continue;
        value = known.isAddress ? WithoutBrackets(field.value) : field.value;
      }
    }
  }
  if (head.refersTo.empty()) head.refersTo = std::move(refersToRecord);
  if (!head.length) head.warnings.emplace_back("its header has no Content-Length that is a number");
  return head;
}

// ARC -------------------------------------------------------------------------------------

// The columns of a header line, counted from the end: an address may have blanks in it.
struct ArcLine {
  std::string_view uri;
  std::string_view date;
  std::string_view type;
  std::string_view length;
};

bool IsDate(std::string_view word) {
  return (word.size() == 14 || word.size() == 12 || word.size() == 8) &&
         std::all_of(word.begin(), word.end(), IsDigit);
}

bool IsAddressOfHost(std::string_view word) {
  return word == "-" || (!word.empty() && std::all_of(word.begin(), word.end(), [](char c) {
           return IsHexDigit(c) || c == '.' || c == ':';
         }));
}

// Whether a text begins with a scheme, as far as it goes.
bool HasScheme(std::string_view text) {
  const std::size_t colon =
      text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789+-.");
  return colon != 0 && IsLetter(text[0]) && (colon == npos || text[colon] == ':');
}

std::optional<ArcLine> SplitArcLine(std::string_view line) {
  line = Trim(line);
  if (line.empty() || !HasScheme(line) || line.find(':') == npos) return std::nullopt;
  std::size_t before = line.rfind(' ');
  if (before == npos) return std::nullopt;
  ArcLine found;
  found.length = line.substr(before + 1);
  if (!ParseLength(found.length)) return std::nullopt;
  const std::size_t typeEnd = before;
  while (before != npos && before != 0) {
    const std::size_t end = before;
    before = line.rfind(' ', end - 1);
    if (before == npos) return std::nullopt;
    const std::string_view word = line.substr(before + 1, end - before - 1);
    if (!IsDate(word)) continue;
    const std::size_t host = line.rfind(' ', before == 0 ? 0 : before - 1);
    if (host == npos || !IsAddressOfHost(line.substr(host + 1, before - host - 1))) continue;
    found.date = word;
    found.uri = line.substr(0, host);
    found.type = end < typeEnd ? Trim(line.substr(end, typeEnd - end)) : std::string_view();
    return found;
  }
  return std::nullopt;
}

constexpr std::size_t kLongestArcLine = 65536;

Start MatchArc(std::string_view bytes, bool last) {
  if (bytes.empty()) return last ? Start::kNo : Start::kMoreBytes;
  if (!HasScheme(bytes.substr(0, 64))) return Start::kNo;
  const std::size_t end = bytes.find('\n');
  if (end == npos) {
    return last || bytes.size() > kLongestArcLine ? Start::kNo : Start::kMoreBytes;
  }
  return SplitArcLine(bytes.substr(0, end)) ? Start::kYes : Start::kNo;
}

std::size_t FindArc(std::string_view bytes, std::size_t from) {
  for (std::size_t at = from; (at = bytes.find('\n', at)) != npos;) {
    ++at;
    if (MatchArc(bytes.substr(at), false) != Start::kNo) return at;
  }
  return npos;
}

std::size_t ArcHeaderLength(std::string_view bytes) {
  return bytes.find('\n') + 1;  // npos + 1: 0
}

// 20010203040506 as RFC 3339 has it; shorter ones are filled up.
std::string ArcDate(std::string_view digits) {
  std::string full(digits);
  full.append(std::string_view("00000000000000").substr(full.size()));
  return full.substr(0, 4) + '-' + full.substr(4, 2) + '-' + full.substr(6, 2) + 'T' +
         full.substr(8, 2) + ':' + full.substr(10, 2) + ':' + full.substr(12, 2) + 'Z';
}

RecordHead ParseArc(std::string_view header) {
  RecordHead head;
  const std::optional<ArcLine> line = SplitArcLine(header);
  if (!line) return head;
  head.uri = line->uri;
  head.type = head.uri.starts_with("filedesc:") ? "filedesc" : "response";
  head.date = ArcDate(line->date);
  head.contentType = line->type;
  head.length = ParseLength(line->length);
  return head;
}

}  // namespace

const RecordDialect kWarcDialect = {MatchWarc, HeaderLength, ParseWarc, FindWarc, 2, false};
const RecordDialect kArcDialect = {MatchArc, ArcHeaderLength, ParseArc, FindArc, 1, true};

const RecordDialect *DialectOf(std::string_view beginning) {
  beginning.remove_prefix(SkipWhiteSpace(beginning, 0));
  if (MatchWarc(beginning, true) == Start::kYes) return &kWarcDialect;
  if (MatchArc(beginning, true) == Start::kYes) return &kArcDialect;
  return nullptr;
}

}  // namespace vs_wml
