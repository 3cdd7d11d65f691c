// SPDX-License-Identifier: MIT
//
// Characters come out right whatever the document is written in and however it says so.
// The documents are encoded by iconv, which shares nothing with the code under test.
#include <gtest/gtest.h>
#include <iconv.h>

#include <string_view>
#include <thread>
#include <vector>

#include "host/platform/charset.h"
#include "host/platform/charsets.h"
#include "host/platform/converter.h"
#include "recorder.h"

namespace vs_wml::test {
namespace {

std::string Encode(const std::string &text, const char *charset) {
  iconv_t converter = iconv_open(charset, "UTF-8");
  if (converter == reinterpret_cast<iconv_t>(-1)) {
    ADD_FAILURE() << "iconv does not know " << charset;
    return text;
  }
  std::string copy = text;
  std::string encoded(text.size() * 4 + 64, '\0');
  char *in = copy.data();
  char *out = encoded.data();
  std::size_t inLeft = copy.size();
  std::size_t outLeft = encoded.size();
  EXPECT_EQ(iconv(converter, &in, &inLeft, &out, &outLeft), 0U) << charset << ": " << text;
  iconv(converter, nullptr, nullptr, &out, &outLeft);
  iconv_close(converter);
  encoded.resize(encoded.size() - outLeft);
  return encoded;
}

struct CharsetCase {
  const char *declared;
  const char *iconvName;
  const char *text;
};

const CharsetCase kCases[] = {
    {"UTF-8", "UTF-8", "Ünï 日本 한국 Ω 😀 é́"},
    {"us-ascii", "ASCII", "plain"},
    {"iso-8859-1", "CP1252", "Café “q” €"},
    {"8859_1", "ISO-8859-1", "Müller"},
    {"iso-8859-2", "ISO-8859-2", "Žluťoučký kůň"},
    {"iso-8859-3", "ISO-8859-3", "Ĉu ĝi"},
    {"iso-8859-4", "ISO-8859-4", "ķēniņš"},
    {"iso-8859-5", "ISO-8859-5", "Привет"},
    {"iso-8859-6", "ISO-8859-6", "مرحبا"},
    {"iso-8859-7", "ISO-8859-7", "Καλημέρα"},
    {"iso-8859-8", "ISO-8859-8", "שלום"},
    {"iso-8859-9", "ISO-8859-9", "ışık"},
    {"iso-8859-15", "ISO-8859-15", "Œuvre €"},
    {"windows-1250", "CP1250", "Žluťoučký"},
    {"x-cp1251", "CP1251", "Привет, мир — я"},
    {"windows-1253", "CP1253", "Καλημέρα Ά"},
    {"windows-1254", "CP1254", "ışık ğ"},
    {"windows-1255", "CP1255", "שלום"},
    {"windows-1256", "CP1256", "مرحبا"},
    {"windows-1257", "CP1257", "Ąžuolas"},
    {"koi8-r", "KOI8-R", "Привет, мир"},
    {"koi8", "KOI8-R", "Привет"},
    {"x-mac-roman", "MACINTOSH", "Café"},
    {"x-mac-ce", "MAC-CENTRALEUROPE", "Žluť"},
    {"shift_jis", "CP932", "日本語テスト表ソ能予ｱｲｳ①"},
    {"euc-jp", "EUC-JP", "日本語テスト表ソ能"},
    {"iso-2022-jp", "ISO-2022-JP", "日本語テスト表ソ能"},
    {"big5", "BIG5", "中文測試功許蓋"},
    {"gb2312", "GB18030", "中文测试镕开发"},
    {"euc-kr", "EUC-KR", "한국어 시험"},
    {"iso-2022-kr", "ISO-2022-KR", "한국어"},
};

// A document with the text in every place that a string can stand in.
std::string Document(const std::string &text, const std::string &xml, const std::string &meta) {
  return xml + "<wml><head>" + meta + "</head><card id='" + text + "' title='" + text + "'><p>" +
         text + "<a href=\"" + text + "?x=" + text + "\" title=\"" + text + "\">" + text +
         "</a><img src='" + text + ".wbmp' alt='" + text + "'/></p><table columns='1'><tr><td>" +
         text + "</td></tr></table></card></wml>";
}

std::string Expected(const std::string &text) {
  return "{" + text + "|" + text + "\nPl " + text + " [1:" + text + "?x=" + text + "|" + text +
         "]" + text + " <" + text + ".wbmp|" + text + ">\nT /l " + text + ",\n}\n.";
}

TEST(Charset, EveryCharacterComesBack) {
  for (const CharsetCase &item : kCases) {
    const std::string name = item.declared;
    SCOPED_TRACE(name);
    const std::string xml = "<?xml version=\"1.0\" encoding=\"" + name + "\"?>\n";
    const std::string meta =
        "<meta http-equiv='Content-Type' content='text/vnd.wap.wml; charset=" + name + "'/>";
    const std::string wrong = "<?xml version=\"1.0\" encoding=\"UTF-7\"?>\n";
    EXPECT_EQ(Blocks(Encode(Document(item.text, xml, ""), item.iconvName)), Expected(item.text));
    EXPECT_EQ(Blocks(Encode(Document(item.text, "", meta), item.iconvName)), Expected(item.text));
    DeckOptions options;
    options.charset = name;
    EXPECT_EQ(Blocks(Encode(Document(item.text, wrong, meta), item.iconvName), options),
              Expected(item.text));
  }
}

TEST(Charset, EverySetIsConverted) {
  std::string ascii;
  for (char c = ' '; c < 0x7F; ++c) ascii += c;
  ascii += "\t\r\n";
  for (const Charset &charset : kCharsets) {
    SCOPED_TRACE(charset.name);
    const Charset *found = FindCharset(charset.name);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->id, charset.id);
    std::string text;
    AppendConverted(text, ascii, charset);
    // Where ASCII needs no conversion, the converter leaves it alone.
    const bool plain = charset.form == CharsetForm::kAscii || charset.form == CharsetForm::kUtf8;
    EXPECT_TRUE(!plain || text == ascii);
    EXPECT_FALSE(text.empty());
  }
}

TEST(Charset, OnlyListedNamesAreKnown) {
  for (const char *name : {"UTF-8", " utf-8\n", "Latin1", "l5", "MS_Kanji", "kr2022", "x0212",
                           "8859_9", "x-mac-ce", "ksc5601", "TIS-620", "UCS-2", "koi8-u"}) {
    EXPECT_TRUE(IsKnownCharset(name)) << name;
  }
  for (const char *name : {"", "x11-compound-text", "compound-text", "utf-7", "hz-gb-2312", "scsu",
                           "bocu-1", "iso-2022-cn", "ibm-1047", "lmbcs-1", "cesu-8", "imap-mailbox",
                           "utf_8", "u t f 8", "replacement", "ebcdic-cp-us"}) {
    EXPECT_FALSE(IsKnownCharset(name)) << name;
  }
}

TEST(Charset, NumbersHaveNamesThatAreKnown) {
  for (std::uint32_t number = 0; number < 3000; ++number) {
    const std::string_view name = CharsetOfNumber(number);
    EXPECT_TRUE(name.empty() || IsKnownCharset(name)) << name;
  }
  EXPECT_EQ(CharsetOfNumber(17), "Shift_JIS");
  EXPECT_EQ(CharsetOfNumber(0), "");
}

// What a converter met before must not show in the next text.
TEST(Charset, AConversionDependsOnItsBytesAlone) {
  const std::string_view hostile[] = {"\x1B$B0\xFF\x1B", "\x1B$)C\x0E!", "\x0E\x1B(I1", "\xD8\x00",
                                      "\x81\x30\x81",    "\x1B%/1\x80",  "~{0\xFF"};
  const std::string_view probe = "ab\x30\x21\x0F\x41\x42";
  for (const Charset &charset : kCharsets) {
    std::string fresh;
    std::thread([&] { AppendConverted(fresh, probe, charset); }).join();
    for (const std::string_view bytes : hostile) {
      std::string ignored;
      AppendConverted(ignored, bytes, charset);
      std::string text;
      AppendConverted(text, probe, charset);
      EXPECT_EQ(text, fresh) << charset.name;
    }
  }
}

TEST(Charset, MarksAndWideFormsNeedNoDeclaration) {
  const std::string text = "Ünï 日本 😀";
  const std::string document = Document(text, "<?xml version=\"1.0\" encoding=\"koi8-r\"?>", "");
  for (const char *name : {"UTF-16", "UTF-32"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(Blocks(Encode(document, name)), Expected(text));
  }
  EXPECT_EQ(Blocks("\xEF\xBB\xBF" + document), Expected(text));
  const std::string plain = Document(text, "", "");
  for (const char *blanks : {"", "\n", "\r\n \t"}) {
    EXPECT_EQ(Blocks(Encode(blanks + plain, "UTF-16LE")), Expected(text));
    EXPECT_EQ(Blocks(Encode(blanks + plain, "UTF-16BE")), Expected(text));
  }
}

TEST(Charset, IsFoundInTheOrderOfBelief) {
  const std::string utf8 = "<wml><card><p>\xC3\xA9</p></card></wml>";
  const std::string latin = "<wml><card><p>\xE9t\xE9</p></card></wml>";
  const std::string koi8 =
      Encode("<wml><card><p>Сегодня хорошая погода, и мы идем в парк</p></card>", "KOI8-R");
  struct {
    std::string bytes;
    CharsetOrigin origin;
    const char *name;
    std::size_t warnings;
  } const cases[] = {
      {"\xEF\xBB\xBF<?xml encoding='koi8-r'?>", CharsetOrigin::kByteOrderMark, "UTF-8", 0},
      {"<?xml encoding='koi8-r'?><meta content='charset=big5'/>", CharsetOrigin::kXmlDeclaration,
       "koi8-r", 0},
      {"<META CONTENT=\"text/x; Charset=big5\"/>" + utf8, CharsetOrigin::kMeta, "big5", 0},
      {"<?xml encoding=\"UTF-16\"?>" + utf8, CharsetOrigin::kValidUtf8, "UTF-8", 1},
      {"<?xml encoding=\"no-such\"?>" + utf8, CharsetOrigin::kValidUtf8, "UTF-8", 1},
      {koi8, CharsetOrigin::kDetector, "KOI8-R", 0},
      {"HTTP/1.1 200 OK\r\nContent-Type: text/vnd.wap.wml; charset=Big5\r\n\r\n" + utf8,
       CharsetOrigin::kHeader, "big5", 0},
      {"Content-Type: x; charset=big5\r\n\r\n<?xml encoding='koi8-r'?>" + utf8,
       CharsetOrigin::kXmlDeclaration, "koi8-r", 0},
      {utf8 + "content-type: x; charset=big5", CharsetOrigin::kValidUtf8, "UTF-8", 0},
      {"<!-- <?xml encoding='big5'?> <meta content='charset=big5'/> -->" + utf8,
       CharsetOrigin::kValidUtf8, "UTF-8", 0},
  };
  for (const auto &item : cases) {
    SCOPED_TRACE(item.bytes);
    std::vector<std::string> warnings;
    const DetectedCharset found = DetectCharset(item.bytes, "", warnings);
    EXPECT_EQ(found.origin, item.origin);
    EXPECT_EQ(found.name, item.name);
    EXPECT_EQ(warnings.size(), item.warnings);
  }
  EXPECT_EQ(Blocks(latin), "{|\nPl été\n}\n.");
}

TEST(Charset, WarningsQuoteNamesWithoutControls) {
  std::vector<std::string> warnings;
  DetectCharset("<?xml encoding='a\x7F\xC2\x9B\xFF'?><wml/>", "", warnings);
  EXPECT_EQ(warnings,
            std::vector<std::string>{"declared character set \"a\xEF\xBF\xBD\" is unknown"});
}

TEST(Charset, IllFormedBytesShowAsReplacements) {
  EXPECT_EQ(
      Blocks("<?xml encoding='utf-8'?><wml><card title='\xFF'><p>a\xC3 b\xE2\x82 \xED\xA0\x80"),
      "{|\xEF\xBF\xBD\nPl a\xEF\xBF\xBD b\xEF\xBF\xBD "
      "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD\n}\n.");
}

TEST(Charset, IdentityServesTheBytesUntouched) {
  const struct {
    std::int16_t identity;
    const char *iconvName;
    const char *text;
  } cases[] = {{1160, "CP932", "日本語表ソ"}, {1161, "EUC-JP", "日本語表ソ"},
               {1154, "BIG5", "中文功許蓋"},  {1156, "GB2312", "中文测试"},
               {1162, "EUC-KR", "한국어"},    {1157, "CP1251", "Привет"},
               {1158, "KOI8-R", "Привет"},    {1163, "CP1250", "Žluť"},
               {1151, "ISO-8859-1", "Müller"}};
  for (const auto &item : cases) {
    SCOPED_TRACE(item.identity);
    DeckOptions options;
    options.identity = item.identity;
    const std::string text = item.text;
    const std::string document = "<wml><card><p>" + text + "&eacute;" + text + "</p></card></wml>";
    EXPECT_EQ(Blocks(Encode(document, item.iconvName), options),
              "{|\nPl " + text + "é" + text + "\n}\n.");
  }
}

}  // namespace
}  // namespace vs_wml::test
