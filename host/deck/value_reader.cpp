// SPDX-License-Identifier: MIT
#include "host/deck/value_reader.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "host/deck/references.h"
#include "host/text/ascii.h"

namespace vs_wml {

std::string_view ValueReader::Plain(const std::string_view *raw) {
  return raw == nullptr ? std::string_view() : texts_.Keep(DecodeAttribute(*raw));
}

std::string_view ValueReader::Lowered(const std::string_view *raw) {
  if (raw == nullptr) return {};
  return texts_.Keep(vs_wml::Lowered(Trim(DecodeAttribute(*raw))));
}

Value ValueReader::Text(const std::string_view *raw) {
  return raw == nullptr ? Value() : Make(DecodeAttribute(*raw), Conversion::kVerbatim);
}

Value ValueReader::Line(const std::string_view *raw) {
  return raw == nullptr ? Value() : Make(Collapsed(DecodeAttribute(*raw)), Conversion::kVerbatim);
}

Value ValueReader::Target(const std::string_view *raw) {
  if (raw == nullptr) return {};
  return Make(Trim(DecodeAttribute(*raw, LineEnds::kLeftOut)), Conversion::kEscape);
}

Value ValueReader::Collected(std::string_view written) {
  return Make(Collapsed(written), Conversion::kVerbatim);
}

Value ValueReader::Make(std::string_view written, Conversion usual) {
  const Value value(texts_.Keep(written));
  if (written.find('$') == std::string_view::npos) return value;
  const auto [shown, resolved] =
      survey_.KnownVariables().Substitute(written, usual, card_, budget_);
  return shown == written ? value : Value(texts_.Keep(shown), value.written, resolved);
}

std::uint32_t ValueReader::Number(const std::string_view *raw) {
  if (raw == nullptr) return 0;
  const std::string value = DecodeAttribute(*raw);
  const std::string_view digits = Trim(value);
  std::uint32_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

bool ValueReader::Flag(const std::string_view *raw, bool missing) {
  if (raw == nullptr) return missing;
  const std::string value = DecodeAttribute(*raw);
  if (EqualIgnoringCase(Trim(value), "true")) return true;
  return EqualIgnoringCase(Trim(value), "false") ? false : missing;
}

std::string ValueReader::Word(const Token &token, std::string_view name) {
  constexpr std::size_t kLongest = 16;
  const std::string_view *raw = token.Find(name);
  if (raw == nullptr || raw->empty() || raw->size() > kLongest) return {};
  const bool plain = std::all_of(raw->begin(), raw->end(), [](char c) {
    return IsLetter(c) || IsDigit(c) || c == '.' || c == '%';
  });
  if (!plain) return {};
  return ' ' + std::string(name) + "=\"" + std::string(*raw) + '"';
}

std::string ValueReader::Show(const VariableReference &reference) {
  std::string shown = survey_.KnownVariables().Show(reference, Conversion::kVerbatim, card_);
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
