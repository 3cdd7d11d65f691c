// SPDX-License-Identifier: MIT
#include "host/text/utf8.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "host/text/byte_scan.h"

namespace vs_wml {
namespace {

constexpr std::uint64_t kHighBits = 0x8080808080808080U;
constexpr char32_t kIllFormed = 0xFFFFFFFF;

// Whether the eight bytes from `offset` on are ASCII.
bool IsAsciiWord(std::string_view text, std::size_t offset) {
  std::uint64_t word = 0;
  std::memcpy(&word, text.data() + offset, sizeof word);
  return (word & kHighBits) == 0;
}

// As many bytes at once as registers make it cheap.
using Block = std::array<std::uint64_t, 8>;

// The end of the whole blocks from `offset` on that are ASCII.
std::size_t SkipAsciiBlocks(std::string_view text, std::size_t offset) {
  for (; text.size() - offset >= sizeof(Block); offset += sizeof(Block)) {
    Block block;
    std::memcpy(&block, text.data() + offset, sizeof block);
    std::uint64_t high = 0;
    for (const std::uint64_t word : block) high |= word;
    if ((high & kHighBits) != 0) break;
  }
  return offset;
}

// What a lead byte says: how many bytes follow, and the range of the first of them,
// which keeps out overlong forms, surrogates and what lies beyond U+10FFFF.
struct Lead {
  unsigned following;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
};

constexpr Lead LeadOf(unsigned char byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {1};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {2};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte >= 0xF1 && byte <= 0xF3) return {3};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {0};
}

// Decodes the character at `offset` and moves behind it; for ill-formed bytes behind
// the longest start of a character, as Unicode recommends.
char32_t Decode(std::string_view text, std::size_t &offset) {
  const auto first = static_cast<unsigned char>(text[offset++]);
  if (first < 0x80) return first;
  Lead lead = LeadOf(first);
  if (lead.following == 0) return kIllFormed;
  char32_t character = first & (0x3FU >> lead.following);
  for (; lead.following != 0; --lead.following) {
    if (offset == text.size()) return kIllFormed;
    const auto byte = static_cast<unsigned char>(text[offset]);
    if (byte < lead.low || byte > lead.high) return kIllFormed;
    character = (character << 6U) | (byte & 0x3FU);
    lead.low = 0x80;
    lead.high = 0xBF;
    ++offset;
  }
  return character;
}

// An automaton that checks bytes without a branch: each byte has a word with the next
// state for every state, at the bit that is the state's own number.
enum State : std::uint8_t {
  kRejected = 0,
  kBoundary = 6,
  kOneLeft = 12,
  kTwoLeft = 18,
  kThreeLeft = 24,
  kBehindE0 = 30,
  kBehindED = 36,
  kBehindF0 = 42,
  kBehindF4 = 48
};

constexpr State StateBehind(unsigned char lead) {
  if (lead < 0x80) return kBoundary;
  switch (lead) {
    case 0xE0:
      return kBehindE0;
    case 0xED:
      return kBehindED;
    case 0xF0:
      return kBehindF0;
    case 0xF4:
      return kBehindF4;
    default:
      constexpr State kLeft[] = {kRejected, kOneLeft, kTwoLeft, kThreeLeft};
      return kLeft[LeadOf(lead).following];
  }
}

constexpr std::uint64_t Transitions(unsigned char byte) {
  std::uint64_t word = std::uint64_t{StateBehind(byte)} << kBoundary;
  const auto add = [&](State from, State to, unsigned char low, unsigned char high) {
    if (byte >= low && byte <= high) word |= std::uint64_t{to} << from;
  };
  add(kOneLeft, kBoundary, 0x80, 0xBF);
  add(kTwoLeft, kOneLeft, 0x80, 0xBF);
  add(kThreeLeft, kTwoLeft, 0x80, 0xBF);
  add(kBehindE0, kOneLeft, 0xA0, 0xBF);
  add(kBehindED, kOneLeft, 0x80, 0x9F);
  add(kBehindF0, kTwoLeft, 0x90, 0xBF);
  add(kBehindF4, kTwoLeft, 0x80, 0x8F);
  return word;
}

constexpr auto kTransitions = [] {
  std::array<std::uint64_t, 256> words{};
  for (std::size_t byte = 0; byte < words.size(); ++byte) {
    words[byte] = Transitions(static_cast<unsigned char>(byte));
  }
  return words;
}();

// Not zero when a byte, with the two behind it, starts a character that may take another
// width than one column: others than ASCII, Latin, Greek, Cyrillic, common punctuation
// and currencies. Without branches, so that the compiler looks at many bytes at once.
unsigned char MayNotBeNarrow(unsigned char byte, unsigned char next, unsigned char third) {
  const auto is = [](bool value) { return static_cast<unsigned char>(value); };
  const unsigned char punctuation = is(next == 0x80) & is(third >= 0x90) & is(third <= 0xA7);
  const unsigned char currency = is(next == 0x82) & is(third >= 0xA0);
  const unsigned char softHyphen = is(byte == 0xC2) & is(next == 0xAD);
  const unsigned char known = is(byte < 0xCC) | is(byte == 0xCE) | is(byte == 0xCF) |
                              is(byte == 0xD0) | is(byte == 0xD1) |
                              (is(byte == 0xE2) & (punctuation | currency));
  return softHyphen | (known ^ 1U);
}

// How many of the eight bytes from `offset` on start a character.
std::size_t StartsInWord(std::string_view text, std::size_t offset) {
  const std::uint64_t word = LowestFirst(text.data() + offset);
  const std::uint64_t following = (word >> 7U) & ~(word >> 6U) & EightTimes(1);
  return 8 - ((following * EightTimes(1)) >> 56U);
}

}  // namespace

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  std::size_t offset = 0;
  for (; text.size() - offset >= 8; offset += 8) count += StartsInWord(text, offset);
  for (; offset < text.size(); ++offset) {
    count += static_cast<std::size_t>(StartsCharacter(text[offset]));
  }
  return count;
}

