// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <map>
#include <string>
#include <unordered_set>
#include <utility>

#include "host/writer.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

// Nothing of the document runs and nothing is fetched but its images; forms are sent
// when somebody sends them.
constexpr std::string_view kHead =
    "<!DOCTYPE html>\n"
    "<html>\n"
    "<head>\n"
    "<meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "img-src 'self' data: file: http: https:; style-src 'unsafe-inline'; base-uri 'none'; "
    "form-action 'self' file: http: https:\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";

constexpr std::string_view kStyle =
    "<style>\n"
    "body { max-width: 40em; margin: 1em auto; padding: 0 1em; font: 16px/1.4 sans-serif;"
    " color: #000; background: #fff; overflow-wrap: break-word; }\n"
    "section { border: 1px solid #999; border-radius: .4em; margin: 0 0 1em; padding: 0 1em; }\n"
    "section:target { border-color: #00f; }\n"
    "h2 { font-size: 1.1em; margin: 0 -1em .7em; padding: .3em 1em; background: #ddd;"
    " border-radius: .4em .4em 0 0; }\n"
    "p { margin: .7em 0; min-height: 1em; }\n"
    "pre { margin: .7em 0; font-size: .85em; overflow-x: auto; }\n"
    "input, select, button { font: inherit; max-width: 100%; }\n"
    "img { image-rendering: pixelated; }\n"
    "a, .inert { color: #00f; text-decoration: underline; }\n"
    ".key, button { display: inline-block; margin: .1em 0; padding: .1em .7em; color: #000;"
    " background: #eee; border: 1px solid #777; border-radius: .4em; text-decoration: none; }\n"
    ".inert.key { color: #555; }\n"
    ".event::before { content: '\\2192\\00A0'; }\n"
    "table { border-collapse: collapse; margin: .7em 0; max-width: 100%; }\n"
    "td { border: 1px solid #000; padding: .1em .4em; vertical-align: top; }\n"
    "img { vertical-align: middle; max-width: 100%; }\n"
    ".l { text-align: left; } .c { text-align: center; } .r { text-align: right; }\n"
    ".j { text-align: justify; }\n"
    "table.c { margin-left: auto; margin-right: auto; } table.r { margin-left: auto; }\n"
    ".big { font-size: 1.5em; } .small { font-size: .8em; }\n"
    "</style>\n";

constexpr std::string_view kFormId = "unwml-form-";
constexpr std::size_t kMostRows = 6;               // of a list of options
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

// An HTML id holds no blanks; those of forms are taken.
bool IsHtmlId(std::string_view id) {
  return !id.empty() && !id.starts_with(kFormId) &&
         id.find_first_of(" \t\r\n\f") == std::string_view::npos;
}

class HtmlWriter : public BlockSink {
 public:
  explicit HtmlWriter(Output &output) : out_(output) {}

  void BeginDocument(const DeckInfo &deck) override {
    name_ = deck.name;
    parts_ = &deck.parts;
    headWritten_ = false;
    ids_.clear();
    forms_.clear();
    embedded_ = 0;
  }

