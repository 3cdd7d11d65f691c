// SPDX-License-Identifier: MIT
//
// Text as it stands on a terminal (columns, alignment, styles over line ends, links), and what
// HTML may hold.
#include <gtest/gtest.h>

#include "written.h"

namespace vs_wml::test {
namespace {

TEST(TextWriter, LaysOutTables) {
  const struct {
    std::size_t width;
    const char *table;
    const char *text;
  } cases[] = {
      {20,
       "columns='2' align='LR'><tr><td>日本</td><td>1</td></tr><tr><td>a</td><td>1000</td></tr>",
       "日本     1\na     1000\n"},
      {20, "columns='3'><tr><td>a</td><td></td><td>c</td></tr><tr><td></td><td>b</td></tr>",
       "a     c\n   b\n"},
      {16,
       "columns='2' align='CC'><tr><td>a<br/>bcd</td><td>e</td></tr>"
       "<tr><td>x</td><td>wide cell text</td></tr>",
       " a        e\nbcd\n x    wide cell\n        text\n"},
      // Too narrow for words, then for columns: nothing is lost.
      {12, "columns='2'><tr><td>日本語テスト</td><td>one two three</td></tr>",
       "日   one\n本   two\n語   three\nテ\nス\nト\n"},
      {3, "columns='3'><tr><td>ab</td><td>日本</td><td>c</td></tr>", "a  日  c\nb  本\n"},
      {1, "columns='2'><tr><td>e&#x301;f</td><td>x</td></tr>", "e\xCC\x81  x\nf\n"},
  };
  for (const auto &item : cases) {
    WriterOptions options;
    options.width = item.width;
    EXPECT_EQ(Written(Format::kText, std::string("<table ") + item.table + "</table>", options),
              item.text)
        << item.table;
  }
}

TEST(TextWriter, LaysOutParagraphs) {
  const struct {
    bool color;
    const char *content;
    const char *text;
  } cases[] = {
      {false, "<p align='right'>日本 a</p><p align='center'>é</p>", "    日本 a\n\n    é\n"},
      {false, "<p align='center'>longlonglonglong x</p>", "longlonglonglong\n    x\n"},
      {false, "<p>e&#x301;e&#x301;e&#x301;e&#x301;e&#x301;e&#x301;e&#x301;e&#x301; x y</p>",
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81"
       "e\xCC\x81 x\ny\n"},
      {false, "<p>a&#xA0;b&#xA0;c&#xA0;d&#xA0;e&#xA0;f g</p>",
       "a\u00A0b\u00A0c\u00A0d\u00A0e\u00A0f\ng\n"},
      {false, "<p>😀😀😀😀😀😀</p>", "😀😀😀😀😀\n😀\n"},
      // Styles end with the line and begin again on the next.
      {true, "<p><b>one two</b> x <a href='u'>four five</a></p>",
       "\x1B[0;1mone two\x1B[0m x\n\x1B[0;4;34mfour\x1B[0m\n\x1B[0;4;34mfive[1]\x1B[0m\n\n[1] u\n"},
      {true, "<p><b>a</b><i>b</i>c</p>", "\x1B[0;1ma\x1B[0;3mb\x1B[0mc\n"},
      // Links beside each other have numbers of their own; a card lists those it has.
      {false, "<p><a href='1'>a</a><a href='1'>b</a></p></card><card><p><a href='2'>c</a></p>",
       "a[1]b[2]\n\n[1] 1\n[2] 1\n\n──────────\n\nc[3]\n\n[3] 2\n"},
  };
  for (const auto &item : cases) {
    WriterOptions options;
    options.width = 10;
    options.color = item.color;
    EXPECT_EQ(Written(Format::kText, item.content, options), item.text) << item.content;
  }
}

TEST(HtmlWriter, LinksAndIdsAreWhatAPageMayHave) {
  const struct {
    const char *content;
    const char *part;  ///< stands in the page
  } cases[] = {
      {"<p><a href='a b|é'>x</a></p>", "<a href=\"a%20b%7C%C3%A9\">x</a>"},
      {"<p><a href='?a=%20&amp;b=1'>x</a></p>", "<a href=\"?a=%20&amp;b=1\">x</a>"},
      {"<p><a href='JAVA&#10;script:x'>x</a></p>",
       "<span class=\"inert\" title=\"JAVAscript:x\">x</span>"},
      {"<p><a href='&#1;data:x'>x</a></p>", "<span class=\"inert\" title=\"data:x\">x</span>"},
      {"<p><anchor>x<go href='javascript:y' method='post'/></anchor></p>",
       "<span class=\"inert\" title=\"POST javascript:y\">x</span>"},
      {"<p><anchor>x<go href='u' method='post'><postfield name='&quot;' value='&lt;'/></go>"
       "</anchor></p>",
       "<input type=\"hidden\" name=\"&quot;\" value=\"&lt;\">"},
      {"</card><card id='a b'><p>x</p>", "<section>\n<p>x</p>"},
      {"</card><card id='k'/><card id='k'><p>x</p>", "<section>\n<p>x</p>"},
      {"</card><card id='unwml-form-1'><p>x</p>", "<section>\n<p>x</p>"},
      {"<p><img src='data:image/svg+xml,x' alt='&lt;'/></p>", "<p>[&lt;]</p>"},
  };
  for (const auto &item : cases) {
    const std::string page = Written(Format::kHtml, item.content);
    EXPECT_NE(page.find(item.part), std::string::npos)
        << item.content << page.substr(page.find("<body>"));
  }
}

TEST(HtmlWriter, FormsAndFieldsAreThoseOfTheDeck) {
  const std::string send =
      "<do type='accept' label='S'><go href='s' method='post'><postfield name='f' value='$n'/>"
      "<postfield name='g' value='1'/></go></do>";
  const struct {
    std::string content;
    const char *part;  ///< stands in the page
  } cases[] = {
      {"<p><input name='n' type='password' value='v' size='3' maxlength='4' title='T'/></p>",
       "<p><input name=\"n\" aria-label=\"T\" type=\"password\" value=\"v\" size=\"3\" "
       "maxlength=\"4\" title=\"T\"></p>"},
      {"<p><input name='n'/></p>", "<p><input name=\"n\" aria-label=\"n\" type=\"text\"></p>"},
      {"<p><input type='submit' value='Go'/><input type='button'/></p>",
       "<p><input name=\"\" aria-label=\"\" type=\"button\" value=\"Go\">"
       "<input name=\"\" aria-label=\"\" type=\"button\"></p>"},
      {"<p><select name='n'><option value='1'>A<option value='&lt;'>B</select></p>",
       "<p><select name=\"n\" aria-label=\"n\"><option value=\"1\" selected>A</option>"
       "<option value=\"&lt;\">B</option></select></p>"},
      {"<p><select title='T'><optgroup title='G'><option>A</optgroup><option>B</select></p>",
       "aria-label=\"T\" title=\"T\"><optgroup label=\"G\"><option value=\"\" selected>A</option>"
       "</optgroup><option value=\"\">B</option></select>"},
      {"<p><select><option>A<optgroup title='G'><option>B</select></p>",
       "A</option><optgroup label=\"G\"><option value=\"\">B</option></optgroup></select>"},
      {"<p><select multiple='true'></select></p>", " multiple size=\"1\"></select>"},
      {"<p><select multiple='true'><option/><option/></select></p>", " multiple size=\"2\">"},
      {"<p><select multiple='true'><option/><option/><option/><option/><option/><option/><option/>"
       "</select></p>",
       " multiple size=\"6\">"},
      // What a field is sent as, and by which form.
      {"<p><input name='n'/></p>" + send,
       "<input form=\"unwml-form-0\" name=\"f\" aria-label=\"n\" type=\"text\">"},
      {send,
       "<p><button form=\"unwml-form-0\">S</button></p>\n<form id=\"unwml-form-0\" action=\"s\" "
       "method=\"post\"><input type=\"hidden\" name=\"f\" value=\"{n}\">"
       "<input type=\"hidden\" name=\"g\" value=\"1\"></form>\n"},
      {"<p><input name='n'/></p>" + send,
       "method=\"post\"><input type=\"hidden\" name=\"g\" value=\"1\"></form>"},
      {"<do><go href='s' enctype='multipart/form-data'><postfield name='a' value='b'/></go></do>",
       "action=\"s\" method=\"get\" enctype=\"multipart/form-data\"><input type=\"hidden\""},
      {"<do><go href='s' method='post' enctype='text/plain'/></do>", "method=\"post\"></form>"},
      // What is no form.
      {"<do label='L'><go href='#c' method='post'/></do>", "<a href=\"#c\" class=\"key\">L</a>"},
      {"<do label='L' title='T'><go href='s'/></do>",
       "<a href=\"s\" class=\"key\" title=\"T\">L</a>"},
      {"<do type='prev'><prev/></do>", "<span class=\"inert key\" title=\"(back)\">Back</span>"},
      {"<p><anchor>x<refresh/></anchor></p>", "<span class=\"inert\" title=\"(refresh)\">x</span>"},
      {"</card><card ontimer='t'>", "<a href=\"t\" class=\"event\">On timer</a>"},
  };
  for (const auto &item : cases) {
    const std::string page = Written(Format::kHtml, item.content);
    EXPECT_NE(page.find(item.part), std::string::npos)
        << item.content << page.substr(page.find("<body>"));
  }
}

// The action of a template stands in each card; its form, once in the page.
TEST(HtmlWriter, FormsStandOnce) {
  const std::string page = Written(
      Format::kHtml,
      "</card><template><do label='S'><go href='s' method='post'/></do></template><card><p>1</p>"
      "</card><card><p>2</p>");
  const auto count = [&](std::string_view part) {
    std::size_t found = 0;
    for (std::size_t at = page.find(part); at != std::string::npos; at = page.find(part, at + 1)) {
      ++found;
    }
    return found;
  };
  EXPECT_EQ(count("<button form=\"unwml-form-0\">S</button>"), 2U);
  EXPECT_EQ(count("<form id=\"unwml-form-0\""), 1U);
}

TEST(HtmlWriter, TextAndTablesHaveTheirLooks) {
  const struct {
    const char *content;
    const char *part;  ///< stands in the page
  } cases[] = {
      {"<p>a<big>b</big><small>c</small><b><i><u>d</u></i></b></p>",
       "<p>a<span class=\"big\">b</span><span class=\"small\">c</span><b><i><u>d</u></i></b></p>"},
      {"<p><a href='x'><u>a</u></a></p>", "<p><a href=\"x\">a</a></p>"},
      {"<p align='right'>a<br/>b</p><p>c</p>", "<p class=\"r\">a<br>\nb</p>\n<p>c</p>"},
      {"<pre>a\n  b</pre>", "<pre>\na\n  b</pre>"},
      {"<p align='center'>a</p>", "<p class=\"c\">a</p>"},
      {"<p><b>a</b>&lt;&gt;&amp;&quot;&apos;</p>", "<p><b>a</b>&lt;&gt;&amp;&quot;&#39;</p>"},
  };
  for (const auto &item : cases) {
    const std::string page = Written(Format::kHtml, item.content);
    EXPECT_NE(page.find(item.part), std::string::npos)
        << item.content << page.substr(page.find("<body>"));
  }
  EXPECT_NE(Written(Format::kHtml, "<p>x</p>").find("default-src 'none'"), std::string::npos)
      << "a page runs nothing";
}

// What a writer writes of a document does not depend on the one before.
TEST(Writers, BeginEachDocumentAnew) {
  const std::string documents[] = {
      "<wml><card id='a' title='A'><p>x <a href='u' title='t'>y</a><img src='i' alt='z'/></p>"
      "<do type='accept'><go href='s' method='post'><postfield name='f' value='$v'/></go></do>"
      "<input name='v'/><table columns='2' title='T'><tr><td>b<td>c</table></card></wml>",
      "<wml><card id='a'><pre>a\n b</pre><p><b>unclosed<card id='a'></card>", "<wml></wml>",
      "<wml><card><p>&amp;</p><do type='accept'><go href='s' method='post'/></do></card></wml>"};
  const auto write = [](BlockSink &writer, const std::string &document) {
    ReadDeck(PrepareDeck("deck.wml", document, {}), writer);
  };
  for (const Format format : {Format::kText, Format::kHtml, Format::kJson, Format::kMarkdown}) {
    WriterOptions options;
    options.nameHeading = true;
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    const auto writer = MakeWriter(format, output, options);
    for (const std::string &before : documents) {
      for (const std::string &document : documents) {
        written.clear();
        write(*MakeWriter(format, output, options), document);
        const std::string fresh = written;
        write(*writer, before);
        written.clear();
        write(*writer, document);
        EXPECT_EQ(written, fresh) << before << document;
      }
    }
  }
}

TEST(HtmlWriter, PagesAreNamedAfterTheFirstCardOrTheDocument) {
  EXPECT_NE(Written(Format::kHtml, "<p>x</p>").find("<title>deck.wml</title>"), std::string::npos);
  EXPECT_NE(Written(Format::kHtml, "</card><card title='&lt;T'>x").find("<title>deck.wml</title>"),
            std::string::npos);
  const auto page = [](const std::string &document) {
    std::string written;
    Output output([&](std::string_view piece) { written += piece; });
    ReadDeck(PrepareDeck("a<b", document, {}), *MakeHtmlWriter(output, {}));
    return written;
  };
  EXPECT_NE(page("<wml><card title='&lt;T'>x").find("<title>&lt;T</title>"), std::string::npos);
  EXPECT_NE(page("<wml><card>x").find("<title>a&lt;b</title>"), std::string::npos);
  EXPECT_NE(page("<wml>").find("<title>a&lt;b</title>"), std::string::npos);
}

}  // namespace
}  // namespace vs_wml::test
