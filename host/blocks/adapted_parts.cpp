// SPDX-License-Identifier: MIT
#include "host/blocks/adapted_parts.h"

namespace vs_wml {
namespace {

// The `align` attribute of a table has a letter for each column.
std::vector<Alignment> ColumnAlignments(std::string_view letters) {
  std::vector<Alignment> alignments;
  for (const char letter : letters) {
    switch (letter) {
      case 'R':
      case 'r':
        alignments.push_back(Alignment::kRight);
        break;
      case 'C':
      case 'c':
        alignments.push_back(Alignment::kCenter);
        break;
      case 'L':
      case 'l':
      case 'D':
      case 'd':
        alignments.push_back(Alignment::kLeft);
        break;
      default:  // a word such as "center" aligns the table, not its columns
        return {};
    }
  }
  return alignments;
}

}  // namespace

Card AdaptedParts::CardAt(std::size_t end) {
  action_ = nullptr;
  Card card;
  const ServedCard *const served = FindServed(deck_.tags.cards, end);
  if (served == nullptr || served->card >= deck_.info.parts.cards.size()) return card;
  const DeckCard &parts = deck_.info.parts.cards[served->card];
  card.id = parts.id;
  card.title = parts.title.shown;
  card.newContext = parts.newContext;
  card.ordered = parts.ordered;
  card.parts = &parts;
  return card;
}

TableParts AdaptedParts::TableAt(std::size_t end) {
  const ServedTable *const served = FindServed(deck_.tags.tables, end);
  if (served == nullptr) return {};
  return {served->title, ColumnAlignments(served->align), served->rowCells};
}

// Fields are not numbered, and a link that the adapter had to interrupt keeps its number.
Link AdaptedParts::LinkOf(ToldReference told) {
  Link link;
  const DeckParts &parts = deck_.info.parts;
  const auto reference = ParseServedTarget(told.target);
  if (!reference) return link;
  const auto index = static_cast<PartIndex>(reference->index);
  if (reference->kind == ServedKind::kField && reference->index < parts.fields.size()) {
    link.fieldIndex = index;
    link.field = &parts.fields[index];
  } else if (reference->kind == ServedKind::kAction && reference->index < parts.actions.size()) {
    link.actionIndex = index;
    link.action = &parts.actions[index];
    link.title = DetailsOf(*link.action).title.shown;
    link.target = link.action->task.target.shown;
    if (link.action != action_) ++linkNumber_;
    action_ = link.action;
    link.number = linkNumber_;
  }
  return link;
}

Image AdaptedParts::ImageOf(ToldReference told) {
  Image image;
  const PartList<Picture> &pictures = deck_.info.parts.pictures;
  const auto reference = ParseServedTarget(told.target);
  if (!reference || reference->kind != ServedKind::kPicture) return image;
  if (reference->index >= pictures.size()) return image;
  const Picture &picture = pictures[reference->index];
  image.part = static_cast<PartIndex>(reference->index);
  image.source = (picture.source.IsEmpty() ? picture.localSource : picture.source).shown;
  image.alternative = picture.alternative.shown;
  image.hasAlternative = picture.alternative.IsGiven();
  return image;
}

}  // namespace vs_wml
