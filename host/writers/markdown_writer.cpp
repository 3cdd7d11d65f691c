// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>

#include "host/text/utf8.h"
#include "host/writer.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

constexpr std::string_view kSpecial = "\\`*_[]<>&~|";
constexpr std::size_t kLongestReference = 40;

// Appends text so that it is read as itself. At the start of a line more means something.
void AppendEscaped(std::string &out, std::string_view text, bool lineStart) {
  if (lineStart && !text.empty()) {
    const std::size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    if (std::string_view("#+-=:").find(text[0]) != std::string_view::npos) {
      out += '\\';
      out += text[0];
      text.remove_prefix(1);
    } else if (digits != 0 && digits < text.size() &&
               (text[digits] == '.' || text[digits] == ')')) {
      out.append(text.substr(0, digits));
      out += '\\';
      out += text[digits];
      text.remove_prefix(digits + 1);
    }
  }
  for (const char c : text) {
    if (kSpecial.find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
}

// Whether a reference (`&colon;`) stands at the start of the text.
bool IsReference(std::string_view text) {
  const std::size_t end = std::min(text.substr(0, kLongestReference).find(';'), text.size());
  return end < text.size() &&
         std::all_of(text.begin() + 1, text.begin() + static_cast<int>(end), [](char c) {
           return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                  c == '#';
         });
}

// A target between angle brackets holds everything but these and line feeds. References
// count in targets, and bars in those of tables.
void AppendTarget(std::string &out, std::string_view target) {
  const bool brackets = target.empty() || target.find_first_of(" ()") != std::string_view::npos;
  if (brackets) out += '<';
  for (std::size_t at = 0; at < target.size(); ++at) {
    const char c = target[at];
    if (c == '<') {
      out += "%3C";
    } else if (c == '>') {
      out += "%3E";
    } else {
      const bool special = c == '\\' || c == '|' || (c == '&' && IsReference(target.substr(at)));
      if (special) out += '\\';
      out += c;
    }
  }
  if (brackets) out += '>';
}

// Marks of emphasis, and the tags for where marks would be read as asterisks.
struct Emphasis {
  std::string_view mark;
  std::string_view openTag;
  std::string_view closeTag;
};

Emphasis EmphasisOf(const TextStyle &style) {
  if (style.bold && style.italic) return {"***", "<b><i>", "</i></b>"};
  if (style.bold) return {"**", "<b>", "</b>"};
  if (style.italic) return {"*", "<i>", "</i>"};
  return {};
}

char32_t FirstCharacter(std::string_view text) {
  std::size_t offset = 0;
  return text.empty() ? U' ' : NextCharacter(text, offset);
}

char32_t LastCharacter(std::string_view text) {
  std::size_t start = text.size();
  while (start > 0 && !StartsCharacter(text[--start])) {
  }
  return FirstCharacter(text.substr(start));
}

// Whether a mark between these characters is read as one of emphasis.
bool MarkCounts(char32_t inside, char32_t outside) {
  const CharacterClass kind = ClassOf(inside);
  return kind == CharacterClass::kWord ||
         (kind == CharacterClass::kPunctuation && ClassOf(outside) != CharacterClass::kWord);
}

class MarkdownWriter : public BlockSink {
 public:
  MarkdownWriter(Output &output, const WriterOptions &options)
      : out_(output), nameHeading_(options.nameHeading) {}

  void BeginDocument(const DeckInfo &deck) override {
    lastBlock_ = Block::kNone;
    firstCard_ = true;
    if (!nameHeading_) return;
    line_ = "# ";
    AppendEscaped(line_, deck.name, false);
    EndBlock(Block::kOther);
  }

  void BeginCard(const Card &card) override {
    FinishParagraph();
    line_.clear();
    if (!card.title.empty()) {
      line_ = "## ";
      AppendEscaped(line_, card.title, false);
    } else if (!firstCard_) {
      line_ = "---";
    }
    firstCard_ = false;
    if (!line_.empty()) EndBlock(Block::kOther);
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    line_.clear();
    if (paragraph.preformatted) {
      const bool goesOn = paragraph.continues && lastBlock_ == Block::kCode;
      for (const Run &run : paragraph.content.runs) {
        line_ += run.image == kNone ? paragraph.content.TextOf(run)
                                    : ImageLabel(paragraph.content.images[run.image]);
      }
      if (!line_.empty()) line_.insert(0, 4, ' ');
      if (goesOn) {
        out_ << line_ << '\n';
      } else if (!line_.empty()) {
        EndBlock(Block::kCode);
      }
      return;
    }
    const bool goesOn = paragraph.continues && lastBlock_ == Block::kParagraph;
    AppendContent(paragraph.content, "");
    if (line_.empty()) {
      FinishParagraph();
      return;
    }
    if (goesOn) {
      out_ << "\\\n" << line_;
    } else {
      FinishParagraph();
      if (lastBlock_ != Block::kNone) out_ << '\n';
      out_ << line_;
    }
    lastBlock_ = Block::kParagraph;
  }

  void TakeTable(const Table &table) override {
    std::size_t columns = 0;
    for (const Row &row : table.rows) columns = std::max<std::size_t>(columns, row.cellCount);
    if (columns == 0) return;
    FinishParagraph();
    if (lastBlock_ != Block::kNone) out_ << '\n';
    lastBlock_ = Block::kOther;
    for (std::size_t index = 0; index < table.rows.size(); ++index) {
      WriteRow(table, table.rows[index], columns);
      if (index == 0) WriteDelimiters(table, table.rows[0], columns);
    }
  }

  void EndCard() override { FinishParagraph(); }

  void EndDocument(const DeckInfo & /*deck*/) override {
    FinishParagraph();
    if (nameHeading_) out_ << '\n';
    out_.Flush();
  }

 private:
  enum class Block { kNone, kParagraph, kCode, kOther };

  // The last line of a paragraph waits for its line feed, since a break may come.
  void FinishParagraph() {
    if (lastBlock_ != Block::kParagraph) return;
    out_ << '\n';
    lastBlock_ = Block::kOther;
  }

  void EndBlock(Block kind) {
    FinishParagraph();
    if (lastBlock_ != Block::kNone) out_ << '\n';
    out_ << line_ << '\n';
    lastBlock_ = kind;
  }

  void WriteRow(const Table &table, const Row &row, std::size_t columns) {
    line_ = '|';
    for (const Cell &cell : table.CellsOf(row)) {
      line_ += ' ';
      AppendContent(table.ContentOf(cell), "<br>");
      line_ += " |";
    }
    for (std::size_t column = row.cellCount; column < columns; ++column) line_ += "  |";
    out_ << line_ << '\n';
  }

  void WriteDelimiters(const Table &table, const Row &row, std::size_t columns) {
    line_ = '|';
    for (std::size_t column = 0; column < columns; ++column) {
      const Alignment alignment =
          column < row.cellCount ? table.cells[row.firstCell + column].alignment : Alignment::kLeft;
      line_ += alignment == Alignment::kRight    ? " ---: |"
               : alignment == Alignment::kCenter ? " :---: |"
                                                 : " --- |";
    }
    out_ << line_ << '\n';
  }

  // Appends running text to the line; `feed` stands for line feeds in it.
  void AppendContent(const Content &content, std::string_view feed) {
    const std::size_t start = line_.size();
    std::uint32_t link = kNone;
    marksEnd_ = std::string::npos;
    for (std::size_t index = 0; index < content.runs.size(); ++index) {
      const Run &run = content.runs[index];
      if (run.link != link) {
        if (link != kNone) EndLink(content.links[link]);
        link = run.link;
        if (link != kNone && IsFollowed(content.links[link])) line_ += '[';
      }
      AppendRun(content, index, feed, line_.size() == start && feed.empty());
    }
    if (link != kNone) EndLink(content.links[link]);
  }

  // Fields of forms and actions without a target are text.
  static bool IsFollowed(const Link &link) {
    return IsSafeTarget(link.target) &&
           (link.action == nullptr || link.action->task.kind == TaskKind::kGo) &&
           link.field == nullptr;
  }

  // A target that is not to be followed leaves its text alone.
  void EndLink(const Link &link) {
    if (!IsFollowed(link)) return;
    line_ += "](";
    AppendTarget(line_, link.target);
    line_ += ')';
  }

  // The character that comes behind a run; a blank at the end of the line.
  static char32_t Follower(const Content &content, std::size_t index) {
    const auto followed = [&](std::uint32_t link) {
      return link != kNone && IsFollowed(content.links[link]);
    };
    const std::uint32_t link = content.runs[index].link;
    if (index + 1 == content.runs.size()) return followed(link) ? U']' : U' ';
    const Run &next = content.runs[index + 1];
    if (next.link != link && (followed(link) || followed(next.link))) return U'[';
    return next.image != kNone ? U'!' : FirstCharacter(content.TextOf(next));
  }

  // Emphasis has to touch its text: blanks at its ends stand outside.
  void AppendRun(const Content &content, std::size_t index, std::string_view feed, bool lineStart) {
    const Run &run = content.runs[index];
    if (run.image != kNone) {
      const Image &image = content.images[run.image];
      line_ += "![";
      AppendEscaped(line_, ImageLabel(image), false);
      line_ += "](";
      AppendTarget(line_, IsSafeSource(image.source) ? std::string_view(image.source) : "#");
      line_ += ')';
      return;
    }
    std::string_view text = content.TextOf(run);
    const std::size_t first = text.find_first_not_of(" \n");
    const Emphasis emphasis = EmphasisOf(run.style);
    if (first == std::string_view::npos || emphasis.mark.empty()) {
      AppendLines(text, feed, lineStart);
      return;
    }
    AppendLines(text.substr(0, first), feed, false);
    const std::size_t last = text.find_last_not_of(" \n") + 1;
    const std::string_view behind = text.substr(last);
    text = text.substr(first, last - first);
    const char32_t after = behind.empty() ? Follower(content, index) : U' ';
    const bool marks = line_.size() != marksEnd_ &&
                       MarkCounts(FirstCharacter(text), LastCharacter(line_)) &&
                       MarkCounts(LastCharacter(text), after);
    line_ += marks ? emphasis.mark : emphasis.openTag;
    AppendLines(text, feed, false);
    line_ += marks ? emphasis.mark : emphasis.closeTag;
    if (marks) marksEnd_ = line_.size();
    AppendLines(behind, feed, false);
  }

  void AppendLines(std::string_view text, std::string_view feed, bool lineStart) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n')) {
      AppendEscaped(line_, text.substr(0, at), lineStart);
      line_ += feed;
      text.remove_prefix(at + 1);
    }
    AppendEscaped(line_, text, lineStart);
  }

  Output &out_;
  bool nameHeading_;
  bool firstCard_ = true;
  Block lastBlock_ = Block::kNone;
  std::string line_;
  std::size_t marksEnd_ = std::string::npos;  ///< where marks in the line have ended last
};

}  // namespace

std::unique_ptr<BlockSink> MakeMarkdownWriter(Output &output, const WriterOptions &options) {
  return std::make_unique<MarkdownWriter>(output, options);
}

}  // namespace vs_wml
