#!/usr/bin/env python3
"""viewers_test.py UNWML [--all]: what viewers make of unwml's Markdown.

Every payload below is put into every place of a deck. The deck's Markdown is rendered by
cmark and cmark-gfm, with --all also by markdown-it and pandoc, raw HTML allowed in each. The
page has to show the payload as it is, and to hold nothing that the deck does not ask for: no
element, attribute or target.
"""
import html
import html.parser
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import urllib.parse

PAYLOADS = [
    # Raw HTML and what rides on addresses that viewers make links of.
    "<script>alert(1)</script>", "<img src=x onerror=alert(1)>", "</a></p><b onclick=x>y",
    "www.a.example/<img src=x onerror=alert(1)>", "http://a.example/<b onclick=x>",
    "HTTPS://a.example/*b*<i>", "(www.a.example/\\<b>)", "mailto:a@b.example<u>", "*www.a.example/_b_*",
    "xmpp:a@b.example/<img src=x>", "a@b.example<b>", "ftp://a.example/`<b>`", "www.a.example|b",
    "<http://a.example/>", "<javascript:alert(1)>", "<a@b.example>", "<!-- x -->", "<![CDATA[x]]>",
    "<?php x ?>", "<!DOCTYPE x>", "< b > c", "1<2>3", "a<", "<<b>>", "<\\b>", "www.a.example/&lt;b>",
    # References, and targets that run something once they are read.
    "javascript&colon;alert(1)", "&#106;avascript:alert(1)", "&lt;b&gt; &amp;amp; &copy; &x",
    "java&Tab;script:alert(1)", "javascript&#58;alert(1)", "&NewLine;javascript:x", "?a=1&b=2&copy=3;",
    "javascript:alert(1)", "data:text/html,<script>x</script>", "vbscript:x", "//a.example/x",
    # Links, pictures, definitions, notes.
    "[x](javascript:alert(1))", "![x](http://a.example/x.png)", "!", "x!", "x^", "]", "[", "](x)", "](x", "a](<b>",
    "[x]: javascript:x", "[x][y]", "[^1]", "[^1]: x", "^[note]", "[x]{onclick=y}", "{onclick=x}",
    "{#id .class onclick=x}", "x](javascript:y \"z\")", "\" onclick=\"x", "' \" ) (", "(a)(b", ")", "a b",
    "\\", "\\\\", "x\\", "\\[x](y)", "\\`x`", "\\begin{x}y\\end{x}", "\\textbf{x}", "\\&amp;", "\\<b>",
    # Emphasis, code, formulas, pairs.
    "*x*", "**x**", "_x_", "__x__", "a_b_c", "a*b*c", "* x *", "5 * 3 * 2", "***", "_ _", "x_", "_x", "*",
    "`x`", "``", "```", "```html <b>", "~x~", "~~x~~", "~", "~~~", "$x$", "$5 and $6", "$$x$$", "^x^ H~2~O",
    "`x`{=html}", "``<b>``{=html}", "x $a$b$ $", "\\(x\\)", "\\\\[x\\\\]", "'''x'''", "==x==", "++x++", "||x||",
    # Starts of blocks.
    "# x", "## x ##", "x #", "#", "#x", "#. x", "- x", "-", "--", "---", "--- | ---", "-|-", ":-:", ":- | -:", "|x|y|",
    "|-|-|", "+ x", "+---+", "+-", "=", "===", "==x", "> x", ">", "1. x", "1) x", "12.", "1234567890. x", "a. x",
    "a) x", "(a) x", "(1) x", "iv. x", "iv) x", "(iv) x", "A) x", "(@) x", "(@x) y", "@x", "* x", ": x", ":::", "::: x",
    ":", "~ x", "% x", "%", "| x", "|", "Table: x", "[ ] x", "- [ ] x", "*** x", "___", "- - -", "***",
    "<div>", "<pre>", "</pre>", "</pre><script>x</script>", "<style>", "{{ x }}", "{% x %}", "...", "<x/>",
    "1\\. x", "x\u00a0\u00a0y", "日本*語*の", "é_é_é", "“x”*y*", "🙂*x*🙂", "a\u00ad*b*", "-x", "+x", "1.x",
    "A. x", "I. x", "II. x",
]

