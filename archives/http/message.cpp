// SPDX-License-Identifier: MIT
#include "archives/http/message.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <utility>

#include "archives/coding/decoder.h"
#include "archives/http/chunks.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

struct CodingName {
  std::string_view name;
  Coding coding;
};

constexpr CodingName kCodingNames[] = {
    {"chunked", Coding::kChunked}, {"gzip", Coding::kGzip},         {"x-gzip", Coding::kGzip},
    {"deflate", Coding::kDeflate}, {"x-deflate", Coding::kDeflate}, {"br", Coding::kBrotli},
    {"brotli", Coding::kBrotli},   {"zstd", Coding::kZstd}};

std::string_view NameOf(Coding coding) {
  for (const CodingName &row : kCodingNames) {
    if (row.coding == coding) return row.name;
  }
  return {};
}

// Appends the codings of a list in the order in which they are undone: from its end.
void AddCodings(std::string_view list, HttpHead &head) {
  while (!list.empty()) {
    const std::size_t comma = list.rfind(',');
    const std::size_t begin = comma == std::string_view::npos ? 0 : comma + 1;
    const std::string_view word = Trim(list.substr(begin));
    const std::string name = Lowered(Trim(word.substr(0, word.find(';'))));
    list = list.substr(0, begin == 0 ? 0 : comma);
    if (name.empty() || name == "identity" || name == "none") continue;
    const auto *row = std::find_if(std::begin(kCodingNames), std::end(kCodingNames),
                                   [&](const CodingName &known) { return known.name == name; });
    if (row != std::end(kCodingNames)) {
      head.codings.push_back(row->coding);
    } else {
      head.warnings.push_back("a coding that is not known: " + name);
    }
  }
}

std::optional<int> ParseStatus(std::string_view line) {
  const std::size_t blank = line.find_first_of(" \t");
  if (blank == std::string_view::npos) return std::nullopt;
  const std::string_view text = Trim(line.substr(blank));
  int status = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), status);
  if (result.ec != std::errc() || status < 100 || status > 999) return std::nullopt;
  return status;
}

bool IsStatusLine(std::string_view line) {
  return IsLowered(line.substr(0, 5), "http/") || line.starts_with("ICY ");
}

std::string_view FirstLine(std::string_view text) {
  return text.substr(0, std::min(text.find('\n'), text.size()));
}

// One body on its way through its codings.
class Peeler {
 public:
  Peeler(const HttpHead &head, std::string_view body, std::size_t limit)
      : pending_(head.codings), body_(body), limit_(limit) {}

  std::string_view Body() const { return held_ ? std::string_view(decoded_.bytes) : body_; }

  // Undoes one coding; false when the body shows none.
  bool Peel() {
    const std::string_view body = Body();
    if (body.empty()) return false;
    if (Says(Coding::kChunked) && BeginsWithChunk(body)) return Unchunk();
    if (IsGzip(body)) return Take(Coding::kGzip, *MakeInflater(DeflateWrapper::kGzip));
    if (IsZstdFrame(body)) return Take(Coding::kZstd, *MakeZstdDecoder({}));
    // Codings without a mark: one that fits to its end goes before one that only begins well.
    for (const bool whole : {true, false}) {
      for (const Coding coding : pending_) {
        if (coding == Coding::kDeflate && TryDeflate(whole)) return true;
        if (coding == Coding::kBrotli && Try(coding, *MakeBrotliDecoder(), whole)) return true;
      }
    }
    return pending_.empty() && HasAllChunks(body) && Unchunk();
  }

  void Finish(bool hasMore) {
    if (hasMore) {
      result_.damaged = true;
      result_.warnings.push_back("it has more than " + std::to_string(kMostCodings) + " codings");
    }
    if (!Body().empty()) {
      for (const Coding coding : pending_) {
        result_.warnings.push_back("it is said to be " + std::string(NameOf(coding)) +
                                   ", but is not");
      }
    }
  }

  bool Stopped() const { return result_.damaged || result_.over || cut_; }
  DecodedBody TakeResult() {
    result_.bytes = held_ ? std::move(decoded_.bytes) : std::string(body_);
    return std::move(result_);
  }

 private:
  bool Says(Coding coding) const {
    return std::find(pending_.begin(), pending_.end(), coding) != pending_.end();
  }

  // A body under a header that names no coding is chunked only if all of it says so.
  static bool HasAllChunks(std::string_view body) {
    if (!IsHexDigit(body[0]) || !BeginsWithChunk(body)) return false;
    const DecodedWhole joined = JoinChunks(body);
    return joined.state == DecodeState::kFinished && joined.taken == body.size() &&
           !joined.bytes.empty();
  }

