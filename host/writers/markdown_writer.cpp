// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "host/text/printable.h"
#include "host/text/utf8.h"
#include "host/writer.h"
#include "host/writers/markdown_text.h"
#include "host/writers/repeat_budget.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

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

void AppendMarkup(std::string &out, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
}

// Whether a mark between these characters is read as one of emphasis, by any version of the
// rules.
bool MarkCounts(char32_t inside, char32_t outside) {
  const CharacterClass around = ClassOf(outside);
  switch (ClassOf(inside)) {
    case CharacterClass::kWord:
      return true;
    case CharacterClass::kSymbol:
      return around != CharacterClass::kWord;
    case CharacterClass::kPunctuation:
      return around == CharacterClass::kBlank || around == CharacterClass::kPunctuation;
    default:
      return false;
  }
}

class MarkdownWriter : public BlockSink {
 public:
  MarkdownWriter(Output &output, const WriterOptions &options)
      : out_(output), nameHeading_(options.nameHeading), remoteImages_(options.remoteImages) {}

  void BeginDocument(const DeckInfo &deck) override {
    lastBlock_ = Block::kNone;
    firstCard_ = true;
    anchors_.clear();
    ++documents_;
    said_.clear();
    explained_.clear();
    referredTo_.clear();
    definitions_.clear();
    repeats_ = {};
    reader_ = LinkReader(deck);
    if (nameHeading_) WriteHeading("# ", Printable(deck.name));
  }

