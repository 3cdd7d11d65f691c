// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "host/text/ascii.h"
#include "host/text/printable.h"
#include "host/text/utf8.h"
#include "host/writer.h"
#include "host/writers/html_page.h"
#include "host/writers/repeat_budget.h"
#include "host/writers/submission.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

// Ids of the page's own begin like this.
constexpr std::string_view kOwnId = "unwml-";
constexpr std::string_view kFormId = "unwml-form-";
constexpr std::string_view kLinkId = "unwml-link-";
constexpr std::string_view kFieldId = "unwml-field-";
constexpr std::string_view kNoLanguage = "und";
constexpr std::size_t kMostRows = 6;               // of a list of options
constexpr std::size_t kMostChoices = 12;           // that are shown one a line
constexpr std::size_t kMostEmbedded = 16U << 20U;  // bytes of pictures in a page

constexpr std::array<std::string_view, 4> kAlignmentClass = {"l", "c", "r", "j"};

void Escape(Output &out, std::string_view text) {
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find_first_of("&<>\"'"), text.size());
    out << text.substr(0, plain);
    if (plain == text.size()) return;
    switch (text[plain]) {
      case '&':
        out << "&amp;";
        break;
      case '<':
        out << "&lt;";
        break;
      case '>':
        out << "&gt;";
        break;
      case '"':
        out << "&quot;";
        break;
      default:
        out << "&#39;";
    }
    text.remove_prefix(plain + 1);
  }
}

// An HTML id holds no blanks.
bool IsHtmlId(std::string_view id) {
  return !id.empty() && !id.starts_with(kOwnId) &&
         id.find_first_of(" \t\r\n\f") == std::string_view::npos;
}

// Whether it looks like a language: `en`, `pt-BR`.
bool IsLanguage(std::string_view tag) {
  const std::size_t letters = std::min(tag.find('-'), tag.size());
  return (letters == 2 || letters == 3) &&
         std::all_of(tag.begin(), tag.begin() + static_cast<std::ptrdiff_t>(letters), IsLetter) &&
         std::all_of(tag.begin(), tag.end(),
                     [](char c) { return IsLetter(c) || IsDigit(c) || c == '-'; });
}

std::string Id(std::string_view kind, std::size_t number) {
  return std::string(kind) + std::to_string(number);
}

using Values = std::vector<Submission::Value>;

// What an action sends: whatever is typed, and what is asked for.
struct Sending {
  explicit Sending(Submission sent) : submission(std::move(sent)) {
    for (const Submission::Value &value : submission.values) {
      const bool isFixed = value.known && value.variable.empty();
      (isFixed ? fixed : asked).push_back(&value);
    }
  }

  Submission submission;
  std::vector<const Submission::Value *> fixed;
  std::vector<const Submission::Value *> asked;
};

bool SameFixed(const Sending &a, const Sending &b) {
  return std::equal(
      a.fixed.begin(), a.fixed.end(), b.fixed.begin(), b.fixed.end(),
      [](const auto *x, const auto *y) { return x->name == y->name && x->text == y->text; });
}

class HtmlWriter : public BlockSink {
 public:
  HtmlWriter(Output &output, const WriterOptions &options)
      : out_(output), remoteImages_(options.remoteImages) {}

  void BeginDocument(const DeckInfo &deck) override {
    name_ = Printable(deck.name);
    parts_ = &deck.parts;
    reader_ = LinkReader(deck);
    repeats_ = {};
    headWritten_ = false;
    ids_.clear();
    accessKeys_.clear();
    forms_.clear();
    sendings_.clear();
    said_.clear();
    buttons_.clear();
    groups_.clear();
    explained_.clear();
    hidden_.clear();
    cards_ = tables_ = fields_ = 0;
    embedded_ = 0;
  }

