#!/usr/bin/env python3
"""Whether the JSON of decks has everything that the decks say.

    conservation.py UNWML DECK...

A reader of its own, which knows tags, attributes and references and nothing of what unwml does,
lists the facts of each deck: words of text, with the card that they stand in; values of attributes,
with the element and the card; elements, by their number. Each has to be in the JSON, in that card and paired with
what it belongs to, or in a warning with its line. Prints what is missing, and a count; status 1 when
anything is.
"""
import argparse
import collections
import html
import json
import re
import subprocess
import sys

TAG = re.compile(r"""<(/?)\s?([A-Za-z_][^\s=/><"']*)((?:[^<>"']|"[^"]*"|'[^']*')*)>""")
ATTRIBUTE = re.compile(r"""([^\s=/><"']+)\s*(?:=\s*("[^"]*"|'[^']*'|[^\s<>]+))?""")
SKIPPED = re.compile(r"<!--.*?--\s*!?>|<\?.*?\?>|<%.*?%>|<!\w[^\[>]*(?:\[.*?\]\s*)?>", re.S)
VARIABLE = re.compile(r"\$\$|\$\([^)]*\)|\$\w+")
# What a missing attribute means, too; and what is told by how a table is laid out.
USUAL = {("p", "align", "left"), ("card", "newcontext", "false"), ("card", "ordered", "true"),
         ("select", "multiple", "false"), ("input", "emptyok", "true"), ("input", "emptyok", "false")}
TOLD_BY_LAYOUT = {("table", "columns"), ("table", "align"), ("p", "align")}
# The member of the JSON that an attribute is in, where that is not its own name.
MEMBERS = {
    ("card", "newcontext"): "newContext", ("card", "name"): "id", ("card", "xml:lang"): "language", ("wml", "xml:lang"): "language",
    ("meta", "http-equiv"): "httpEquiv", ("meta", "forua"): "forUserAgent",
    ("go", "href"): "target", ("go", "url"): "target", ("a", "href"): "target",
    ("anchor", "href"): "target", ("option", "onpick"): "target", ("option", "onclick"): "target",
    ("go", "enctype"): "encoding", ("go", "accept-charset"): "acceptCharset",
    ("go", "cache-control"): "cacheControl", ("go", "sendreferer"): "sendReferer",
    ("go", "postdata"): "postData", ("img", "src"): "source", ("img", "localsrc"): "localSource",
    ("img", "alt"): "alternative", ("input", "key"): "name", ("input", "default"): "value",
    ("input", "maxlength"): "maxLength", ("select", "key"): "name", ("select", "default"): "value",
    ("select", "iname"): "indexName", ("select", "ikey"): "indexName",
    ("select", "ivalue"): "indexValue", ("select", "idefault"): "indexValue",
    ("timer", "key"): "name", ("timer", "default"): "value",
}
# The elements that are parts of their own in the JSON; of the others their words are looked for.
COUNTED = {"a", "access", "anchor", "card", "do", "fieldset", "go", "img", "input", "meta", "noop",
           "onevent", "optgroup", "option", "postfield", "prev", "refresh", "select", "setvar",
           "table", "timer"}
for element in ("a", "anchor", "do", "input", "select"):
    MEMBERS[element, "accesskey"] = "accessKey"
    MEMBERS[element, "tabindex"] = "tabIndex"
for element in ("card", "template"):
    for event in ("onenterforward", "onenterbackward", "ontimer"):
        MEMBERS[element, event] = "target"


def plain(text):
    """Text without the differences that do not count: white space, control characters."""
    text = "".join(c if c in " \t\r\n" or (ord(c) >= 32 and not 127 <= ord(c) < 160) else "" for c in text)
    return "".join(text.split())


def value_of(raw):
    raw = raw or ""
    return plain(html.unescape(raw[1:-1] if raw[:1] in "\"'" else raw))


def facts_of(text):
    """A list of (card, element, attribute, value, line): of words without element and attribute,
    of elements without attribute and value. Cards count from 0 on; None: outside of them."""
    text = re.sub(r"<!\[CDATA\[(.*?)\]\]>", lambda match: html.escape(match[1]), text, flags=re.S)
    text = SKIPPED.sub(lambda match: re.sub(r"[^\n]", " ", match.group()), text)
    text = re.sub(r"&#([0-9a-f]*[a-f][0-9a-f]*);", r"&#x\1;", text, flags=re.I)
    facts, card, at, line = [], -1, 0, 1
    in_card = not re.search("<card", text, re.I)
    if in_card:
        card = 0
    started = False

    def words(piece, line):
        for part in VARIABLE.split(html.unescape(piece)):
            for word in part.split():
                if plain(word) and started:
                    facts.append((card if in_card else None, "", "", plain(word), line))

    for tag in TAG.finditer(text):
        words(text[at:tag.start()], line)
        line += text.count("\n", at, tag.start())
        name = tag[2].lower()
        if tag[1]:
            if name in ("card", "wml"):
                in_card = False
        else:
            started = True
            if name == "card":
                card, in_card = card + 1, True
            here = card if in_card else None
            facts.append((here, name, "", "", line))
            seen = set()
            for attribute in ATTRIBUTE.finditer(tag[3]):
                key = attribute[1].lower()
                if key not in seen:
                    facts.append((here, name, key, value_of(attribute[2]), line))
                seen.add(key)
            if name == "card" and tag[3].rstrip().endswith("/"):
                in_card = False
        line += text.count("\n", tag.start(), tag.end())
        at = tag.end()
    words(text[at:], line)
    return facts