# NAME, the deck's markup with P for the payload (Q in an attribute), what the page shows.
P, Q = "\0P", "\0Q"
PLACES = [
    ("text", f"<p>B {P} E</p>", P),
    ("paragraph", f"<p>B</p><p>{P}</p><p>E</p>", P),
    ("line", f"<p>B<br/>{P}<br/>E</p>", P),
    ("lines", f"<p>B<br/>{P}<br/>{P}<br/>{P} E</p>", f"{P} {P} {P}"),
    ("bold", f"<p>B <b>{P}</b> E</p>", P),
    ("glued", f"<p>B <b>{P}</b><i>{P}</i> {P}<b>{P}</b>{P} E</p>", f"{P}{P} {P}{P}{P}"),
    ("underlined", f"<p>B <u>{P}</u>{P} E</p>", f"{P}{P}"),
    ("bold line", f"<p>B</p><p><b>{P}</b></p><p>E</p>", P),
    ("around a link", f'<p>B {P}<a href="ok">x</a>{P} E</p>', f"{P}x{P}"),
    ("around a picture", f'<p>B {P}<img src="ok.png" alt="x"/>{P} E</p>', f"{P}x{P}"),
    ("label", f'<p>B <a href="ok">{P}</a> E</p>', P),
    ("part of a label", f'<p>B <a href="ok"><b>{P}</b> {P}</a>{P} E</p>', f"{P} {P}{P}"),
    ("link at the start", f'<p>B</p><p><a href="ok">x</a>{P}</p><p>E</p>', f"x{P}"),
    ("target", f'<p>B <a href="{Q}">x</a> E</p>', None),
    ("title", f'<p>B <a href="ok" title="{Q}">x</a> E</p>', "x"),
    ("alternative", f'<p>B <img src="ok.png" alt="{Q}"/> E</p>', P),
    ("remote picture", f'<p>B <img src="http://ok/" alt="{Q}"/> E</p>', P),
    ("picture in a link", f'<p>B <a href="ok"><img src="ok.png" alt="{Q}"/></a> E</p>', P),
    ("source", f'<p>B <img src="{Q}" alt="x"/> E</p>', None),
    ("cells", f'<table columns="2"><tr><td>B</td><td>{P}</td></tr><tr><td>{P}</td><td>{P}'
     f"</td></tr><tr><td>E</td></tr></table>", f"{P} {P} {P}"),
    ("cell", f'<table columns="1"><tr><td>B</td></tr><tr><td>{P}</td></tr><tr><td>E</td></tr></table>', P),
    ("lines of a cell", f'<table columns="1"><tr><td>B<br/>{P}<br/><b>{P}</b> E</td></tr></table>', f"{P} {P}"),
    ("link in a cell", f'<table columns="1"><tr><td>B <a href="{Q}" title="{Q}">{P}</a> E</td></tr></table>', None),
    ("behind a table", f'<table columns="1"><tr><td>B</td></tr></table><p>{P}</p><p>E</p>', P),
    ("preformatted", f"<p>B</p><pre>{P}</pre><p>E</p>", P),
    ("preformatted link", f'<p>B</p><pre>{P} <a href="ok">{P}</a></pre><p>E</p>', f"{P} {P}"),
    ("preformatted target", f'<p>B</p><pre><a href="{Q}">x</a></pre><p>E</p>', None),
    ("sent", f'<p>B <anchor>x<go href="ok" method="post"><postfield name="{Q}" value="{Q}"/></go></anchor> E</p>', None),
    ("assigned", f'<p>B <anchor>x<go href="ok"><setvar name="v" value="{Q}"/></go></anchor> E</p>', f"x (v:={P})"),
    ("input", f'<p>B <input title="{Q}" value="{Q}"/> E</p>', None),
    ("choice", f'<p>B <select title="{Q}"><option value="{Q}">{P}</option></select> E</p>', None),
    ("key", f'<p>B</p><do type="accept" label="{Q}"><go href="ok"/></do></card><card><p>E</p>', P),
    ("heading", f'<p>B</p></card><card title="{Q}"><p>E</p>', P),
    ("id", f'<p>B</p></card><card id="{Q}"><p><a href="#{Q}">x</a></p><p>E</p>', None),
]