  void BeginCard(const Card &card) override {
    WriteHead(card.title);
    ++cards_;
    cardFields_.clear();
    if (card.parts != nullptr) {
      for (PartIndex index = 0; index < card.parts->fieldCount; ++index) {
        const Field &field = parts_->fields[card.parts->firstField + index];
        cardFields_.try_emplace(field.Variable(), &field);
      }
    }
    out_ << "<section";
    if (IsHtmlId(card.id) && ids_.insert(card.id).second) WriteAttribute("id", card.id);
    if (card.parts != nullptr && IsLanguage(card.parts->language)) {
      WriteAttribute("lang", card.parts->language);
    }
    out_ << ">\n";
    WriteHeading(card);
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    const std::string_view tag = paragraph.preformatted ? "pre" : "p";
    if (paragraph.continues && openTag_ == tag) {
      out_ << (paragraph.preformatted ? "\n" : "<br>\n");
    } else {
      CloseParagraph();
      out_ << '<' << tag;
      WriteClass(paragraph.alignment);
      if (paragraph.preformatted) out_ << " tabindex=\"0\"";
      out_ << '>';
      // The first line feed of a pre element counts for nothing.
      if (paragraph.preformatted) out_ << '\n';
      openTag_ = tag;
    }
    WriteContent(paragraph.content);
  }

  void TakeTable(const Table &table) override {
    CloseParagraph();
    if (table.rows.empty()) return;
    ++tables_;
    out_ << "<div class=\"wide\" role=\"region\" tabindex=\"0\" aria-label=\"";
    if (table.title.empty()) {
      out_ << "Table " << tables_;
    } else {
      EscapeShown(table.title);
    }
    out_ << "\">\n<table";
    WriteClass(table.alignment);
    out_ << ">\n";
    if (!table.title.empty()) {
      out_ << "<caption>";
      EscapeShown(table.title);
      out_ << "</caption>\n";
    }
    for (const Row &row : table.rows) {
      out_ << "<tr>";
      for (const Cell &cell : table.CellsOf(row)) {
        out_ << "<td";
        WriteClass(cell.alignment);
        out_ << '>';
        WriteContent(table.ContentOf(cell));
        out_ << "</td>";
      }
      if (row.cellCount == 0) out_ << "<td></td>";
      out_ << "</tr>\n";
    }
    out_ << "</table>\n</div>\n";
  }

  void EndCard() override {
    CloseParagraph();
    for (auto &[index, form] : forms_) WriteForm(index, form);
    out_ << "</section>\n";
  }

  void EndDocument(const DeckInfo & /*deck*/) override {
    WriteHead("");
    out_ << "</main>\n</body>\n</html>\n";
    out_.Flush();
  }

 private:
  // A form of the page, which stands at the end of its card.
  struct Form {
    const Sending *sending = nullptr;
    bool written = false;

    /// Whether what is sent whatever is typed is in the form, not on buttons.
    bool HidesFixed() const { return sending->fixed.size() > 1; }
  };

  // The page is named after its first card, or else after the document.
  void WriteHead(std::string_view title) {
    if (headWritten_) return;
    headWritten_ = true;
    const std::size_t language = kPageHead.find('%');
    const std::size_t pictures = kPageHead.find('%', language + 1);
    out_ << kPageHead.substr(0, language)
         << (IsLanguage(parts_->language) ? parts_->language : kNoLanguage)
         << kPageHead.substr(language + 1, pictures - language - 1)
         << (remoteImages_ ? kAllPictures : kOwnPictures) << kPageHead.substr(pictures + 1)
         << "<title>";
    EscapeShown(title.empty() ? std::string_view(name_) : title);
    out_ << "</title>\n" << kPageStyle << "</head>\n<body>\n<main>\n<h1>";
    const std::string_view name = BaseName(name_);
    EscapeShown(name.empty() ? std::string_view("Deck") : name);
    out_ << "</h1>\n";
  }

  // A card is named by its title and its id, or else counted among the others.
  void WriteHeading(const Card &card) {
    if (card.title.empty() && card.id.empty() && parts_->cards.size() == 1) return;
    out_ << "<h2>";
    if (!card.title.empty()) {
      out_ << "<span>";
      EscapeShown(card.title);
      out_ << "</span>";
    }
    if (!card.id.empty() || card.title.empty()) {
      out_ << "<span class=\"own\">";
      if (card.id.empty()) {
        out_ << "Card " << cards_;
      } else {
        out_ << '#';
        EscapeShown(card.id);
      }
      out_ << "</span>";
    }
    out_ << "</h2>\n";
  }