class Deck:
    """The facts in a line of JSON, looked up by card."""

    def __init__(self, line):
        self.json = json.loads(line)
        self.warnings = collections.defaultdict(str)
        for warning in self.json["warnings"]:
            self.warnings[warning.get("line", 0)] += " " + plain(warning.get("text", "")) + " "
        self.cards = [self.gather(card, True) for card in self.json["cards"]]
        self.outside = self.gather({key: value for key, value in self.json.items()
                                    if key not in ("cards", "links", "actions", "fields")}, False)
        self.counts = self.count()
        template = collections.defaultdict(set)
        for index in self.json.get("templateActions", []):
            self.add(template, self.json["actions"][index])
        for member, values in template.items():
            self.outside[member] |= values

    def count(self):
        """How many there are of each element that is a part of its own."""
        deck, counts = self.json, collections.Counter()
        tasks = deck.get("links", []) + deck.get("actions", [])
        tasks += [task for action in tasks for task in action.get("more", [])]
        for task in tasks:
            counts[task.get("task", "go")] += 1
            counts["setvar"] += len(task.get("setVariables", []))
            counts["postfield"] += len(task.get("postFields", []))
        for link in deck.get("links", []):
            counts["a"] += 1
            counts["anchor"] += 1
        for action in deck.get("actions", []):
            counts["do" if action["kind"] == "do" else "onevent"] += 1
        for field in deck.get("fields", []):
            counts[field["kind"]] += 1
            counts["option"] += len(field.get("options", []))
        counts["fieldset"] = len(deck.get("fieldsets", []))
        counts["optgroup"] = len(deck.get("groups", []))
        counts["access"] = len(deck.get("access", []))
        counts["meta"] = len(deck.get("meta", []))
        counts["card"] = len(deck["cards"])
        for card in deck["cards"]:
            counts["timer"] += "timer" in card
            for block in card["blocks"]:
                counts["table"] += block["type"] == "table"
            counts["img"] += json.dumps(card["blocks"]).count('"image":')
        for node in deck["cards"] + [deck]:
            for entry in node.get("elements", []):
                counts[entry["element"]] += 1
        return counts

    def add(self, into, value, member=""):
        """All values under the name of their member."""
        if isinstance(value, dict):
            for key, inner in value.items():
                if key == "element":
                    into["element"].add(inner)
                    for name, text in value.get("attributes", {}).items():
                        into[inner, name].add(plain(text))
                elif key == "link":
                    self.add(into, self.json["links"][inner])
                elif key == "field" and "element" not in value:
                    field = self.json["fields"][inner]
                    self.add(into, field)
                    for option in field.get("options", []):
                        if "action" in option:
                            self.add(into, self.json["actions"][option["action"]])
                        if "group" in option:
                            self.add(into, self.json["groups"][option["group"]])
                    fieldset = field.get("fieldset")
                    while fieldset is not None:
                        self.add(into, self.json["fieldsets"][fieldset])
                        fieldset = self.json["fieldsets"][fieldset].get("outer")
                elif key == "attributes":
                    for name, text in inner.items():
                        into["img", name].add(plain(text))
                else:
                    self.add(into, inner, key)
        elif isinstance(value, list):
            for inner in value:
                self.add(into, inner, member)
        elif isinstance(value, bool):
            into[member].add(str(value).lower())
        else:
            into[member].add(plain(str(value)))

    def gather(self, node, is_card):
        found = collections.defaultdict(set)
        self.add(found, {key: value for key, value in node.items() if key != "actions"})
        if is_card:
            for index in node.get("actions", []):
                self.add(found, self.json["actions"][index])
        found["all"] = plain(" ".join(str(text) for member, texts in found.items()
                                      if isinstance(member, str) for text in texts))
        return found

    def has(self, fact):
        card, element, name, value, line = fact
        if any(value and value in text for at, text in self.warnings.items() if abs(at - line) <= 1):
            return True
        if card is not None and card >= len(self.cards):
            return False
        places = [self.outside] if card is None else [self.cards[card]]
        if not element:
            return any(value in place["all"] for place in places)
        if not name:
            self.counts[element] -= 1
            return self.counts[element] >= 0 or element not in COUNTED
        if not value or (element, name, value.lower()) in USUAL or (element, name) in TOLD_BY_LAYOUT:
            return True
        member = MEMBERS.get((element, name), name)
        return any(value in place[member] or value in place[element, name] or
                   value.lower() in place[member] for place in places)


def text_of(path, charset):
    with open(path, "rb") as file:
        data = file.read()
    try:
        return data.decode("utf-8-sig" if charset.upper() == "UTF-8" else charset)
    except (LookupError, UnicodeDecodeError):
        return data.decode("utf-8", "replace")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("unwml")
    parser.add_argument("decks", nargs="+")
    options = parser.parse_args()
    written = subprocess.run([options.unwml, "--to", "json", *options.decks], check=False,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    decks = [Deck(line) for line in written.decode("utf-8").splitlines()]
    found = missing = 0
    for deck in decks:
        path = deck.json["source"]
        for fact in facts_of(text_of(path, deck.json["charset"])):
            if deck.has(fact):
                found += 1
                continue
            missing += 1
            print(f"{path}:{fact[4]}: card {fact[0]}: {' '.join(fact[1:4])}")
    print(f"{found} facts found in {len(decks)} decks, {missing} missing")
    return 0 if found and not missing else 1


if __name__ == "__main__":
    sys.exit(main())
