// SPDX-License-Identifier: MIT
// What is measured: the floor, the filter and the parsers that a user would otherwise take.
#ifndef VS_WML_BENCH_CONTENDER_H
#define VS_WML_BENCH_CONTENDER_H

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "vs_wml.h"

// A document in memory.
struct Document {
  std::string name;  // of the file, without folder and extension
  std::string bytes;
  bool shiftJis;  // its text is Shift_JIS
};

// What a pass delivered. `sum` and `sumOfSums` depend on every character and its place.
struct Tally {
  uint64_t characters;
  uint64_t sum;
  uint64_t sumOfSums;
  uint64_t events;  // other calls: a hash of them with their arguments and places
};

// The counting routine: every contender that hands over single characters calls it, for
// each of them through a table as the filter has one. `user1` is the address of a Tally.
uint32_t CountCharacter(uint32_t character, VwUserWord user1, VwUserWord user2);

struct RoutineTable {
  SOEmitCharRoutine routine[VW_SLOT_COUNT + 1];
  VwUserWord user1;
  VwUserWord user2;
};

// A table whose contents the compiler of the caller cannot know.
RoutineTable MakeRoutineTable(Tally *tally);

// Takes text from a parser: as the run that it comes in, or one character a call.
class TextSink {
 public:
  TextSink(Tally *tally, bool perCharacter)
      : tally_(tally), table_(MakeRoutineTable(tally)), perCharacter_(perCharacter) {}

  void Text(const char *text, size_t length);
  void Element() { ++tally_->events; }

 private:
  Tally *tally_;
  RoutineTable table_;
  bool perCharacter_;
};

// Reads a whole document once, from creating the parser to destroying it; false when
// it cannot read such a document.
using Pass = std::function<bool(const Document &, Tally *)>;

struct Contender {
  std::string name;
  Pass pass;
};

inline constexpr std::string_view kFloor = "floor";

bool ReadFloor(const Document &document, Tally *tally);
// The filter in a library file; throws std::runtime_error when that cannot be loaded.
Pass FilterIn(const std::string &library);
bool ReadExpat(const Document &document, TextSink *sink);
bool ReadLibxml2Xml(const Document &document, TextSink *sink);
bool ReadLibxml2Html(const Document &document, TextSink *sink);
bool ReadPugixml(const Document &document, TextSink *sink);

// The floor, the filter as built here and in other library files, and the parsers.
std::vector<Contender> AllContenders(const std::vector<std::string> &otherLibraries);

// Throws std::runtime_error when the file cannot be read.
Document LoadDocument(const std::string &path);

#endif  // VS_WML_BENCH_CONTENDER_H