  // What is not text of the deck shows what would reorder or hide it.
  void EscapeShown(std::string_view text) { Escape(out_, WithVisibleFormats(text)); }

  void WriteAttribute(std::string_view name, std::string_view value) {
    out_ << ' ' << name << "=\"";
    Escape(out_, value);
    out_ << '"';
  }

  void WriteClass(Alignment alignment) {
    if (alignment == Alignment::kLeft) return;
    out_ << " class=\"" << kAlignmentClass[static_cast<std::size_t>(alignment)] << '"';
  }

  void CloseParagraph() {
    if (!openTag_.empty()) out_ << "</" << openTag_ << ">\n";
    openTag_ = {};
  }

  void WriteContent(const Content &content) {
    repeats_.Earn(content.text.size());
    std::uint32_t link = kNone;
    for (const Run &run : content.runs) {
      if (run.link != link) {
        if (link != kNone) EndLink(content.links[link]);
        link = run.link;
        if (link != kNone) BeginLink(content.links[link]);
      }
      if (link == kNone || content.links[link].field == nullptr) WriteRun(content, run);
    }
    if (link != kNone) EndLink(content.links[link]);
  }

  enum class LinkShape { kAnchor, kButton, kInert, kField };

  LinkShape ShapeOf(const Link &link) {
    const LinkOutcome outcome = reader_.OutcomeOf(link);
    if (outcome == LinkOutcome::kField) return LinkShape::kField;
    if (link.action != nullptr && SendingOf(link.actionIndex) != nullptr) return LinkShape::kButton;
    return outcome == LinkOutcome::kFollowed ? LinkShape::kAnchor : LinkShape::kInert;
  }

  void BeginLink(const Link &link) {
    shape_ = ShapeOf(link);
    switch (shape_) {
      case LinkShape::kField:
        WriteField(*link.field);
        break;
      case LinkShape::kButton:
        BeginButton(link);
        break;
      case LinkShape::kAnchor:
        BeginAnchor(link);
        break;
      case LinkShape::kInert:
        out_ << "<span";
        WriteRole(link, "inert");
        out_ << '>';
    }
  }

  // A key leads to the first that has it.
  void WriteAccessKey(std::string_view key) {
    if (CountCharacters(key) != 1 || !accessKeys_.insert(std::string(key)).second) return;
    WriteAttribute("accesskey", key);
  }

  static void AppendWord(std::string &words, std::string_view word) {
    if (!words.empty() && !word.empty()) words += ' ';
    words += word;
  }

  void WriteRole(const Link &link, std::string words) {
    const ActionKind kind = link.action == nullptr ? ActionKind::kLink : link.action->kind;
    if (kind == ActionKind::kDo) AppendWord(words, "key");
    if (kind == ActionKind::kEvent) AppendWord(words, "event");
    if (!words.empty()) WriteAttribute("class", words);
  }

  // A long target or title that has many users is written for the first of them; later ones
  // lead there once they would make the page grow out of proportion.
  void BeginAnchor(const Link &link) {
    const bool known = link.actionIndex != kNoIndex;
    const std::size_t size = link.target.size() + link.title.size();
    const bool isLong = known && size >= RepeatBudget::kShort;
    const bool first = isLong && said_.insert(link.actionIndex).second;
    if (isLong && !first && !repeats_.Spend(size)) {
      BeginReference(link);
      return;
    }
    if (first || !known) repeats_.Earn(size);
    out_ << "<a";
    WriteAttribute("href", EncodeTarget(link.target));
    if (first) WriteAttribute("id", Id(kLinkId, link.actionIndex));
    WriteRole(link, "");
    if (link.action != nullptr) WriteAccessKey(DetailsOf(*link.action).accessKey);
    WriteTitle(link.title);
    out_ << '>';
  }

  // Leads to the first link or button of the same action.
  void BeginReference(const Link &link) {
    out_ << "<a";
    WriteAttribute("href", '#' + Id(kLinkId, link.actionIndex));
    WriteRole(link, "");
    out_ << '>';
  }

