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

// Where columns would be too narrow to read, each cell has lines of its own: beside a long word
// the lines of a row would be blank.
TEST(TextWriter, SetsCellsBelowEachOtherWhereColumnsHaveNoRoom) {
  const std::string word(1000, 'x');
  std::string row = "<tr>";
  for (int column = 0; column < 30; ++column) row += "<td>y";
  EXPECT_EQ(
      Written(Format::kText, "<table columns='32'>" + row + "<td>" + word +
                                 "<td>z</tr><tr><td>a<td/><td>b c</table>"),
      "y\n" +
          [] {
            std::string rest;
            for (int column = 1; column < 30; ++column) rest += "  y\n";
            return rest;
          }() +
          "  " + word + "\n  z\na\n  b c\n");
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

TEST(TextWriter, ShowsChoicesTargetsAndDirections) {
  WriterOptions options;
  options.hyperlinks = true;
  const struct {
    const char *content;
    const char *text;
  } cases[] = {
      {"<p>Size: <select name='s' title='T'><option>a b</option><option>c</option></select> x</p>",
       "Size:\nT:\n(*) a b\n( ) c\nx\n"},
      {"<p><select multiple='true'><optgroup title='G'><option>a</option></optgroup></select></p>",
       "G:\n[ ] a\n"},
      {"<p><anchor>a<go href='http://h/é'><setvar name='x' value='17'/></go></anchor></p>",
       "a[1]\n\n[1] \x1B]8;;http://h/%C3%A9\x1B\\http://h/é (x:=17)\x1B]8;;\x1B\\\n"},
      {"<p><a href='u&#x202E;v'>a&#x202E;b</a></p>",
       "\u2068\u2068a\u202Eb\u2069[1]\u2069\n\n[1] u<U+202E>v\n"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(Written(Format::kText, item.content, options), item.text) << item.content;
  }
}

std::string Repeated(const std::string &text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

// The actions of a template stand in every card; long ones are said once they are too many.
TEST(Writers, SayLongValuesInProportion) {
  const std::string target(1000, 'u');
  std::string deck = "</card><template><do label='S'><go href='" + target + "'/></do></template>";
  for (int i = 0; i < 1000; ++i) deck += "<card><p>x</p></card>";
  const std::string text = Written(Format::kText, deck + "<card>");
  EXPECT_LT(text.size(), 400000U);
  EXPECT_NE(text.find("] as [1]\n"), std::string::npos);
  const std::string title(1000, 't');
  const std::string groups =
      Written(Format::kText,
              "<p><select><optgroup title='" + title + "'><option>a</option>" +
                  Repeated("<optgroup><option>b</option></optgroup><option>c</option>", 1000) +
                  "</optgroup></select></p>");
  EXPECT_NE(groups.find(title + ":\n"), std::string::npos);
  EXPECT_NE(groups.find(title.substr(0, 24) + "... (as above):\n"), std::string::npos);
  const std::string markdown = Written(Format::kMarkdown, deck + "<card>");
  EXPECT_LT(markdown.size(), 300000U);
  EXPECT_NE(markdown.find("[S][target 1.0]\n"), std::string::npos);
  EXPECT_NE(markdown.find("\n[target 1.0]: " + target + "\n"), std::string::npos);
}

struct PagePart {
  std::string content;  ///< of a card
  const char *part;     ///< stands in the page
};

void ExpectParts(std::initializer_list<PagePart> cases) {
  for (const PagePart &item : cases) {
    const std::string page = Written(Format::kHtml, item.content);
    EXPECT_NE(page.find(item.part), std::string::npos)
        << item.content << page.substr(page.find("<body>"));
  }
}

TEST(HtmlWriter, LinksAndIdsAreWhatAPageMayHave) {
  ExpectParts({
      {"<p><a href='a b|é'>x</a></p>", "<a href=\"a%20b%7C%C3%A9\">x</a>"},
      {"<p><a href='?a=%20&amp;b=1'>x</a></p>", "<a href=\"?a=%20&amp;b=1\">x</a>"},
      {"</card><card id='a b'><p>x</p>", "<section>\n<h2><span class=\"own\">#a b</span></h2>"},
      {"</card><card id='k'/><card id='k'><p>x</p>",
       "<section>\n<h2><span class=\"own\">#k</span>"},
      {"</card><card id='unwml-form-1'><p>x</p>", "<section>\n<h2>"},
      {"</card><card id='k' title='T'><p>x</p>",
       "<section id=\"k\">\n<h2><span>T</span><span class=\"own\">#k</span></h2>"},
      {"</card><card><p>x</p>", "<h2><span class=\"own\">Card 2</span></h2>\n<p>x</p>"},
      {"<p>x</p>", "<section>\n<p>x</p>"},
      // What cannot be followed is no link, and says why.
      {"<p><a href='JAVA&#10;script:x'>x</a></p>",
       "<span class=\"inert\">x</span> <span class=\"why\">(not followed from here: JAVAscript:x)"},
      {"<p><a href='&#1;data:x'>x</a></p>", "(not followed from here: data:x)</span>"},
      {"<p><anchor>x<go href='javascript:y' method='post'><postfield name='a' value='b'/></go>"
       "</anchor></p>",
       "<span class=\"inert\">x</span> <span class=\"why\">(not followed from here: javascript:y, "
       "sends a=b)"},
      {"<p><a href='#none'>x</a></p>", "(no such card: #none)"},
      {"<p><a href=''>x</a></p>",
       "<span class=\"inert\">x</span> <span class=\"why\">(leads nowhere)"},
      {"<p><a href='$(x).wml'>x</a></p>", "(needs a value: {x}.wml)"},
      {"<do type='prev'><prev/></do>",
       "<span class=\"inert key\">Back</span> <span class=\"why\">(goes back)</span>"},
      {"<p><anchor>x<refresh><setvar name='a' value='1'/></refresh></anchor></p>",
       "<span class=\"inert\">x</span> <span class=\"why\">(shows the card anew, sets a to 1)"},
      {"</card><card ontimer='t'>", "<a href=\"t\" class=\"event\">On timer</a>"},
      {"<do label='L' title='T'><go href='s'/></do>",
       "<a href=\"s\" class=\"key\" title=\"T\">L</a>"},
      {"</card><card id='c'><do label='L'><go href='#c' method='post'/></do>",
       "<a href=\"#c\" class=\"key\">L</a>"},
      {"</card><card xml:lang='de'><p><a href='a' accesskey='1'>x</a><a href='b' "
       "accesskey='1'>y</a>"
       "<input name='n' accesskey='2'/></p>",
       "<section lang=\"de\">\n<h2><span class=\"own\">Card 2</span></h2>\n<p><a href=\"a\" "
       "accesskey=\"1\">x</a><a href=\"b\">y</a><input type=\"text\" name=\"n\" aria-label=\"n\" "
       "accesskey=\"2\"></p>"},
      // Titles and targets show what would reorder or hide them; text keeps it.
      {"<p>a&#x202E;b</p>", "<p>a\u202Eb</p>"},
      {"</card><card title='a&#x202E;b'>", "<h2><span>a&lt;U+202E&gt;b</span>"},
      {"<p><a href='a&#x202E;b' title='c&#x200B;d'>x</a></p>",
       "<a href=\"a%E2%80%AEb\" title=\"c&lt;U+200B&gt;d\">x</a>"},
      {"<p><a href='x:&#x202E;b'>x</a></p>", "(not followed from here: x:&lt;U+202E&gt;b)"},
  });
}

TEST(HtmlWriter, PagesAskNobodyForPictures) {
  const char *const content =
      "<p><img src='http://h/a.png' alt='A'/><img src='//h/b'/><a href='u'><img src='c.wbmp'/></a>"
      "<img src='data:image/svg+xml,x' alt='&lt;'/></p>";
  const std::string page = Written(Format::kHtml, content);
  EXPECT_NE(page.find("<p><a href=\"http://h/a.png\">[A]</a><a href=\"//h/b\">[b]</a>"
                      "<a href=\"u\"><span title=\"c.wbmp\">[c.wbmp]</span></a>"
                      "<span title=\"data:image/svg+xml,x\">[&lt;]</span></p>"),
            std::string::npos)
      << page.substr(page.find("<body>"));
  EXPECT_NE(page.find("img-src data:;"), std::string::npos);
  EXPECT_NE(page.find("<meta name=\"referrer\" content=\"no-referrer\">"), std::string::npos);
  WriterOptions options;
  options.remoteImages = true;
  const std::string fetching = Written(Format::kHtml, content, options);
  EXPECT_NE(fetching.find("<p><img src=\"http://h/a.png\" alt=\"A\"><img src=\"//h/b\" alt=\"b\">"
                          "<a href=\"u\"><img src=\"c.wbmp\" alt=\"c.wbmp\"></a><span "),
            std::string::npos)
      << fetching.substr(fetching.find("<body>"));
}

TEST(HtmlWriter, FieldsAreThoseOfTheDeck) {
  const auto options = [](int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "<option>A</option>";
    return text;
  };
  ExpectParts({
      {"<p><input name='n' type='password' value='v' size='3' maxlength='4' title='T'/></p>",
       "<p><label>T <input type=\"password\" name=\"n\" value=\"v\" size=\"3\" maxlength=\"4\">"
       "</label></p>"},
      {"<p><input name='n' format='4N'/></p>",
       "<p><input type=\"text\" name=\"n\" aria-label=\"n\" title=\"format 4N\"></p>"},
      {"<p><input type='submit' value='Go'/><input type='button'/></p>",
       "<p><input type=\"button\" value=\"Go\"><input type=\"button\" aria-label=\"Field 2\"></p>"},
      {"<p><select name='n'><option value='1'>A<option value='&lt;'>B</select></p>",
       "<span class=\"choices\" role=\"radiogroup\" aria-label=\"n\"><label><input type=\"radio\" "
       "name=\"unwml-field-1\" value=\"1\" checked>A</label><label><input type=\"radio\" "
       "name=\"unwml-field-1\" value=\"&lt;\">B</label></span>"},
      {"<p><select multiple='true' title='T'><optgroup title='G'><option>A</optgroup><option>B"
       "</select></p>",
       "<span class=\"choices\" role=\"group\" "
       "aria-label=\"T\"><span>T</span><b>G</b><label><input "
       "type=\"checkbox\" name=\"unwml-field-1\" value=\"\">A</label><label>"},
      {"<p><select multiple='true'></select></p>",
       "<select aria-label=\"Field 1\" multiple size=\"1\"></select>"},
      {"<p><select name='n' title='T'><optgroup title='G'>" + options(13) +
           "</optgroup></select></p>",
       "<label>T <select name=\"n\"><optgroup label=\"G\"><option value=\"\" selected>A</option>"},
  });
}

TEST(HtmlWriter, EachButtonSendsWhatIsTyped) {
  const auto send = [](const std::string &address, const std::string &rest,
                       const std::string &method = "post") {
    return "<do label='S'><go href='" + address + "' method='" + method +
           "'><postfield name='f' value='$n'/>" + rest + "</go></do>";
  };
  const std::string one = "<postfield name='g' value='1'/>";
  const std::string two = one + "<postfield name='h' value='&lt;'/>";
  const std::string input = "<p><input name='n'/></p>";
  ExpectParts({
      {input + send("s", ""),
       "<input type=\"text\" form=\"unwml-form-0\" name=\"f\" aria-label=\"n\">"},
      {input + send("s", one),
       "<button form=\"unwml-form-0\" name=\"g\" value=\"1\">S</button></p>\n"
       "<form id=\"unwml-form-0\" action=\"s\" method=\"post\"></form>"},
      {input + send("s", two),
       "<button form=\"unwml-form-0\">S</button></p>\n<form id=\"unwml-form-0\" action=\"s\" "
       "method=\"post\"><input type=\"hidden\" name=\"g\" value=\"1\"><input type=\"hidden\" "
       "name=\"h\" value=\"&lt;\"></form>"},
      // Several buttons share a field as long as what else they send allows it.
      {input + send("s", one) +
           "<do name='2' label='R'><go href='r?q=2'><postfield name='f' "
           "value='$n'/></go></do>",
       "<button form=\"unwml-form-0\" formaction=\"r\" formmethod=\"get\" name=\"q\" "
       "value=\"2\">R"},
      {input + send("s", one) +
           "<do name='2' label='R'><go href='r'><postfield name='f' "
           "value='$n'/></go></do>",
       "<button form=\"unwml-form-0\" formaction=\"r\" formmethod=\"get\">R</button>"},
      {input + send("s", two) +
           "<do name='2' label='R'><go href='r'><postfield name='q' "
           "value='$n'/></go></do>",
       "<label>n <input type=\"text\" form=\"unwml-form-1\" name=\"q\" "
       "placeholder=\"{n}\"></label> "
       "<button form=\"unwml-form-1\">R</button>"},
      // What nothing gives is asked for.
      {send("s", ""),
       "<label>n <input type=\"text\" form=\"unwml-form-0\" name=\"f\" "
       "placeholder=\"{n}\"></label> "
       "<button form=\"unwml-form-0\">S</button>"},
      {"<p><anchor>x<go href='s?a=1%202&amp;q=$q#z'/></anchor></p>",
       "<label>q <input type=\"text\" form=\"unwml-form-0\" name=\"q\" "
       "placeholder=\"{q}\"></label> "
       "<button form=\"unwml-form-0\" name=\"a\" value=\"1 2\">x</button></p>\n"
       "<form id=\"unwml-form-0\" action=\"s\" method=\"get\"></form>"},
      {"<do><go href='s' enctype='multipart/form-data' method='post'/></do>",
       "method=\"post\" enctype=\"multipart/form-data\"></form>"},
      {"<do><go href='s' method='post' enctype='text/plain'/></do>", "method=\"post\"></form>"},
  });
}

// The target of a link over many paragraphs is written while that stays in proportion.
TEST(HtmlWriter, LongTargetsAreReferredTo) {
  const std::string target(1000, 'u');
  std::string content = "<p><a href='" + target + "'>";
  for (int i = 0; i < 1000; ++i) content += "x<br/>";
  const std::string page = Written(Format::kHtml, content + "</a></p>");
  EXPECT_LT(page.size(), 200000U);
  EXPECT_NE(page.find("<a href=\"" + target + "\" id=\"unwml-link-0\">x</a>"), std::string::npos);
  EXPECT_NE(page.find("<a href=\"#unwml-link-0\">x</a>"), std::string::npos);
}

// Other long values with many users: what a button sends, titles of links and of groups.
TEST(HtmlWriter, LongValuesAreReferredTo) {
  const std::string value(1000, 'v');
  const std::string field = "<postfield name='f' value='$n'/>";
  const struct {
    std::string content;
    std::string first;
    std::string later;
  } cases[] = {
      {"<p><a href='x' title='" + value + "'>" + Repeated("x<br/>", 1000) + "</a></p>",
       "<a href=\"x\" id=\"unwml-link-0\" title=\"" + value + "\">x</a>",
       "<a href=\"#unwml-link-0\">x</a>"},
      {"</card><template><do label='S'><go href='s'><postfield name='n' value='" + value +
           "'/></go></do></template>" + Repeated("<card><p>x</p></card>", 1000) + "<card>",
       "<button id=\"unwml-link-0\" form=\"unwml-form-0\" name=\"n\" value=\"" + value + "\">S",
       "<a href=\"#unwml-link-0\" class=\"key\">S</a>"},
      {"</card><template><do label='R'><go href='r" + value + "' method='post'>" + field +
           "</go></do></template>" +
           Repeated("<card><p><input name='n'/></p><do name='2' label='S'><go href='s' "
                    "method='post'>" +
                        field + "</go></do></card>",
                    1000) +
           "<card>",
       "<button id=\"unwml-link-0\" form=\"unwml-form-1\" formaction=\"r" + value + "\"",
       "<a href=\"#unwml-link-0\" class=\"key\">R</a>"},
      {"<p><select><optgroup title='" + value + "'><option>a</option>" +
           Repeated("<optgroup><option>b</option></optgroup><option>c</option>", 1000) +
           "</optgroup></select></p>",
       "<optgroup label=\"" + value + "\">",
       "<optgroup label=\"" + value.substr(0, 24) + "... (as above)\">"},
  };
  for (const auto &item : cases) {
    const std::string page = Written(Format::kHtml, item.content);
    EXPECT_LT(page.size(), 800000U) << item.first;
    EXPECT_NE(page.find(item.first), std::string::npos) << item.first;
    EXPECT_NE(page.find(item.later), std::string::npos) << item.later;
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
      {"<pre>a\n  b</pre>", "<pre tabindex=\"0\">\na\n  b</pre>"},
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