std::size_t SkipCharacters(std::string_view text, std::size_t offset, std::size_t count) {
  std::size_t started = 0;
  for (; text.size() - offset >= 8; offset += 8) {
    const std::size_t starts = StartsInWord(text, offset);
    if (started + starts > count) break;
    started += starts;
  }
  for (; offset < text.size(); ++offset) {
    started += static_cast<std::size_t>(StartsCharacter(text[offset]));
    if (started > count) break;
  }
  return offset;
}

std::size_t AsciiPrefix(std::string_view text) {
  std::size_t offset = SkipAsciiBlocks(text, 0);
  if (text.size() - offset >= sizeof(std::uint64_t)) {
    const std::size_t last = text.size() - sizeof(std::uint64_t);
    while (offset < last && IsAsciiWord(text, offset)) offset += sizeof(std::uint64_t);
    // The last word may overlap the one before.
    if (offset >= last && IsAsciiWord(text, last)) return text.size();
  }
  while (offset < text.size() && static_cast<unsigned char>(text[offset]) < 0x80) ++offset;
  return offset;
}

std::size_t FindIllFormedUtf8(std::string_view text) {
  std::size_t offset = 0;
  while (offset < text.size()) {
    offset += AsciiPrefix(text.substr(offset));
    while (offset < text.size() && static_cast<unsigned char>(text[offset]) >= 0x80) {
      const std::size_t start = offset;
      if (Decode(text, offset) == kIllFormed) return start;
    }
  }
  return text.size();
}

bool IsValidUtf8(std::string_view text) {
  // ASCII is passed over by the word, other characters are checked by half a word.
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  std::uint64_t state = kBoundary;
  std::size_t offset = 0;
  const auto check = [&](std::size_t end) {
    for (; offset < end; ++offset) {
      state = kTransitions[static_cast<unsigned char>(text[offset])] >> (state & 63U);
    }
    state &= 63U;
  };
  while (text.size() - offset >= kWord) {
    if (state == kBoundary) {
      const std::uint64_t high = LowestFirst(text.data() + offset) & kHighBits;
      if (high == 0) {
        offset = SkipAsciiBlocks(text, offset + kWord);
        continue;
      }
      offset += static_cast<std::size_t>(std::countr_zero(high)) / 8;
    }
    check(std::min(offset + kWord / 2, text.size()));
  }
  check(text.size());
  return state == kBoundary;
}

