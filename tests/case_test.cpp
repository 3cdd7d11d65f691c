// Documents with the calls that a host must receive for them: cases/NAME.wml and
// cases/NAME.calls. Every case meets several hosts.
//
// VS_WML_UPDATE_CASES=1 in the environment rewrites the .calls files.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "tests/support/case_files.h"
#include "tests/support/session.h"

namespace vs_wml::test {
namespace {

/// The last line of `text` that begins with `start`, its end included.
std::string LastLine(const std::string &text, const std::string &start) {
  const std::size_t at = ('\n' + text).rfind('\n' + start);
  if (at == std::string::npos) return {};
  return text.substr(at, text.find('\n', at) + 1 - at);
}

/// What a read that goes on after `text` has to tell again. Underlining is left out: the
/// end of a link switches it off whatever the style says.
std::string InForce(const std::string &text) {
  std::string lines;
  for (const std::string attribute : {"bold", "italic"}) {
    const std::string line = LastLine(text, "SOSetProperty " + attribute);
    if (line.ends_with("on\n")) lines += line;
  }
  return lines + LastLine(text, "SOSetCharSize") + LastLine(text, "SOSetProperty layout") +
         LastLine(text, "SOSelectFont") + LastLine(text, "SOSwitchCharset");
}

std::string WithoutUnderline(std::string text) {
  const std::string line = "SOSetProperty underline on\n";
  for (std::size_t at; (at = text.find(line)) != std::string::npos;) text.erase(at, line.size());
  return text;
}

/// A case open for reading; its section is told and not part of the text.
struct Reader {
  Reader(const Case &which, const std::string &document, std::uint32_t chunk)
      : source(document, chunk), session(source, host) {
    host.tracing = false;
    session.Open(which.identity);
    session.Section();
    host.tracing = true;
  }

  void ReadToEnd() {
    for (std::uint32_t reads = 0; !session.Read(); ++reads) {
      ASSERT_LE(reads, 2 * source.length) << "the document does not end";
    }
    EXPECT_EQ(host.checker.Fault(), "");
  }

  BlockSource source;
  Host host;
  Session session;
};

class CaseTest : public testing::TestWithParam<Case> {
 protected:
  const std::string document_ = ReadFile(GetParam().document);
  const std::string expected_ = ReadFile(GetParam().Calls());
};

TEST(Cases, AreThere) {
  EXPECT_GE(AllCases().size(), 20u);
}

TEST_P(CaseTest, TellsTheSameForEveryBlockSize) {
  for (const std::uint32_t chunk : {0u, 1u, 7u, 2047u, 2048u}) {
    Reader reader(GetParam(), document_, chunk);
    reader.ReadToEnd();
    if (chunk == 0 && std::getenv("VS_WML_UPDATE_CASES") != nullptr) {
      std::ofstream(GetParam().Calls(), std::ios::binary) << reader.host.Text();
      return;
    }
    ASSERT_EQ(reader.host.Text(), expected_) << chunk << " bytes per read";
  }
}

TEST_P(CaseTest, GoesOnAfterEveryStop) {
  for (const std::uint32_t chunk : {0u, 7u}) {
    Reader reader(GetParam(), document_, chunk);
    reader.host.answerBreak = [](std::uint32_t) { return SO_STOP; };
    std::size_t announced = 0;
    for (std::uint32_t reads = 0;; ++reads) {
      ASSERT_LE(reads, 2 * reader.source.length) << "the document does not end";
      const std::string before = reader.host.Text();
      const bool finished = reader.session.Read();
      const std::string told = reader.host.Announced().substr(announced);
      announced += told.size();
      if (reads != 0) {
        EXPECT_EQ(WithoutUnderline(told), InForce(before));
      }
      if (finished) break;
    }
    EXPECT_EQ(reader.host.checker.Fault(), "");
    ASSERT_EQ(reader.host.Text(), expected_) << chunk << " bytes per read";
  }
}

TEST_P(CaseTest, RepeatsWhatFollowedASavedState) {
  if (GetParam().once) GTEST_SKIP();
  struct Stop {
    SavedState state;
    std::size_t told;
    std::uint32_t strings;
    std::uint32_t references;
    CallChecker checker;
  };
  Reader reader(GetParam(), document_, 0);
  Host &host = reader.host;
  host.answerBreak = [](std::uint32_t) { return SO_STOP; };
  std::vector<Stop> stops;
  while (!reader.session.Read()) {
    stops.push_back(
        {reader.session.Save(), host.Text().size(), host.strings, host.references, host.checker});
    ASSERT_LE(stops.size(), 2 * document_.size()) << "the document does not end";
  }
  host.answerBreak = nullptr;
  std::ranges::reverse(stops);
  for (const Stop &stop : stops) {
    const std::size_t before = host.Text().size();
    host.strings = stop.strings;
    host.references = stop.references;
    host.checker = stop.checker;
    reader.session.Restore(stop.state);
    EXPECT_EQ(reader.session.Save().block, stop.state.block);
    EXPECT_EQ(reader.session.Tell(), stop.state.position);
    EXPECT_TRUE(reader.session.Read());
    EXPECT_EQ(host.checker.Fault(), "");
    ASSERT_EQ(host.Text().substr(before), expected_.substr(stop.told))
        << "restored at " << stop.state.position;
  }
}

INSTANTIATE_TEST_SUITE_P(Documents, CaseTest, testing::ValuesIn(AllCases()),
                         [](const testing::TestParamInfo<Case> &which) {
                           return which.param.Name();
                         });

}  // namespace
}  // namespace vs_wml::test
