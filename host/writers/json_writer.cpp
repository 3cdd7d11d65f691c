// SPDX-License-Identifier: MIT
#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "host/text/ascii.h"
#include "host/writer.h"
#include "host/writers/json_text.h"

namespace vs_wml {
namespace {

constexpr std::array<std::string_view, 4> kAlignmentName = {"left", "center", "right", "justified"};
constexpr std::array<std::string_view, 10> kOriginName = {
    "option", "bom", "xml", "meta", "http", "utf-8", "detector", "fallback", "identity", "wmlc"};
constexpr std::array<std::string_view, 5> kActionName = {"link", "anchor", "do", "event", "pick"};
constexpr std::array<std::string_view, 5> kTaskName = {"none", "go", "prev", "refresh", "noop"};

constexpr unsigned kFormat = 2;
constexpr std::uint32_t kHalfPointsPerPoint = 2;
std::string_view HexColor(std::uint32_t color, std::array<char, 7> &buffer) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  buffer[0] = '#';
  for (std::size_t digit = 0; digit < 6; ++digit) {
    // Red is the lowest byte, and in a byte the higher half comes first.
    buffer[digit + 1] = kDigits[color >> 4 * (digit ^ 1U) & 0xFU];
  }
  return {buffer.data(), buffer.size()};
}

// The plain text of a card, escaped for JSON. It is held in blocks, so that it is never held
// twice.
class CardText {
 public:
  CardText() { AddBlock(kBlock); }

  // Adds text that goes on where the last one ended, and calls `use` with it, escaped.
  template <typename Use>
  void Add(std::string_view text, Use use) {
    if (text.empty()) return;
    if (separator_ != 0) AddSeparator();
    EscapeJson(
        text, [this](std::size_t size) { return Room(size); },
        [&](std::string_view written) {
          blocks_.back().used += written.size();
          use(written);
        },
        [&](std::string_view escape) {
          Append(escape);
          use(escape);
        });
    endsBlank_ = IsWhiteSpace(text.back());
    empty_ = false;
  }
  // What separates words; of several between two of them the strongest counts.
  void Separate(char separator) {
    if (!empty_) separator_ = std::max(separator_, RankOf(separator));
  }
  // Gives the text in parts to `use`.
  template <typename Use>
  void ForEachPart(Use use) const {
    for (const Block &block : blocks_) use(std::string_view(block.text.get(), block.used));
  }
  void Clear() {
    if (blocks_.size() > 1) {
      blocks_.clear();
      AddBlock(kBlock);
    }
    blocks_.front().used = 0;
    separator_ = 0;
    empty_ = true;
  }

 private:
  struct Block {
    std::unique_ptr<char[]> text;
    std::size_t size = 0;
    std::size_t used = 0;
  };
  static constexpr std::size_t kBlock = 65536;
  static constexpr std::array<std::string_view, 4> kSeparators = {"", " ", "\\t", "\\n"};
  static constexpr std::size_t RankOf(char separator) {
    return separator == ' ' ? 1 : separator == '\t' ? 2 : 3;
  }

  void AddBlock(std::size_t size) {
    blocks_.push_back({std::make_unique_for_overwrite<char[]>(size), size});
  }
  char *Room(std::size_t size) {
    if (blocks_.back().size - blocks_.back().used < size) AddBlock(kBlock);
    return blocks_.back().text.get() + blocks_.back().used;
  }
  void Append(std::string_view text) {
    std::copy(text.begin(), text.end(), Room(text.size()));
    blocks_.back().used += text.size();
  }
  void AddSeparator() {
    if (separator_ > 1 || !endsBlank_) Append(kSeparators[separator_]);
    separator_ = 0;
  }

  std::vector<Block> blocks_;
  std::size_t separator_ = 0;  // that is due before the next text
  bool empty_ = true;
  bool endsBlank_ = false;
};

// One object a document, written as the document comes. docs/json.md describes it.
class JsonWriter : public BlockSink {
 public:
  explicit JsonWriter(Output &output) : out_(output), json_(output) {}

