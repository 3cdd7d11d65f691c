// How the filter treats a block handle: what it asks for, how often, and what it makes of
// hosts that fail, lie or deliver too much.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <vector>

#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

/// Host calls since the last look.
struct Counts {
  std::uint64_t reads = 0;
  std::uint64_t seeks = 0;
  std::uint64_t tells = 0;
  bool operator==(const Counts &) const = default;
};

std::ostream &operator<<(std::ostream &out, const Counts &counts) {
  return out << counts.reads << " reads, " << counts.seeks << " seeks, " << counts.tells
             << " tells";
}

Counts Take(BlockSource &source) {
  const Counts counts{source.reads, source.seeks, source.tells};
  source.reads = source.seeks = source.tells = 0;
  return counts;
}

std::string Deck(std::string_view body) {
  return "<wml><card>" + std::string(body) + "</card></wml>";
}

TEST(Buffer, AsksOnceForEachBlockAndOnceForTheEnd) {
  for (const std::size_t size : {0u, 1u, 2047u, 2048u, 2049u, 4096u, 10000u}) {
    const std::string text(size, 'x');
    BlockSource source(text);
    Host host;
    Session session(source, host);
    session.Open();
    session.Read();
    const std::uint64_t blocks = (size + 2047) / 2048 + 1;
    EXPECT_EQ(Take(source), (Counts{blocks, 0, blocks})) << size;
    EXPECT_EQ(session.Tell(), size + 1) << "one behind the last byte";
  }
}

TEST(Buffer, PositionsInsideCostNoHostCall) {
  const std::string text = Deck(std::string(100, 'x') + "<br/>" + std::string(5000, 'y'));
  BlockSource source(text);
  Host host;
  host.answerBreak = [](std::uint32_t) { return SO_STOP; };
  Session session(source, host);
  session.Open();
  ASSERT_FALSE(session.Read());
  EXPECT_EQ(session.Tell(), 11u + 100 + 5);
  Take(source);
  EXPECT_EQ(session.Seek(session.Tell()), 0);
  EXPECT_EQ(session.Seek(0), 0);
  EXPECT_EQ(session.Seek(2047), 0);
  EXPECT_EQ(session.Tell(), 2047u);
  EXPECT_EQ(Take(source), Counts{});

  EXPECT_EQ(session.Seek(2048), 0);  // the first byte behind the buffer
  EXPECT_EQ(session.Tell(), 2048u);
  EXPECT_EQ(Take(source), (Counts{0, 1, 0}));
  ASSERT_TRUE(session.Read());
  EXPECT_EQ(Take(source), (Counts{3, 0, 3}));
}

TEST(Buffer, SeeksOnlyWhenTheHostStandsElsewhere) {
  const std::string text = Deck(std::string(3000, 'x'));
  BlockSource source(text);
  Host host;
  Session session(source, host);
  session.Open();
  source.position = 77;  // a handle that is shared
  session.Read();
  EXPECT_EQ(Take(source), (Counts{3, 1, 3}));
  EXPECT_EQ(host.Text(), ReadDocument(text).substr(ReadDocument("").find("SOSetCharSize")));
}

TEST(Buffer, SeekReportsAFailingHostAndTheNextReadTriesAgain) {
  const std::string text = Deck(std::string(5000, 'x'));
  BlockSource source(text);
  Host host;
  Session session(source, host);
  session.Open();
  source.faults.seekAt = 1;
  EXPECT_EQ(session.Seek(4000), -1);
  EXPECT_EQ(session.Tell(), 4000u);
  Take(source);
  source.faults = {};
  ASSERT_TRUE(session.Read());
  EXPECT_EQ(Take(source).seeks, 1u);
  EXPECT_EQ(session.Seek(0xFFFFFFFF), 0);
  EXPECT_EQ(session.Tell(), 0xFFFFFFFF);
  ASSERT_TRUE(session.Read());
}

TEST(Buffer, AFailedReadIsTheEndAndALaterReadAsksAgain) {
  const std::string text = Deck(std::string(3000, 'x') + "<b>y");
  BlockSource source(text);
  Host host;
  Session session(source, host);
  session.Open();
  source.faults.readAt = 2;
  ASSERT_TRUE(session.Read());
  EXPECT_EQ(host.Text().find("bold"), std::string::npos);
  EXPECT_EQ(session.Tell(), 2049u);
  ASSERT_TRUE(session.Read()) << "reads on where the first read ended";
  EXPECT_EQ(source.reads, 4u);
  EXPECT_EQ(session.Tell(), source.length + 1);
  EXPECT_EQ(host.checker.Fault(), "");
}