BLOCKS = {"p", "h1", "h2", "table", "tr", "td", "th", "pre", "br", "hr", "thead", "tbody", "figure", "figcaption"}
ALLOWED = {
    "a": {"href", "title", "id", "class"}, "img": {"src", "alt", "title"}, "p": set(), "h1": {"id"}, "h2": {"id"},
    "table": {"style"}, "thead": set(), "tbody": set(), "tr": {"class"}, "colgroup": set(), "col": {"style"},
    "th": {"align", "style"}, "td": {"align", "style"}, "pre": set(), "code": set(), "br": set(), "hr": set(),
    "b": set(), "i": set(), "strong": set(), "em": set(), "figure": set(), "figcaption": {"aria-hidden"},
    "span": {"class", "data-cites"},
}
STYLES = re.compile(r"(text-align: (left|right|center);|width: ?[\d.]+%;?)")
ADDRESS = re.compile(r"(https?:|ftp:|mailto:|xmpp:|//)", re.I)


class Page(html.parser.HTMLParser):
    """The text of a page, its targets, and what it should not hold."""

    def __init__(self, text):
        super().__init__(convert_charrefs=True)
        self.text, self.targets, self.titles, self.faults, self.link = "", [], [], [], None
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attrs):
        if tag in BLOCKS:
            self.text += " "
        for name, value in attrs:
            if name not in ALLOWED.get(tag, set()) or (name == "style" and not STYLES.fullmatch(value)):
                self.faults.append(f"<{tag} {name}={value}>")
        if tag not in ALLOWED:
            self.faults.append(f"<{tag}>")
        attrs = dict(attrs)
        if tag == "img":
            self.text += attrs.get("alt", "")
            self.targets.append((attrs.get("src", ""), None))
        if tag == "a" and "href" in attrs:
            self.link = [attrs["href"], ""]
            self.titles.append(attrs.get("title", ""))

    def handle_endtag(self, tag):
        if tag in BLOCKS:
            self.text += " "
        if tag == "a" and self.link:
            self.targets.append(tuple(self.link))
            self.link = None

    def handle_data(self, data):
        self.text += data
        if self.link:
            self.link[1] += data

    def handle_comment(self, data):
        self.faults.append(f"<!--{data}-->")

    def handle_decl(self, decl):
        self.faults.append(f"<!{decl}>")

    def handle_pi(self, data):
        self.faults.append(f"<?{data}>")

    def unknown_decl(self, data):
        self.faults.append(f"<![{data}]>")


def collapse(text):
    return re.sub(r"[ \t\r\n]+", " ", text).strip(" ")


def plain(target):
    return urllib.parse.unquote(target).strip(" ")


def markup(text):
    return html.escape(text).replace("$", "$$").replace("'", "&#39;")


def deck(payload, index):
    body, shown = "", []
    for place, (name, content, expected) in enumerate(PLACES):
        begin, end = f"qb{index}x{place}q", f"qe{index}x{place}q"
        content = content.replace(Q, "\0A").replace(P, "\0A")
        content = re.sub(r"\bB\b", begin, re.sub(r"\bE\b", end, content))
        body += f"<card>{content}</card>\n".replace("\0A", markup(payload))
        shown.append((name, begin, end, expected and expected.replace(P, payload)))
    for tag in ("b", "u", "i", 'a href="ok"'):
        for cut in range(1, len(payload)):
            begin, end = f"qb{index}{tag[0]}{cut}q", f"qe{index}{tag[0]}{cut}q"
            first, second = payload[:cut], payload[cut:]
            if first[-1] in " \n\t" or second[0] in " \n\t":
                continue
            body += (f"<card><p>{begin} {markup(first)}<{tag}>{markup(second)}</{tag[0]}> {end}</p></card>\n")
            shown.append((f"{tag} from {cut} on", begin, end, payload))
    return f"<wml>\n{body}</wml>\n", shown


