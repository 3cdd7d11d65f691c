// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include "host/writer.h"
#include "host/writers/json_text.h"

namespace vs_wml {
namespace {

constexpr std::array<std::string_view, 4> kAlignmentName = {"left", "center", "right", "justified"};
constexpr std::array<std::string_view, 10> kOriginName = {
    "option", "bom", "xml", "meta", "http", "utf-8", "detector", "fallback", "identity", "wmlc"};
constexpr std::array<std::string_view, 5> kActionName = {"link", "anchor", "do", "event", "pick"};
constexpr std::array<std::string_view, 5> kTaskName = {"none", "go", "prev", "refresh", "noop"};

constexpr std::uint32_t kHalfPointsPerPoint = 2;
constexpr std::uint32_t kTimerUnitsPerSecond = 10;

std::string_view HexColor(std::uint32_t color, std::array<char, 7> &buffer) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  buffer[0] = '#';
  for (std::size_t digit = 0; digit < 6; ++digit) {
    // Red is the lowest byte, and in a byte the higher half comes first.
    buffer[digit + 1] = kDigits[color >> 4 * (digit ^ 1U) & 0xFU];
  }
  return {buffer.data(), buffer.size()};
}

// One object a document, written as the document comes. docs/json.md describes it.
class JsonWriter : public BlockSink {
 public:
  explicit JsonWriter(Output &output) : out_(output), json_(output) {}

  void BeginDocument(const DeckInfo &deck) override {
    json_.Restart();
    json_.BeginObject();
    Member("source", deck.name);
    Member("charset", deck.charset);
    Member("charsetFrom", kOriginName[static_cast<std::size_t>(deck.charsetOrigin)]);
    if (deck.parts.hasAccess) WriteAccess(deck.parts);
    if (!deck.parts.metas.empty()) WriteMetas(deck.parts.metas);
    parts_ = &deck.parts;
    Key("cards");
    json_.BeginArray();
  }

  void BeginCard(const Card &card) override {
    json_.BeginObject();
    if (!card.id.empty()) Member("id", card.id);
    if (!card.title.empty()) Member("title", card.title);
    if (card.newContext) Flag("newContext", true);
    if (!card.ordered) Flag("ordered", false);
    if (card.parts != nullptr && !card.parts->actions.empty()) WriteActions(*card.parts);
    Key("blocks");
    json_.BeginArray();
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    json_.BeginObject();
    Key("type");
    json_.Literal("paragraph");
    if (paragraph.alignment != Alignment::kLeft) AlignmentMember(paragraph.alignment);
    if (paragraph.preformatted) Flag("preformatted", true);
    if (paragraph.continues) Flag("continues", true);
    WriteRuns(paragraph.content);
    WriteLinks(paragraph.content);
    json_.EndObject();
  }

  void TakeTable(const Table &table) override {
    json_.BeginObject();
    Member("type", "table");
    if (!table.title.empty()) Member("title", table.title);
    if (table.alignment != Alignment::kLeft) AlignmentMember(table.alignment);
    Key("columnWidths");
    json_.BeginArray();
    for (const std::uint32_t width : table.columnWidths) Length(width, kTwipsPerPixel);
    json_.EndArray();
    Key("rows");
    json_.BeginArray();
    for (const Row &row : table.rows) {
      json_.BeginArray();
      for (const Cell &cell : table.CellsOf(row)) {
        json_.BeginObject();
        if (cell.alignment != Alignment::kLeft) AlignmentMember(cell.alignment);
        WriteRuns(table.ContentOf(cell));
        json_.EndObject();
      }
      json_.EndArray();
    }
    json_.EndArray();
    WriteLinks(table.content);
    json_.EndObject();
  }

  void EndCard() override {
    json_.EndArray();
    json_.EndObject();
  }

  void EndDocument(const DeckInfo &deck) override {
    json_.EndArray();
    Key("warnings");
    json_.BeginArray();
    for (const std::string &warning : deck.warnings) json_.String(warning);
    json_.EndArray();
    json_.EndObject();
    out_ << '\n';
    out_.Flush();
  }

 private:
  // Inlined, so that the lengths of keys are constants.
  [[gnu::always_inline]] void Key(std::string_view key) { json_.Key(key); }
  [[gnu::always_inline]] void Member(std::string_view key, std::string_view text) {
    Key(key);
    json_.String(text);
  }
  [[gnu::always_inline]] void Flag(std::string_view key, bool value) {
    Key(key);
    json_.Bool(value);
  }
  void AlignmentMember(Alignment alignment) {
    Member("align", kAlignmentName[static_cast<std::size_t>(alignment)]);
  }
  // A length in units of so many twips, whole numbers without a fraction.
  void Length(std::uint32_t twips, std::uint32_t unit) {
    if (twips % unit == 0) {
      json_.Number(twips / unit);
    } else {
      json_.Fraction(twips, unit);
    }
  }

  void WriteRuns(const Content &content) {
    Key("runs");
    json_.BeginArray();
    for (const Run &run : content.runs) WriteRun(content, run);
    json_.EndArray();
  }

