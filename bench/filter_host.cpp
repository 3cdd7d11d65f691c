// SPDX-License-Identifier: MIT
// The filter behind a host that counts: characters as the floor does, all other calls by a
// hash of slot, arguments and place, which tells two libraries apart that differ in one call.
#include <dlfcn.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <tuple>

#include "contender.h"
#include "memory_block.h"

namespace {

struct HostState {
  Tally tally;  // first: CountCharacter takes the user word for its address
  uint32_t stored;
  bool ended;
};

void Fold(uint64_t value, Tally *tally) {
  tally->events = (tally->events ^ value) * 0x9E3779B97F4A7C15u;
  tally->events ^= tally->events >> 29;
}

// Words that are multiplied each on their own do not wait for one another.
template <typename Record>
void FoldRecord(const Record &record, Tally *tally) {
  uint32_t words[sizeof(Record) / sizeof(uint32_t)];
  std::memcpy(words, &record, sizeof words);
  uint64_t hash = 0;
  for (size_t i = 0; i < std::size(words); ++i) hash += words[i] * (2 * i + 3);
  Fold(hash, tally);
}

template <typename Unit>
void FoldString(const Unit *string, Tally *tally) {
  uint64_t hash = 0;
  for (; *string != 0; ++string) hash = hash * 31 + static_cast<uint64_t>(*string);
  Fold(hash, tally);
}

void FoldArgument(HostState *host, uint32_t word) {
  Fold(word, &host->tally);
}
void FoldArgument(HostState *host, const char *string) {
  FoldString(string, &host->tally);
}
void FoldArgument(HostState *host, const uint16_t *string) {
  FoldString(string, &host->tally);
}
void FoldArgument(HostState *host, uint32_t *id) {
  *id = host->stored++;
}
template <typename Record>
void FoldArgument(HostState *host, const Record *record) {
  FoldRecord(*record, &host->tally);
}

// The output routine of a slot, made from its type: its arguments and then the user words.
template <int slot, typename Routine>
struct Counting;
template <int slot, typename... Arguments>
struct Counting<slot, uint32_t (*)(Arguments...)> {
  static uint32_t Count(Arguments... all) {
    constexpr size_t kOwn = sizeof...(Arguments) - 2;
    const auto arguments = std::make_tuple(all...);
    auto *host = reinterpret_cast<HostState *>(std::get<kOwn>(arguments));
    Fold(slot + (host->tally.characters << 7) + (host->tally.sum << 32), &host->tally);
    [&]<size_t... index>(std::index_sequence<index...>) {
      (FoldArgument(host, std::get<index>(arguments)), ...);
      if constexpr (slot == SLOT_EMIT_BREAK) {
        if (std::get<0>(arguments) == SO_BREAK_DOCUMENT) host->ended = true;
      }
    }
    (std::make_index_sequence<kOwn>());
    return 0;
  }
};

struct SlotRoutine {
  int16_t slot;
  VwRoutine routine;
};

template <int slot, typename Routine>
SlotRoutine Entry() {
  return {slot, reinterpret_cast<VwRoutine>(Counting<slot, Routine>::Count)};
}

const SlotRoutine kRoutines[] = {
    {SLOT_EMIT_CHAR, reinterpret_cast<VwRoutine>(CountCharacter)},
    Entry<SLOT_EMIT_CONTROL_CODE, SOEmitControlCodeRoutine>(),
    Entry<SLOT_SET_CHAR_SIZE, SOSetCharSizeRoutine>(),
    Entry<SLOT_EMIT_BREAK, SOEmitBreakRoutine>(),
    Entry<SLOT_DECLARE_SECTION, SODeclareSectionRoutine>(),
    Entry<SLOT_ABORT_STREAM, SOAbortStreamRoutine>(),
    Entry<SLOT_SELECT_FONT_NUMBER, SOSelectFontNumberRoutine>(),
    Entry<SLOT_SELECT_FONT_NAME, SOSelectFontNameRoutine>(),
    Entry<SLOT_OPEN_FONT_LIST, SOOpenFontListRoutine>(),
    Entry<SLOT_ADD_FONT_LIST_ENTRY, SOAddFontListEntryRoutine>(),
    Entry<SLOT_CLOSE_FONT_LIST, SOCloseFontListRoutine>(),
    Entry<SLOT_OPEN_TABLE, SOOpenTableRoutine>(),
    Entry<SLOT_CLOSE_TABLE, SOCloseTableRoutine>(),
    Entry<SLOT_INSERT_GRAPHIC, SOInsertGraphicRoutine>(),
    Entry<SLOT_OPEN_LINK, SOOpenLinkRoutine>(),
    Entry<SLOT_CLOSE_LINK, SOCloseLinkRoutine>(),
    Entry<SLOT_STORE_STRING, SOStoreStringRoutine>(),
    Entry<SLOT_DESCRIBE_ROW, SODescribeRowRoutine>(),
    Entry<SLOT_SET_TEXT_COLOR, SOSetTextColorRoutine>(),
    Entry<SLOT_SWITCH_CHARSET, SOSwitchCharsetRoutine>(),
    Entry<SLOT_OPEN_REFERENCE, SOOpenReferenceRoutine>(),
    Entry<SLOT_DESCRIBE_CELL, SODescribeCellRoutine>(),
    Entry<SLOT_SET_PROPERTY, SOSetPropertyRoutine>(),
};

constexpr int16_t kPlainWml = 1151;
constexpr size_t kEntries = 22;

// The entry points of a library, by their places in the table of VwGetRtns.
class Filter {
 public:
  explicit Filter(const std::string &library) {
    void *handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) throw std::runtime_error(dlerror());
    auto *getRoutines = reinterpret_cast<decltype(&VwGetRtns)>(dlsym(handle, "VwGetRtns"));
    if (getRoutines == nullptr) throw std::runtime_error(library + ": not the filter");
    getRoutines(routines_, kEntries);
  }

  bool Read(const Document &document, Tally *tally) const {
    MemoryBlock block(document.bytes);
    HostState host{};
    VwHandle input = 0;
    VwFileInfo info;
    WmlProc *instance = Entry<decltype(&VwAllocProc)>(10)();
    Entry<decltype(&VwLocalUp)>(8)(block.Handle(), &input, instance);
    for (const SlotRoutine &entry : kRoutines) {
      Entry<decltype(&VwSetSoRtn)>(13)(entry.slot, entry.routine, instance);
    }
    Entry<decltype(&VwSetUser)>(12)(reinterpret_cast<VwUserWord>(&host), 0, instance);
    Entry<decltype(&VwStreamOpen)>(0)(input, kPlainWml, 0, &info, instance);
    Entry<decltype(&VwStreamSection)>(1)(input, instance);
    Entry<decltype(&VwStreamRead)>(2)(input, instance);
    Entry<decltype(&VwStreamClose)>(14)(input, instance);
    Entry<decltype(&VwLocalDown)>(9)(input, &input);
    Entry<decltype(&VwFreeProc)>(11)(instance);
    if (!host.ended) throw std::runtime_error("the filter did not tell the end");
    *tally = host.tally;
    return true;
  }

 private:
  template <typename Routine>
  Routine Entry(size_t index) const {
    return reinterpret_cast<Routine>(routines_[index]);
  }

  VwRoutine routines_[kEntries];
};

}  // namespace

Pass FilterIn(const std::string &library) {
  const auto filter = std::make_shared<Filter>(library);
  return [filter](const Document &document, Tally *tally) { return filter->Read(document, tally); };
}