TEST(Buffer, OverlongCountsAreTakenAsWanted) {
  const std::string text = Deck(std::string(5000, 'x') + "<b>y</b>z");
  BlockSource source(text);
  for (const std::uint32_t extra : {1u, 4096u, 0x80000000u, 0xFFFFFFFFu - 2048}) {
    BlockSource claiming(text);
    claiming.faults.overclaim = extra;
    Host host;
    const std::string told = ReadDocument(claiming, host);
    EXPECT_EQ(host.checker.Fault(), "");
    EXPECT_EQ(told.find("broken rule"), std::string::npos);
  }
}

struct Character {
  std::uint32_t character;
  std::uint32_t position;
  bool operator==(const Character &) const = default;
};

struct Characters {
  VwHandle chr;
  std::vector<Character> told;
};

std::uint32_t NoteCharacter(std::uint32_t character, VwUserWord user1, VwUserWord /*user2*/) {
  auto &characters = *reinterpret_cast<Characters *>(user1);
  VwStreamPos position{};
  VwStreamTell(characters.chr, &position);
  characters.told.push_back({character, position.offset});
  return 0;
}

TEST(Position, InAnOutputRoutineIsBehindWhatIsTold) {
  const struct {
    const char *text;
    std::int16_t identity;
    std::vector<Character> told;
  } documents[] = {
      {"<wml><card>a b&amp;c&#100;$$e/f\x93g",
       1151,
       {{'a', 12},
        {' ', 13},
        {'b', 14},
        {'&', 19},
        {'c', 20},
        {'d', 26},
        {'$', 28},
        {'e', 29},
        {'/', 30},
        {'f', 31},
        {0x201C, 32},
        {'g', 33}}},
      {"<wml><card>\x82\xA0\x82\xA2x", 1160, {{0x82A0, 13}, {0x82A2, 15}, {'x', 16}}},
  };
  for (const auto &document : documents) {
    for (const std::uint32_t chunk : {0u, 1u}) {
      BlockSource source(document.text, chunk);
      WmlProc *instance = VwAllocProc();
      Characters characters{};
      VwLocalUp(source.Handle(), &characters.chr, instance);
      VwSetSoRtn(SLOT_EMIT_CHAR, reinterpret_cast<VwRoutine>(NoteCharacter), instance);
      VwSetUser(reinterpret_cast<VwUserWord>(&characters), 0, instance);
      VwFileInfo info;
      VwStreamOpen(characters.chr, document.identity, 0, &info, instance);
      VwStreamRead(characters.chr, instance);
      EXPECT_EQ(characters.told, document.told) << document.text << chunk;
      VwStreamClose(characters.chr, instance);
      VwHandle block = 0;
      VwLocalDown(characters.chr, &block);
      VwFreeProc(instance);
    }
  }
}

// Whatever fails at whatever call, for once or for good: the document ends tidily.
TEST(AwkwardHost, EveryFailureEndsTidily) {
  const std::string text =
      Deck(std::string(2000, ' ') + "<table columns=2 align=center><tr><td>a<td><img src='" +
           std::string(2100, 'i') + "' alt='" + std::string(2100, 'j') +
           "' width=3></table><a href=x title='" + std::string(2100, 't') + "'>b</a>");
  BlockSource counting(text);
  Host counter;
  ReadDocument(counting, counter);
  const std::uint64_t calls = counting.reads + counting.seeks + counting.tells;
  ASSERT_GT(counting.seeks, 4u) << "the document has to move about";
  for (std::uint64_t at = 1; at <= calls; ++at) {
    for (const bool forever : {false, true}) {
      for (int kind = 0; kind < 3; ++kind) {
        BlockSource source(text);
        source.faults.forever = forever;
        (kind == 0   ? source.faults.readAt
         : kind == 1 ? source.faults.seekAt
                     : source.faults.tellAt) = at;
        Host host;
        ReadDocument(source, host);
        ASSERT_EQ(host.checker.Fault(), "") << "kind " << kind << ", call " << at;
        ASSERT_TRUE(host.checker.Finished());
        ASSERT_LT(source.reads, 100 * calls);
      }
    }
  }
}

