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

}  // namespace
}  // namespace vs_wml::test
