// SPDX-License-Identifier: MIT
#include "host/writers/text_layout.h"

#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <new>

#include "host/platform/per_thread.h"
#include "host/text/byte_scan.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

struct CloseIterator {
  void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};
struct CloseText {
  void operator()(UText *text) const { utext_close(text); }
};

// Without ICU's rules lines break at blanks; without memory there are none.
bool Failed(UErrorCode status) {
  if (status == U_MEMORY_ALLOCATION_ERROR) throw std::bad_alloc();
  return U_FAILURE(status);
}

// Whether lines of the text may break between characters, not only at blanks.
bool HasWideCharacters(std::string_view text) {
  // The first wide characters have the lead byte 0xE1.
  for (std::size_t offset = AsciiPrefix(text); offset < text.size();) {
    const auto byte = static_cast<unsigned char>(text[offset]);
    if (byte < 0x80) {
      offset += AsciiPrefix(text.substr(offset));
    } else if (byte < 0xE1) {
      ++offset;
    } else if (NextWidth(text, offset) == 2) {
      return true;
    }
  }
  return false;
}

// Finds the places of a text where a line may end: behind blanks and, in East Asian
// text, where Unicode's rules allow it.
class BreakFinder {
 public:
  BreakFinder(std::string_view text, bool narrow) : text_(text) {
    if (!narrow && HasWideCharacters(text)) iterator_ = WideIterator();
    if (iterator_ == nullptr) return;
    UErrorCode status = U_ZERO_ERROR;
    utext_.reset(
        utext_openUTF8(nullptr, text_.data(), static_cast<std::int64_t>(text_.size()), &status));
    ubrk_setUText(iterator_, utext_.get(), &status);
    if (Failed(status)) iterator_ = nullptr;
  }

  // The last place behind `begin`, at `offset` or before; `begin` when there is none.
  std::size_t Last(std::size_t begin, std::size_t offset) {
    if (iterator_ != nullptr) {
      const auto from = static_cast<std::int32_t>(offset);
      if (ubrk_isBoundary(iterator_, from) != 0) return offset;
      const std::int32_t place = ubrk_preceding(iterator_, from);
      return std::max(begin, static_cast<std::size_t>(place == UBRK_DONE ? 0 : place));
    }
    const std::size_t blank = text_.substr(begin, offset - begin).rfind(' ');
    return blank == std::string_view::npos ? begin : begin + blank + 1;
  }

  // The first place behind `offset`; the end of the text is one.
  std::size_t Next(std::size_t offset) {
    if (iterator_ != nullptr) {
      const std::int32_t place = ubrk_following(iterator_, static_cast<std::int32_t>(offset));
      return place == UBRK_DONE ? text_.size() : static_cast<std::size_t>(place);
    }
    const std::size_t blank = text_.find(' ', offset);
    return blank == std::string_view::npos ? text_.size() : SkipBlanks(blank);
  }

  std::size_t SkipBlanks(std::size_t offset) const {
    while (offset < text_.size() && text_[offset] == ' ') ++offset;
    return offset;
  }

 private:
  // Opening an iterator is slow: each thread keeps its own.
  static UBreakIterator *WideIterator() {
    static PerThread<std::unique_ptr<UBreakIterator, CloseIterator>> iterators;
    auto &iterator = iterators.Get();
    if (!iterator) {
      UErrorCode status = U_ZERO_ERROR;
      iterator.reset(ubrk_open(UBRK_LINE, "", nullptr, 0, &status));
      if (Failed(status)) iterator.reset();
    }
    return iterator.get();
  }

  std::string_view text_;
  std::unique_ptr<UText, CloseText> utext_;
  UBreakIterator *iterator_ = nullptr;
};

std::size_t WithoutBlanks(std::string_view text, std::size_t begin, std::size_t end) {
  while (end > begin && text[end - 1] == ' ') --end;
  return end;
}

// Measures parts of a text without line feeds.
class Measure {
 public:
  Measure(std::string_view text, TextKind kind)
      : text_(text),
        ascii_(kind == TextKind::kPlain ? text.size() : AsciiPrefix(text)),
        narrow_(ascii_ == text.size() || IsNarrow(text)) {}

  bool Narrow() const { return narrow_; }

  std::size_t Columns(std::size_t begin, std::size_t end) const {
    if (narrow_ && end > ascii_) return CountCharacters(text_.substr(begin, end - begin));
    return end <= ascii_ ? end - begin : ColumnWidth(text_.substr(begin, end - begin));
  }