bool HasWholeEnds(std::string_view text) {
  if (text.empty()) return true;
  const int ends = text.front() | text.back();
  if (static_cast<unsigned char>(ends) < 0x80) return true;
  if (!StartsCharacter(text.front())) return false;
  std::size_t last = text.size() - 1;
  while (!StartsCharacter(text[last])) --last;
  return Decode(text, last) != kIllFormed;
}

std::string RepairUtf8(std::string_view text) {
  std::string repaired;
  repaired.reserve(text.size());
  while (!text.empty()) {
    std::size_t good = FindIllFormedUtf8(text);
    repaired.append(text.substr(0, good));
    if (good < text.size()) {
      Decode(text, good);
      AppendUtf8(repaired, kReplacementCharacter);
    }
    text.remove_prefix(good);
  }
  return repaired;
}

void AppendUtf8(std::string &text, char32_t character) {
  if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
    character = kReplacementCharacter;
  }
  char bytes[4];
  std::size_t size = 0;
  const auto add = [&](char32_t byte) { bytes[size++] = static_cast<char>(byte); };
  if (character < 0x80) {
    add(character);
  } else if (character < 0x800) {
    add(0xC0 | (character >> 6U));
    add(0x80 | (character & 0x3FU));
  } else if (character < 0x10000) {
    add(0xE0 | (character >> 12U));
    add(0x80 | ((character >> 6U) & 0x3FU));
    add(0x80 | (character & 0x3FU));
  } else {
    add(0xF0 | (character >> 18U));
    add(0x80 | ((character >> 12U) & 0x3FU));
    add(0x80 | ((character >> 6U) & 0x3FU));
    add(0x80 | (character & 0x3FU));
  }
  text.append(bytes, size);
}

char32_t NextCharacter(std::string_view text, std::size_t &offset) {
  const char32_t character = Decode(text, offset);
  return character == kIllFormed ? kReplacementCharacter : character;
}

CharacterClass ClassOf(char32_t character) {
  const auto code = static_cast<UChar32>(character);
  if (u_isUWhiteSpace(code) != 0) return CharacterClass::kBlank;
  const auto category = U_GET_GC_MASK(code);
  if ((category & U_GC_P_MASK) != 0) return CharacterClass::kPunctuation;
  if ((category & (U_GC_S_MASK | U_GC_CF_MASK)) == 0) return CharacterClass::kWord;
  return character < 0x80 ? CharacterClass::kPunctuation : CharacterClass::kSymbol;
}

std::string WithoutControls(std::string text) {
  std::size_t kept = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t start = offset;
    if (IsControl(NextCharacter(text, offset))) continue;
    if (kept != start) {
      std::copy(text.begin() + static_cast<std::ptrdiff_t>(start),
                text.begin() + static_cast<std::ptrdiff_t>(offset),
                text.begin() + static_cast<std::ptrdiff_t>(kept));
    }
    kept += offset - start;
  }
  text.resize(kept);
  return text;
}

namespace {

bool IsJoiner(char32_t character) {
  return character == 0x200C || character == 0x200D;
}

bool IsFormat(char32_t character) {
  constexpr char32_t kSoftHyphen = 0xAD;
  constexpr char32_t kLineSeparator = 0x2028;
  constexpr char32_t kParagraphSeparator = 0x2029;
  return (u_charType(static_cast<UChar32>(character)) == U_FORMAT_CHAR &&
          character != kSoftHyphen) ||
         character == kLineSeparator || character == kParagraphSeparator;
}

bool IsLetterBeyondAscii(char32_t character) {
  return character >= 0x80 && u_isalpha(static_cast<UChar32>(character)) != 0;
}

}  // namespace

