// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "host/text/byte_scan.h"
#include "host/writer.h"

namespace vs_wml {
namespace {

constexpr std::array<std::string_view, 4> kAlignmentName = {"left", "center", "right", "justified"};
constexpr std::array<std::string_view, 10> kOriginName = {
    "option", "bom", "xml", "meta", "http", "utf-8", "detector", "fallback", "identity", "wmlc"};
constexpr std::array<std::string_view, 5> kActionName = {"link", "anchor", "do", "event", "pick"};
constexpr std::array<std::string_view, 5> kTaskName = {"none", "go", "prev", "refresh", "noop"};

constexpr std::uint32_t kHalfPointsPerPoint = 2;
constexpr double kTimerUnitsPerSecond = 10;

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// RapidJSON's writer, except that what needs no escape in a string is copied at once.
class CopyingWriter : public rapidjson::Writer<rapidjson::StringBuffer> {
 public:
  using Writer::Writer;

  // A key or a string of which it is known that it has no escapes.
  [[gnu::always_inline]] void Literal(std::string_view text) {
    Prefix(rapidjson::kStringType);
    char *out = os_->Push(text.size() + 2);
    *out++ = '"';
    out = std::copy(text.begin(), text.end(), out);
    *out = '"';
  }
  void String(std::string_view text) {
    Prefix(rapidjson::kStringType);
    os_->Put('"');
    while (true) {
      char *const out = os_->Push(text.size());
      const std::size_t plain = CopyBefore(
          text, out, [](auto byte) { return (byte < 0x20) | (byte == '"') | (byte == '\\'); });
      if (plain == text.size()) break;
      os_->Pop(text.size() - plain);
      Escape(text[plain]);
      text.remove_prefix(plain + 1);
    }
    os_->Put('"');
  }

 private:
  void Escape(char c) {
    constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
    constexpr std::string_view kNames = "\"\\bfnrt";
    os_->Put('\\');
    if (const std::size_t named = kNamed.find(c); named != std::string_view::npos) {
      os_->Put(kNames[named]);
      return;
    }
    const auto code = static_cast<unsigned char>(c);
    for (const char digit : {'u', '0', '0', kHexDigits[code >> 4U], kHexDigits[code & 0xFU]}) {
      os_->Put(digit);
    }
  }
};

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
  explicit JsonWriter(Output &output) : out_(output) { writer_.SetMaxDecimalPlaces(2); }

  void BeginDocument(const DeckInfo &deck) override {
    writer_.Reset(buffer_);
    writer_.StartObject();
    Member("source", deck.name);
    Member("charset", deck.charset);
    Member("charsetFrom", kOriginName[static_cast<std::size_t>(deck.charsetOrigin)]);
    if (deck.parts.hasAccess) WriteAccess(deck.parts);
    if (!deck.parts.metas.empty()) WriteMetas(deck.parts.metas);
    parts_ = &deck.parts;
    Key("cards");
    writer_.StartArray();
  }

  void BeginCard(const Card &card) override {
    writer_.StartObject();
    if (!card.id.empty()) Member("id", card.id);
    if (!card.title.empty()) Member("title", card.title);
    if (card.newContext) Flag("newContext", true);
    if (!card.ordered) Flag("ordered", false);
    if (card.parts != nullptr && !card.parts->actions.empty()) WriteActions(*card.parts);
    Key("blocks");
    writer_.StartArray();
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    writer_.StartObject();
    Key("type");
    writer_.Literal("paragraph");
    if (paragraph.alignment != Alignment::kLeft) AlignmentMember(paragraph.alignment);
    if (paragraph.preformatted) Flag("preformatted", true);
    if (paragraph.continues) Flag("continues", true);
    WriteRuns(paragraph.content);
    WriteLinks(paragraph.content);
    writer_.EndObject();
    HandOn();
  }

  void TakeTable(const Table &table) override {
    writer_.StartObject();
    Member("type", "table");
    if (!table.title.empty()) Member("title", table.title);
    if (table.alignment != Alignment::kLeft) AlignmentMember(table.alignment);
    Key("columnWidths");
    writer_.StartArray();
    for (const std::uint32_t width : table.columnWidths) Length(width, kTwipsPerPixel);
    writer_.EndArray();
    Key("rows");
    writer_.StartArray();
    for (const Row &row : table.rows) {
      writer_.StartArray();
      for (const Cell &cell : table.CellsOf(row)) {
        writer_.StartObject();
        if (cell.alignment != Alignment::kLeft) AlignmentMember(cell.alignment);
        WriteRuns(table.ContentOf(cell));
        writer_.EndObject();
      }
      writer_.EndArray();
      HandOn();
    }
    writer_.EndArray();
    WriteLinks(table.content);
    writer_.EndObject();
    HandOn();
  }

  void EndCard() override {
    writer_.EndArray();
    writer_.EndObject();
  }

  void EndDocument(const DeckInfo &deck) override {
    writer_.EndArray();
    Key("warnings");
    writer_.StartArray();
    for (const std::string &warning : deck.warnings) writer_.String(warning);
    writer_.EndArray();
    writer_.EndObject();
    HandOn();
    out_ << '\n';
    out_.Flush();
  }

