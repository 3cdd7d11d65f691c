// SPDX-License-Identifier: MIT
// On its own, so that no contender's compiler sees into the counting routine or the table.
#include "contender.h"

uint32_t CountCharacter(uint32_t character, VwUserWord user1, VwUserWord) {
  auto *tally = reinterpret_cast<Tally *>(user1);
  const uint64_t sum = tally->sum + character;
  tally->characters++;
  tally->sum = sum;
  tally->sumOfSums += sum;
  return 0;
}

RoutineTable MakeRoutineTable(Tally *tally) {
  RoutineTable table;
  for (SOEmitCharRoutine &routine : table.routine) routine = CountCharacter;
  table.user1 = reinterpret_cast<VwUserWord>(tally);
  table.user2 = 0;
  return table;
}

namespace {

// The parsers give UTF-8: its continuation bytes start no character.
bool StartsCharacter(char byte) {
  return (byte & 0xC0) != 0x80;
}

}  // namespace

void TextSink::Text(const char *text, size_t length) {
  if (perCharacter_) {
    for (size_t i = 0; i < length; ++i) {
      if (!StartsCharacter(text[i])) continue;
      table_.routine[SLOT_EMIT_CHAR](static_cast<uint8_t>(text[i]), table_.user1, table_.user2);
    }
    return;
  }
  Tally counted = *tally_;
  for (size_t i = 0; i < length; ++i) {
    counted.sum += static_cast<uint8_t>(text[i]);
    counted.sumOfSums += counted.sum;
    counted.characters += StartsCharacter(text[i]) ? 1u : 0u;
  }
  *tally_ = counted;
}
