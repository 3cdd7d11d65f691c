// The short cuts tell every host what the road beside them tells it.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/support/case_files.h"
#include "tests/support/two_builds.h"

namespace vs_wml::test {
namespace {

class ShortCutsTest : public testing::TestWithParam<Case> {};

TEST_P(ShortCutsTest, TellWhatTheRoadTells) {
  const std::string document = ReadFile(GetParam().document);
  for (const Plan &host : PlansFor(GetParam().identity)) {
    ASSERT_EQ(Difference(host, document), "") << host.chunk << " bytes per read";
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, ShortCutsTest, testing::ValuesIn(AllCases()),
                         [](const testing::TestParamInfo<Case> &which) {
                           return which.param.Name();
                         });

// The break in front of a paragraph goes back to pairs of bytes, in which no quote ends the
// paragraph's alignment: it ends with the document.
TEST(ShortCuts, ReadAValueInTheCharsetThatIsInForceByThen) {
  constexpr std::string_view kDocument =
      "\x1B(J<wml><card>a\x1B$)C<p align=\"center\">\x1B(Jb<p align=\"center\">c</p></card></wml>";
  for (const Plan &host : PlansFor(1159)) EXPECT_EQ(Difference(host, kDocument), "");
}

}  // namespace
}  // namespace vs_wml::test
