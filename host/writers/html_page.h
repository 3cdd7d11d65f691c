/// \file
/// The parts of a page that are the same in all pages.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_HTML_PAGE_H
#define VS_WML_HOST_WRITERS_HTML_PAGE_H

#include <string_view>

namespace vs_wml {

/// Nothing of the document runs, nothing is fetched, and nobody learns where a reader came
/// from; forms are sent when somebody sends them. `%` stands for the language, and then for
/// where pictures come from.
inline constexpr std::string_view kPageHead =
    "<!DOCTYPE html>\n"
    "<html lang=\"%\">\n"
    "<head>\n"
    "<meta charset=\"utf-8\">\n"
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
    "img-src %; style-src 'unsafe-inline'; base-uri 'none'; "
    "form-action 'self' file: http: https:\">\n"
    "<meta name=\"referrer\" content=\"no-referrer\">\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n";

inline constexpr std::string_view kOwnPictures = "data:";
inline constexpr std::string_view kAllPictures = "'self' data: file: http: https:";

/// Colours as names, once for light and once for dark; then the page from the outside in.
inline constexpr std::string_view kPageStyle = R"(<style>
:root {
  color-scheme: light dark;
  --ground: #eceff3; --card: #fff; --head: #f5f7fa; --line: #cfd5dd;
  --text: #1b1f24; --soft: #59636e; --link: #0a56b3; --visited: #6a3aa2; --on-link: #fff;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #14171b; --card: #1d2126; --head: #252a31; --line: #3b424c;
    --text: #e5e8ec; --soft: #a3adb8; --link: #8bb9ff; --visited: #c6a8f5; --on-link: #10151c;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; max-width: 42rem; padding: 0 .75rem 2rem;
  font: 1rem/1.5 system-ui, "Segoe UI", Roboto, "Noto Sans", sans-serif;
  color: var(--text); background: var(--ground); overflow-wrap: break-word;
}
h1 { margin: 1.25rem .25rem .75rem; font-size: .875rem; font-weight: 600; color: var(--soft); }
section {
  margin: 0 0 1rem; padding-bottom: .5rem; scroll-margin-top: .75rem;
  background: var(--card); border: 1px solid var(--line); border-radius: .75rem;
}
section:target { border-color: var(--link); box-shadow: 0 0 0 1px var(--link); }
section > * { margin: .75rem 1rem; }
section > h2 {
  display: flex; flex-wrap: wrap; gap: 0 .75rem; justify-content: space-between;
  align-items: baseline; margin: 0 0 .75rem; padding: .5rem 1rem;
  font-size: 1.125rem; line-height: 1.4; background: var(--head);
  border-bottom: 1px solid var(--line); border-radius: .6875rem .6875rem 0 0;
}
h2 > * { min-width: 0; }
.own, .why { color: var(--soft); font-size: .875rem; font-weight: 400; }
pre { font: .875rem/1.45 ui-monospace, Menlo, Consolas, monospace; overflow-x: auto; }
a { color: var(--link); }
a:visited { color: var(--visited); }
a, .inert, label, .choices { unicode-bidi: isolate; }
.inert { font-weight: 500; }
:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; }
a.key, button {
  display: inline-block; margin: .2rem .2rem .2rem 0; padding: .3rem 1rem; font: inherit;
  font-weight: 600; line-height: 1.4; text-decoration: none; cursor: pointer; max-width: 100%;
  color: var(--on-link); background: var(--link); border: 0; border-radius: 1.5rem;
}
.event::before { content: "\2192\00A0"; }
input, select {
  font: inherit; max-width: 100%; color: var(--text); background: var(--card);
  border: 1px solid var(--soft); border-radius: .375rem; padding: .2rem .5rem; margin: .15rem 0;
}
input[type=radio], input[type=checkbox] { margin: 0 .5rem 0 0; accent-color: var(--link); }
.choices, .choices > * { display: block; }
.choices { margin: .35rem 0; }
.choices > label { padding: .15rem 0; }
.choices > b { margin-top: .35rem; font-weight: 600; }
img { vertical-align: middle; max-width: 100%; image-rendering: pixelated; background: #fff; }
.wide { overflow-x: auto; }
table { border-collapse: collapse; }
caption { padding: 0 0 .35rem; text-align: left; font-weight: 600; }
td { padding: .3rem .6rem; vertical-align: top; border: 1px solid var(--line); min-width: 2.5rem; }
table.l, .l { text-align: left; } .c { text-align: center; } .r { text-align: right; }
.j { text-align: justify; }
table.c { margin-left: auto; margin-right: auto; } table.r { margin-left: auto; }
.big { font-size: 1.35em; } .small { font-size: .85em; }
@media print { body { background: none; } section { break-inside: avoid; } }
</style>
)";

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_HTML_PAGE_H
