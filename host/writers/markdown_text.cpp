// SPDX-License-Identifier: MIT
#include "host/writers/markdown_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/text/ascii.h"
#include "host/text/utf8.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

constexpr std::size_t kLongestReference = 40;
constexpr std::string_view kTableTitle = "table";

// What stands in front of the colon of an address that GitHub's rules make a link of, besides
// those with two slashes behind it.
constexpr std::array<std::string_view, 2> kAddressSchemes = {"mailto", "xmpp"};

bool IsBlankAt(std::string_view text, std::size_t at) {
  return at >= text.size() || text[at] == ' ' || text[at] == '\n' || text[at] == '\t';
}

char32_t CharacterAt(std::string_view text, std::size_t at) {
  return at < text.size() ? NextCharacter(text, at) : U' ';
}

char32_t LastCharacter(std::string_view text) {
  std::size_t start = text.size();
  while (start > 0 && !StartsCharacter(text[--start])) {
  }
  return CharacterAt(text, start);
}

// Whether a reference (`&colon;`) stands at the start of the text.
bool IsReference(std::string_view text) {
  const std::size_t end = std::min(text.substr(0, kLongestReference).find(';'), text.size());
  return end < text.size() &&
         std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(end),
                     [](char c) { return IsLetter(c) || IsDigit(c) || c == '#'; });
}

bool EndsWith(std::string_view text, std::string_view lowered) {
  return text.size() >= lowered.size() &&
         IsLowered(text.substr(text.size() - lowered.size()), lowered);
}

// Whether a word is an address by virtue of the character at `at`: the full stop of `www.`, or
// the colon behind a scheme.
bool MakesAddress(std::string_view text, std::size_t at) {
  const std::string_view before = text.substr(0, at);
  if (text[at] == '.') return EndsWith(before, "www");
  if (text[at] != ':') return false;
  return text.substr(at).starts_with("://") ||
         std::any_of(kAddressSchemes.begin(), kAddressSchemes.end(),
                     [&](std::string_view scheme) { return EndsWith(before, scheme); });
}

bool HoldsAddress(std::string_view word) {
  for (std::size_t at = 0; at < word.size(); ++at) {
    if (MakesAddress(word, at)) return true;
  }
  return false;
}

// Whether no backslash takes the meaning from the last character.
bool EndsUnescaped(std::string_view line) {
  line.remove_suffix(1);
  const std::size_t behind = line.find_last_not_of('\\') + 1;
  return (line.size() - behind) % 2 == 0;
}

// The length of what numbers the items of a list ("12", "iv", "b"), with an opening bracket if
// it has one; 0 when there is none in front of a full stop or bracket and a blank. So, too, the
// word that makes a title of the paragraph beside a table.
std::size_t ListNumberLength(std::string_view text) {
  if (IsLowered(text.substr(0, kTableTitle.size() + 1), "table:")) return kTableTitle.size();
  const std::size_t begin = text.starts_with('(') ? 1 : 0;
  std::size_t end = begin;
  while (end < text.size() && IsDigit(text[end])) ++end;
  const bool digits = end != begin;
  if (!digits) {
    constexpr std::string_view kRoman = "ivxlcdmIVXLCDM";
    end = std::min(text.find_first_not_of(kRoman, begin), text.size());
    if (end <= begin + 1) end = begin + (begin < text.size() && IsLetter(text[begin]) ? 1 : 0);
    if (end == begin && begin == 1 && text.substr(1).starts_with('@')) {
      end = std::min(text.find(')'), text.size());
    }
  }
  const bool initial = end == 1 && ToLower(text[0]) != text[0] && text.substr(1).starts_with('.');
  const bool ends = end != begin && !initial && end < text.size() && IsBlankAt(text, end + 1) &&
                    (text[end] == ')' || (text[end] == '.' && begin == 0));
  return ends ? end : 0;
}

// Whether a character at the start of a line makes more of it than a paragraph.
bool StartsBlock(std::string_view text) {
  const char first = text[0];
  switch (first) {
    case '>':
    case '|':
    case '%':
      return true;
    case '#': {
      const std::size_t end = std::min(text.find_first_not_of('#'), text.size());
      return IsBlankAt(text, end) || text[end] == '.' || text[end] == ')';
    }
    case '+':
    case '-':
    case ':':
    case '~':
      return IsBlankAt(text, 1) ||
             std::string_view("+-=|:~").find(text[1]) != std::string_view::npos;
    case '=':
      return text.find_first_not_of("= ") == std::string_view::npos;
    default:
      return false;
  }
}

// Whether a mark of emphasis means nothing where it stands: between blanks, or (`_`) in a word.
bool IsIdleMark(std::string_view line, std::string_view text, std::size_t at) {
  const CharacterClass before = ClassOf(LastCharacter(line));
  const CharacterClass behind = ClassOf(CharacterAt(text, at + 1));
  if (before != behind || line.empty()) return false;
  return before == CharacterClass::kBlank || (before == CharacterClass::kWord && text[at] == '_');
}

// Whether `<` is read as itself in front of the text, whatever else comes between.
bool IsIdleLessThan(std::string_view text, std::size_t behind) {
  return IsBlankAt(text, behind) || IsDigit(text[behind]) || text[behind] == '=';
}

}  // namespace

void MarkdownText::BeginBlock(MarkdownPlace place) {
  place_ = place;
  dollarSeen_ = false;
}

void MarkdownText::BeginLine(std::string_view text) {
  text_ = text;
  wordEnd_ = 0;
}