  bool Unchunk() {
    DecodedWhole joined = JoinChunks(Body());
    // Wrong from the first chunk on: it was no chunk.
    if (joined.state == DecodeState::kDamaged && joined.bytes.empty()) return false;
    Accept(Coding::kChunked, std::move(joined));
    return true;
  }

  bool Take(Coding coding, Decoder &decoder) {
    Accept(coding, DecodeWhole(decoder, Body(), limit_, true));
    return true;
  }

  bool Try(Coding coding, Decoder &decoder, bool whole) {
    DecodedWhole decoded = DecodeWhole(decoder, Body(), limit_, false);
    const bool looksPlain = Body()[SkipWhiteSpace(Body(), 0) % Body().size()] == '<';
    const bool fits = decoded.state == DecodeState::kFinished || decoded.over ||
                      (!whole && !looksPlain && !decoded.bytes.empty());
    if (fits) Accept(coding, std::move(decoded));
    return fits;
  }

  bool TryDeflate(bool whole) {
    const auto first = static_cast<unsigned char>(Body()[0]);
    constexpr unsigned kMethod = 0x0F;
    const bool maybeZlib = Body().size() > 1 && (first & kMethod) == 8 &&
                           (first * 256U + static_cast<unsigned char>(Body()[1])) % 31 == 0;
    return (maybeZlib && Try(Coding::kDeflate, *MakeInflater(DeflateWrapper::kZlib), whole)) ||
           Try(Coding::kDeflate, *MakeInflater(DeflateWrapper::kNone), whole);
  }

  void Accept(Coding coding, DecodedWhole decoded) {
    const std::string name(NameOf(coding));
    const auto said = std::find(pending_.begin(), pending_.end(), coding);
    if (said != pending_.end()) {
      pending_.erase(said);
    } else {
      result_.warnings.push_back("it is " + name + ", which its header does not say");
    }
    if (decoded.over) {
      result_.over = true;
    } else if (decoded.state == DecodeState::kDamaged) {
      result_.damaged = true;
      result_.warnings.push_back("its " + name + " coding is damaged: " + decoded.fault);
    } else if (decoded.state == DecodeState::kMore) {
      cut_ = true;
      result_.warnings.push_back("its " + name + " coding is cut: " +
                                 std::to_string(decoded.bytes.size()) + " bytes came out of it");
    } else if (const std::size_t rest = Body().size() - decoded.taken; rest != 0) {
      result_.warnings.push_back(std::to_string(rest) + " bytes behind its " + name +
                                 " coding are left out");
    }
    decoded_ = std::move(decoded);
    held_ = true;
  }

  std::vector<Coding> pending_;
  std::string_view body_;
  std::size_t limit_;
  bool held_ = false;
  bool cut_ = false;
  DecodedWhole decoded_;
  DecodedBody result_;
};

}  // namespace

bool LooksLikeHttp(std::string_view bytes) {
  return IsStatusLine(bytes.substr(std::min(SkipWhiteSpace(bytes, 0), bytes.size())));
}

HttpHead ParseHttpHead(std::string_view text) {
  HttpHead head;
  text.remove_prefix(SkipWhiteSpace(text, 0));
  if (IsStatusLine(text)) {
    const std::string_view line = FirstLine(text);
    head.status = ParseStatus(Trim(line));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
  }
  std::string transfer;
  std::string content;
  for (const HeaderField &field : ParseHeaderFields(text)) {
    const std::string name = Lowered(field.name);
    if (name == "content-type" && head.rawType.empty()) {
      head.rawType = field.value;
      head.type = ParseMediaType(field.value);
    } else if (name == "transfer-encoding") {
      transfer += (transfer.empty() ? "" : ",") + field.value;
    } else if (name == "content-encoding") {
      content += (content.empty() ? "" : ",") + field.value;
    } else if (name == "content-length") {
      std::uint64_t length = 0;
      const char *const end = field.value.data() + field.value.size();
      const auto result = std::from_chars(field.value.data(), end, length);
      if (result.ec == std::errc() && result.ptr == end) head.length = length;
    }
  }
  AddCodings(transfer, head);
  AddCodings(content, head);
  return head;
}

DecodedBody DecodeBody(const HttpHead &head, std::string_view body, std::size_t limit) {
  Peeler peeler(head, body, limit);
  std::size_t count = 0;
  while (count < kMostCodings && !peeler.Stopped() && peeler.Peel()) ++count;
  bool hasMore = false;
  if (count == kMostCodings && !peeler.Stopped()) {
    Peeler probe = peeler;
    hasMore = probe.Peel();
  }
  peeler.Finish(hasMore);
  DecodedBody result = peeler.TakeResult();
  if (count == 0 && head.length && head.codings.empty() && *head.length > body.size()) {
    result.warnings.push_back("its body is cut: " + std::to_string(body.size()) + " of " +
                              std::to_string(*head.length) + " bytes are there");
  }
  return result;
}

}  // namespace vs_wml