  void EndLink(const Link &link) {
    switch (shape_) {
      case LinkShape::kField:
        return;
      case LinkShape::kButton:
        out_ << "</button>";
        break;
      case LinkShape::kAnchor:
        out_ << "</a>";
        break;
      case LinkShape::kInert:
        out_ << "</span>";
    }
    WriteWhy(link);
  }

  // What cannot be seen of a link, or why it is none, for who reads.
  void WriteWhy(const Link &link) {
    const auto said = explained_.find(link.actionIndex);
    if (said != explained_.end() && !repeats_.Spend(said->second)) return;
    const std::string why = reader_.Explanation(link, shape_ != LinkShape::kInert);
    if (why.empty()) return;
    if (said == explained_.end()) {
      repeats_.Earn(why.size());
      if (link.actionIndex != kNoIndex) explained_.emplace(link.actionIndex, why.size());
    }
    out_ << " <span class=\"why\">(";
    EscapeShown(why);
    out_ << ")</span>";
  }

  // ------------------------------------------------------------------ forms

  // The field of the card that gives a value.
  const Field *FieldOf(const Submission::Value &value) const {
    const auto found = cardFields_.find(value.variable);
    return value.variable.empty() || found == cardFields_.end() ? nullptr : found->second;
  }

  // The form that what is typed is in already, with the same fields and all else that is sent;
  // kNoIndex when there is none.
  std::size_t SharedForm(const Sending &sending, std::size_t own) {
    std::size_t shared = kNoIndex;
    for (const Submission::Value *value : sending.asked) {
      const Field *field = FieldOf(*value);
      if (field == nullptr || field->action == kNoIndex || field->action == own) return kNoIndex;
      if (field->sentName != value->name) return kNoIndex;
      if (shared != kNoIndex && shared != field->action) return kNoIndex;
      shared = field->action;
    }
    if (shared == kNoIndex) return kNoIndex;
    const Sending *other = SendingOf(shared);
    if (other == nullptr) return kNoIndex;
    const bool fits =
        other->asked.size() == sending.asked.size() &&
        (SameFixed(*other, sending) || (other->fixed.size() <= 1 && sending.fixed.size() <= 1));
    return fits ? shared : kNoIndex;
  }

  // What an action sends; null when it takes no form.
  const Sending *SendingOf(std::size_t index) {
    const Action &action = parts_->actions[index];
    if (!TakesForm(action.task)) return nullptr;
    const auto [entry, isNew] = sendings_.try_emplace(index);
    if (isNew) {
      Link link;
      link.action = &action;
      link.target = action.task.target.shown;
      if (auto submission = SubmissionOf(link)) {
        entry->second = std::make_unique<Sending>(std::move(*submission));
      }
    }
    return entry->second.get();
  }

  void BeginButton(const Link &link) {
    const std::size_t own = link.actionIndex;
    const Sending &sending = *SendingOf(own);
    const Submission &submission = sending.submission;
    const std::size_t shared = SharedForm(sending, own);
    const std::size_t index = shared != kNoIndex ? shared : own;
    const Form &form = forms_.try_emplace(index, Form{SendingOf(index)}).first->second;
    if (shared == kNoIndex && said_.insert(own).second) AskForValues(submission, own);
    const Submission::Value *value =
        !form.HidesFixed() && sending.fixed.size() == 1 && !sending.fixed[0]->name.empty()
            ? sending.fixed[0]
            : nullptr;
    const std::size_t size = link.title.size() +
                             (value != nullptr ? value->name.size() + value->text.size() : 0) +
                             (shared != kNoIndex ? submission.address.size() : 0);
    const bool first = buttons_.count(own) == 0;
    if (!repeats_.MaySay(buttons_, own, size)) {
      shape_ = LinkShape::kAnchor;
      BeginReference(link);
      return;
    }
    out_ << "<button";
    if (first && size >= RepeatBudget::kShort) WriteAttribute("id", Id(kLinkId, own));
    WriteAttribute("form", Id(kFormId, index));
    if (shared != kNoIndex) {
      WriteAttribute("formaction", EncodeTarget(submission.address));
      WriteAttribute("formmethod", submission.post ? "post" : "get");
      if (submission.multipart) WriteAttribute("formenctype", "multipart/form-data");
    }
    if (value != nullptr) {
      WriteAttribute("name", value->name);
      WriteAttribute("value", value->text);
    }
    WriteTitle(link.title);
    out_ << '>';
  }

