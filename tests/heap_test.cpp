// The library's use of the heap: what happens when it is exhausted, and that it stays
// small whatever the document's length.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "filter/ground/short_cuts.h"
#include "tests/support/heap_probe.h"
#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

constexpr std::string_view kRich =
    "<wml><head><meta http-equiv='content-type' content='charset=utf-8'/></head>"
    "<card title='t&amp;u'><p align=center>a<b>b<i>c<u>d<big>e</big></u></i></b></p>"
    "<table columns=2><tr><td>f<td><small>g</small><tr><td><pre>h</pre></table>"
    "<table><td>i</table><a href='x' title='y'>j<img src='k' alt='l' width='3'/></a>"
    "<p align=right><strong>m<em>n</em></strong>&nope;</p></card></wml>";

/// One life of an instance while allocation `at` fails.
struct Life {
  std::uint64_t failures = 0;
  std::int64_t leaked = 0;
  bool told = false;    ///< the host learns of it: null, a handle of 0 or SOAbortStream
  bool silent = false;  ///< a read came to nothing without any call
  std::string fault;
};

Life Live(std::uint64_t at, bool forever) {
  Life life;
  BlockSource source(kRich);
  Host host;
  host.tracing = false;
  HeapProbe heap(at, forever);
  {
    Session session(source, host);
    life.told = !session.Attached();
    session.Open();
    session.Section();
    const std::uint64_t before = host.calls;
    session.Read();
    life.silent = host.calls == before;
    life.told = life.told || host.checker.Aborted();
    // After a failure the stream is still there; what it does is up to the heap.
    session.Read();
    life.fault = host.checker.Fault();
  }
  life.failures = heap.failures;
  life.leaked = heap.blocks;
  return life;
}

TEST(ExhaustedHeap, IsReportedAndLeavesNothingBehind) {
  for (const bool forever : {false, true}) {
    std::uint64_t at = 1;
    for (;; ++at) {
      const Life life = Live(at, forever);
      ASSERT_EQ(life.leaked, 0) << "allocation " << at;
      ASSERT_EQ(life.fault, "") << "allocation " << at;
      if (life.failures == 0) break;
      // A typeface that could not be registered is missing, and nothing else.
      const bool typeface = at >= 3 && at <= 6;
      EXPECT_TRUE(life.told || life.silent || typeface) << "allocation " << at;
      ASSERT_LT(at, 200u) << "the allocations do not end";
    }
    EXPECT_GT(at, 8u) << "nothing failed";
  }
}

/// A read of which one allocation fails: the first two are its scratch strings, the third is
/// the storage of the first four styles, the fourth a string for the card's title. Without the
/// short cuts, the fourth is for the words of the first tag, and serves the title later.
struct FailedRead {
  const char *text;
  std::uint64_t at;
  const char *calls;  ///< behind the character set
  bool stops = false;
  const char *roadCalls = calls;  ///< the same without the short cuts
};

TEST(ExhaustedHeap, LeavesOutWhatItCannotHoldAndEndsTheRead) {
  constexpr FailedRead kReads[] = {
      {"<wml><card>a<b>b<u>c<i>d<big>e", 5,
       "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOSetProperty bold on\n"
       "SOEmitChar \"b\"\nSOSetProperty underline on\nSOEmitChar \"c\"\n"
       "SOSetProperty italic on\nSOEmitChar \"d\"\nSOAbortStream\n"
       "SOSetProperty italic off\nSOSetProperty underline off\nSOSetProperty bold off\n"
       "SOEmitBreak document\n"},
      {"<wml><card>a<b>b<u>c<i>d<p align=center>e", 5,
       "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOSetProperty bold on\n"
       "SOEmitChar \"b\"\nSOSetProperty underline on\nSOEmitChar \"c\"\n"
       "SOSetProperty italic on\nSOEmitChar \"d\"\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment center\nSOSetProperty alignment-done\nSOAbortStream\n",
       true},
      {"<wml><card title=\"t\">x", 4,
       "SOSetTextColor 0x000000\nSOAbortStream\nSOEmitBreak document\n", false,
       "SOAbortStream\nSOEmitBreak document\n"},
      {"<wml x='&amp;'><card>x", 4, "SOAbortStream\nSOEmitBreak document\n"},
      {"<wml><card><a href=\"xx\" title=\"yy\">z", 5,
       "SOSetTextColor 0x000000\nSOStoreString \"\" -> 1\n"
       "SOOpenLink 1 reference=0 title\nSOSetTextColor 0xFF0000\n"
       "SOSetProperty underline on\nSOAbortStream\nSOSetTextColor 0x000000\n"
       "SOSetProperty underline off\nSOCloseLink 1\nSOEmitBreak document\n"},
      {"<wml><card><img src=\"xx\" alt=\"yy\" width=\"3\" height=\"4\">z", 5,
       "SOSetTextColor 0x000000\nSOStoreString \"\" -> 1\nSOOpenReference -> 1\n"
       "SOSetProperty reference-target string=4294967295\nSOSetProperty reference-end\n"
       "SOInsertGraphic reference=1 unsized width=0 height=0 alternative=1 "
       "sides=0/0x000000/hidden\n"
       "SOAbortStream\nSOEmitBreak document\n"},
      {"<wml><card>a<b>b<table columns=1><tr><td>c</table>d</b>e", 5,
       "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOSetProperty bold on\n"
       "SOEmitChar \"b\"\nSOAbortStream\nSOEmitBreak cell\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\n"
       "SOSetProperty bold off\nSOEmitBreak document\n"},
      {"<wml><card>a<table columns=1><td>b<td class='&amp;'>c</table>d", 6,
       "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOEmitBreak paragraph\n"
       "SOEmitBreak paragraph\nSOSetProperty alignment left\nSOOpenTable\n"
       "SOAbortStream\nSOEmitBreak cell\nSOEmitBreak cell\n"
       "SODescribeRow columns=1 align=left inset=15\n"
       "SODescribeCell width=176 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
       "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\n"
       "SOEmitBreak document\n",
       false,
       "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOEmitBreak paragraph\n"
       "SOEmitBreak paragraph\nSOSetProperty alignment left\nSOOpenTable\n"
       "SOAbortStream\nSOEmitBreak cell\nSOEmitBreak cell\n"
       "SODescribeRow columns=1 align=left inset=15\n"
       "SODescribeCell width=0 shade=0xFFFFFF table=0xFFFFFF sides=15/0x000000\n"
       "SOEmitBreak row\nSOCloseTable\nSOEmitBreak paragraph\n"
       "SOSetProperty alignment left\nSOSetProperty alignment-done\n"
       "SOEmitBreak document\n"},
  };
  for (const FailedRead &read : kReads) {
    BlockSource source(read.text);
    Host host;
    if (read.stops) host.answerBreak = [](std::uint32_t) { return SO_STOP; };
    Session session(source, host);
    session.Open();
    {
      HeapProbe heap(read.at);
      session.Read();
      EXPECT_EQ(heap.failures, 1u);
    }
    const std::string told = host.Text();
    const std::string begin = "SOSwitchCharset unicode\n";
    EXPECT_EQ(told.substr(told.find(begin) + begin.size()),
              kShortCuts ? read.calls : read.roadCalls)
        << read.text;
    EXPECT_EQ(host.checker.Fault(), "");
  }
}