def markdown_it(files):
    script = """
const markdown = require('/usr/share/nodejs/markdown-it')({html: true, linkify: true});
const fs = require('fs');
console.log(JSON.stringify(process.argv.slice(1).map(
  file => markdown.render(fs.readFileSync(file, 'utf8')))));
"""
    return json.loads(subprocess.run(["node", "-e", script, *files], check=True, capture_output=True).stdout)


def each(*command):
    return lambda files: [subprocess.run([*command, file], check=True, capture_output=True, text=True).stdout
                          for file in files]


GFM = ["-e", "table", "-e", "autolink", "-e", "strikethrough", "-e", "tasklist"]
PANDOC = ["pandoc", "--wrap=none", "--email-obfuscation=none", "-t", "html", "--mathml", "-f"]
VIEWERS = {
    "cmark": each("cmark", "--unsafe"),
    "cmark-gfm": each("cmark-gfm", "--unsafe", *GFM),
}
OTHERS = {
    "markdown-it": markdown_it,
    "pandoc": each(*PANDOC, "markdown-smart"),
    "pandoc gfm": each(*PANDOC, "gfm-emoji"),
}


def faults_of(page, payload, shown, tables):
    yield from page.faults
    text = collapse(page.text)
    wanted = {"ok", "ok.png", "http://ok/", plain(payload), "#" + plain(payload)}
    for target, label in page.targets:
        if plain(target) in wanted and not re.match(r"\s*(javascript|vbscript|data):", plain(target), re.I):
            continue
        if label and ADDRESS.match(target) and ADDRESS.sub("", plain(target)).strip("/") in ADDRESS.sub("", label):
            continue
        yield f"target {target!r} of {label!r}"
    for title in page.titles:
        if " ".join(title.split()) not in ("", " ".join(payload.split())):
            yield f"title {title!r}"
    for name, begin, end, expected in shown:
        if not tables and "cell" in name or "table" in name and not tables:
            continue
        match = re.search(f"{begin}(.*?){end}", text)
        if not match:
            yield f"{name}: lost"
        elif expected is not None and collapse(match[1]) != collapse(expected):
            yield f"{name}: {match[1]!r}"


def main():
    unwml = str(pathlib.Path(sys.argv[1]).resolve())
    viewers = dict(VIEWERS)
    if "--all" in sys.argv[2:]:
        viewers.update(OTHERS)
    passed = failed = 0
    with tempfile.TemporaryDirectory() as work:
        decks, shown = [], []
        for index, payload in enumerate(PAYLOADS):
            text, places = deck(payload, index)
            path = pathlib.Path(work, f"{index:03}.wml")
            path.write_text(text)
            decks.append(str(path))
            shown.append(places)
        subprocess.run([unwml, "-t", "markdown", "-o", work + "/out", *decks], check=True, stderr=subprocess.PIPE)
        files = [f"{work}/out/{index:03}.md" for index in range(len(PAYLOADS))]
        for name, render in viewers.items():
            for payload, places, page in zip(PAYLOADS, shown, render(files)):
                found = list(faults_of(Page(page), payload, places, name != "cmark"))
                passed += not found
                failed += bool(found)
                if found:
                    print(f"FAILED: {name}: {payload!r}: {'; '.join(found[:4])} ({len(found)})")
    print(f"{passed} passed, {failed} failed")
    return 0 if failed == 0 and passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
