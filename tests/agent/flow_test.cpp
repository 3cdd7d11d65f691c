// SPDX-License-Identifier: MIT
#include "agent/flow.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vs_wml {
namespace {

std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::filesystem::path> FlowFiles() {
  std::vector<std::filesystem::path> files;
  for (const auto &entry : std::filesystem::directory_iterator(VS_WML_FLOWS)) {
    files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class FlowFile : public testing::TestWithParam<std::filesystem::path> {};

// Also with an agent that is saved and restored after every step.
TEST_P(FlowFile, Holds) {
  const Flow flow(ReadFile(GetParam()));
  for (const bool restoring : {false, true}) {
    const auto failure = flow.Play(restoring);
    if (failure) {
      ADD_FAILURE() << GetParam().filename() << ":" << failure->line << ": step " << failure->step
                    << ": " << failure->what << "\n"
                    << failure->card << "\n"
                    << failure->request;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Flows, FlowFile, testing::ValuesIn(FlowFiles()), [](const auto &file) {
  std::string name = file.param.stem().string();
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '-' || c == '.'; }, '_');
  return name;
});

std::string WithSteps(const std::string &steps) {
  return "{\"name\": \"n\",\n \"documents\": {\"http://a.example/d\": {\"body\": \"<wml><card "
         "id='a'><p>Text <a href='#b'>On</a><input name='i'/></p></card></wml>\"}},\n"
         " \"start\": \"http://a.example/d\",\n \"steps\": [\n" +
         steps + "]}";
}

TEST(Flow, SaysWhatFailsAndWhere) {
  struct {
    const char *steps;
    std::size_t step;
    std::size_t line;
    const char *what;
  } const kCases[] = {
      {R"({"expect": {"card": "a"}},
          {"expect": {"card": "b"}})",
       2, 6, R"(card: expected "b", there was "a")"},
      {R"({"follow": "Off"})", 1, 5, R"(follow: expected a link "Off", there was ["On"])"},
      {R"({"press": {"type": "accept"}})", 1, 5, "press: expected such a key, there was []"},
      {R"({"enter": {"field": "j", "text": ""}})", 1, 5,
       "enter: expected an input \"j\", there was none"},
      {R"({"choose": {"nth": 1, "options": [1]}})", 1, 5,
       "choose: expected such a select, there was 0 others"},
      {R"({"expect": {"text": ["Text On"], "lacks": ["On"]}})", 1, 5,
       R"(lacks: expected "On", there was "Text On")"},
      {R"({"expect": {"variables": {"i": "x"}}})", 1, 5,
       R"(variables: i: expected "x", there was null)"},
      {R"({"expect": {"error": "loop"}})", 1, 5, R"(error: expected "loop", there was null)"},
      {R"({"expect": {"timer": 5}})", 1, 5, "timer: expected 5, there was null"},
      {R"({"expect": {"history": 2}})", 1, 5, "history: expected 2, there was 1"},
      {R"({"expect": {"request": {"url": "x"}}})", 1, 5,
       R"(request: url: expected "x", there was "http://a.example/d")"},
  };
  for (const auto &item : kCases) {
    const auto failure = Flow(WithSteps(item.steps)).Play();
    ASSERT_TRUE(failure) << item.steps;
    EXPECT_EQ(failure->step, item.step) << item.steps;
    EXPECT_EQ(failure->line, item.line) << item.steps;
    EXPECT_EQ(failure->what, item.what);
    EXPECT_EQ(failure->request, "GET http://a.example/d");
  }
}

TEST(Flow, RefusesFilesThatAreNone) {
  struct {
    std::string flow;
    const char *reason;
  } const kCases[] = {
      {"", "line 1: The document is empty."},
      {"[]", "the flow: is no object"},
      {"{}", "the flow: lacks \"name\""},
      {WithSteps("{\"expects\": {}}"), "step 1: unknown member \"expects\"; is \"expect\" meant?"},
      {WithSteps("{\"expect\": {\"titel\": \"\"}}"),
       "step 1: unknown member \"titel\"; is \"title\" meant?"},
      {WithSteps("{\"expect\": {}, \"back\": true}"), "step 1: is no object with one member"},
      {WithSteps("{\"back\": false}"), "step 1: \"back\" is not true"},
      {WithSteps("{\"wait\": -1}"), "step 1: \"wait\" is no number of tenths"},
      {WithSteps("{\"choose\": {\"options\": [1]}}"),
       "step 1: \"choose\" says neither or both of \"field\" and \"nth\""},
      {WithSteps("{\"choose\": {\"nth\": 1, \"options\": [0]}}"),
       "step 1: \"options\" is no list of positions from 1 on"},
      {WithSteps("{\"press\": {}}"), "step 1: \"press\" says no key"},
      {WithSteps("{\"expect\": {\"error\": \"oops\"}}"), "step 1: unknown error \"oops\""},
      {R"({"name": "n", "documents": {"u": {"base64": "?"}}, "start": "u", "steps": []})",
       "document \"u\": \"base64\" is none"},
      {R"({"name": "n", "documents": {"u": {"base64": "", "body": ""}}, "start": "u", "steps": []})",
       "document \"u\": has \"body\" and \"base64\""},
  };
  for (const auto &item : kCases) {
    try {
      const Flow flow(item.flow);
      ADD_FAILURE() << item.flow;
    } catch (const FlowError &refused) {
      EXPECT_STREQ(refused.what(), item.reason) << item.flow;
    }
  }
}

TEST(Flow, ReadsDocumentsInBase64) {
  const Flow flow(
      R"({"name": "n", "documents": {"http://a.example/d": {"base64": "PHdtbD48Y2FyZCBpZD0n 4Sc+PHA+4Tw=", "type": "text/vnd.wap.wml; charset=iso-8859-1"}}, "start":
"http://a.example/d", "steps": [{"expect": {"card": "á", "text": ["á"]}}]})");
  const auto failure = flow.Play();
  EXPECT_FALSE(failure) << failure->what;
}

}  // namespace
}  // namespace vs_wml
