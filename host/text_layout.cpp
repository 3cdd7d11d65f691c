// SPDX-License-Identifier: MIT
#include "host/text_layout.h"

#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <algorithm>
#include <memory>

#include "host/utf8.h"

namespace vs_wml {
namespace {

struct CloseIterator {
  void operator()(UBreakIterator *iterator) const { ubrk_close(iterator); }
};
struct CloseText {
  void operator()(UText *text) const { utext_close(text); }
};

// Finds the segments of a text: stretches that stay together, with the blanks behind.
class Segmenter {
 public:
  explicit Segmenter(std::string_view text) : text_(text) {
    if (HasWideCharacters()) iterator_ = WideIterator();
    if (iterator_ == nullptr) return;
    UErrorCode status = U_ZERO_ERROR;
    utext_.reset(
        utext_openUTF8(nullptr, text_.data(), static_cast<std::int64_t>(text_.size()), &status));
    ubrk_setUText(iterator_, utext_.get(), &status);
    if (U_FAILURE(status)) iterator_ = nullptr;
  }

  // End of the segment that begins at `begin`.
  std::size_t End(std::size_t begin) {
    if (iterator_ != nullptr) {
      const std::int32_t next = ubrk_following(iterator_, static_cast<std::int32_t>(begin));
      return next == UBRK_DONE ? text_.size() : static_cast<std::size_t>(next);
    }
    std::size_t end = std::min(text_.find(' ', begin), text_.size());
    while (end < text_.size() && text_[end] == ' ') ++end;
    return end;
  }

 private:
  bool HasWideCharacters() const {
    // The first wide characters have the lead byte 0xE1.
    const auto wide = std::find_if(text_.begin(), text_.end(),
                                   [](char c) { return static_cast<unsigned char>(c) >= 0xE1; });
    for (auto offset = static_cast<std::size_t>(wide - text_.begin()); offset < text_.size();) {
      if (ColumnWidth(NextCharacter(text_, offset)) == 2) return true;
    }
    return false;
  }

  // Opening an iterator is slow: each thread keeps its own.
  static UBreakIterator *WideIterator() {
    thread_local std::unique_ptr<UBreakIterator, CloseIterator> iterator;
    if (!iterator) {
      UErrorCode status = U_ZERO_ERROR;
      iterator.reset(ubrk_open(UBRK_LINE, "", nullptr, 0, &status));
      if (U_FAILURE(status)) iterator.reset();
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

// Appends the lines of a text without line feeds.
class LineBreaker {
 public:
  LineBreaker(std::string_view text, std::size_t offset, std::size_t width, LongWords longWords,
              std::vector<Line> &lines)
      : text_(text), offset_(offset), width_(width), longWords_(longWords), lines_(lines) {}

  void Run() {
    const std::size_t whole = WithoutBlanks(text_, 0, text_.size());
    if (longWords_ == LongWords::kKeep && AsciiPrefix(text_) == text_.size()) {
      RunAscii(whole);
      return;
    }
    const std::size_t columns = ColumnWidth(text_.substr(0, whole));
    if (columns <= width_) {
      lines_.push_back({offset_, offset_ + whole, columns});
      return;
    }
    Segmenter segmenter(text_.substr(0, whole));
    for (std::size_t begin = 0; begin < whole;) {
      const std::size_t end = segmenter.End(begin);
      Add(begin, end);
      begin = end;
    }
    EndLine();
  }

 private:
  // A byte is a column: the last blank that fits is looked for from the right.
  void RunAscii(std::size_t whole) {
    std::size_t begin = 0;
    while (whole - begin > width_) {
      std::size_t blank = text_.rfind(' ', begin + width_);
      if (blank == std::string_view::npos || blank <= begin) {
        blank = text_.find(' ', begin + width_);
      }
      if (blank >= whole) break;
      const std::size_t end = WithoutBlanks(text_, begin, blank);
      lines_.push_back({offset_ + begin, offset_ + end, end - begin});
      begin = blank + 1;
      while (text_[begin] == ' ') ++begin;
    }
    lines_.push_back({offset_ + begin, offset_ + whole, whole - begin});
  }

  void Add(std::size_t begin, std::size_t end) {
    const std::size_t visible = WithoutBlanks(text_, begin, end);
    const std::size_t columns = ColumnWidth(text_.substr(begin, visible - begin));
    if (columns_ != 0 && columns_ + blanks_ + columns > width_) EndLine();
    if (columns_ == 0) begin_ = begin;
    if (columns > width_ && longWords_ == LongWords::kBreak) {
      AddInPieces(begin, visible);
    } else {
      columns_ += blanks_ + columns;
      end_ = visible;
    }
    blanks_ = end - visible;
  }

  void AddInPieces(std::size_t begin, std::size_t end) {
    for (std::size_t offset = begin; offset < end;) {
      std::size_t next = offset;
      const auto columns = static_cast<std::size_t>(ColumnWidth(NextCharacter(text_, next)));
      if (columns_ != 0 && columns_ + columns > width_) {
        EndLine();
        begin_ = offset;
      }
      columns_ += columns;
      end_ = offset = next;
    }
  }

  void EndLine() {
    lines_.push_back({offset_ + begin_, offset_ + end_, columns_});
    columns_ = blanks_ = 0;
  }

  std::string_view text_;
  std::size_t offset_;
  std::size_t width_;
  LongWords longWords_;
  std::vector<Line> &lines_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::size_t columns_ = 0;
  std::size_t blanks_ = 0;
};

}  // namespace

void BreakLines(std::string_view text, std::size_t begin, std::size_t end, std::size_t width,
                LongWords longWords, std::vector<Line> &lines) {
  while (true) {
    const std::size_t feed = std::min(text.substr(0, end).find('\n', begin), end);
    LineBreaker(text.substr(begin, feed - begin), begin, std::max<std::size_t>(width, 1), longWords,
                lines)
        .Run();
    if (feed == end) return;
    begin = feed + 1;
  }
}

std::size_t WidestWord(std::string_view text) {
  std::size_t widest = 0;
  Segmenter segmenter(text);
  for (std::size_t begin = 0; begin < text.size();) {
    std::size_t end = segmenter.End(begin);
    const std::string_view segment = text.substr(begin, end - begin);
    std::size_t visible = 0;
    for (std::size_t feed = 0; feed <= segment.size(); ++feed) {
      if (feed == segment.size() || segment[feed] == '\n') {
        const std::size_t last = WithoutBlanks(segment, visible, feed);
        widest = std::max(widest, ColumnWidth(segment.substr(visible, last - visible)));
        visible = feed + 1;
      }
    }
    begin = end;
  }
  return widest;
}

}  // namespace vs_wml