  // Values that no field of the form gives are asked for in front of the button.
  void AskForValues(const Submission &submission, std::size_t form) {
    for (const Submission::Value &value : submission.values) {
      if (value.known && value.variable.empty()) continue;
      const Field *field = FieldOf(value);
      if (field != nullptr && field->action == form && field->sentName == value.name) continue;
      if (field == nullptr && value.known) {
        hidden_[form].push_back(value);
        continue;
      }
      out_ << "<label>";
      EscapeShown(field != nullptr && !field->title.IsEmpty() ? field->title.shown
                  : value.variable.empty()                    ? value.name
                                                              : value.variable);
      out_ << " <input type=\""
           << (field != nullptr && field->type == "password" ? "password" : "text") << '"';
      WriteAttribute("form", Id(kFormId, form));
      if (!value.name.empty()) WriteAttribute("name", value.name);
      WriteAttribute(value.known ? "value" : "placeholder", value.text);
      out_ << "></label> ";
    }
  }

  void WriteForm(std::size_t index, Form &form) {
    if (std::exchange(form.written, true)) return;
    const Submission &submission = form.sending->submission;
    out_ << "<form";
    WriteAttribute("id", Id(kFormId, index));
    WriteAttribute("action", EncodeTarget(submission.address));
    WriteAttribute("method", submission.post ? "post" : "get");
    if (submission.multipart) WriteAttribute("enctype", "multipart/form-data");
    out_ << '>';
    if (form.HidesFixed()) {
      for (const Submission::Value *value : form.sending->fixed) WriteHidden(*value);
    }
    for (const Submission::Value &value : hidden_[index]) WriteHidden(value);
    out_ << "</form>\n";
  }

  void WriteHidden(const Submission::Value &value) {
    if (value.name.empty()) return;
    out_ << "<input type=\"hidden\"";
    WriteAttribute("name", value.name);
    WriteAttribute("value", value.text);
    out_ << '>';
  }

  // ----------------------------------------------------------------- fields

  void WriteField(const Field &field) {
    ++fields_;
    if (field.action != kNoIndex) {
      const Sending *sending = SendingOf(field.action);
      if (sending != nullptr) forms_.try_emplace(field.action, Form{sending});
    }
    if (field.kind == FieldKind::kInput) {
      WriteInput(field);
    } else if (field.optionCount != 0 && field.optionCount <= kMostChoices) {
      WriteChoices(field);
    } else {
      WriteSelect(field);
    }
  }

  // The form that a field belongs to, and what it is sent as.
  void WriteSending(const Field &field, bool isChoice) {
    const bool sent = field.action != kNoIndex && forms_.count(field.action) != 0;
    if (sent) WriteAttribute("form", Id(kFormId, field.action));
    const std::string_view name = sent ? field.sentName : field.Variable();
    if (isChoice && (!sent || name.empty())) {
      // Those of one name exclude each other in the whole page.
      WriteAttribute("name", Id(kFieldId, fields_));
    } else if (!name.empty()) {
      WriteAttribute("name", name);
    }
  }

  // What a field is called where no title says it.
  void WriteLabel(const Field &field) {
    out_ << " aria-label=\"";
    if (!field.Label().empty()) {
      EscapeShown(field.Label());
    } else {
      out_ << "Field " << fields_;
    }
    out_ << '"';
  }

  void BeginLabel(const Field &field) {
    if (field.title.IsEmpty()) return;
    out_ << "<label>";
    EscapeShown(field.title.shown);
    out_ << ' ';
  }

  void EndLabel(const Field &field) {
    if (!field.title.IsEmpty()) out_ << "</label>";
  }

