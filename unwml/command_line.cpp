// SPDX-License-Identifier: MIT
#include "command_line.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <string_view>
#include <utility>

#include "option_table.h"

namespace unwml {
namespace {

// What getopt_long answers: letters as they are, rows without one and switches turned off by
// their place in the table.
constexpr int kFirstRow = 1000;
constexpr int kFirstNegated = 2000;

// The table as getopt_long takes it.
class Declaration {
 public:
  Declaration() {
    const auto table = OptionTable();
    letters_ = ":";  // a missing argument is told apart
    names_.reserve(table.size());
    for (std::size_t i = 0; i < table.size(); ++i) {
      const OptionRow &row = table[i];
      const int index = static_cast<int>(i);
      const bool takes = row.argument != Argument::kNone;
      if (row.letter != '\0')
        letters_ += takes ? std::string{row.letter, ':'} : std::string{row.letter};
      longs_.push_back(
          {row.name, takes ? required_argument : no_argument, nullptr, kFirstRow + index});
      if (!row.negatable) continue;
      names_.push_back(std::string("no-") + row.name);
      longs_.push_back({names_.back().c_str(), no_argument, nullptr, kFirstNegated + index});
    }
    longs_.push_back({nullptr, 0, nullptr, 0});
  }

  const char *Letters() const { return letters_.c_str(); }
  const option *Longs() const { return longs_.data(); }

 private:
  std::string letters_;
  std::vector<std::string> names_;
  std::vector<option> longs_;
};

// How many characters are to be changed, added or taken away to make one word of the other.
std::size_t Distance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  for (std::size_t i = 0; i < row.size(); ++i) row[i] = i;
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// " (did you mean --color?)" for a word close to the name of an option.
std::string Suggestion(std::string_view given) {
  constexpr std::size_t kClose = 2;
  constexpr std::size_t kLongestWord = 32;
  if (given.size() > kLongestWord) return "";
  std::size_t best = kClose + 1;
  std::string_view nearest;
  for (const OptionRow &row : OptionTable()) {
    const std::size_t distance = Distance(given, row.name);
    if (distance < best) {
      best = distance;
      nearest = row.name;
    }
  }
  return nearest.empty() ? "" : " (did you mean --" + std::string(nearest) + "?)";
}

bool IsLetter(int answer) {
  return answer > 0 && answer < kFirstRow;
}

// `word` is the last one that was looked at; `optopt` tells what is wrong with it.
[[noreturn]] void ThrowUnknown(std::string_view word) {
  if (IsLetter(optopt)) {
    throw WrongUsage(std::string("there is no option -") + static_cast<char>(optopt));
  }
  if (optopt != 0)
    throw WrongUsage(std::string(word.substr(0, word.find('='))) + " takes no value");
  const std::string_view given = word.substr(2, word.find('=') - 2);
  const auto table = OptionTable();
  const auto matches = std::count_if(table.begin(), table.end(), [&](const OptionRow &row) {
    return std::string_view(row.name).starts_with(given);
  });
  if (matches > 1) throw WrongUsage(std::string(word) + " stands for several options");
  throw WrongUsage("there is no option " + std::string(word) + Suggestion(given));
}

std::string Joined(std::span<const std::string_view> words) {
  std::string joined;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i != 0) joined += i + 1 == words.size() ? " or " : ", ";
    joined += words[i];
  }
  return joined;
}

// The value of an option, where it is one that the option takes.
Given Checked(const OptionRow &row, const char *value) {
  Given given;
  given.text = value;
  const std::string name = std::string("--") + row.name;
  if (row.argument != Argument::kNone && given.text.empty()) {
    throw WrongUsage(name + ": no " + row.placeholder + " given");
  }
  if (row.argument == Argument::kChoice &&
      std::find(row.choices.begin(), row.choices.end(), given.text) == row.choices.end()) {
    throw WrongUsage(name + ": \"" + std::string(given.text) + "\" is not " + Joined(row.choices));
  }
  if (row.argument == Argument::kNumber) {
    const char *const end = given.text.data() + given.text.size();
    const auto [rest, error] = std::from_chars(given.text.data(), end, given.number);
    if (error != std::errc() || rest != end || given.number < row.least ||
        given.number > row.most) {
      throw WrongUsage(name + ": \"" + std::string(given.text) + "\" is not a number from " +
                       std::to_string(row.least) + " to " + std::to_string(row.most));
    }
  }
  return given;
}

// The row that getopt_long means.
const OptionRow &RowOf(int answer) {
  const auto table = OptionTable();
  if (!IsLetter(answer)) {
    const int first = answer >= kFirstNegated ? kFirstNegated : kFirstRow;
    return table[static_cast<std::size_t>(answer - first)];
  }
  return *std::find_if(table.begin(), table.end(),
                       [&](const OptionRow &row) { return row.letter == answer; });
}

}  // namespace

CommandLine ReadCommandLine(int argc, char **argv) {
  const Declaration declaration;
  CommandLine line;
  opterr = 0;
  optind = 0;  // begin anew, also after a mistake
  while (true) {
    const int answer = getopt_long(argc, argv, declaration.Letters(), declaration.Longs(), nullptr);
    if (answer == -1) break;
    if (answer == '?') ThrowUnknown(argv[optind - 1]);
    const OptionRow &row = RowOf(answer == ':' ? optopt : answer);
    const bool hasValue = answer != ':' && row.argument != Argument::kNone;
    Given given = Checked(row, hasValue ? optarg : "");
    given.on = answer < kFirstNegated;
    row.set(line, given);
  }
  line.inputs.assign(argv + optind, argv + argc);
  return line;
}

}  // namespace unwml