  // Where the first character stands that does not fit into `width` columns from `begin`
  // on; the end of the text when all do.
  std::size_t Fit(std::size_t begin, std::size_t width) const {
    std::size_t columns = std::min(width, ascii_ - std::min(ascii_, begin));
    std::size_t offset = begin + columns;
    if (ascii_ == text_.size()) return offset;
    if (narrow_) return SkipCharacters(text_, offset, width - columns);
    while (offset < text_.size()) {
      if (columns < width && static_cast<unsigned char>(text_[offset]) < 0x80) {
        const std::size_t ascii = AsciiPrefix(text_.substr(offset, width - columns));
        offset += ascii;
        columns += ascii;
        continue;
      }
      std::size_t next = offset;
      columns += NextWidth(text_, next);
      if (columns > width) break;
      offset = next;
    }
    return offset;
  }

 private:
  std::string_view text_;
  std::size_t ascii_;  // characters at the start, each of which takes one column
  bool narrow_;        // every character takes one column
};

// The highest bits of the bytes, all of them ASCII, that are this one.
std::uint64_t BytesThatAre(unsigned char byte, std::uint64_t ascii) {
  return ~((ascii ^ EightTimes(byte)) + EightTimes(0x7F)) & EightTimes(0x80);
}

// Up to eight bytes of a text from `offset` on, the first of them lowest.
std::uint64_t BytesFrom(std::string_view text, std::size_t offset) {
  const std::size_t left = text.size() - offset;
  if (left >= 8) return LowestFirst(text.data() + offset);
  if (text.size() >= 8) return LowestFirst(text.data() + text.size() - 8) >> 8 * (8 - left);
  std::uint64_t bytes = 0;
  for (std::size_t at = left; at != 0; --at) {
    bytes = bytes << 8U | static_cast<unsigned char>(text[offset + at - 1]);
  }
  return bytes;
}

std::size_t WidestAsciiWord(std::string_view text) {
  std::size_t widest = 0;
  std::size_t begin = 0;
  for (std::size_t offset = 0; offset < text.size(); offset += 8) {
    const std::uint64_t bytes = BytesFrom(text, offset);
    std::uint64_t ends = BytesThatAre(' ', bytes) | BytesThatAre('\n', bytes);
    for (; ends != 0; ends &= ends - 1) {
      const std::size_t end = offset + static_cast<std::size_t>(std::countr_zero(ends)) / 8;
      widest = std::max(widest, end - begin);
      begin = end + 1;
    }
  }
  return std::max(widest, text.size() - begin);
}

// Appends the lines of a text without line feeds, which begins at `offset` of another.
void BreakLine(std::string_view text, std::size_t offset, std::size_t width, LongWords longWords,
               TextKind kind, std::vector<Line> &lines) {
  text = text.substr(0, WithoutBlanks(text, 0, text.size()));
  const Measure measure(text, kind);
  const auto add = [&](std::size_t begin, std::size_t end) {
    lines.push_back({offset + begin, offset + end, measure.Columns(begin, end)});
  };
  std::size_t full = measure.Fit(0, width);
  std::size_t begin = 0;
  if (full < text.size()) {
    BreakFinder finder(text, measure.Narrow());
    for (; full < text.size(); full = measure.Fit(begin, width)) {
      std::size_t next = finder.Last(begin, full);
      if (text[full] == ' ') {
        next = finder.SkipBlanks(full);
      } else if (next == begin) {
        // A single word; a character wider than the line has one of its own.
        if (longWords == LongWords::kKeep) {
          next = finder.Next(full);
        } else if (full > begin) {
          next = full;
        } else {
          NextCharacter(text, next = begin);
        }
      }
      add(begin, WithoutBlanks(text, begin, next));
      begin = next;
    }
  }
  if (begin < text.size() || begin == 0) add(begin, text.size());
}

}  // namespace

void BreakLines(std::string_view text, std::size_t begin, std::size_t end, std::size_t width,
                LongWords longWords, std::vector<Line> &lines, TextKind kind) {
  width = std::max<std::size_t>(width, 1);
  while (true) {
    const std::size_t feed =
        kind == TextKind::kPlain ? end : std::min(text.substr(0, end).find('\n', begin), end);
    BreakLine(text.substr(begin, feed - begin), begin, width, longWords, kind, lines);
    if (feed == end) return;
    begin = feed + 1;
  }
}

std::size_t WidestWord(std::string_view text, TextKind kind) {
  if (kind == TextKind::kPlain || AsciiPrefix(text) == text.size()) return WidestAsciiWord(text);
  std::size_t widest = 0;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t feed = std::min(text.find('\n', begin), text.size());
    const std::string_view line = text.substr(begin, feed - begin);
    const Measure measure(line, kind);
    BreakFinder finder(line, measure.Narrow());
    for (std::size_t word = 0; word < line.size();) {
      const std::size_t next = finder.Next(word);
      const std::size_t end = WithoutBlanks(line, word, next);
      widest = std::max(widest, measure.Columns(word, end));
      word = next;
    }
    begin = feed + 1;
  }
  return widest;
}

}  // namespace vs_wml
