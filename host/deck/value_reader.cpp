// SPDX-License-Identifier: MIT
#include "host/deck/value_reader.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "host/deck/references.h"
#include "host/text/ascii.h"

namespace vs_wml {

std::string ValueReader::Text(const Token &token, std::string_view attribute) {
  const std::string_view *raw = token.Find(attribute);
  if (raw == nullptr) return {};
  return Substituted(DecodeAttribute(*raw), Conversion::kVerbatim);
}

std::string ValueReader::Target(const Token &token, std::string_view attribute) {
  const std::string_view *raw = token.Find(attribute);
  if (raw == nullptr) return {};
  std::string decoded = DecodeAttribute(*raw);
  const std::string_view trimmed = Trim(decoded);
  if (trimmed.size() != decoded.size()) decoded = std::string(trimmed);
  return Substituted(std::move(decoded), Conversion::kEscape);
}

std::string ValueReader::Substituted(std::string text, Conversion usual) {
  if (text.find('$') == std::string::npos) return text;
  return survey_.KnownVariables().Substitute(text, usual, budget_);
}

std::uint32_t ValueReader::Number(const Token &token, std::string_view attribute) {
  const std::string value = Text(token, attribute);
  std::uint32_t number = 0;
  const std::string_view digits = Trim(value);
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

bool ValueReader::Flag(const Token &token, std::string_view attribute, bool missing) {
  const std::string value = Text(token, attribute);
  if (EqualIgnoringCase(value, "true")) return true;
  return EqualIgnoringCase(value, "false") ? false : missing;
}

NameValue ValueReader::Pair(const Token &token) {
  NameValue pair{Text(token, "name"), Text(token, "value"), {}};
  if (const std::string_view *raw = token.Find("value"); raw != nullptr && !raw->empty()) {
    const VariableReference reference =
        raw->front() == '$' ? ReadVariable(*raw) : VariableReference{};
    if (reference.length == raw->size()) pair.variable = reference.name;
  }
  return pair;
}

std::string ValueReader::Word(const Token &token, std::string_view attribute) {
  constexpr std::size_t kLongest = 16;
  const std::string_view *raw = token.Find(attribute);
  if (raw == nullptr || raw->empty() || raw->size() > kLongest) return {};
  const bool plain = std::all_of(raw->begin(), raw->end(), [](char c) {
    return IsLetter(c) || IsDigit(c) || c == '.' || c == '%';
  });
  if (!plain) return {};
  return ' ' + std::string(attribute) + "=\"" + std::string(*raw) + '"';
}

std::string ValueReader::Show(const VariableReference &reference) {
  std::string shown = survey_.KnownVariables().Show(reference, Conversion::kVerbatim);
  // What `{name}` adds to the reference itself is always affordable.
  if (shown.size() > reference.name.size() + 2 && !Spend(shown.size())) {
    shown = '{' + std::string(reference.name) + '}';
  }
  return shown;
}

bool ValueReader::Spend(std::size_t size) {
  if (size > budget_) return false;
  budget_ -= size;
  return true;
}

}  // namespace vs_wml