  void WriteRun(const Content &content, const Run &run) {
    json_.BeginObject();
    if (run.image != kNone) {
      WriteImage(content.images[run.image]);
    } else {
      Member("text", content.TextOf(run));
    }
    const TextStyle &style = run.style;
    if (style.bold) Flag("bold", true);
    if (style.italic) Flag("italic", true);
    // The filter marks what stands for a field as it marks links.
    const bool isField = run.link != kNone && content.links[run.link].field != nullptr;
    if (style.underline && !isField) Flag("underline", true);
    if (style.halfPoints != kOrdinaryHalfPoints) {
      Key("size");
      Length(style.halfPoints, kHalfPointsPerPoint);
    }
    if (style.color != 0 && !isField) {
      std::array<char, 7> color{};
      Member("color", HexColor(style.color, color));
    }
    if (isField) {
      Key("field");
      WriteField(*content.links[run.link].field);
    } else if (run.link != kNone) {
      Key("link");
      json_.Number(content.links[run.link].number);
    }
    json_.EndObject();
  }

  void WriteImage(const Image &image) {
    Key("image");
    json_.BeginObject();
    Member("source", image.source);
    if (image.hasAlternative) Member("alternative", image.alternative);
    if (image.width != 0 && image.height != 0) {
      Key("width");
      Length(image.width, kTwipsPerPixel);
      Key("height");
      Length(image.height, kTwipsPerPixel);
    }
    if (image.picture != nullptr && image.picture->bitmap) {
      Number("fileWidth", image.picture->bitmap->width);
      Number("fileHeight", image.picture->bitmap->height);
    }
    json_.EndObject();
  }

  void WriteLinks(const Content &content) {
    const auto isLink = [](const Link &link) { return link.field == nullptr; };
    if (std::none_of(content.links.begin(), content.links.end(), isLink)) return;
    Key("links");
    json_.BeginArray();
    for (const Link &link : content.links) {
      if (!isLink(link)) continue;
      json_.BeginObject();
      Key("number");
      json_.Number(link.number);
      Member("target", link.target);
      if (!link.title.empty()) Member("title", link.title);
      if (link.action != nullptr && link.action->kind != ActionKind::kLink) {
        Key("action");
        WriteAction(*link.action);
      }
      json_.EndObject();
    }
    json_.EndArray();
  }

  void Number(std::string_view key, std::size_t number) {
    Key(key);
    json_.Number(number);
  }
  void Optional(std::string_view key, std::string_view text) {
    if (!text.empty()) Member(key, text);
  }

  void WriteAccess(const DeckParts &parts) {
    Key("access");
    json_.BeginObject();
    Optional("domain", parts.accessDomain);
    Optional("path", parts.accessPath);
    json_.EndObject();
  }

  void WriteMetas(const std::vector<Meta> &metas) {
    Key("meta");
    json_.BeginArray();
    for (const Meta &meta : metas) {
      json_.BeginObject();
      Optional("name", meta.name);
      Optional("httpEquiv", meta.httpEquiv);
      Member("content", meta.content);
      json_.EndObject();
    }
    json_.EndArray();
  }

  void WriteActions(const DeckCard &card) {
    Key("actions");
    json_.BeginArray();
    for (const std::size_t index : card.actions) WriteAction(parts_->actions[index]);
    json_.EndArray();
  }

  void WriteAction(const Action &action) {
    json_.BeginObject();
    Member("kind", kActionName[static_cast<std::size_t>(action.kind)]);
    Optional("type", NamesOf(action).type);
    Optional("name", NamesOf(action).name);
    Member("label", ActionLabel(action));
    if (action.delay != 0) {
      Key("delay");
      json_.Fraction(action.delay, kTimerUnitsPerSecond);
    }
    Member("task", kTaskName[static_cast<std::size_t>(action.task.kind)]);
    if (action.task.kind == TaskKind::kGo) {
      Member("target", action.task.target);
      Member("method", action.task.method);
    }
    if (!action.task.postFields.empty()) WritePairs("postFields", action.task.postFields);
    if (!action.task.variables.empty()) WritePairs("variables", action.task.variables);
    json_.EndObject();
  }

  void WritePairs(std::string_view key, const std::vector<NameValue> &pairs) {
    Key(key);
    json_.BeginArray();
    for (const NameValue &pair : pairs) {
      json_.BeginObject();
      Member("name", pair.name);
      Member("value", pair.value);
      Optional("variable", pair.variable);
      json_.EndObject();
    }
    json_.EndArray();
  }

  void WriteField(const Field &field) {
    json_.BeginObject();
    Member("kind", field.kind == FieldKind::kInput ? "input" : "select");
    Member("name", field.name);
    Optional("title", field.title);
    if (field.fieldset != kNoIndex) Optional("fieldset", parts_->fieldsets[field.fieldset]);
    if (field.kind == FieldKind::kSelect) {
      WriteOptions(field);
    } else {
      Member("type", field.type);
      Member("value", field.value);
      Optional("format", field.format);
      if (field.size != 0) Number("size", field.size);
      if (field.length != 0) Number("maxLength", field.length);
      if (!field.emptyAllowed) Flag("emptyAllowed", false);
    }
    json_.EndObject();
  }

  void WriteOptions(const Field &field) {
    Flag("multiple", field.multiple);
    Key("options");
    json_.BeginArray();
    for (const FieldOption &option : field.options) {
      json_.BeginObject();
      Member("label", option.label);
      Member("value", option.value);
      if (option.group != kNoIndex) Optional("group", field.groups[option.group]);
      if (option.selected) Flag("selected", true);
      json_.EndObject();
    }
    json_.EndArray();
  }

  Output &out_;
  JsonText json_;
  const DeckParts *parts_ = nullptr;
};

}  // namespace

std::unique_ptr<BlockSink> MakeJsonWriter(Output &output) {
  return std::make_unique<JsonWriter>(output);
}

}  // namespace vs_wml