std::string WithVisibleFormats(std::string_view text) {
  if (AsciiPrefix(text) == text.size()) return std::string(text);
  std::string shown;
  char32_t before = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    const char32_t character = NextCharacter(text, offset);
    std::size_t next = offset;
    const bool joins = IsJoiner(character) && offset < text.size() && IsLetterBeyondAscii(before) &&
                       IsLetterBeyondAscii(NextCharacter(text, next));
    if (IsFormat(character) && !joins) {
      constexpr std::string_view kHex = "0123456789ABCDEF";
      shown += "<U+";
      for (int shift = character > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4) {
        shown += kHex[(character >> static_cast<unsigned>(shift)) & 15U];
      }
      shown += '>';
    } else {
      AppendUtf8(shown, character);
    }
    before = character;
  }
  return shown;
}

bool HasDirections(std::string_view text) {
  constexpr char kFirstByte = '\xE2';
  for (std::size_t at = text.find(kFirstByte); at != std::string_view::npos;
       at = text.find(kFirstByte, at)) {
    const char32_t character = NextCharacter(text, at);
    const bool embeds = character >= 0x202A && character <= 0x202E && character != 0x202C;
    if (embeds || (character >= 0x2066 && character <= 0x2068)) return true;
  }
  return false;
}

std::string Isolated(std::string_view text) {
  constexpr std::string_view kIsolate = "\xE2\x81\xA8";
  constexpr std::string_view kPop = "\xE2\x81\xA9";
  if (!HasDirections(text)) return std::string(text);
  std::size_t open = 1;
  std::string isolated(kIsolate);
  for (std::size_t offset = 0; offset < text.size();) {
    const std::size_t start = offset;
    const char32_t character = NextCharacter(text, offset);
    if (character >= 0x2066 && character <= 0x2068) ++open;
    // One that would end the isolation ends nothing.
    const bool ends = character == 0x2069 && open-- == 1;
    if (ends) {
      open = 1;
    } else {
      isolated += text.substr(start, offset - start);
    }
  }
  for (; open != 0; --open) isolated += kPop;
  return isolated;
}

int ColumnWidth(char32_t character) {
  if (character < 0x300) return character == 0xAD ? 0 : 1;
  // Not worth a look-up: Greek and Cyrillic but for its combining marks, punctuation and
  // currencies; kana but for its combining marks, ideographs, Hangul.
  if ((character >= 0x386 && character < 0x483) || (character >= 0x48A && character < 0x530) ||
      (character >= 0x2010 && character < 0x2028) || (character >= 0x20A0 && character < 0x20C0)) {
    return 1;
  }
  if ((character >= 0x3041 && character <= 0x3096) || (character >= 0x30A1 && character < 0x3100) ||
      (character >= 0x4E00 && character < 0xA000) || (character >= 0xAC00 && character < 0xD7A4)) {
    return 2;
  }
  const auto code = static_cast<UChar32>(character);
  const auto mask = U_GET_GC_MASK(code);
  if ((mask & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0) return 0;
  const int width = u_getIntPropertyValue(code, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

std::size_t NextWidth(std::string_view text, std::size_t &offset) {
  return static_cast<std::size_t>(ColumnWidth(NextCharacter(text, offset)));
}

bool IsNarrow(std::string_view text) {
  const auto *bytes = reinterpret_cast<const unsigned char *>(text.data());
  const std::size_t whole = text.size() - std::min<std::size_t>(text.size(), 2);
  unsigned char other = 0;
  for (std::size_t at = 0; at < whole; ++at) {
    other |= MayNotBeNarrow(bytes[at], bytes[at + 1], bytes[at + 2]);
  }
  for (std::size_t at = whole; at < text.size(); ++at) {
    other |= MayNotBeNarrow(bytes[at], at + 1 < text.size() ? bytes[at + 1] : 0, 0);
  }
  return other == 0;
}

std::size_t ColumnWidth(std::string_view text) {
  std::size_t columns = 0;
  for (std::size_t offset = 0; offset < text.size();) {
    if (static_cast<unsigned char>(text[offset]) < 0x80) {
      const std::size_t ascii = AsciiPrefix(text.substr(offset));
      offset += ascii;
      columns += ascii;
    } else {
      columns += NextWidth(text, offset);
    }
  }
  return columns;
}

}  // namespace vs_wml
