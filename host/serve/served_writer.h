/// \file
/// Writes the markup that is served to the filter.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_SERVE_SERVED_WRITER_H
#define VS_WML_HOST_SERVE_SERVED_WRITER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/deck/deck_parts.h"
#include "host/serve/served_tags.h"
#include "host/text/text_buffer.h"

namespace vs_wml {

/// What a link or a picture in the served markup stands for.
enum class ServedKind : char {
  kAction = 'a',  ///< index into DeckParts::actions
  kField = 'f',   ///< index into DeckParts::fields; the text of the link is FieldText
  kPicture = 'p'  ///< index into DeckParts::pictures
};

struct ServedReference {
  ServedKind kind = ServedKind::kAction;
  std::size_t index = 0;
};

/// The reference of a target in served markup, nothing when the target does not have the
/// form that all targets and sources are served in: what the document says stands in the
/// DeckParts, where it has no limit of length and no forbidden characters, and cannot pass
/// for a reference.
std::optional<ServedReference> ParseServedTarget(std::string_view target);

enum class Style : std::uint8_t { kB, kBig, kEm, kI, kPre, kSmall, kStrong, kU };
inline constexpr std::size_t kStyleCount = 8;

/// Writes markup in which every element is closed, none is nested in one of its own
/// kind, and no text can be taken for markup. A cell or a row that another one follows at
/// once, or the end of what it is in, has no end tag: the filter ends it there, and reads
/// tables faster. White space is kept as it comes, but put outside of links, and left out at
/// the end of a card.
class ServedWriter {
 public:
  /// `size` is about what will be served.
  explicit ServedWriter(std::size_t size) : served_(size) {}

  void BeginDeck() { served_.Add("<wml>"); }
  void EndDeck() { served_.Add("</wml>"); }
  /// What the tags that were written so far stand for.
  ServedTags TakeTags() { return std::move(tags_); }
  /// What was served; the writer is done then.
  std::string Take() && { return std::move(served_).Take(); }
  /// The card of that index in DeckParts::cards.
  void BeginCard(std::size_t card);
  /// Closes all that is open in the card.
  void CloseAll();
  void EndCard();

  /// Text without markup; white space and control characters are taken care of.
  void Text(std::string_view text);
  /// Text without anything special in it (see PlainLength), which is `readable` bytes long
  /// with what lies behind it in memory.
  void PlainText(std::string_view text, std::size_t readable);
  /// A character that is neither white space nor a control character.
  void Character(char32_t character);
  /// A reference that the filter resolves, "&alpha;".
  void NamedReference(std::string_view reference);
  /// A blank that stays one even where white space is collapsed.
  void FixedBlank() { NamedReference("&#32;"); }

  void OpenStyle(Style style);
  void CloseStyle(Style style);

  /// `attributes` are written as they are, here as below: ` name="value"`.
  void Paragraph(std::string_view attributes);
  void EndParagraph() { paragraphEnded_ = true; }
  void LineBreak();
  void Image(std::size_t picture, std::string_view attributes);

  /// The link is written with its first content, and interrupted where links cannot be.
  void OpenLink(std::size_t action);
  void CloseLink();
  bool InLink() const { return link_ != kNoIndex; }
  /// Whether the open link has content so far.
  bool LinkHasContent() const { return linkHasContent_; }

  /// A link of its own in the text; one that stands in a table but in no cell comes
  /// behind the table.
  void Marker(const ServedReference &reference, std::string_view text);

  /// A table of at least one column; `align` has a letter for each, or is a word for the
  /// table, as which it stands in the attributes. Cells that a row has more go on in its last one,
  /// behind a blank, as WML wants it (WAP-191, 11.8.1); so does content behind a cell. Other
  /// content that stands in the table but in no cell has a cell of its own.
  void OpenTable(std::size_t columns, std::string_view attributes, std::string title,
                 std::string align);
  void OpenRow();
  void OpenCell();
  void CloseCell() { CloseStructure(Element::kCell); }
  void CloseRow() { CloseStructure(Element::kRow); }
  void CloseTable();
  bool InTable() const { return IsOpen(Element::kTable); }
  bool InCell() const { return IsOpen(Element::kCell); }
  bool Preformatted() const { return styleDepth_[static_cast<std::size_t>(Style::kPre)] != 0; }

 private:
  enum class Element : std::uint8_t { kStyle, kLink, kTable, kRow, kCell, kCard };
  static constexpr std::size_t kElementCount = 6;
  struct Open {
    Element element;
    Style style;  // of kStyle
  };

  bool IsOpen(Element element) const { return openCount_[static_cast<std::size_t>(element)] != 0; }
  void Push(Element element, Style style = {});
  void StartParagraph();
  void BeforeContent();
  std::string_view BeginText(std::string_view text);
  void WriteLinkStart(const ServedReference &reference);
  void WriteEnd(const Open &open);
  bool OutsideCells() const { return InTable() != InCell(); }
  void EnsureCell();
  bool ResumeCell();
  void LeaveOutPartEnd();
  void AddPartEnd(std::string_view tag);
  bool CloseInline(Element element, Style style);
  void CloseAndReopen(std::size_t first);
  template <typename Write>
  void BeforeWhiteSpace(Write write);
  void CloseStructure(Element element);
  void InterruptLink();
  void WriteMarker(const ServedReference &reference, std::string_view text);

  TextBuffer served_;
  ServedTags tags_;
  std::size_t whiteSpace_ = 0;  // at the end of served_, as long as tags may go before it
  std::size_t partEnd_ = 0;     // behind the last end of a cell or a row
  std::size_t columns_ = 0;     // of the table
  std::size_t rowCells_ = 0;    // in the row so far
  std::vector<Open> open_;
  std::array<std::uint32_t, kElementCount> openCount_{};  // of each kind in open_
  std::array<std::uint32_t, kStyleCount> styleDepth_{};   // elements of a style that are open
  std::size_t link_ = kNoIndex;                           // the action of the open link
  bool linkHasContent_ = false;
  bool paragraphEnded_ = false;  // what comes next starts a paragraph

  struct Deferred {
    ServedReference reference;
    std::string text;
  };
  std::vector<Deferred> deferred_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_SERVE_SERVED_WRITER_H