  void BeginDocument(const DeckInfo &deck) override {
    json_.Restart();
    parts_ = &deck.parts;
    adapted_ = deck.adapted;
    rest_ = 0;
    rawLinks_.clear();
    text_.Clear();
    json_.BeginObject();
    Key("format");
    json_.Number(kFormat);
    Member("source", deck.source);
    Optional("sourceBase64", deck.sourceBase64);
    Optional("xxh128", deck.xxh128);
    Optional("url", deck.url);
    Optional("contentType", deck.contentType);
    Member("charset", deck.charset);
    Member("charsetFrom", kOriginName[static_cast<std::size_t>(deck.charsetOrigin)]);
    if (adapted_) WriteParts();
    Key("cards");
    json_.BeginArray();
  }

  void BeginCard(const Card &card) override {
    json_.BeginObject();
    if (card.parts != nullptr) {
      WriteCardParts(*card.parts);
    } else {
      Optional("id", card.id);
      Optional("title", card.title);
      if (card.newContext) Flag("newContext", true);
      if (!card.ordered) Flag("ordered", false);
    }
    card_ = card.parts;
    Key("blocks");
    json_.BeginArray();
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    if (!HasContent(paragraph.content)) return;
    text_.Separate('\n');
    json_.BeginObject();
    Key("type");
    json_.Literal("paragraph");
    if (paragraph.alignment != Alignment::kLeft) AlignmentMember(paragraph.alignment);
    if (paragraph.preformatted) Flag("preformatted", true);
    if (paragraph.continues) Flag("continues", true);
    WriteRuns(paragraph.content);
    json_.EndObject();
  }

  void TakeTable(const Table &table) override {
    json_.BeginObject();
    Key("type");
    json_.Literal("table");
    text_.Separate('\n');
    if (!table.title.empty()) {
      Member("title", table.title);
      AddWords(table.title);
    }
    if (table.alignment != Alignment::kLeft) AlignmentMember(table.alignment);
    Key("columnWidths");
    json_.BeginArray();
    for (const std::uint32_t width : table.columnWidths) Length(width, kTwipsPerPixel);
    json_.EndArray();
    Key("rows");
    json_.BeginArray();
    for (const Row &row : table.rows) {
      text_.Separate('\n');
      json_.BeginArray();
      for (const Cell &cell : table.CellsOf(row)) {
        json_.BeginObject();
        if (cell.alignment != Alignment::kLeft) AlignmentMember(cell.alignment);
        WriteRuns(table.ContentOf(cell));
        json_.EndObject();
        text_.Separate('\t');
      }
      json_.EndArray();
    }
    json_.EndArray();
    json_.EndObject();
  }

  void EndCard() override {
    json_.EndArray();
    if (card_ != nullptr) AddLabels(*card_);
    Key("text");
    json_.BeginString();
    text_.ForEachPart([&](std::string_view part) { json_.EscapedPart(part); });
    json_.EndString();
    text_.Clear();
    json_.EndObject();
  }

