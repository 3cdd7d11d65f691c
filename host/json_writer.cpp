// SPDX-License-Identifier: MIT
#include <array>
#include <cstdio>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "host/writer.h"

namespace vs_wml {
namespace {

constexpr std::array<std::string_view, 4> kAlignmentName = {"left", "center", "right", "justified"};
constexpr std::array<std::string_view, 8> kOriginName = {
    "option", "bom", "xml", "meta", "utf-8", "detector", "fallback", "identity"};

constexpr std::uint32_t kHalfPointsPerPoint = 2;

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
    Key("cards");
    writer_.StartArray();
  }

  void BeginCard(const Card &card) override {
    writer_.StartObject();
    if (!card.id.empty()) Member("id", card.id);
    if (!card.title.empty()) Member("title", card.title);
    if (card.newContext) Flag("newContext", true);
    if (!card.ordered) Flag("ordered", false);
    Key("blocks");
    writer_.StartArray();
  }

  void TakeParagraph(const Paragraph &paragraph) override {
    writer_.StartObject();
    Member("type", "paragraph");
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
    for (const std::string &warning : deck.warnings) String(warning);
    writer_.EndArray();
    writer_.EndObject();
    HandOn();
    out_ << '\n';
    out_.Flush();
  }

 private:
  void String(std::string_view text) {
    writer_.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
  }
  void Key(std::string_view key) {
    writer_.Key(key.data(), static_cast<rapidjson::SizeType>(key.size()));
  }
  void Member(std::string_view key, std::string_view text) {
    Key(key);
    String(text);
  }
  void Flag(std::string_view key, bool value) {
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
    if (style.underline) Flag("underline", true);
    if (style.halfPoints != kOrdinaryHalfPoints) {
      Key("size");
      Length(style.halfPoints, kHalfPointsPerPoint);
    }
    if (style.color != 0) {
      std::array<char, 8> color{};
      std::snprintf(color.data(), color.size(), "#%02x%02x%02x", style.color & 0xFFU,
                    (style.color >> 8U) & 0xFFU, (style.color >> 16U) & 0xFFU);
      Member("color", color.data());
    }
    if (run.link != kNone) {
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
    writer_.EndObject();
  }

  void WriteLinks(const Content &content) {
    if (content.links.empty()) return;
    Key("links");
    writer_.StartArray();
    for (const Link &link : content.links) {
      writer_.StartObject();
      Key("number");
      writer_.Uint(link.number);
      Member("target", link.target);
      if (!link.title.empty()) Member("title", link.title);
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
  rapidjson::StringBuffer buffer_;
  rapidjson::Writer<rapidjson::StringBuffer> writer_{buffer_};
};

}  // namespace

std::unique_ptr<BlockSink> MakeJsonWriter(Output &output) {
  return std::make_unique<JsonWriter>(output);
}

}  // namespace vs_wml
