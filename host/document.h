/// \file
/// The document as a host sees it: cards of paragraphs and tables, one block at a time.
///
/// SPDX-License-Identifier: MIT
///
/// All text is well-formed UTF-8 without control characters, except '\n' for a line
/// break inside a table cell and '\t' in preformatted text. Views and spans point into
/// buffers that are used again for the next block.
#ifndef VS_WML_HOST_DOCUMENT_H
#define VS_WML_HOST_DOCUMENT_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck/deck_parts.h"
#include "host/images/picture_library.h"
#include "host/text/warnings.h"

namespace vs_wml {

enum class Alignment : std::uint8_t { kLeft, kCenter, kRight, kJustified };

struct TextStyle {
  bool bold = false;
  bool italic = false;
  bool underline = false;
  std::uint16_t halfPoints = 24;  ///< size; 24 is the size of ordinary text
  std::uint32_t color = 0;        ///< 0x00BBGGRR
  bool operator==(const TextStyle &) const = default;
};

inline constexpr std::uint16_t kOrdinaryHalfPoints = 24;

/// A hyperlink, or a field of a form. One that goes on over several blocks appears in
/// each of them, with views of the same texts.
struct Link {
  std::uint32_t number = 0;  ///< 1, 2, 3, ... in the document
  std::string_view target;   ///< as the document has it, references resolved
  std::string_view title;    ///< empty: none
  /// What following it does; null in a document that was not adapted.
  const Action *action = nullptr;
  PartIndex actionIndex = kNoIndex;  ///< of the action in DeckParts::actions
  /// The field that stands here; the text is then what shows it, and there is no target.
  const Field *field = nullptr;
  PartIndex fieldIndex = kNoIndex;  ///< of the field in DeckParts::fields
};

struct Image {
  PartIndex part = kNoIndex;  ///< index into DeckParts::pictures, if it was adapted
  std::string source;
  std::string alternative;
  bool hasAlternative = false;
  std::uint32_t width = 0;                 ///< twips; 0: the picture's own size
  std::uint32_t height = 0;                ///< twips; 0: the picture's own size
  const LoadedPicture *picture = nullptr;  ///< its file, null when there is none to show
};

inline constexpr std::uint32_t kTwipsPerPixel = 15;
inline constexpr std::uint32_t kNone = 0xFFFFFFFFU;

/// A stretch of text of one style in one link, or an image.
struct Run {
  std::uint32_t begin = 0;  ///< bytes of Content::text
  std::uint32_t end = 0;
  TextStyle style;
  std::uint32_t link = kNone;   ///< index into Content::links
  std::uint32_t image = kNone;  ///< index into Content::images; the run has no text then
};

/// Running text with the links and images that its runs name.
struct Content {
  std::string_view text;
  std::span<const Run> runs;  ///< those of a paragraph or a cell one behind the other
  std::span<const Link> links;
  std::span<const Image> images;

  std::string_view TextOf(const Run &run) const {
    return text.substr(run.begin, run.end - run.begin);
  }
};

struct Paragraph {
  Content content;
  Alignment alignment = Alignment::kLeft;
  bool preformatted = false;
  /// A further line of the paragraph before (a line break, or the next line of
  /// preformatted text), not a paragraph of its own.
  bool continues = false;
};

struct Cell {
  std::uint32_t firstRun = 0;  ///< runs of Table::content
  std::uint32_t runCount = 0;
  Alignment alignment = Alignment::kLeft;
};

/// The cells up to the last one that has content or that the document gives; the columns
/// behind it are empty.
struct Row {
  std::uint32_t firstCell = 0;  ///< index into Table::cells
  std::uint32_t cellCount = 0;
};

struct Table {
  Content content;
  std::span<const Cell> cells;
  std::span<const Row> rows;
  std::span<const std::uint32_t> columnWidths;  ///< twips, 0: not measured
  std::span<const Alignment> columnAlignments;  ///< what cells have that do not say theirs
  Alignment alignment = Alignment::kLeft;       ///< of the table on the page
  std::string title;

  Alignment AlignmentOf(std::size_t column) const {
    return column < columnAlignments.size() ? columnAlignments[column] : Alignment::kLeft;
  }
  std::span<const Cell> CellsOf(const Row &row) const {
    return cells.subspan(row.firstCell, row.cellCount);
  }
  /// The content of one cell.
  Content ContentOf(const Cell &cell) const {
    Content part = content;
    part.runs = content.runs.subspan(cell.firstRun, cell.runCount);
    return part;
  }
};

struct Card {
  std::string id;     ///< empty: none
  std::string title;  ///< empty: none
  bool newContext = false;
  bool ordered = true;
  const DeckCard *parts = nullptr;  ///< null in a document that was not adapted
};

/// Where the character set of a document was learnt, in the order of belief.
enum class CharsetOrigin : std::uint8_t {
  kOption,
  kByteOrderMark,
  kXmlDeclaration,
  kMeta,
  kHeader,
  kValidUtf8,
  kDetector,
  kFallback,
  kIdentity,
  kCompiled  ///< a compiled deck says it
};

/// What is known of a document apart from its text.
struct DeckInfo {
  std::string name;          ///< of the source, for people
  std::string source;        ///< its exact name; bytes that are no UTF-8 show as U+FFFD
  std::string sourceBase64;  ///< the bytes of the name when it has such; else empty
  std::string xxh128;        ///< of the document as it came, in hexadecimal; empty: not asked for
  std::string url;           ///< where it came from, empty: not known
  std::string contentType;   ///< what the server called it, empty: not known
  std::string charset;       ///< IANA name, or "identity 1151" when served untouched
  CharsetOrigin charsetOrigin = CharsetOrigin::kFallback;
  bool adapted = false;  ///< actions, forms and variables were adapted for the filter
  DeckParts parts;       ///< empty when it was not adapted
  std::vector<Warning> warnings;
};

/// Takes a document block by block. The arguments are valid during the call. An
/// exception ends the reading and reaches the caller of ReadDeck.
class BlockSink {
 public:
  virtual ~BlockSink() = default;
  virtual void BeginDocument(const DeckInfo &deck) = 0;
  /// Every block lies in a card; text outside of all cards comes in one without id.
  virtual void BeginCard(const Card &card) = 0;
  virtual void TakeParagraph(const Paragraph &paragraph) = 0;
  virtual void TakeTable(const Table &table) = 0;
  virtual void EndCard() = 0;
  virtual void EndDocument(const DeckInfo &deck) = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_DOCUMENT_H
