// SPDX-License-Identifier: MIT
#include "host/deck/variables.h"

#include <algorithm>

#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

constexpr bool IsNameStart(char c) {
  return IsLetter(c) || c == '_';
}
constexpr bool IsNameCharacter(char c) {
  return IsNameStart(c) || IsDigit(c);
}

constexpr bool IsDottedNameCharacter(char c) {
  return IsNameCharacter(c) || c == '.';
}

template <typename IsCharacter>
std::size_t NameLength(std::string_view text, IsCharacter isCharacter) {
  if (text.empty() || !IsNameStart(text[0])) return 0;
  const auto end = std::find_if_not(text.begin(), text.end(), isCharacter);
  return static_cast<std::size_t>(end - text.begin());
}

struct ConversionName {
  std::string_view name;
  Conversion conversion;
};

constexpr ConversionName kConversions[] = {
    {"e", Conversion::kEscape},   {"escape", Conversion::kEscape},
    {"u", Conversion::kUnescape}, {"unesc", Conversion::kUnescape},
    {"n", Conversion::kVerbatim}, {"noesc", Conversion::kVerbatim}};

constexpr std::size_t kLongestConversion = 6;

// `(name)` or `(name:conversion)`.
VariableReference ReadBracketed(std::string_view text) {
  VariableReference reference;
  const std::size_t length = NameLength(text.substr(2), IsDottedNameCharacter);
  if (length == 0) return {};
  reference.name = text.substr(2, length);
  std::size_t at = 2 + length;
  if (at < text.size() && text[at] == ':') {
    const std::string_view rest = text.substr(at + 1, kLongestConversion + 1);
    const std::string_view word = rest.substr(0, rest.find(')'));
    for (const ConversionName &entry : kConversions) {
      if (EqualIgnoringCase(entry.name, word)) reference.conversion = entry.conversion;
    }
    if (reference.conversion == Conversion::kDefault) return {};
    at += 1 + word.size();
  }
  if (at >= text.size() || text[at] != ')') return {};
  reference.length = at + 1;
  return reference;
}

bool HasControls(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (IsControl(NextCharacter(text, at))) return true;
  }
  return false;
}

}  // namespace

VariableReference ReadVariable(std::string_view text) {
  if (text.size() < 2) return {};
  if (text[1] == '$') return {.name = {}, .conversion = Conversion::kDefault, .length = 2};
  if (text[1] == '(') return ReadBracketed(text);
  const std::size_t length = NameLength(text.substr(1), IsNameCharacter);
  if (length == 0) return {};
  return {text.substr(1, length), Conversion::kDefault, 1 + length};
}

bool IsVariableName(std::string_view name) {
  return !name.empty() && NameLength(name, IsDottedNameCharacter) == name.size();
}

std::string PercentEncode(std::string_view text) {
  std::string encoded;
  for (const char c : text) {
    if (IsLetter(c) || IsDigit(c) || std::string_view("-._~").find(c) != std::string_view::npos) {
      encoded += c;
    } else {
      AppendPercentEncoded(encoded, c);
    }
  }
  return encoded;
}

std::string PercentDecode(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const int high = at + 2 < text.size() && text[at] == '%' ? HexValue(text[at + 1]) : -1;
    const int low = high >= 0 ? HexValue(text[at + 2]) : -1;
    if (low < 0) {
      decoded += text[at];
      continue;
    }
    decoded += static_cast<char>(high * 16 + low);
    at += 2;
  }
  if (!IsValidUtf8(decoded) || HasControls(decoded)) return std::string(text);
  return decoded;
}

Variables::Variables(const std::map<std::string, std::string> &given, bool onlyGiven)
    : onlyGiven_(onlyGiven) {
  for (const auto &[name, text] : given) {
    values_[name] = {text, true, !onlyGiven && text.size() > kLongestValue, {}};
  }
}

// The entry of a variable that the user has not given.
Variables::Known *Variables::Note(const std::string &name) {
  if (!IsVariableName(name)) return nullptr;
  Known &known = values_[name];
  return known.given ? nullptr : &known;
}

void Variables::Suggest(const std::string &name, const std::string &value, std::size_t card) {
  if (value.empty()) return;
  Known *known = Note(name);
  if (known == nullptr) return;
  if (known->text.empty() && value.size() <= kLongestValue) {
    known->text = value;
  } else if (known->text != value) {
    known->unsettled = true;
  }
  if (card != 0 && (known->cards.empty() || known->cards.back() != card)) {
    known->cards.push_back(card);
  }
}

void Variables::Unsettle(const std::string &name) {
  if (Known *known = Note(name); known != nullptr) known->unsettled = true;
}

const std::string *Variables::Find(std::string_view name, std::size_t card) const {
  static const std::string kNotSet;
  const auto found = values_.find(name);
  if (found == values_.end() && onlyGiven_) return &kNotSet;
  if (found == values_.end() || found->second.unsettled) return nullptr;
  const Known &known = found->second;
  const bool isSet =
      known.given || std::binary_search(known.cards.begin(), known.cards.end(), card);
  return isSet ? &known.text : nullptr;
}

std::string Variables::Show(const VariableReference &reference, Conversion usual,
                            std::size_t card) const {
  const std::string *value = Find(reference.name, card);
  if (value == nullptr) return "{" + std::string(reference.name) + "}";
  switch (reference.conversion == Conversion::kDefault ? usual : reference.conversion) {
    case Conversion::kEscape:
      return PercentEncode(*value);
    case Conversion::kUnescape:
      return PercentDecode(*value);
    default:
      return *value;
  }
}

Variables::Substituted Variables::Substitute(std::string_view text, Conversion usual,
                                             std::size_t card, std::size_t &budget) const {
  Substituted result;
  const auto show = [&](const VariableReference &reference) {
    std::string shown = Show(reference, usual, card);
    bool resolved = Find(reference.name, card) != nullptr;
    if (shown.size() > budget + reference.length + 2) {
      shown = "{" + std::string(reference.name) + "}";
      resolved = false;
    }
    budget -= std::min(budget, shown.size());
    result.text += shown;
    result.resolved &= resolved;
  };
  ForEachPiece(
      text, [&](std::string_view piece) { result.text += piece; }, show);
  return result;
}

}  // namespace vs_wml