  void BeginCard(const Card &card) override {
    FinishParagraph();
    if (card.title.empty() && !firstCard_) {
      line_ = "---";
      EndBlock(Block::kOther);
    }
    firstCard_ = false;
    WriteAnchor(card.id);
    if (!card.title.empty()) WriteHeading("## ", card.title);
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    line_.clear();
    if (paragraph.preformatted) {
      TakePreformatted(paragraph);
      return;
    }
    const bool goesOn = paragraph.continues && lastBlock_ == Block::kParagraph;
    if (!goesOn) text_.BeginBlock(MarkdownPlace::kParagraph);
    AppendContent(paragraph.content);
    if (line_.empty()) {
      FinishParagraph();
      return;
    }
    if (goesOn) {
      out_ << (addressAtEnd_ ? "  \n" : "\\\n") << line_;
    } else {
      FinishParagraph();
      if (lastBlock_ != Block::kNone) out_ << '\n';
      out_ << line_;
    }
    addressAtEnd_ = MarkdownText::EndsWithAddress(line_);
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
      WriteRow(table, table.rows[index], index == 0 ? columns : 1);
      if (index == 0) WriteDelimiters(table, table.rows[0], columns);
    }
  }

  void EndCard() override { FinishParagraph(); }

  void EndDocument(const DeckInfo & /*deck*/) override {
    FinishParagraph();
    if (!definitions_.empty()) out_ << '\n' << definitions_;
    if (nameHeading_) out_ << '\n';
    out_.Flush();
  }

 private:
  enum class Block { kNone, kParagraph, kCode, kMarkup, kOther };

  // The last line of a paragraph waits for its line feed, since a break may come; preformatted
  // text in markup waits for its end tag.
  void FinishParagraph() {
    if (lastBlock_ == Block::kMarkup) out_ << "</pre>";
    if (lastBlock_ != Block::kParagraph && lastBlock_ != Block::kMarkup) return;
    out_ << '\n';
    lastBlock_ = Block::kOther;
  }

  void EndBlock(Block kind) {
    FinishParagraph();
    if (lastBlock_ != Block::kNone) out_ << '\n';
    out_ << line_ << '\n';
    lastBlock_ = kind;
  }

  void WriteHeading(std::string_view mark, std::string_view text) {
    line_ = mark;
    text_.BeginBlock(MarkdownPlace::kHeading);
    text_.AppendWhole(line_, WithVisibleFormats(text), false);
    EndBlock(Block::kOther);
  }

  // Where links to the card lead, whatever a viewer makes of headings.
  void WriteAnchor(const std::string &id) {
    if (id.empty() || id.find_first_of(" \t") != std::string::npos) return;
    if (!anchors_.insert(id).second) return;
    line_ = "<a id=\"";
    AppendMarkup(line_, id);
    line_ += "\"></a>";
    EndBlock(Block::kOther);
  }

  // Code holds no links and pictures; preformatted text that has some is markup.
  void TakePreformatted(const Paragraph &paragraph) {
    const Content &content = paragraph.content;
    const bool goesOn = paragraph.continues && lastBlock_ == Block::kMarkup;
    if (goesOn || !content.links.empty() || !content.images.empty()) {
      AppendPreformatted(content);
      if (goesOn) {
        out_ << '\n' << line_;
      } else {
        FinishParagraph();
        if (lastBlock_ != Block::kNone) out_ << '\n';
        out_ << "<pre>" << line_;
        lastBlock_ = Block::kMarkup;
      }
      return;
    }
    for (const Run &run : content.runs) line_ += content.TextOf(run);
    if (!line_.empty()) line_.insert(0, 4, ' ');
    if (paragraph.continues && lastBlock_ == Block::kCode) {
      out_ << line_ << '\n';
    } else if (!line_.empty()) {
      EndBlock(Block::kCode);
    }
  }

  void AppendPreformatted(const Content &content) {
    ForEachLinkedRun(
        content,
        [&](const Link &link) {
          if (!IsFollowed(link)) return;
          line_ += "<a href=\"";
          AppendMarkup(line_, EncodeTarget(link.target));
          line_ += "\">";
        },
        [&](std::size_t index) {
          const Run &run = content.runs[index];
          if (run.image == kNone) {
            AppendMarkup(line_, content.TextOf(run));
            return;
          }
          AppendMarkup(line_, '[' + std::string(ImageLabel(content.images[run.image])) + ']');
        },
        [&](const Link &link) {
          if (IsFollowed(link)) line_ += "</a>";
          AppendMarkup(line_, WithVisibleFormats(reader_.Details(link)));
        });
  }

  // A row may have fewer cells than the first.
  void WriteRow(const Table &table, const Row &row, std::size_t columns) {
    line_ = '|';
    for (const Cell &cell : table.CellsOf(row)) {
      line_ += ' ';
      text_.BeginBlock(MarkdownPlace::kCell);
      AppendContent(table.ContentOf(cell));
      line_ += " |";
    }
    for (std::size_t column = row.cellCount; column < columns; ++column) line_ += "  |";
    out_ << line_ << '\n';
  }

  void WriteDelimiters(const Table &table, const Row &row, std::size_t columns) {
    line_ = '|';
    for (std::size_t column = 0; column < columns; ++column) {
      const Alignment alignment = column < row.cellCount
                                      ? table.cells[row.firstCell + column].alignment
                                      : table.AlignmentOf(column);
      line_ += alignment == Alignment::kRight    ? " ---: |"
               : alignment == Alignment::kCenter ? " :---: |"
                                                 : " --- |";
    }
    out_ << line_ << '\n';
  }

  // Calls `begin` and `end` around the runs of each link, and `take` with the index of each run.
  template <typename Begin, typename Take, typename End>
  static void ForEachLinkedRun(const Content &content, Begin begin, Take take, End end) {
    std::uint32_t link = kNone;
    for (std::size_t index = 0; index < content.runs.size(); ++index) {
      const std::uint32_t next = content.runs[index].link;
      if (next != link) {
        if (link != kNone) end(content.links[link]);
        if (next != kNone) begin(content.links[next]);
        link = next;
      }
      take(index);
    }
    if (link != kNone) end(content.links[link]);
  }

  // Appends running text to the line.
  void AppendContent(const Content &content) {
    marksEnd_ = std::string::npos;
    const std::size_t textEnd = content.runs.empty() ? 0 : content.runs.back().end;
    text_.BeginLine(content.text.substr(0, textEnd));
    ForEachLinkedRun(
        content,
        [&](const Link &link) {
          if (IsFollowed(link)) MarkdownText::OpenBracket(line_, false);
        },
        [&](std::size_t index) { AppendRun(content, index); },
        [&](const Link &link) {
          if (IsFollowed(link)) CloseLink(link);
          AppendDetails(link);
        });
  }

  // A long target that has many users is written for each of them as long as that stays in
  // proportion, and then once at the end, where they refer to.
  void CloseLink(const Link &link) {
    const std::size_t size = link.target.size() + link.title.size();
    if (link.actionIndex == kNoIndex || repeats_.MaySay(said_, link.actionIndex, size)) {
      MarkdownText::CloseBracket(line_, link.target, WithVisibleFormats(link.title));
      return;
    }
    line_ += "][";
    line_ += ReferenceTo(link.actionIndex);
    line_ += ']';
    if (!referredTo_.insert(link.actionIndex).second) return;
    definitions_ += '[' + ReferenceTo(link.actionIndex) + "]: ";
    MarkdownText::AppendTarget(definitions_, link.target, WithVisibleFormats(link.title));
    definitions_ += '\n';
  }

  // Documents may stand in one file behind each other.
  std::string ReferenceTo(PartIndex action) const {
    return "target " + std::to_string(documents_) + '.' + std::to_string(action);
  }

  void AppendDetails(const Link &link) {
    const auto said = explained_.find(link.actionIndex);
    if (said != explained_.end() && !repeats_.Spend(said->second)) return;
    const std::string details = WithVisibleFormats(reader_.Details(link));
    const bool isLong = link.actionIndex != kNoIndex && details.size() >= RepeatBudget::kShort;
    if (isLong && explained_.emplace(link.actionIndex, details.size()).second) {
      repeats_.Earn(details.size());
    }
    text_.AppendWhole(line_, details, false);
  }

  bool IsFollowed(const Link &link) const {
    return reader_.OutcomeOf(link) == LinkOutcome::kFollowed;
  }

  // The character that comes behind a run; a blank at the end of the line.
  char32_t Follower(const Content &content, std::size_t index) const {
    const auto followed = [&](std::uint32_t link) {
      return link != kNone && IsFollowed(content.links[link]);
    };
    const std::uint32_t link = content.runs[index].link;
    if (index + 1 == content.runs.size()) return followed(link) ? U']' : U' ';
    const Run &next = content.runs[index + 1];
    if (next.link != link && (followed(link) || followed(next.link))) return U'[';
    return next.image != kNone ? U'!' : FirstCharacter(content.TextOf(next));
  }

  // A picture that a viewer would fetch from strangers is a link, as far as it is in none.
  void AppendImage(const Image &image, bool inLink) {
    const bool link = !remoteImages_ && IsRemote(image.source);
    if (!IsSafeSource(image.source) || (link && inLink)) {
      text_.AppendWhole(line_, '[' + std::string(ImageLabel(image)) + ']', inLink);
      return;
    }
    MarkdownText::OpenBracket(line_, !link);
    text_.AppendWhole(line_, ImageLabel(image), true);
    MarkdownText::CloseBracket(line_, image.source, "");
  }

  // Emphasis has to touch its text: blanks at its ends stand outside.
  void AppendRun(const Content &content, std::size_t index) {
    const Run &run = content.runs[index];
    const bool inLink = run.link != kNone && IsFollowed(content.links[run.link]);
    if (run.image != kNone) {
      AppendImage(content.images[run.image], inLink);
      return;
    }
    const std::string_view text = content.TextOf(run);
    const std::size_t blanks = text.find_first_not_of(" \n");
    const Emphasis emphasis = EmphasisOf(run.style);
    if (blanks == std::string_view::npos || emphasis.mark.empty()) {
      text_.Append(line_, run.begin, run.end, inLink);
      return;
    }
    const std::size_t first = run.begin + blanks;
    const std::size_t last = run.begin + text.find_last_not_of(" \n") + 1;
    text_.Append(line_, run.begin, first, inLink);
    const char32_t after = last == run.end ? Follower(content, index) : U' ';
    const bool marks = line_.size() != marksEnd_ &&
                       MarkCounts(FirstCharacter(text.substr(blanks)), LastCharacter(line_)) &&
                       MarkCounts(LastCharacter(text.substr(0, last - run.begin)), after);
    line_ += marks ? emphasis.mark : emphasis.openTag;
    text_.Append(line_, first, last, inLink);
    line_ += marks ? emphasis.mark : emphasis.closeTag;
    if (marks) marksEnd_ = line_.size();
    text_.Append(line_, last, run.end, inLink);
  }

  Output &out_;
  bool nameHeading_;
  bool remoteImages_;
  LinkReader reader_;
  MarkdownText text_;
  bool firstCard_ = true;
  Block lastBlock_ = Block::kNone;
  std::string line_;
  bool addressAtEnd_ = false;  ///< of the line of the paragraph that waits for its end
  std::size_t marksEnd_ = std::string::npos;  ///< where marks in the line have ended last
  std::unordered_set<std::string> anchors_;
  std::size_t documents_ = 0;
  RepeatBudget repeats_;
  std::unordered_set<std::size_t> said_;      ///< actions whose long target stands above
  std::unordered_set<PartIndex> referredTo_;  ///< actions whose target stands at the end
  std::string definitions_;                   ///< what stands at the end
  /// Bytes of long details that stand above, by action.
  std::unordered_map<PartIndex, std::size_t> explained_;
};

}  // namespace

std::unique_ptr<BlockSink> MakeMarkdownWriter(Output &output, const WriterOptions &options) {
  return std::make_unique<MarkdownWriter>(output, options);
}

}  // namespace vs_wml