  void WriteInput(const Field &field) {
    const bool isButton = field.type == "submit" || field.type == "button";
    const std::string_view type = isButton                   ? "button"
                                  : field.type == "password" ? "password"
                                                             : "text";
    if (!isButton) BeginLabel(field);
    out_ << "<input";
    WriteAttribute("type", type);
    WriteSending(field, false);
    if (isButton ? field.value.IsEmpty() : field.title.IsEmpty()) WriteLabel(field);
    if (!field.value.IsEmpty()) WriteAttribute("value", field.value.shown);
    if (field.size != 0 && !isButton) out_ << " size=\"" << std::size_t{field.size} << '"';
    if (field.length != 0 && !isButton) out_ << " maxlength=\"" << std::size_t{field.length} << '"';
    if (field.details) WriteAccessKey(field.details->accessKey);
    if (!field.Format().empty()) WriteTitle("format " + std::string(field.Format()));
    out_ << '>';
    if (!isButton) EndLabel(field);
  }

  // Calls `begin` with the title and `end` around the options of each group. A long title that
  // groups within have interrupted too often is not written in full again.
  template <typename Begin, typename Take, typename End>
  void ForEachOption(const Field &field, Begin begin, Take take, End end) {
    PartIndex group = kNoIndex;
    for (PartIndex index = 0; index < field.optionCount; ++index) {
      const FieldOption &option = parts_->options[field.firstOption + index];
      if (option.group != group) {
        if (group != kNoIndex) end();
        group = option.group;
        if (group != kNoIndex) {
          const std::string_view title = parts_->groups[group].title.shown;
          repeats_.MaySay(groups_, group, title.size()) ? begin(title) : begin(AsAbove(title));
        }
      }
      take(option);
    }
    if (group != kNoIndex) end();
  }

  void WriteChoices(const Field &field) {
    out_ << "<span class=\"choices\" role=\"" << (field.multiple ? "group" : "radiogroup") << '"';
    WriteLabel(field);
    out_ << '>';
    if (!field.title.IsEmpty()) {
      out_ << "<span>";
      EscapeShown(field.title.shown);
      out_ << "</span>";
    }
    ForEachOption(
        field,
        [&](std::string_view title) {
          if (title.empty()) return;
          out_ << "<b>";
          EscapeShown(title);
          out_ << "</b>";
        },
        [&](const FieldOption &option) {
          out_ << "<label><input type=\"" << (field.multiple ? "checkbox" : "radio") << '"';
          WriteSending(field, true);
          WriteAttribute("value", option.value.shown);
          if (option.selected) out_ << " checked";
          if (option.Label().empty()) WriteAttribute("aria-label", "(no words)");
          out_ << '>';
          Escape(out_, option.Label());
          out_ << "</label>";
        },
        [] {});
    out_ << "</span>";
  }

  void WriteSelect(const Field &field) {
    BeginLabel(field);
    out_ << "<select";
    WriteSending(field, false);
    if (field.title.IsEmpty()) WriteLabel(field);
    if (field.multiple) {
      out_ << " multiple size=\"" << std::clamp<std::size_t>(field.optionCount, 1, kMostRows)
           << '"';
    }
    out_ << '>';
    ForEachOption(
        field,
        [&](std::string_view title) {
          out_ << "<optgroup label=\"";
          EscapeShown(title.empty() ? std::string_view("-") : title);
          out_ << "\">";
        },
        [&](const FieldOption &option) {
          out_ << "<option";
          WriteAttribute("value", option.value.shown);
          if (option.selected) out_ << " selected";
          out_ << '>';
          Escape(out_, option.Label());
          out_ << "</option>";
        },
        [&] { out_ << "</optgroup>"; });
    out_ << "</select>";
    EndLabel(field);
  }

  void WriteTitle(std::string_view title) {
    if (title.empty()) return;
    out_ << " title=\"";
    EscapeShown(title);
    out_ << '"';
  }

  // ---------------------------------------------------------------- content

  void WriteRun(const Content &content, const Run &run) {
    const TextStyle &style = run.style;
    const std::string_view size = openTag_ == "pre"                        ? ""
                                  : style.halfPoints > kOrdinaryHalfPoints ? "big"
                                  : style.halfPoints < kOrdinaryHalfPoints ? "small"
                                                                           : "";
    const bool underline = style.underline && run.link == kNone;
    if (!size.empty()) out_ << "<span class=\"" << size << "\">";
    if (style.bold) out_ << "<b>";
    if (style.italic) out_ << "<i>";
    if (underline) out_ << "<u>";
    if (run.image != kNone) {
      WriteImage(content.images[run.image], run.link != kNone);
    } else {
      WriteText(content.TextOf(run));
    }
    if (underline) out_ << "</u>";
    if (style.italic) out_ << "</i>";
    if (style.bold) out_ << "</b>";
    if (!size.empty()) out_ << "</span>";
  }

