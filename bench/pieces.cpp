// SPDX-License-Identifier: MIT
// The pieces of the filter on their own, below its entry points.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "deck.h"
#include "filter/data/name_lookup.h"
#include "filter/format/style.h"
#include "filter/ground/heap.h"
#include "filter/ground/instance.h"
#include "filter/input/decoder.h"
#include "filter/lexer/item_reader.h"
#include "filter/tables/table_scan.h"
#include "memory_block.h"

namespace {

constexpr size_t kDeckSize = 100000;
constexpr int16_t kPlainWml = 1151;
constexpr int16_t kShiftJis = 1160;

// An open stream on a document, with no routine of the host's.
class Stream {
 public:
  explicit Stream(std::string bytes, int16_t identity = kPlainWml)
      : bytes_(std::move(bytes)), block_(bytes_), proc_(VwAllocProc()) {
    VwFileInfo info;
    VwLocalUp(block_.Handle(), &input_, proc_);
    VwStreamOpen(input_, identity, 0, &info, proc_);
  }
  Stream(const Stream &) = delete;
  Stream &operator=(const Stream &) = delete;
  ~Stream() {
    VwStreamClose(input_, proc_);
    VwLocalDown(input_, &input_);
    VwFreeProc(proc_);
  }

  WmlProc *Proc() { return proc_; }
  const std::string &Bytes() const { return bytes_; }
  void Rewind(uint32_t offset = 0) {
    const VwStreamPos position{0, offset};
    VwStreamSeek(input_, &position);
    proc_->stopFlags = 0;
  }

 private:
  std::string bytes_;
  MemoryBlock block_;
  WmlProc *proc_;
  VwHandle input_ = 0;
};

Stream DeckStream(DeckKind kind) {
  return Stream(MakeDeck(kind, kDeckSize, 1), kind == DeckKind::kShiftJis ? kShiftJis : kPlainWml);
}

void ReportBytes(benchmark::State &state, size_t bytesARound) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytesARound));
}

// Bytes to characters, each through the decoder's slow path.
void Decode(benchmark::State &state, DeckKind kind) {
  Stream stream = DeckStream(kind);
  for (auto _ : state) {
    stream.Rewind();
    while (WMLGetChar(stream.Proc()) != CHAR_END) {
    }
  }
  ReportBytes(state, stream.Bytes().size());
}
BENCHMARK_CAPTURE(Decode, text, DeckKind::kText);
BENCHMARK_CAPTURE(Decode, sjis, DeckKind::kShiftJis);

// Characters to items: on markup that is mostly the reading of tags and attributes.
void ReadItems(benchmark::State &state, DeckKind kind) {
  Stream stream = DeckStream(kind);
  uint16_t character;
  char text[ITEM_TEXT_MAX + 1];
  for (auto _ : state) {
    stream.Rewind();
    while ((stream.Proc()->stopFlags & STOP_END_OF_INPUT) == 0) {
      benchmark::DoNotOptimize(
          ReadNextItem(stream.Proc()->input->next, &character, text, stream.Proc()));
    }
  }
  ReportBytes(state, stream.Bytes().size());
}
BENCHMARK_CAPTURE(ReadItems, text, DeckKind::kText);
BENCHMARK_CAPTURE(ReadItems, markup, DeckKind::kMarkup);
BENCHMARK_CAPTURE(ReadItems, tables, DeckKind::kTables);
BENCHMARK_CAPTURE(ReadItems, entities, DeckKind::kEntities);
BENCHMARK_CAPTURE(ReadItems, sjis, DeckKind::kShiftJis);

// The read-ahead of every table of a deck.
void MeasureTables(benchmark::State &state) {
  Stream stream = DeckStream(DeckKind::kTables);
  const std::string &bytes = stream.Bytes();
  std::vector<uint32_t> starts;  // behind the start tags
  size_t inTables = 0;
  for (size_t at = bytes.find("<table "); at != bytes.npos; at = bytes.find("<table ", at + 1)) {
    starts.push_back(static_cast<uint32_t>(bytes.find('>', at) + 1));
    inTables += bytes.find("</table>", at) - at;
  }
  WmlProc *proc = stream.Proc();
  StyleStore(BaseStyle(proc), proc);
  for (auto _ : state) {
    proc->tableArray.count = 0;  // else the second round finds all of them measured
    for (const uint32_t start : starts) {
      stream.Rewind(start);
      benchmark::DoNotOptimize(PreprocessTable(proc));
    }
  }
  ReportBytes(state, inTables);
}
BENCHMARK(MeasureTables);

// Finding a style again among as many as the argument says.
void StoreStyle(benchmark::State &state) {
  Stream stream("");
  const auto count = static_cast<uint16_t>(state.range(0));
  StyleRecord style = BaseStyle(stream.Proc());
  for (auto _ : state) {
    for (uint32_t attributes = 0; attributes < count; ++attributes) {
      style.charAttrs = attributes;
      benchmark::DoNotOptimize(StyleStore(style, stream.Proc()));
    }
  }
  state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(StoreStyle)->Arg(8)->Arg(64)->Arg(512);

void NameTags(benchmark::State &state) {
  constexpr const char *kNames[] = {"b", "p", "td", "a", "br", "table", "strong", "option", "none"};
  for (auto _ : state) {
    for (const char *name : kNames) benchmark::DoNotOptimize(IDTag(name));
  }
  state.SetItemsProcessed(state.iterations() * std::ssize(kNames));
}
BENCHMARK(NameTags);

void NameEntities(benchmark::State &state) {
  constexpr const char *kNames[] = {"amp", "lt", "nbsp", "eacute", "shy", "Agrave", "none"};
  for (auto _ : state) {
    for (const char *name : kNames) benchmark::DoNotOptimize(IDEntity(name));
  }
  state.SetItemsProcessed(state.iterations() * std::ssize(kNames));
}
BENCHMARK(NameEntities);

}  // namespace

BENCHMARK_MAIN();