// 0: the host does not say where it stands.
TEST(AwkwardHost, PositionsThatLieOnlyCostSeeks) {
  const std::string text = Deck(std::string(5000, 'x') + "<b>y</b>");
  for (const std::uint32_t lie : {0u, 1u, 2048u, 0xFFFFFFFFu}) {
    BlockSource source(text);
    source.faults = {.tellAt = lie == 0 ? 1u : 0u, .forever = true, .tellLie = lie};
    Host host;
    EXPECT_EQ(ReadDocument(source, host), ReadDocument(text));
    EXPECT_EQ(source.seeks, source.tells);
  }
}

TEST(AwkwardHost, NeedsNoAnswersToStringsAndReferences) {
  const std::string text = Deck("<a href=x title=y>a</a><img src=z alt=w>b");
  BlockSource source(text);
  Host host;
  host.storing = false;
  const std::string told = ReadDocument(source, host);
  EXPECT_NE(told.find("SOStoreString \"x\" -> 4294967295\nSOStoreString \"y\" -> 4294967295\n"
                      "SOOpenLink 1 reference=0\n"),
            std::string::npos)
      << told;
  EXPECT_NE(told.find("SOInsertGraphic reference=0 unsized width=0 height=0 sides="),
            std::string::npos);
}

// A host may use all of the buffer that it was given, whatever it delivers in the end.
TEST(AwkwardHost, BytesThatWereNotDeliveredAreNotRead) {
  for (const char *text : {"<wml><card>a", "<wml><card>a<b>b</b>c</card></wml>"}) {
    BlockSource source(text);
    Host host;
    const std::string told = ReadDocument(source, host);
    EXPECT_EQ(told.find("\\{EE}"), std::string::npos) << told;
    BlockSource failing(text, 3);
    failing.faults.readAt = 4;
    Host other;
    EXPECT_EQ(ReadDocument(failing, other).find("\\{EE}"), std::string::npos);
  }
}

// A table read again from a saved position is not measured again.
TEST(Table, IsReadAheadOnce) {
  const std::string text =
      Deck("a<br/><table columns=1><tr><td>" + std::string(9000, 'x') + "</table>");
  BlockSource source(text);
  Host host;
  host.answerBreak = [](std::uint32_t) { return SO_STOP; };
  Session session(source, host);
  session.Open();
  session.Read();
  const SavedState before = session.Save();
  host.answerBreak = nullptr;
  Take(source);
  ASSERT_TRUE(session.Read());
  const Counts first = Take(source);
  host.checker = {};
  session.Restore(before);
  Take(source);
  ASSERT_TRUE(session.Read());
  const Counts again = Take(source);
  EXPECT_GE(first.reads, 2 * 5u);
  EXPECT_LE(again.reads, 6u);
}

TEST(Table, IsFoundAgainWhenTheHostJumpsAbout) {
  const std::string table = "<table columns=1><tr><td>" + std::string(9000, 'x') + "</table>";
  const std::string text = Deck("a<br/>" + table + table + table);
  const std::size_t third = text.rfind("<table");
  BlockSource source(text);
  Host host;
  host.answerBreak = [](std::uint32_t) { return SO_STOP; };
  Session session(source, host);
  session.Open();
  session.Read();
  const SavedState first = session.Save();
  host.answerBreak = nullptr;
  session.Seek(static_cast<std::uint32_t>(third));
  ASSERT_TRUE(session.Read());  // measures the third
  std::string told[2];
  Counts counts[2];
  for (int round = 0; round < 2; ++round) {
    host.checker = {};
    session.Restore(first);
    Take(source);
    const std::size_t before = host.Text().size();
    ASSERT_TRUE(session.Read());
    told[round] = host.Text().substr(before);
    counts[round] = Take(source);
  }
  EXPECT_EQ(told[0], told[1]);
  EXPECT_EQ(host.checker.Fault(), "");
  // Three tables of five blocks each, of which two are read ahead in the first round.
  EXPECT_GE(counts[0].reads, counts[1].reads + 8);
  EXPECT_LE(counts[1].reads, 17u);
}

}  // namespace
}  // namespace vs_wml::test