  void WriteText(std::string_view text) {
    for (std::size_t feed = text.find('\n'); feed != std::string_view::npos;
         feed = text.find('\n')) {
      Escape(out_, text.substr(0, feed));
      out_ << "<br>";
      text.remove_prefix(feed + 1);
    }
    Escape(out_, text);
  }

  // A picture whose file was found comes with the page, as long as the page stays modest.
  std::string_view EmbeddedSource(const Image &image) {
    if (image.picture == nullptr) return {};
    const std::string &uri = image.picture->DataUri();
    if (uri.size() > kMostEmbedded - embedded_) return {};
    embedded_ += uri.size();
    return uri;
  }

  void WriteSize(std::size_t width, std::size_t height) {
    out_ << " width=\"" << width << "\" height=\"" << height << '"';
  }

  // The picture itself when it is at hand or may be fetched; else what it is called, which
  // leads to it.
  void WriteImage(const Image &image, bool inLink) {
    const std::string_view embedded = EmbeddedSource(image);
    const bool safe = IsSafeSource(image.source) && !image.source.empty();
    if (embedded.empty() && (!remoteImages_ || !safe)) {
      const bool leads = safe && !inLink;
      out_ << (leads ? "<a" : "<span");
      if (leads) WriteAttribute("href", EncodeTarget(image.source));
      if (!leads && !image.source.empty()) WriteTitle(image.source);
      out_ << ">[";
      EscapeShown(ImageLabel(image).empty() ? std::string_view("picture") : ImageLabel(image));
      out_ << (leads ? "]</a>" : "]</span>");
      return;
    }
    out_ << "<img src=\"";
    if (embedded.empty()) {
      Escape(out_, EncodeTarget(image.source));
    } else {
      out_ << embedded;
    }
    out_ << '"';
    WriteAttribute("alt", ImageLabel(image));
    if (image.width != 0 && image.height != 0) {
      WriteSize(image.width / kTwipsPerPixel, image.height / kTwipsPerPixel);
    } else if (!embedded.empty() && image.picture->bitmap) {
      WriteSize(image.picture->bitmap->width, image.picture->bitmap->height);
    }
    out_ << '>';
  }

  Output &out_;
  bool remoteImages_;
  std::string name_;
  const DeckParts *parts_ = nullptr;
  LinkReader reader_;
  RepeatBudget repeats_;
  bool headWritten_ = false;
  std::string_view openTag_;              ///< of the paragraph that is open, empty: none
  LinkShape shape_ = LinkShape::kAnchor;  ///< of the link that is open
  std::size_t cards_ = 0;
  std::size_t tables_ = 0;
  std::size_t fields_ = 0;
  std::size_t embedded_ = 0;  ///< bytes of pictures in the page
  std::unordered_set<std::string> ids_;
  std::unordered_set<std::string> accessKeys_;
  std::unordered_set<std::size_t> said_;     ///< actions whose target or values stand above
  std::unordered_set<std::size_t> buttons_;  ///< actions with a long button above
  std::unordered_set<std::size_t> groups_;   ///< of options, with a long title above
  std::unordered_map<std::size_t, std::size_t> explained_;              ///< bytes, by action
  std::unordered_map<std::size_t, std::unique_ptr<Sending>> sendings_;  ///< by action
  std::map<std::size_t, Form> forms_;                                   ///< by action
  std::map<std::size_t, Values> hidden_;                                ///< more that forms send
  std::unordered_map<std::string_view, const Field *> cardFields_;      ///< by variable
};

}  // namespace

std::unique_ptr<BlockSink> MakeHtmlWriter(Output &output, const WriterOptions &options) {
  return std::make_unique<HtmlWriter>(output, options);
}

}  // namespace vs_wml
