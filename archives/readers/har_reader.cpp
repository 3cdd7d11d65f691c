// SPDX-License-Identifier: MIT
#include "archives/readers/har_reader.h"

#include <glib.h>
#include <rapidjson/error/en.h>
#include <rapidjson/reader.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archives/http/fields.h"
#include "archives/readers/entry_reader.h"

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 65536;
// More than this is no nesting of a log.
constexpr std::size_t kDeepest = 64;

// The text, character by character as the parser wants it. A string that is too long is handed
// over without its rest, so that it is never held.
class JsonStream {
 public:
  using Ch = char;

  JsonStream(ByteSource &source, std::size_t longest)
      : source_(source), longest_(longest), buffer_(kPiece) {}

  Ch Peek() {
    if (at_ == end_ && !Fill()) return '\0';
    return buffer_[at_];
  }
  Ch Take() {
    const Ch c = Peek();
    if (at_ == end_) return '\0';
    ++at_;
    if (inString_) {
      Follow(c);
    } else if (c == '"') {
      inString_ = true;
      length_ = 0;
      wasCut_ = false;
    }
    return c;
  }
  std::size_t Tell() const { return static_cast<std::size_t>(read_ - (end_ - at_)); }
  // Whether the last string is not whole.
  bool WasCut() const { return wasCut_; }

  // For streams that are parsed in place, which this is not.
  Ch *PutBegin() { return nullptr; }
  void Put(Ch /*c*/) {}
  void Flush() {}
  std::size_t PutEnd(Ch * /*begin*/) { return 0; }

 private:
  bool Fill() {
    at_ = 0;
    end_ = source_.Read(buffer_.data(), buffer_.size());
    read_ += end_;
    return end_ != 0;
  }

  void Follow(Ch c) {
    ++sinceEscape_;
    if (escaped_) {
      escaped_ = false;
      isUnicode_ = c == 'u';
    } else if (c == '\\') {
      escaped_ = true;
      sinceEscape_ = 0;
    } else if (c == '"') {
      inString_ = false;
      return;
    }
    if (isUnicode_ && sinceEscape_ == 2) isSurrogate_ = c == 'd' || c == 'D';
    if (++length_ > longest_ && MayCut()) SkipString();
  }

  // Whether no escape would be cut, nor one of two that belong together.
  bool MayCut() const {
    if (escaped_) return false;
    if (!isUnicode_) return true;
    constexpr std::size_t kEscape = 5;  // behind the backslash
    return sinceEscape_ >= (isSurrogate_ ? 2 * kEscape + 1 : kEscape);
  }

  // Goes on to the quotation mark that ends the string.
  void SkipString() {
    wasCut_ = true;
    bool escaped = false;
    while ((Peek() != '"' || escaped) && at_ != end_) {
      escaped = !escaped && buffer_[at_] == '\\';
      ++at_;
    }
  }

  ByteSource &source_;
  std::size_t longest_;
  std::vector<char> buffer_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  std::uint64_t read_ = 0;
  std::size_t length_ = 0;
  bool inString_ = false;
  bool escaped_ = false;
  bool isUnicode_ = false;    // the last escape
  bool isSurrogate_ = false;  // the last escape, if it is Unicode
  std::size_t sinceEscape_ = 0;
  bool wasCut_ = false;
};

struct HarEntry {
  std::string url;
  std::string date;
  std::optional<int> status;
  std::string mimeType;
  std::string text;
  std::string encoding;
  std::string header;  // the name of the header field at hand
  std::string headerType;
  std::optional<std::uint64_t> size;
  bool hasText = false;
  bool isOver = false;
};

class HarHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, HarHandler> {
 public:
  HarHandler(ReadContext &context, const ArchivePlace &place, const JsonStream &stream)
      : context_(context), place_(place), stream_(stream) {}

  bool Default() { return true; }
  bool Uint(unsigned value) { return Number(value); }
  bool Uint64(std::uint64_t value) { return Number(value); }
  bool Key(const char *text, rapidjson::SizeType length, bool /*copy*/) {
    if (path_.empty()) return true;
    path_.back().assign(text, std::min<std::size_t>(length, kLongestKey));
    return true;
  }
  bool String(const char *text, rapidjson::SizeType length, bool /*copy*/) {
    if (!inEntry_) return true;
    if (std::string *value = Wanted()) {
      value->assign(text, length);
      if (value == &entry_.text) {
        entry_.hasText = true;
        entry_.isOver = stream_.WasCut();
      }
    }
    return true;
  }
  bool StartObject() {
    if (path_.size() >= kDeepest) return false;
    if (Is({"log", "entries", "[]"}) && !inEntry_) {
      entry_ = {};
      inEntry_ = true;
    }
    path_.emplace_back();
    return true;
  }
  bool EndObject(rapidjson::SizeType /*members*/) {
    path_.pop_back();
    if (inEntry_ && path_.size() == 3) {
      inEntry_ = false;
      CloseEntry();
    }
    return true;
  }
  bool StartArray() {
    if (path_.size() >= kDeepest) return false;
    path_.emplace_back("[]");
    return true;
  }
  bool EndArray(rapidjson::SizeType /*elements*/) {
    path_.pop_back();
    return true;
  }

