// The command line, option by option and in all orders.
//
// SPDX-License-Identifier: MIT
#include "unwml/command_line.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "unwml/manual.h"
#include "unwml/option_table.h"

namespace unwml {
namespace {

using Words = std::vector<std::string>;

CommandLine Read(const Words &words) {
  Words copies = {"unwml"};
  copies.insert(copies.end(), words.begin(), words.end());
  std::vector<char *> arguments;
  for (std::string &word : copies) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  return ReadCommandLine(static_cast<int>(copies.size()), arguments.data());
}

std::string MistakeIn(const Words &words) {
  try {
    Read(words);
  } catch (const WrongUsage &mistake) {
    return mistake.what();
  }
  return "";
}

// A way to give an option, and what it ought to lead to.
struct Form {
  Words words;
  const OptionRow *row;
  Given given;
};

std::string ValueFor(const OptionRow &row) {
  if (row.argument == Argument::kNumber) return std::to_string(row.least);
  if (!row.choices.empty()) return std::string(row.choices.back());
  return "a=b";
}

std::vector<Form> FormsOf(const OptionRow &row) {
  static std::set<std::string> kept;  // what Given points to
  const std::string name = std::string("--") + row.name;
  const std::string letter = std::string{'-', row.letter};
  std::vector<Form> forms;
  Given given;
  if (row.argument == Argument::kNone) {
    forms.push_back({{name}, &row, given});
    if (row.letter != '\0') forms.push_back({{letter}, &row, given});
    given.on = false;
    if (row.negatable) forms.push_back({{std::string("--no-") + row.name}, &row, given});
    return forms;
  }
  const std::string &value = *kept.insert(ValueFor(row)).first;
  given.text = value;
  given.number = row.least;
  forms.push_back({{name, value}, &row, given});
  forms.push_back({{name + "=" + value}, &row, given});
  if (row.letter == '\0') return forms;
  forms.push_back({{letter, value}, &row, given});
  forms.push_back({{letter + value}, &row, given});
  return forms;
}

std::vector<Form> AllForms() {
  std::vector<Form> all;
  for (const OptionRow &row : OptionTable()) {
    for (Form &form : FormsOf(row)) all.push_back(std::move(form));
  }
  return all;
}

void Append(Words &words, const Words &more) {
  words.insert(words.end(), more.begin(), more.end());
}

TEST(CommandLine, TakesEveryOptionBeforeAndBehindEveryOtherAndEveryInput) {
  const std::vector<Form> forms = AllForms();
  for (const Form &first : forms) {
    for (const Form &second : forms) {
      CommandLine expected;
      expected.inputs = {"deck.wml"};
      first.row->set(expected, first.given);
      second.row->set(expected, second.given);
      for (int place = 0; place < 3; ++place) {
        Words words;
        if (place == 0) words.emplace_back("deck.wml");
        Append(words, first.words);
        if (place == 1) words.emplace_back("deck.wml");
        Append(words, second.words);
        if (place == 2) words.emplace_back("deck.wml");
        EXPECT_EQ(Read(words), expected) << testing::PrintToString(words);
      }
    }
  }
}

TEST(CommandLine, KnowsInputsFromOptions) {
  EXPECT_EQ(Read({"-", "a", "--", "--raw", "-j"}).inputs, (Words{"-", "a", "--raw", "-j"}));
  EXPECT_EQ(Read({"--files-from", "-", "a"}).inputs, Words{"a"});
  EXPECT_EQ(Read({"--var", "--raw=1", "a"}).variables, Words{"--raw=1"});
  EXPECT_EQ(Read({"--var=a=b", "--var", "c=d"}).variables, (Words{"a=b", "c=d"}));
}

TEST(CommandLine, SaysWhatIsWrong) {
  const struct {
    Words words;
    const char *message;
  } kCases[] = {
      {{"--colour"}, "there is no option --colour (did you mean --color?)"},
      {{"--xyzzy=1"}, "there is no option --xyzzy=1"},
      {{"-x"}, "there is no option -x"},
      {{"a", "-hx", "b"}, "there is no option -x"},
      {{"--raw=yes"}, "--raw takes no value"},
      {{"--to"}, "--to: no FORMAT given"},
      {{"a", "-j"}, "--jobs: no N given"},
      {{"--output="}, "--output: no PATH given"},
      {{"-t", "pdf"}, "--to: \"pdf\" is not text, html, json, markdown or trace"},
      {{"-j", "0"}, "--jobs: \"0\" is not a number from 1 to 256"},
      {{"-j", "257"}, "--jobs: \"257\" is not a number from 1 to 256"},
      {{"-w", "12x"}, "--width: \"12x\" is not a number from 1 to 100000"},
      {{"-w", "-5"}, "--width: \"-5\" is not a number from 1 to 100000"},
      {{"-w99999999999999999999"},
       "--width: \"99999999999999999999\" is not a number from 1 to 100000"},
  };
  for (const auto &item : kCases) EXPECT_EQ(MistakeIn(item.words), item.message);
}

// Every "--word" in a text.
std::set<std::string> OptionsIn(const std::string &text) {
  std::set<std::string> found;
  for (std::size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at + 2)) {
    const std::size_t end = text.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", at);
    const std::string word = text.substr(at, end - at);
    if (word.size() > 2) found.insert(word);
  }
  return found;
}

TEST(OptionTable, NamesEachOptionOnceAndRefersOnlyToThoseThatThereAre) {
  std::set<std::string> names;
  std::set<char> letters;
  std::ostringstream manual;
  PrintManual(manual);
  std::string text = manual.str();
  for (const OptionRow &row : OptionTable()) {
    EXPECT_TRUE(names.insert(std::string("--") + row.name).second) << row.name;
    EXPECT_TRUE(row.letter == '\0' || letters.insert(row.letter).second) << row.letter;
    if (row.negatable) names.insert(std::string("--no-") + row.name);
    text += std::string(row.brief) + ' ' + row.detail + ' ';
  }
  for (std::size_t at = text.find("\\-"); at != std::string::npos; at = text.find("\\-", at)) {
    text.erase(at, 1);
  }
  names.insert("--no-");  // the manual explains switches
  for (const std::string &word : OptionsIn(text)) EXPECT_TRUE(names.contains(word)) << word;
}

}  // namespace
}  // namespace unwml