 private:
  // Inlined, so that the lengths of keys are constants.
  [[gnu::always_inline]] void Key(std::string_view key) { writer_.Literal(key); }
  [[gnu::always_inline]] void Member(std::string_view key, std::string_view text) {
    Key(key);
    writer_.String(text);
  }
  [[gnu::always_inline]] void Flag(std::string_view key, bool value) {
    Key(key);
    writer_.Bool(value);
  }
  void AlignmentMember(Alignment alignment) {
    Member("align", kAlignmentName[static_cast<std::size_t>(alignment)]);
  }
  // A length in units of so many twips, whole numbers without a fraction.
  void Length(std::uint32_t twips, std::uint32_t unit) {
    if (twips % unit == 0) {
      writer_.Uint(twips / unit);
    } else {
      writer_.Double(static_cast<double>(twips) / unit);
    }
  }

  void WriteRuns(const Content &content) {
    Key("runs");
    writer_.StartArray();
    for (const Run &run : content.runs) WriteRun(content, run);
    writer_.EndArray();
  }

  void WriteRun(const Content &content, const Run &run) {
    writer_.StartObject();
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
      writer_.Uint(content.links[run.link].number);
    }
    writer_.EndObject();
  }

  void WriteImage(const Image &image) {
    Key("image");
    writer_.StartObject();
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
    writer_.EndObject();
  }

  void WriteLinks(const Content &content) {
    const auto isLink = [](const Link &link) { return link.field == nullptr; };
    if (std::none_of(content.links.begin(), content.links.end(), isLink)) return;
    Key("links");
    writer_.StartArray();
    for (const Link &link : content.links) {
      if (!isLink(link)) continue;
      writer_.StartObject();
      Key("number");
      writer_.Uint(link.number);
      Member("target", link.target);
      if (!link.title.empty()) Member("title", link.title);
      if (link.action != nullptr && link.action->kind != ActionKind::kLink) {
        Key("action");
        WriteAction(*link.action);
      }
      writer_.EndObject();
    }
    writer_.EndArray();
  }

  void Number(std::string_view key, std::size_t number) {
    Key(key);
    writer_.Uint64(number);
  }
  void Optional(std::string_view key, std::string_view text) {
    if (!text.empty()) Member(key, text);
  }

  void WriteAccess(const DeckParts &parts) {
    Key("access");
    writer_.StartObject();
    Optional("domain", parts.accessDomain);
    Optional("path", parts.accessPath);
    writer_.EndObject();
  }

  void WriteMetas(const std::vector<Meta> &metas) {
    Key("meta");
    writer_.StartArray();
    for (const Meta &meta : metas) {
      writer_.StartObject();
      Optional("name", meta.name);
      Optional("httpEquiv", meta.httpEquiv);
      Member("content", meta.content);
      writer_.EndObject();
    }
    writer_.EndArray();
  }

  void WriteActions(const DeckCard &card) {
    Key("actions");
    writer_.StartArray();
    for (const std::size_t index : card.actions) WriteAction(parts_->actions[index]);
    writer_.EndArray();
  }

  void WriteAction(const Action &action) {
    writer_.StartObject();
    Member("kind", kActionName[static_cast<std::size_t>(action.kind)]);
    Optional("type", NamesOf(action).type);
    Optional("name", NamesOf(action).name);
    Member("label", ActionLabel(action));
    if (action.delay != 0) {
      Key("delay");
      writer_.Double(action.delay / kTimerUnitsPerSecond);
    }
    Member("task", kTaskName[static_cast<std::size_t>(action.task.kind)]);
    if (action.task.kind == TaskKind::kGo) {
      Member("target", action.task.target);
      Member("method", action.task.method);
    }
    if (!action.task.postFields.empty()) WritePairs("postFields", action.task.postFields);
    if (!action.task.variables.empty()) WritePairs("variables", action.task.variables);
    writer_.EndObject();
  }

  void WritePairs(std::string_view key, const std::vector<NameValue> &pairs) {
    Key(key);
    writer_.StartArray();
    for (const NameValue &pair : pairs) {
      writer_.StartObject();
      Member("name", pair.name);
      Member("value", pair.value);
      Optional("variable", pair.variable);
      writer_.EndObject();
    }
    writer_.EndArray();
  }

  void WriteField(const Field &field) {
    writer_.StartObject();
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
    writer_.EndObject();
  }

  void WriteOptions(const Field &field) {
    Flag("multiple", field.multiple);
    Key("options");
    writer_.StartArray();
    for (const FieldOption &option : field.options) {
      writer_.StartObject();
      Member("label", option.label);
      Member("value", option.value);
      if (option.group != kNoIndex) Optional("group", field.groups[option.group]);
      if (option.selected) Flag("selected", true);
      writer_.EndObject();
    }
    writer_.EndArray();
  }

  // Moves what is written to the output, so that only a block is ever held.
  void HandOn() {
    constexpr std::size_t kPiece = 32768;
    if (buffer_.GetSize() < kPiece && !writer_.IsComplete()) return;
    out_ << std::string_view(buffer_.GetString(), buffer_.GetSize());
    buffer_.Clear();
  }

  Output &out_;
  const DeckParts *parts_ = nullptr;
  rapidjson::StringBuffer buffer_;
  CopyingWriter writer_{buffer_};
};

}  // namespace

std::unique_ptr<BlockSink> MakeJsonWriter(Output &output) {
  return std::make_unique<JsonWriter>(output);
}

}  // namespace vs_wml