  void EndDocument(const DeckInfo &deck) override {
    json_.EndArray();
    if (!rawLinks_.empty()) WriteRawLinks();
    Key("warnings");
    json_.BeginArray();
    for (const Warning &warning : deck.warnings) {
      json_.BeginObject();
      if (warning.line != 0) Number("line", warning.line);
      Member("message", warning.message);
      Optional("text", warning.text);
      json_.EndObject();
    }
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
  void Number(std::string_view key, std::size_t number) {
    Key(key);
    json_.Number(number);
  }
  void Optional(std::string_view key, std::string_view text) {
    if (!text.empty()) Member(key, text);
  }
  // What the document says, if only that it is empty.
  void Said(std::string_view key, std::string_view text) {
    if (text.data() != nullptr) Member(key, text);
  }
  // A value as it is written, and, under a key of its own, as it reads.
  void Said(std::string_view key, std::string_view readKey, const Value &value) {
    if (!value.IsGiven()) return;
    Member(key, value.written);
    if (!value.ReadsAsWritten() && value.resolved) Member(readKey, value.shown);
  }
  void Index(std::string_view key, PartIndex index) {
    if (index != kNoIndex) Number(key, index);
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

  // --------------------------------------------------------------------- parts

  // An array with an object for each of the items; none when there are none.
  template <typename Items, typename Write>
  void Table(std::string_view key, const Items &items, Write write) {
    if (items.empty()) return;
    Key(key);
    json_.BeginArray();
    for (const auto &item : items) {
      json_.BeginObject();
      write(item);
      json_.EndObject();
    }
    json_.EndArray();
  }

  void WriteParts() {
    Said("language", parts_->language);
    Table("access", parts_->accesses, [&](const Access &access) {
      Said("domain", access.domain);
      Said("path", access.path);
    });
    Table("meta", parts_->metas, [&](const Meta &meta) {
      Said("name", meta.name);
      Said("httpEquiv", meta.httpEquiv);
      Said("content", meta.content);
      Said("scheme", meta.scheme);
      Said("forUserAgent", meta.forUserAgent);
    });
    WriteActionNumbers("templateActions", parts_->templateActions);
    WriteActions("links", true);
    WriteActions("actions", false);
    const auto writeGroup = [&](const Group &group) {
      Said("title", "titleRead", group.title);
      Index("outer", group.outer);
    };
    Table("fieldsets", parts_->fieldsets, writeGroup);
    Table("groups", parts_->groups, writeGroup);
    Table("fields", parts_->fields, [&](const Field &field) { WriteField(field); });
    WriteRest(parts_->outsideRemainders, 0, parts_->outsideRemainders.size());
  }

  void WriteCardParts(const DeckCard &card) {
    Said("id", card.id);
    Said("title", "titleRead", card.title);
    Said("language", card.language);
    if (card.newContext) Flag("newContext", true);
    if (!card.ordered) Flag("ordered", false);
    if (card.timer) {
      Key("timer");
      json_.BeginObject();
      Said("name", card.timer->name);
      Said("value", "valueRead", card.timer->value);
      json_.EndObject();
    }
    WriteActionNumbers("actions", parts_->ActionsOf(card));
    WriteVariables(card);
    WriteRest(parts_->remainders, card.firstRemainder, card.remainderCount);
  }

  void WriteVariables(const DeckCard &card) {
    if (card.variableCount == 0) return;
    Key("variables");
    json_.BeginArray();
    for (PartIndex index = 0; index < card.variableCount; ++index) {
      const Value &variable = parts_->textVariables[card.firstVariable + index];
      json_.BeginObject();
      Member("written", variable.written);
      if (variable.resolved) Member("read", variable.shown);
      json_.EndObject();
    }
    json_.EndArray();
  }

  // Attributes without a place of their own, tag by tag; those of pictures stand with them.
  void WriteRest(const PartList<Remainder> &rest, std::size_t first, std::size_t count) {
    std::uint32_t tag = 0;
    for (std::size_t index = first; index < first + count; ++index) {
      const Remainder &entry = rest[index];
      if (entry.owner == Remainder::Owner::kPicture) continue;
      if (tag == 0) {
        Key("elements");
        json_.BeginArray();
      }
      if (entry.tag != tag) {
        if (tag != 0) EndTag();
        BeginTag(entry);
        tag = entry.tag;
      }
      if (entry.name.data() != nullptr) Attribute(entry);
    }
    if (tag == 0) return;
    EndTag();
    json_.EndArray();
  }

  void BeginTag(const Remainder &entry) {
    json_.BeginObject();
    Member("element", entry.element);
    if (entry.owner == Remainder::Owner::kField) {
      Number("field", entry.index);
    } else if (entry.owner == Remainder::Owner::kAction) {
      const Action &action = parts_->actions[entry.index];
      Number(action.IsLink() ? "link" : "action", action.number);
    } else if (entry.index != 0) {
      Number("number", entry.index);
    }
    inAttributes_ = false;
  }
  void Attribute(const Remainder &entry) {
    if (!inAttributes_) {
      Key("attributes");
      json_.BeginObject();
      inAttributes_ = true;
    }
    json_.EscapedKey(entry.name);
    json_.String(entry.value);
  }
  void EndTag() {
    if (inAttributes_) json_.EndObject();
    json_.EndObject();
  }

  void WriteActionNumbers(std::string_view key, std::span<const PartIndex> indexes) {
    if (indexes.empty()) return;
    Key(key);
    json_.BeginArray();
    for (const PartIndex index : indexes) {
      json_.Number(parts_->actions[index].number);
    }
    json_.EndArray();
  }

  void WriteActions(std::string_view key, bool links) {
    const std::size_t linkCount = parts_->linkCount;
    if ((links ? linkCount : parts_->actions.size() - linkCount) == 0) return;
    Key(key);
    json_.BeginArray();
    for (const Action &action : parts_->actions) {
      if (action.IsLink() != links) continue;
      WriteAction(action);
    }
    json_.EndArray();
  }

  void WriteAction(const Action &action) {
    json_.BeginObject();
    if (action.kind != ActionKind::kLink) {
      Member("kind", kActionName[static_cast<std::size_t>(action.kind)]);
    }
    if (action.details) {
      const ActionDetails &details = *action.details;
      Said("type", details.type);
      Said("name", details.name);
      Said("label", "labelRead", details.label);
      Said("title", "titleRead", details.title);
      Said("accessKey", details.accessKey);
      Said("tabIndex", details.tabIndex);
      Said("optional", details.optional);
      if (details.shadows != kNoIndex) Number("shadows", parts_->actions[details.shadows].number);
    }
    if (!action.hasText) Flag("empty", true);
    WriteTask(action.task, action.kind == ActionKind::kLink);
    if (action.details) {
      Table("more", action.details->more, [&](const Task &task) { WriteTask(task, false); });
    }
    json_.EndObject();
  }

  void WriteTask(const Task &task, bool isLink) {
    if (!isLink) Member("task", kTaskName[static_cast<std::size_t>(task.kind)]);
    Said("target", "targetRead", task.target);
    if (!task.details) return;
    const TaskDetails &details = *task.details;
    Said("method", details.method);
    Said("encoding", details.encoding);
    Said("acceptCharset", details.acceptCharset);
    Said("cacheControl", details.cacheControl);
    Said("sendReferer", details.sendReferer);
    Said("postData", "postDataRead", details.postData);
    const auto writePair = [&](const NameValue &pair) {
      Said("name", "nameRead", pair.name);
      Said("value", "valueRead", pair.value);
    };
    Table("postFields", details.postFields, writePair);
    Table("setVariables", details.variables, writePair);
  }

  void WriteField(const Field &field) {
    Member("kind", field.kind == FieldKind::kInput ? "input" : "select");
    Said("name", field.name);
    Said("title", "titleRead", field.title);
    Index("fieldset", field.fieldset);
    Said("type", field.type);
    Said("value", "valueRead", field.value);
    Said("format", field.Format());
    if (field.size != 0) Number("size", field.size);
    if (field.length != 0) Number("maxLength", field.length);
    if (!field.emptyAllowed) Flag("emptyAllowed", false);
    if (field.multiple) Flag("multiple", true);
    if (field.details) {
      const FieldDetails &details = *field.details;
      Said("indexName", details.indexName);
      Said("indexValue", "indexValueRead", details.indexValue);
      Said("accessKey", details.accessKey);
      Said("tabIndex", details.tabIndex);
    }
    if (field.kind == FieldKind::kSelect) WriteOptions(field);
  }

  void WriteOptions(const Field &field) {
    Key("options");
    json_.BeginArray();
    for (PartIndex index = 0; index < field.optionCount; ++index) {
      const FieldOption &option = parts_->options[field.firstOption + index];
      json_.BeginObject();
      Said("label", "labelRead", option.label);
      Said("value", "valueRead", option.value);
      Said("title", "titleRead", option.title);
      Index("group", option.group);
      if (option.selected) Flag("selected", true);
      if (option.action != kNoIndex) Number("action", parts_->actions[option.action].number);
      json_.EndObject();
    }
    json_.EndArray();
  }

  // --------------------------------------------------------------------- blocks

  // What the adapter shows of keys, events and menus stands in the tables.
  static bool IsShownAction(const Content &content, const Run &run) {
    if (run.link == kNone) return false;
    const Action *action = content.links[run.link].action;
    return action != nullptr && !action->IsLink();
  }
  bool HasContent(const Content &content) const {
    if (!adapted_ || content.links.empty() || content.runs.empty()) return true;
    return !std::all_of(content.runs.begin(), content.runs.end(),
                        [&](const Run &run) { return IsShownAction(content, run); });
  }

  void WriteRuns(const Content &content) {
    Key("runs");
    json_.BeginArray();
    for (const Run &run : content.runs) {
      if (!IsShownAction(content, run)) WriteRun(content, run);
    }
    json_.EndArray();
  }

  void WriteRun(const Content &content, const Run &run) {
    const Link *link = run.link == kNone ? nullptr : &content.links[run.link];
    json_.BeginObject();
    if (link != nullptr && link->field != nullptr) {
      Number("field", link->fieldIndex);
      AddField(*link->field);
      json_.EndObject();
      return;
    }
    if (run.image != kNone) {
      WriteImage(content.images[run.image]);
    } else if (link == nullptr || link->action == nullptr || link->action->hasText) {
      Key("text");
      WriteText(content.TextOf(run));
    }
    const TextStyle &style = run.style;
    if (style.bold) Flag("bold", true);
    if (style.italic) Flag("italic", true);
    // The filter marks links by their looks.
    const bool marked = adapted_ && link != nullptr;
    if (style.underline && !marked) Flag("underline", true);
    if (style.halfPoints != kOrdinaryHalfPoints) {
      Key("size");
      Length(style.halfPoints, kHalfPointsPerPoint);
    }
    if (style.color != 0 && !marked) {
      std::array<char, 7> color{};
      Member("color", HexColor(style.color, color));
    }
    if (link != nullptr) Number("link", LinkNumber(*link));
    json_.EndObject();
  }

  // Text of the card, which is part of its plain text, too.
  void WriteText(std::string_view text) {
    json_.BeginString();
    text_.Add(text, [&](std::string_view part) { json_.EscapedPart(part); });
    json_.EndString();
  }

  // What a link is listed under; in a document that was not adapted they are listed as they
  // come.
  std::size_t LinkNumber(const Link &link) {
    if (link.action != nullptr) return link.action->number;
    if (rawLinks_.empty() || rawLinks_.back().number != link.number) {
      rawLinks_.push_back({link.number, std::string(link.target), std::string(link.title)});
    }
    return rawLinks_.size() - 1;
  }

  void WriteRawLinks() {
    Table("links", rawLinks_, [&](const RawLink &link) {
      Member("target", link.target);
      Optional("title", link.title);
    });
  }

  void WriteImage(const Image &image) {
    Key("image");
    json_.BeginObject();
    if (image.part == kNoIndex) {
      Member("source", image.source);
      if (image.hasAlternative) Member("alternative", image.alternative);
    } else {
      const Picture &picture = parts_->pictures[image.part];
      Said("source", "sourceRead", picture.source);
      Said("localSource", "localSourceRead", picture.localSource);
      Said("alternative", "alternativeRead", picture.alternative);
    }
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
    if (image.part != kNoIndex) WritePictureRest(image.part);
    json_.EndObject();
    if (image.hasAlternative) AddWords(image.alternative);
  }

  // Pictures come in the order in which their attributes were kept.
  void WritePictureRest(PartIndex picture) {
    inAttributes_ = false;
    for (; rest_ < parts_->remainders.size(); ++rest_) {
      const Remainder &entry = parts_->remainders[rest_];
      if (entry.owner != Remainder::Owner::kPicture || entry.index < picture) continue;
      if (entry.index > picture) break;
      Attribute(entry);
    }
    if (inAttributes_) json_.EndObject();
  }

  // ----------------------------------------------------------------- plain text

  // Words that stand for themselves.
  void AddWords(std::string_view words) {
    if (words.empty()) return;
    text_.Separate(' ');
    text_.Add(words, [](std::string_view) {});
    text_.Separate(' ');
  }

  void AddField(const Field &field) {
    AddWords(field.title.shown);
    PartIndex group = kNoIndex;
    for (PartIndex index = 0; index < field.optionCount; ++index) {
      const FieldOption &option = parts_->options[field.firstOption + index];
      if (option.group != kNoIndex && (group == kNoIndex || option.group > group)) {
        group = option.group;
        AddWords(parts_->groups[group].title.shown);
      }
      AddWords(option.Label());
    }
    if (field.kind == FieldKind::kInput) AddWords(field.value.shown);
    text_.Separate(' ');
  }

  // What the card calls its keys.
  void AddLabels(const DeckCard &card) {
    for (const PartIndex index : parts_->ActionsOf(card)) {
      text_.Separate('\n');
      AddWords(SaidLabel(parts_->actions[index]));
    }
  }

  struct RawLink {
    std::uint32_t number;
    std::string target;
    std::string title;
  };

  Output &out_;
  const DeckParts *parts_ = nullptr;
  const DeckCard *card_ = nullptr;
  bool adapted_ = false;
  bool inAttributes_ = false;
  std::size_t rest_ = 0;  // of DeckParts::remainders, for pictures
  std::vector<RawLink> rawLinks_;
  CardText text_;
  JsonText json_;
};

}  // namespace

std::unique_ptr<BlockSink> MakeJsonWriter(Output &output) {
  return std::make_unique<JsonWriter>(output);
}

}  // namespace vs_wml