  void BeginCard(const Card &card) override {
    WriteHead(card.title);
    out_ << "<section";
    if (IsHtmlId(card.id) && ids_.insert(card.id).second) {
      out_ << " id=\"";
      Escape(out_, card.id);
      out_ << '"';
    }
    out_ << ">\n";
    if (card.title.empty()) return;
    out_ << "<h2>";
    Escape(out_, card.title);
    out_ << "</h2>\n";
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    const std::string_view tag = paragraph.preformatted ? "pre" : "p";
    if (paragraph.continues && openTag_ == tag) {
      out_ << (paragraph.preformatted ? "\n" : "<br>\n");
    } else {
      CloseParagraph();
      out_ << '<' << tag;
      WriteClass(paragraph.alignment);
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
    out_ << "<table";
    WriteClass(table.alignment);
    out_ << ">\n";
    if (!table.title.empty()) {
      out_ << "<caption>";
      Escape(out_, table.title);
      out_ << "</caption>\n";
    }
    WriteColumns(table.columnWidths);
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
    out_ << "</table>\n";
  }

  void EndCard() override {
    CloseParagraph();
    WriteForms();
    out_ << "</section>\n";
  }

  void EndDocument(const DeckInfo & /*deck*/) override {
    WriteHead("");
    out_ << "</body>\n</html>\n";
    out_.Flush();
  }

 private:
  // The page is named after its first card, or else after the document.
  void WriteHead(std::string_view title) {
    if (headWritten_) return;
    headWritten_ = true;
    out_ << kHead << "<title>";
    Escape(out_, title.empty() ? std::string_view(name_) : title);
    out_ << "</title>\n" << kStyle << "</head>\n<body>\n";
  }

  void WriteClass(Alignment alignment) {
    if (alignment == Alignment::kLeft) return;
    out_ << " class=\"" << kAlignmentClass[static_cast<std::size_t>(alignment)] << '"';
  }

  void WriteColumns(std::span<const std::uint32_t> widths) {
    if (widths.empty()) return;
    out_ << "<colgroup>";
    for (const std::uint32_t width : widths) {
      out_ << "<col";
      if (width != 0) out_ << " style=\"width:" << std::size_t{width / kTwipsPerPixel} << "px\"";
      out_ << '>';
    }
    out_ << "</colgroup>\n";
  }

  void CloseParagraph() {
    if (!openTag_.empty()) out_ << "</" << openTag_ << ">\n";
    openTag_ = {};
  }

  void WriteContent(const Content &content) {
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

  static LinkShape ShapeOf(const Link &link) {
    if (link.field != nullptr) return LinkShape::kField;
    if (!IsSafeTarget(link.target)) return LinkShape::kInert;
    if (link.action == nullptr) return LinkShape::kAnchor;
    const Task &task = link.action->task;
    if (task.kind != TaskKind::kGo) return LinkShape::kInert;
    const bool sends = task.Posts() || !task.PostFields().empty();
    return sends && !link.target.starts_with('#') ? LinkShape::kButton : LinkShape::kAnchor;
  }

  void BeginLink(const Link &link) {
    const LinkShape shape = ShapeOf(link);
    if (shape == LinkShape::kField) {
      WriteField(*link.field);
      return;
    }
    if (shape == LinkShape::kButton) {
      forms_.try_emplace(link.actionIndex, false);
      out_ << "<button form=\"" << kFormId << std::size_t{link.actionIndex} << '"';
    } else {
      WriteLinkTag(link, shape);
    }
    if (shape == LinkShape::kInert) {
      WriteTitle(LinkTargetText(link));
    } else if (!link.title.empty()) {
      WriteTitle(link.title);
    }
    out_ << '>';
  }

  void WriteLinkTag(const Link &link, LinkShape shape) {
    const ActionKind kind = link.action == nullptr ? ActionKind::kLink : link.action->kind;
    const std::string_view role = kind == ActionKind::kDo      ? "key"
                                  : kind == ActionKind::kEvent ? "event"
                                                               : "";
    if (shape == LinkShape::kAnchor) {
      out_ << "<a href=\"";
      Escape(out_, EncodeTarget(link.target));
      out_ << '"';
      if (!role.empty()) out_ << " class=\"" << role << '"';
    } else {
      out_ << "<span class=\"inert" << (role.empty() ? "" : " ") << role << '"';
    }
  }

  void EndLink(const Link &link) {
    switch (ShapeOf(link)) {
      case LinkShape::kAnchor:
        out_ << "</a>";
        break;
      case LinkShape::kButton:
        out_ << "</button>";
        break;
      case LinkShape::kInert:
        out_ << "</span>";
        break;
      case LinkShape::kField:
        break;
    }
  }

  void WriteAttribute(std::string_view name, std::string_view value) {
    out_ << ' ' << name << "=\"";
    Escape(out_, value);
    out_ << '"';
  }

  // The form of an action stands at the end of the card; its button and its fields name it.
  void WriteForms() {
    for (auto &[index, written] : forms_) {
      if (std::exchange(written, true)) continue;
      const Task &task = parts_->actions[index].task;
      out_ << "<form id=\"" << kFormId << index << '"';
      WriteAttribute("action", EncodeTarget(task.target.shown));
      out_ << " method=\"" << (task.Posts() ? "post" : "get") << '"';
      if (task.IsMultipart()) WriteAttribute("enctype", "multipart/form-data");
      out_ << '>';
      for (const NameValue &field : task.PostFields()) {
        if (field.fromField) continue;
        out_ << "<input type=\"hidden\"";
        WriteAttribute("name", field.name.shown);
        WriteAttribute("value", field.value.shown);
        out_ << '>';
      }
      out_ << "</form>\n";
    }
  }

  void WriteField(const Field &field) {
    const bool isInput = field.kind == FieldKind::kInput;
    out_ << (isInput ? "<input" : "<select");
    if (field.action != kNoIndex) out_ << " form=\"" << kFormId << std::size_t{field.action} << '"';
    WriteAttribute("name", field.action == kNoIndex ? field.Variable() : field.sentName);
    WriteAttribute("aria-label", field.Label());
    if (isInput) {
      WriteInput(field);
    } else {
      WriteOptions(field);
    }
  }

  void WriteInput(const Field &field) {
    const bool isButton = field.type == "submit" || field.type == "button";
    out_ << " type=\""
         << (isButton                   ? "button"
             : field.type == "password" ? "password"
                                        : "text")
         << '"';
    if (!field.value.IsEmpty()) WriteAttribute("value", field.value.shown);
    if (field.size != 0) out_ << " size=\"" << std::size_t{field.size} << '"';
    if (field.length != 0) out_ << " maxlength=\"" << std::size_t{field.length} << '"';
    if (!field.title.IsEmpty()) WriteTitle(field.title.shown);
    out_ << '>';
  }

  void WriteOptions(const Field &field) {
    if (field.multiple) {
      out_ << " multiple size=\"" << std::clamp<std::size_t>(field.optionCount, 1, kMostRows)
           << '"';
    }
    if (!field.title.IsEmpty()) WriteTitle(field.title.shown);
    out_ << '>';
    PartIndex group = kNoIndex;
    for (PartIndex index = 0; index < field.optionCount; ++index) {
      const FieldOption &option = parts_->options[field.firstOption + index];
      if (option.group != group) {
        if (group != kNoIndex) out_ << "</optgroup>";
        group = option.group;
        if (group != kNoIndex) {
          out_ << "<optgroup";
          WriteAttribute("label", parts_->groups[group].title.shown);
          out_ << '>';
        }
      }
      out_ << "<option";
      WriteAttribute("value", option.value.shown);
      if (option.selected) out_ << " selected";
      out_ << '>';
      Escape(out_, option.Label());
      out_ << "</option>";
    }
    if (group != kNoIndex) out_ << "</optgroup>";
    out_ << "</select>";
  }

  void WriteTitle(std::string_view title) {
    out_ << " title=\"";
    Escape(out_, title);
    out_ << '"';
  }

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
      WriteImage(content.images[run.image]);
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

  void WriteEmbedded(const Image &image, std::string_view uri) {
    out_ << "<img src=\"" << uri << '"';
    WriteAttribute("alt", ImageLabel(image));
    const auto &bitmap = image.picture->bitmap;
    if (image.width != 0 && image.height != 0) {
      WriteSize(image.width / kTwipsPerPixel, image.height / kTwipsPerPixel);
    } else if (bitmap) {
      WriteSize(bitmap->width, bitmap->height);
    }
    out_ << '>';
  }

  void WriteSize(std::size_t width, std::size_t height) {
    out_ << " width=\"" << width << "\" height=\"" << height << '"';
  }

  void WriteImage(const Image &image) {
    if (const std::string_view uri = EmbeddedSource(image); !uri.empty()) {
      WriteEmbedded(image, uri);
      return;
    }
    if (!IsSafeSource(image.source)) {
      out_ << '[';
      Escape(out_, image.alternative);
      out_ << ']';
      return;
    }
    out_ << "<img src=\"";
    Escape(out_, EncodeTarget(image.source));
    out_ << "\" alt=\"";
    Escape(out_, ImageLabel(image));
    out_ << '"';
    if (image.width != 0 && image.height != 0) {
      WriteSize(image.width / kTwipsPerPixel, image.height / kTwipsPerPixel);
    }
    out_ << '>';
  }

  Output &out_;
  std::string name_;
  const DeckParts *parts_ = nullptr;
  std::map<std::size_t, bool> forms_;  ///< of actions, and whether they were written
  std::size_t embedded_ = 0;           ///< bytes of pictures in the page
  bool headWritten_ = false;
  std::string_view openTag_;  ///< of the paragraph that is open, empty: none
  std::unordered_set<std::string> ids_;
};

}  // namespace

std::unique_ptr<BlockSink> MakeHtmlWriter(Output &output, const WriterOptions & /*options*/) {
  return std::make_unique<HtmlWriter>(output);
}

}  // namespace vs_wml
