// SPDX-License-Identifier: MIT
#include "deck.h"

#include <iconv.h>

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <stdexcept>
#include <vector>

#include "deck_words.h"

namespace {

constexpr size_t kCardSize = 20000;  // bytes, about

// SplitMix64: the standard library's distributions differ from one library to the next.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed) {}

  uint32_t Below(size_t limit) {
    state_ += 0x9E3779B97F4A7C15u;
    uint64_t bits = (state_ ^ (state_ >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return static_cast<uint32_t>(((bits ^ (bits >> 31)) >> 32) * limit >> 32);
  }
  uint32_t Between(uint32_t low, uint32_t high) { return low + Below(high - low + 1); }
  bool Percent(uint32_t share) { return Below(100) < share; }

  template <typename T, size_t count>
  const T &Pick(const T (&items)[count]) {
    return items[Below(count)];
  }
  // The front of the list far more often than its back.
  template <typename T, size_t count>
  const T &PickSkewed(const T (&items)[count]) {
    return items[Below(Below(count) + 1)];
  }

 private:
  uint64_t state_;
};

template <size_t count>
std::vector<std::string> InShiftJis(const char *const (&words)[count]) {
  iconv_t converter = iconv_open("SHIFT_JIS", "UTF-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) {
    throw std::runtime_error("iconv does not know Shift_JIS");
  }
  std::vector<std::string> converted;
  for (std::string word : words) {
    std::string bytes(word.size() * 2, '\0');
    char *from = word.data();
    char *to = bytes.data();
    size_t fromLeft = word.size();
    size_t toLeft = bytes.size();
    iconv(converter, &from, &fromLeft, &to, &toLeft);
    bytes.resize(bytes.size() - toLeft);
    converted.push_back(bytes);
  }
  iconv_close(converter);
  return converted;
}

class DeckWriter {
 public:
  DeckWriter(DeckKind kind, uint64_t seed)
      : kind_(kind), random_(seed * kDeckNames.size() + static_cast<uint64_t>(kind)) {
    if (kind == DeckKind::kShiftJis) {
      words_ = InShiftJis(kJapaneseWords);
      particles_ = InShiftJis(kJapaneseParticles);
      ends_ = InShiftJis(kJapaneseEnds);
    }
  }

  std::string Write(size_t size) && {
    out_.reserve(size + kCardSize);
    const bool japanese = kind_ == DeckKind::kShiftJis;
    Add({"<?xml version=\"1.0\"", japanese ? " encoding=\"Shift_JIS\"" : "", "?>\n",
         "<!DOCTYPE wml SYSTEM \"wml.dtd\">\n<wml>\n"});
    if (japanese) {
      Add(
          {"<head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=Shift_JIS\"/>"
           "</head>\n"});
    }
    for (uint32_t card = 1; out_.size() < size; ++card) {
      Add({"<card id=\"c", std::to_string(card), "\" title=\"", Phrase(), "\">\n"});
      const size_t end = std::min(out_.size() + kCardSize, size);
      do {
        Block();
      } while (out_.size() < end);
      Add({"</card>\n"});
    }
    Add({"</wml>\n"});
    return std::move(out_);
  }

 private:
  void Add(std::initializer_list<std::string_view> pieces) {
    for (std::string_view piece : pieces) out_.append(piece);
  }
  std::string Number(uint32_t low, uint32_t high) {
    return std::to_string(random_.Between(low, high));
  }

  // ------------------------------------------------------------- words

  std::string Word() {
    if (kind_ != DeckKind::kShiftJis) return random_.PickSkewed(kWords);
    return words_[random_.Below(words_.size())];
  }

  // One to four words.
  std::string Phrase() {
    std::string phrase = Word();
    for (uint32_t more = random_.Below(4); more > 0; --more) {
      if (kind_ != DeckKind::kShiftJis) phrase += ' ';
      phrase += Word();
    }
    return phrase;
  }

  void Sentence() {
    if (kind_ == DeckKind::kShiftJis) return JapaneseSentence();
    const size_t start = out_.size();
    const uint32_t count = random_.Between(5, 18);
    const uint32_t comma = random_.Between(3, 14);
    for (uint32_t i = 0; i < count; ++i) {
      if (i > 0) out_ += i == comma ? ", " : " ";
      if (random_.Percent(93)) {
        out_ += random_.PickSkewed(kWords);
      } else if (random_.Percent(50)) {
        out_ += random_.Pick(kProperNames);
      } else {
        Add({Number(0, 23), random_.Percent(50) ? ":" : "/", Number(10, 59)});
      }
    }
    out_[start] = static_cast<char>(std::toupper(static_cast<unsigned char>(out_[start])));
    out_ += "...?!"[random_.Below(5)];
  }

  void JapaneseSentence() {
    for (uint32_t clauses = random_.Between(3, 9); clauses > 0; --clauses) {
      Add({Word(), particles_[random_.Below(particles_.size())]});
    }
    if (random_.Percent(30)) out_ += Number(1, 2400);
    Add({Word(), ends_[random_.Below(ends_.size())]});
  }

  // ------------------------------------------------------------- blocks

  void Block() {
    switch (kind_) {
      case DeckKind::kText:
        return Paragraph(3, 10);
      case DeckKind::kMarkup:
        return MarkedParagraph();
      case DeckKind::kTables:
        Paragraph(3, 8);
        return Table();
      case DeckKind::kEntities:
        return ReferenceParagraph();
      case DeckKind::kShiftJis:
        return random_.Percent(85) ? Paragraph(3, 10) : JapaneseLinkParagraph();
      case DeckKind::kMixed:
        return MixedBlock();
    }
  }

  void Paragraph(uint32_t low, uint32_t high) {
    const uint32_t count = random_.Between(low, high);
    Add({"<p>"});
    for (uint32_t i = 0; i < count; ++i) {
      if (i > 0 && kind_ != DeckKind::kShiftJis) out_ += i % 2 == 0 ? '\n' : ' ';
      Sentence();
    }
    Add({"</p>\n"});
  }

  void MarkedParagraph() {
    constexpr const char *kStyles[] = {"b", "i", "u", "em", "strong", "small", "big"};
    Add({"<p>"});
    for (uint32_t count = random_.Between(8, 24); count > 0; --count) {
      const uint32_t choice = random_.Below(100);
      const char *style = random_.Pick(kStyles);
      if (choice < 40) {
        Add({"<", style, ">", Phrase(), "</", style, "> "});
      } else if (choice < 48) {
        Add({"<", style, ">", Phrase(), " <b>", Phrase(), "</b></", style, "> "});
      } else if (choice < 65) {
        Add({"<a href=\"deck", Number(1, 99), ".wml#c", Number(1, 999), "\">", Phrase(), "</a> "});
      } else {
        Add({Phrase(), choice < 75 ? "<br/>\n" : " "});
      }
    }
    Add({"</p>\n"});
  }

  void Table() {
    constexpr const char *kAttributes[] = {"", "", " align=\"LCR\"", " title=\"x\""};
    const uint32_t columns = random_.Between(2, 6);
    Add({"<p><table columns=\"", std::to_string(columns), "\"", random_.Pick(kAttributes), ">\n"});
    for (uint32_t rows = random_.Between(5, 20); rows > 0; --rows) {
      Add({"<tr>"});
      for (uint32_t column = 0; column < columns; ++column) {
        const uint32_t choice = random_.Below(6);
        if (choice < 2) {
          Add({"<td>", Number(0, 999), ".", Number(10, 99), "</td>"});
        } else {
          Add({"<td>", Phrase(), choice == 2 ? " " : "", choice == 2 ? Phrase() : "", "</td>"});
        }
      }
      Add({"</tr>\n"});
    }
    Add({"</table></p>\n"});
  }

  void ReferenceParagraph() {
    constexpr const char *kReferences[] = {
        "&amp;",  "&lt;",    "&gt;",     "&quot;", "&apos;", "&#233;",   "&#xE9;",
        "&#163;", "&#8211;", "&#x2019;", "&#246;", "&#65;",  "&#x20AC;",
    };
    Add({"<p>"});
    for (uint32_t count = random_.Between(12, 40); count > 0; --count) {
      Add({Phrase(), random_.Pick(kReferences), random_.Percent(67) ? " " : ""});
    }
    Add({"</p>\n"});
  }

  void JapaneseLinkParagraph() {
    Add({"<p><b>", Phrase(), "</b> <a href=\"d", Number(1, 99), ".wml\">", Phrase(),
         "</a><br/>\n"});
    Sentence();
    Add({"</p>\n"});
  }

  void MixedBlock() {
    switch (random_.Below(7)) {
      case 0:
      case 1:
        return Paragraph(3, 10);
      case 2:
        return MarkedParagraph();
      case 3:
        return Table();
      case 4:
        return ReferenceParagraph();
      default:
        return Furniture();
    }
  }

  // What a card has beside text.
  void Furniture() {
    constexpr const char *kAlignments[] = {"left", "center", "right"};
    switch (random_.Below(5)) {
      case 0:
      case 1:
        return Add({"<p align=\"", random_.Pick(kAlignments), "\"><img src=\"/img/", Word(),
                    ".wbmp\" alt=\"", Phrase(), "\" width=\"", Number(8, 96), "\" height=\"",
                    Number(8, 48), "\"/></p>\n"});
      case 2:
        Add({"<p><select name=\"v", Number(1, 99), "\">"});
        for (char value = '0'; value < '6'; ++value) {
          Add({"<option value=\"", {&value, 1}, "\">", Phrase(), "</option>"});
        }
        return Add({"</select></p>\n"});
      case 3:
        return Add({"<p>", Phrase(), ": <input name=\"v", Number(1, 99), "\" size=\"",
                    Number(4, 20), "\" title=\"", Phrase(), "\"/></p>\n"});
      default:
        return Add({"<p align=\"", random_.Pick(kAlignments), "\"><b>", Phrase(), "</b><br/>",
                    Phrase(), "</p>\n"});
    }
  }

  DeckKind kind_;
  Random random_;
  std::string out_;
  std::vector<std::string> words_, particles_, ends_;  // Japanese, in Shift_JIS
};

}  // namespace

std::string MakeDeck(DeckKind kind, size_t size, uint64_t seed) {
  return DeckWriter(kind, seed).Write(size);
}