TEST(ExhaustedHeap, WithoutScratchStringsAReadIsSilent) {
  BlockSource source("<wml><card>a");
  Host host;
  Session session(source, host);
  session.Open();
  const std::uint64_t calls = host.calls;
  {
    HeapProbe heap(1, true);
    session.Read();
    EXPECT_EQ(heap.failures, 1u);
  }
  EXPECT_EQ(host.calls, calls);
  EXPECT_EQ(source.reads, 0u);
  EXPECT_TRUE(session.Read()) << "the next read finds the heap filled again";
}

TEST(ExhaustedHeap, BeforeTheBaseStyleLetsTheNextReadBegin) {
  BlockSource source("<wml><card>a");
  Host host;
  Session session(source, host);
  session.Open();
  {
    HeapProbe heap(3);
    session.Read();
    EXPECT_EQ(heap.failures, 1u);
  }
  session.Read();
  EXPECT_EQ(host.Text(),
            "SOSwitchCharset unicode\nSOAbortStream\nSOEmitBreak document\n"
            "SOSetTextColor 0x000000\nSOEmitChar \"a\"\nSOEmitBreak document\n");
  EXPECT_EQ(host.Announced(),
            "SOSetCharSize 24\nSOSetProperty layout ordinary\nSOSelectFontNumber 1\n"
            "SOSwitchCharset unicode\n");
}

/// Allocations and peak of one read of `text`, repeated to `length`.
struct Use {
  std::uint64_t allocations;
  std::int64_t peak;
};

Use Measure(std::string_view text, std::uint32_t length) {
  BlockSource source(text);
  source.length = length;
  Host host;
  host.tracing = false;
  HeapProbe heap;
  {
    Session session(source, host);
    session.Open();
    session.Section();
    EXPECT_TRUE(session.Read());
    EXPECT_EQ(host.checker.Fault(), "");
  }
  EXPECT_EQ(heap.blocks, 0);
  return {heap.allocations, heap.peak};
}

// Text, tags, attributes, references, images and links are read without the heap.
constexpr std::string_view kRepeated =
    "<wml><card title='t'><p align=center>a<b>b<i>c</i></b> &amp; &#65; &nope;"
    "<a href='x' title='y'>j<img src='k' alt='l' width='3'/></a><pre>p\n</pre></p></card></wml>";

TEST(Heap, IsNotTouchedPerCharacterTagOrAttribute) {
  const Use once = Measure(kRepeated, static_cast<std::uint32_t>(kRepeated.size()));
  const Use often = Measure(kRepeated, 1000000);
  EXPECT_EQ(often.allocations, once.allocations);
  EXPECT_LE(once.allocations, 16u);
}

// What docs/embedding.md promises: less than 16 KiB, and a record for each table.
constexpr std::int64_t kPeak = 16 * 1024;

// Sanitizers take their time over 100 MB.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint32_t kLarge = 10000000;
#else
constexpr std::uint32_t kLarge = 100000000;
#endif

TEST(Heap, PeakDoesNotDependOnTheLength) {
  // Most of it lies outside the card, where text is dropped: the test is about size.
  const std::string text = std::string(kRepeated) + std::string(200000, 'x');
  const Use small = Measure(text, 1000000);
  const Use large = Measure(text, kLarge);
  EXPECT_LE(small.peak, kPeak);
  EXPECT_EQ(large.peak, small.peak);
  EXPECT_EQ(large.allocations, small.allocations);
}

TEST(Heap, GrowsByARecordForEachTable) {
  std::string text = "<wml><card>";
  for (int i = 0; i < 1000; ++i) text += "<table columns=1><td>x</table>";
  const Use use = Measure(text, static_cast<std::uint32_t>(text.size()));
  // While the records move to larger storage, both copies exist.
  EXPECT_LE(use.peak, kPeak + 1000 * 288 * 5 / 2);
  EXPECT_LE(use.allocations, 60u) << "growing one by one would be quadratic";
}

}  // namespace
}  // namespace vs_wml::test