  bool IsTooDeep() const { return path_.size() >= kDeepest; }
  // The log ends inside of an entry.
  void Break(const std::string &why, std::uint64_t offset) {
    if (inEntry_) {
      context_.Damage(place_, offset, entry_.url, why);
    } else {
      context_.Lose(place_, offset, why);
    }
  }

 private:
  static constexpr std::size_t kLongestKey = 64;

  bool Is(std::initializer_list<std::string_view> path) const {
    return std::equal(path_.begin(), path_.end(), path.begin(), path.end());
  }
  bool IsInEntry(std::initializer_list<std::string_view> path) const {
    constexpr std::size_t kEntryDepth = 3;  // log, entries, []
    return path_.size() == kEntryDepth + path.size() &&
           std::equal(path.begin(), path.end(), path_.begin() + kEntryDepth);
  }

  std::string *Wanted() {
    if (IsInEntry({"request", "url"})) return &entry_.url;
    if (IsInEntry({"startedDateTime"})) return &entry_.date;
    if (IsInEntry({"response", "content", "mimeType"})) return &entry_.mimeType;
    if (IsInEntry({"response", "content", "text"})) return &entry_.text;
    if (IsInEntry({"response", "content", "encoding"})) return &entry_.encoding;
    if (IsInEntry({"response", "headers", "[]", "name"})) return &entry_.header;
    return nullptr;
  }

  bool Number(std::uint64_t value) {
    if (!inEntry_) return true;
    if (IsInEntry({"response", "status"}) && value >= 100 && value <= 999) {
      entry_.status = static_cast<int>(value);
    }
    if (IsInEntry({"response", "content", "size"})) entry_.size = value;
    return true;
  }

  void CloseEntry() {
    if (place_.depth == 0) context_.RenewNested();
    ++count_;
    const std::string name =
        entry_.url.empty() ? place_.archive + '!' + std::to_string(count_) : entry_.url;
    const MediaType type = ParseMediaType(entry_.mimeType);
    if (!entry_.hasText) {
      if (IsDeckType(type.name)) {
        context_.Warn(place_, std::nullopt, name, "the log has no body of it");
      }
      context_.Skip();
      return;
    }
    ArchivedDocument about;
    about.uri = name;
    about.date = entry_.date;
    about.archive = place_.archive;
    about.status = entry_.status;
    about.contentType = type.name;
    const bool isBase64 = entry_.encoding == "base64";
    if (isBase64) {
      gint state = 0;
      guint held = 0;
      char *const text = entry_.text.data();
      entry_.text.resize(g_base64_decode_step(text, entry_.text.size(),
                                              reinterpret_cast<guchar *>(text), &state, &held));
      about.charset = type.charset;
    } else {
      about.charset = "utf-8";
      about.charsetIsCertain = true;
    }
    if (entry_.size && entry_.text.size() < *entry_.size && !entry_.isOver && isBase64) {
      about.warnings.push_back("the log has only " + std::to_string(entry_.text.size()) + " of " +
                               std::to_string(*entry_.size) + " bytes of it");
    }
    EntryReader reader(context_, {name, place_.depth + 1}, std::move(about));
    reader.Feed(entry_.text);
    if (entry_.isOver) {
      // One byte more, so that it is seen to be over its limit.
      reader.Feed(std::string(context_.Limits().documentBytes + 1, ' '));
    }
    reader.Finish();
    entry_ = {};
  }

  ReadContext &context_;
  const ArchivePlace &place_;
  const JsonStream &stream_;
  std::vector<std::string> path_;
  HarEntry entry_;
  bool inEntry_ = false;
  std::uint64_t count_ = 0;
};

}  // namespace

void ReadHar(ByteSource &source, ReadContext &context, const ArchivePlace &place) {
  source.Seek(0);
  // Base64 takes four characters for three bytes.
  JsonStream stream(source, context.Limits().documentBytes / 3 * 4 + 4);
  HarHandler handler(context, place, stream);
  rapidjson::Reader reader;
  constexpr unsigned kFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseStopWhenDoneFlag;
  const rapidjson::ParseResult result = reader.Parse<kFlags>(stream, handler);
  if (result.IsError()) {
    handler.Break(handler.IsTooDeep() ? "its JSON nests too deep"
                                      : std::string("its JSON is broken or cut: ") +
                                            rapidjson::GetParseError_En(result.Code()),
                  result.Offset());
  }
}

}  // namespace vs_wml
