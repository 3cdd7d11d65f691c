// SPDX-License-Identifier: MIT
#include "archives/payload/content_kind.h"

#include <algorithm>
#include <string>

#include "archives/coding/decoder.h"
#include "archives/http/fields.h"
#include "archives/http/message.h"
#include "archives/records/record.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr auto npos = std::string_view::npos;

bool IsTar(std::string_view bytes) {
  constexpr std::size_t kBlock = 512;
  constexpr std::size_t kMark = 257;
  constexpr std::size_t kSum = 148;
  constexpr std::size_t kSumLength = 8;
  if (bytes.size() < kBlock) return false;
  if (bytes.substr(kMark, 5) == "ustar") return true;
  // Old ones have no mark: the sum of the first block, its own field as blanks, is in it.
  unsigned sum = kSumLength * ' ';
  unsigned written = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const bool isSum = i >= kSum && i < kSum + kSumLength;
    if (!isSum) sum += static_cast<unsigned char>(bytes[i]);
    if (isSum && bytes[i] >= '0' && bytes[i] <= '7') {
      written = written * 8 + static_cast<unsigned>(bytes[i] - '0');
    }
  }
  return written == sum && bytes[0] != '\0';
}

bool IsBundle(std::string_view bytes) {
  using namespace std::string_view_literals;
  static constexpr std::string_view kMarks[] = {"PK\3\4"sv, "PK\5\6"sv, "7z\xBC\xAF\x27\x1C"sv,
                                                "\xFD"
                                                "7zXZ\0"sv};
  return std::any_of(std::begin(kMarks), std::end(kMarks),
                     [&](std::string_view mark) { return bytes.starts_with(mark); }) ||
         (bytes.starts_with("BZh") && bytes.size() > 4 &&
          bytes.substr(4, 6) == "\x31\x41\x59\x26\x53\x59") ||
         IsTar(bytes);
}

bool IsHar(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  std::size_t at = SkipWhiteSpace(bytes, 0);
  if (at == bytes.size() || bytes[at] != '{') return false;
  at = SkipWhiteSpace(bytes, at + 1);
  if (!bytes.substr(at).starts_with("\"log\"")) return false;
  at = SkipWhiteSpace(bytes, at + 5);
  if (!bytes.substr(at).starts_with(':')) return false;
  at = SkipWhiteSpace(bytes, at + 1);
  return bytes.substr(at).starts_with('{');
}

// A part that follows at once: "--boundary" and the fields of the part.
bool IsBareMultipart(std::string_view bytes) {
  bytes.remove_prefix(SkipWhiteSpace(bytes, 0));
  if (!bytes.starts_with("--")) return false;
  const std::size_t end = bytes.find('\n');
  if (end == npos || end < 3) return false;
  return IsLowered(bytes.substr(end + 1, 8), "content-");
}

// Fields at the start, of which one is written in mail or says that parts follow. A deck may
// have been saved with the fields of HTTP in front of it.
bool IsMail(std::string_view bytes) {
  if (IsBareMultipart(bytes)) return true;
  if (LooksLikeHttp(bytes)) bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
  if (bytes.starts_with("From "))
    bytes.remove_prefix(std::min(bytes.find('\n'), bytes.size() - 1) + 1);
  const std::string_view line = bytes.substr(0, std::min(bytes.find('\n'), bytes.size()));
  const std::size_t colon = line.find(':');
  if (colon == npos || line.substr(0, colon).find_first_of(" \t<") != npos) return false;
  bool isMail = false;
  for (const HeaderField &field : ParseHeaderFields(bytes)) {
    const std::string name = Lowered(field.name);
    if (name == "content-type" || name == "content-transfer-encoding") {
      const std::string type = ParseMediaType(field.value).name;
      isMail = isMail || IsMultipart(type) || type == "message/rfc822" || type == "base64" ||
               type == "quoted-printable";
    }
    isMail = isMail || name == "mime-version" || name == "received" || name == "return-path" ||
             name == "message-id";
  }
  return isMail;
}

struct NameEnd {
  std::string_view end;
  ContentKind kind;
};

constexpr NameEnd kNameEnds[] = {{".warc", ContentKind::kWarc},
                                 {".arc", ContentKind::kArc},
                                 {".warc.gz", ContentKind::kCompressedWarc},
                                 {".warc.zst", ContentKind::kCompressedWarc},
                                 {".arc.gz", ContentKind::kCompressedArc}};

constexpr std::string_view kArchiveTypes[] = {"application/zip",
                                              "application/x-zip-compressed",
                                              "application/x-7z-compressed",
                                              "application/x-tar",
                                              "application/gzip",
                                              "application/x-gzip",
                                              "application/wacz",
                                              "application/warc",
                                              "application/x-mimearchive",
                                              "message/rfc822"};

ContentKind SniffCompressed(std::string_view beginning) {
  constexpr std::size_t kEnough = 4096;
  const auto decoder =
      IsGzip(beginning) ? MakeInflater(DeflateWrapper::kGzip) : MakeZstdDecoder({});
  const std::string inner = DecodeWhole(*decoder, beginning, kEnough, true).bytes;
  const RecordDialect *dialect = DialectOf(inner);
  if (dialect == &kWarcDialect) return ContentKind::kCompressedWarc;
  if (dialect == &kArcDialect) return ContentKind::kCompressedArc;
  if (IsTar(inner)) return ContentKind::kBundle;
  return ContentKind::kCompressed;
}

}  // namespace

ContentKind SniffContent(std::string_view beginning, std::string_view name) {
  if (const RecordDialect *dialect = DialectOf(beginning)) {
    return dialect == &kWarcDialect ? ContentKind::kWarc : ContentKind::kArc;
  }
  const std::string lowered = Lowered(name);
  ContentKind named = ContentKind::kDocument;
  for (const NameEnd &row : kNameEnds) {
    if (lowered.ends_with(row.end)) named = row.kind;
  }
  // In front of its frames a compressed WARC has their dictionary.
  if (IsSkippableFrame(beginning)) return ContentKind::kCompressedWarc;
  if (IsGzip(beginning) || IsZstdFrame(beginning)) {
    const ContentKind kind = SniffCompressed(beginning);
    const bool isNamed =
        named == ContentKind::kCompressedWarc || named == ContentKind::kCompressedArc;
    return kind == ContentKind::kCompressed && isNamed ? named : kind;
  }
  if (IsBundle(beginning)) return ContentKind::kBundle;
  if (IsHar(beginning)) return ContentKind::kHar;
  if (named != ContentKind::kDocument && !beginning.empty()) return named;
  if (IsMail(beginning)) return ContentKind::kMail;
  return ContentKind::kDocument;
}

bool IsMultipart(std::string_view type) {
  return type.starts_with("multipart/");
}

bool IsArchiveType(std::string_view type) {
  return IsMultipart(type) || std::find(std::begin(kArchiveTypes), std::end(kArchiveTypes), type) !=
                                  std::end(kArchiveTypes);
}

ContentKind SniffDocument(std::string_view beginning, std::string_view type) {
  if (IsMultipart(type)) return ContentKind::kMail;
  const bool maySay = IsArchiveType(type) || type.empty() || type == "application/octet-stream";
  return maySay ? SniffContent(beginning, {}) : ContentKind::kDocument;
}

}  // namespace vs_wml
