// SPDX-License-Identifier: MIT
// Deterministic decks to measure with: clean XML, so that strict parsers read them too.
#ifndef VS_WML_BENCH_DECK_H
#define VS_WML_BENCH_DECK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

enum class DeckKind { kText, kMarkup, kTables, kEntities, kShiftJis, kMixed };

inline constexpr std::array<std::string_view, 6> kDeckNames = {"text",     "markup", "tables",
                                                               "entities", "sjis",   "mixed"};

// A deck of that kind, of `size` bytes or a little more: cards of about 20 KB. The same
// kind, size and seed give the same bytes on every machine.
//
//   kText      paragraphs of sentences
//   kMarkup    a few words at a time between b, i, u, em, a, br and their like
//   kTables    tables of 2 to 6 columns and 5 to 20 rows, a paragraph before each
//   kEntities  a named or numeric reference every few words
//   kShiftJis  Japanese text in Shift_JIS, named by a meta element
//   kMixed     all of these but Shift_JIS, with images, selections and inputs
std::string MakeDeck(DeckKind kind, size_t size, uint64_t seed);

#endif  // VS_WML_BENCH_DECK_H
