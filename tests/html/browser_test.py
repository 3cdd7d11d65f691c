#!/usr/bin/env python3
"""browser_test.py UNWML OUTPUT [AXE]: looks at unwml's HTML in headless Chromium.

Opens the cases of tests/host and the example decks, counts what they ask for, follows a link
to another card, takes a screenshot of each page into OUTPUT and tries to run scripts. AXE is
the script of axe-core, which looks for what shuts readers out. Needs the Debian packages
chromium, chromium-driver and tidy.
"""
import base64
import contextlib
import json
import pathlib
import re
import subprocess
import sys
import time
import urllib.error
import urllib.request

ROOT = pathlib.Path(__file__).resolve().parents[2]
passed = 0
failed = 0


def check(condition, what):
    global passed, failed
    if condition:
        passed += 1
    else:
        failed += 1
        print(f"FAILED: {what}")


class Browser:
    """A session of chromedriver, over its HTTP interface."""

    def __init__(self):
        self.driver = subprocess.Popen(
            ["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True
        )
        self.url = None
        for line in self.driver.stdout:
            if match := re.search(r"successfully on port (\d+)", line):
                self.url = f"http://127.0.0.1:{match[1]}"
                break
        if not self.url:
            raise RuntimeError("chromedriver did not start")
        arguments = ["--headless=new", "--no-sandbox", "--disable-gpu", "--window-size=720,900"]
        session = self.send(
            "POST",
            "/session",
            {"capabilities": {"alwaysMatch": {
                "goog:chromeOptions": {"args": arguments},
                "goog:loggingPrefs": {"performance": "ALL"},
                "unhandledPromptBehavior": "ignore"}}},
        )
        self.session = f"/session/{session['sessionId']}"

    def send(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.url + path, data, method=method)
        request.add_header("Content-Type", "application/json")
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def do(self, path, **body):
        return self.send("POST", self.session + path, body)

    def run(self, script):
        return self.do("/execute/sync", script=script, args=[])

    def click(self, text):
        element = self.do("/element", using="link text", value=text)
        self.do(f"/element/{next(iter(element.values()))}/click")

    def requests(self):
        """The addresses that were asked for since the last call."""
        messages = [json.loads(entry["message"])["message"] for entry in self.do("/se/log", type="performance")]
        return [message["params"]["request"]["url"] for message in messages
                if message["method"] == "Network.requestWillBeSent"]

    def has_alert(self):
        try:
            self.send("GET", self.session + "/alert/text")
            return True
        except urllib.error.HTTPError:
            return False

    def screenshot(self, path):
        path.write_bytes(base64.b64decode(self.send("GET", self.session + "/screenshot")))

    def close(self):
        with contextlib.suppress(OSError, urllib.error.URLError):
            self.send("DELETE", self.session)
        self.driver.terminate()
        self.driver.wait()


SCRIPTS = "return document.scripts.length"
HANDLERS = """
let count = 0;
for (const element of document.querySelectorAll('*'))
  for (const attribute of element.attributes)
    if (attribute.name.startsWith('on') ||
        /^\\s*(javascript:|vbscript:|data:(?!image\\/png;base64,))/i
          .test(element.href || element.src || '')) count++;
return count;
"""
AXE = """;
const done = arguments[arguments.length - 1];
axe.run().then(result => done(result.violations.map(rule => rule.id + ': ' + rule.nodes[0].html)),
               error => done([String(error)]));
"""
INJECT = """
const script = document.createElement('script');
script.textContent = 'window.injected = 1';
document.body.append(script);
const image = document.createElement('img');
image.setAttribute('onerror', 'window.injected = 2');
image.src = 'nowhere.png';
document.body.append(image);
"""


def look(browser, page, screenshots, axe):
    browser.requests()
    browser.do("/url", url=page.as_uri())
    strangers = [url for url in browser.requests() if not url.startswith(("data:", page.as_uri()))]
    check(not strangers, f"{page.name}: asks for {strangers}")
    if axe:
        found = browser.do("/execute/async", script=axe + AXE, args=[])
        check(not found, f"{page.name}: {found}")
    browser.screenshot(screenshots / f"{page.stem}.png")
    check((screenshots / f"{page.stem}.png").stat().st_size > 1000, f"{page.name}: screenshot")
    check(browser.run(SCRIPTS) == 0, f"{page.name}: holds a script")
    check(browser.run(HANDLERS) == 0, f"{page.name}: holds a handler or a script target")
    check(not browser.has_alert(), f"{page.name}: an alert is open")
    browser.run(INJECT)
    time.sleep(0.2)
    check(browser.run("return window.injected === undefined"), f"{page.name}: a script ran")


STRANGERS = """<wml><card title="T"><p><img src="http://127.0.0.1:9/a.png" alt="a"/><img src="//127.0.0.1/b.png" alt="b"/>
<img src="c.wbmp" alt="c"/><img src="/d.png" alt="d"/><a href="http://127.0.0.1:9/"><img src="http://127.0.0.1:9/e"/></a>
<img src="\\\\127.0.0.1\\f.png" alt="f"/></p></card></wml>"""


def ask_nobody(browser, unwml, output):
    """A page asks for nothing, unless it is to fetch pictures."""
    for name, options, least in (("strangers", [], 0), ("fetched", ["--remote-images"], 3)):
        page = output / f"{name}.html"
        written = subprocess.run([unwml, "-t", "html", *options], input=STRANGERS, text=True,
                                 capture_output=True, check=True)
        page.write_text(written.stdout)
        browser.requests()
        browser.do("/url", url=page.as_uri())
        asked = [url for url in browser.requests() if url != page.as_uri()]
        check(len(asked) >= least and bool(asked) == bool(least), f"{name}: asks for {asked}")


def main():
    unwml, output = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    axe = pathlib.Path(sys.argv[3]).read_text() if len(sys.argv) > 3 else ""
    output.mkdir(parents=True, exist_ok=True)
    decks = [*ROOT.glob("tests/host/cases/*.wml"), *ROOT.glob("examples/decks/*.wml")]
    for deck in decks:
        page = output / f"{deck.stem}.html"
        with page.open("wb") as file:
            subprocess.run([unwml, "-t", "html", deck], stdout=file, check=True)
        tidy = subprocess.run(["tidy", "-q", "-e", page], capture_output=True, text=True)
        check(tidy.returncode == 0, f"{page.name}: tidy: {tidy.stderr}")

    browser = Browser()
    try:
        for deck in decks:
            look(browser, output / f"{deck.stem}.html", output, axe)
        ask_nobody(browser, unwml, output)
        browser.do("/url", url=(output / "menu.html").as_uri())
        browser.click("Prices")
        where = browser.run("return [location.hash, document.querySelector(':target h2 span').innerText]")
        check(where == ["#prices", "Prices"], f"a link to a card leads to {where}")
    finally:
        browser.close()
    print(f"{passed} passed, {failed} failed")
    return 0 if failed == 0 and passed > 0 else 1


if __name__ == "__main__":
    sys.exit(main())