void MarkdownText::AppendWhole(std::string &line, std::string_view text, bool inLabel) {
  MarkdownText other = *this;
  other.BeginLine(text);
  other.Append(line, 0, text.size(), inLabel);
  dollarSeen_ = other.dollarSeen_;
}

void MarkdownText::Append(std::string &line, std::size_t begin, std::size_t end, bool inLabel) {
  inLabel_ = inLabel;
  pieceEnd_ = end;
  if (line.empty() && place_ == MarkdownPlace::kParagraph) begin = AppendStart(line, begin, end);
  while (begin < end) {
    if (begin >= wordEnd_) LookAtWord(begin, end);
    const std::size_t stop = std::min(end, std::max(wordEnd_, begin + 1));
    for (; begin < stop; ++begin) AppendCharacter(line, begin);
  }
}

// Escapes do not count in an address that viewers make a link of, so that a word that needs
// some is kept from being one. So is one that goes on in the next piece: it would take the marks
// between them.
void MarkdownText::LookAtWord(std::size_t begin, std::size_t end) {
  wordEnd_ = std::min(text_.find_first_of(" \n", begin), text_.size());
  const std::string_view word = text_.substr(begin, wordEnd_ - begin);
  stopsAddresses_ = false;
  if (!HoldsAddress(word)) return;
  std::string escaped(1, ' ');
  const bool dollarSeen = dollarSeen_;
  for (std::size_t at = begin; at < wordEnd_; ++at) AppendCharacter(escaped, at);
  dollarSeen_ = dollarSeen;
  stopsAddresses_ = wordEnd_ > end || escaped.substr(1) != word;
}

// What only counts at the start of a line. Returns where the text goes on.
std::size_t MarkdownText::AppendStart(std::string &line, std::size_t begin, std::size_t end) const {
  while (begin < end && text_[begin] == ' ') ++begin;
  if (begin == end) return begin;
  const std::string_view rest = text_.substr(begin);
  if (StartsBlock(rest)) {
    line += '\\';
    line += rest[0];
    return begin + 1;
  }
  const std::size_t number = ListNumberLength(rest);
  if (number == 0 || begin + number >= end) return begin;
  // A backslash in front of a bracket, or in front of what ends the number.
  if (rest[0] == '(') {
    line += "\\(";
    return begin + 1;
  }
  line.append(rest.substr(0, number));
  line += '\\';
  line += rest[number];
  return begin + number + 1;
}

bool MarkdownText::NeedsBackslash(std::string_view line, std::size_t at) {
  switch (text_[at]) {
    case '\\':
    case '`':
    case '[':
    case '~':
    case '^':
      return true;
    case ']':
      return inLabel_;
    case '|':
      return place_ == MarkdownPlace::kCell;
    case '*':
    case '_':
      return at + 1 == pieceEnd_ || !IsIdleMark(line, text_, at);
    case '$':
      return std::exchange(dollarSeen_, true);
    case '@':  // a citation
      return line.empty() || ClassOf(LastCharacter(line)) != CharacterClass::kWord;
    case '{':  // attributes of what stands before it
      return place_ == MarkdownPlace::kHeading ||
             (!line.empty() && std::string_view(")]`").find(line.back()) != std::string_view::npos);
    case '#':  // would end the heading
      return place_ == MarkdownPlace::kHeading && at + 1 == text_.size();
    default:
      return false;
  }
}

void MarkdownText::AppendCharacter(std::string &line, std::size_t at) {
  const char c = text_[at];
  if (c == '\n') {
    line += "<br>";
  } else if (c == '<' && !IsIdleLessThan(text_, at + 1)) {
    line += "&lt;";
  } else if (c == '&' && IsReference(text_.substr(at))) {
    line += "&amp;";
  } else {
    const bool stops = stopsAddresses_ && MakesAddress(text_, at);
    if (stops || NeedsBackslash(line, at)) line += '\\';
    line += c;
  }
}

void MarkdownText::OpenBracket(std::string &line, bool image) {
  const bool taken = !line.empty() && (line.back() == '!' || line.back() == '^');
  if (taken && EndsUnescaped(line)) line.insert(line.size() - 1, 1, '\\');
  line += image ? "![" : "[";
}

void MarkdownText::CloseBracket(std::string &line, std::string_view target,
                                std::string_view title) {
  line += "](";
  AppendTarget(line, target, title);
  line += ')';
}

void MarkdownText::AppendTarget(std::string &line, std::string_view target,
                                std::string_view title) {
  if (target.empty()) line += "<>";
  const std::string encoded = EncodeTarget(target);
  for (std::size_t at = 0; at < encoded.size(); ++at) {
    const char c = encoded[at];
    if (c == '&' && IsReference(std::string_view(encoded).substr(at))) {
      line += "&amp;";
      continue;
    }
    if (c == '(' || c == ')' || c == '$') line += '\\';
    line += c;
  }
  if (!title.empty()) {
    line += " \"";
    for (std::size_t at = 0; at < title.size(); ++at) {
      const char c = title[at];
      if (c == '<') {
        line += "&lt;";
      } else if (c == '&' && IsReference(title.substr(at))) {
        line += "&amp;";
      } else {
        if (std::string_view("\\\"`|$").find(c) != std::string_view::npos) line += '\\';
        line += c;
      }
    }
    line += '"';
  }
}

bool MarkdownText::EndsWithAddress(std::string_view line) {
  std::string_view word = line.substr(line.find_last_of(" >") + 1);
  const std::size_t target = word.rfind("](");
  if (target != std::string_view::npos)
    word = word.substr(std::min(word.find(')', target), word.size()));
  return HoldsAddress(word);
}

}  // namespace vs_wml
