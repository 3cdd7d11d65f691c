// Converts any bytes to every format: the output is UTF-8 without control characters,
// HTML is balanced and JSON is JSON.
//
// SPDX-License-Identifier: MIT
#include <rapidjson/reader.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/deck.h"
#include "host/reader.h"
#include "host/wmlc/wmlc.h"
#include "host/writer.h"

namespace {

void Fail(const char *what, const std::string &output) {
  std::fprintf(stderr, "%s:\n%s\n", what, output.c_str());
  std::abort();
}

void CheckText(const std::string &output) {
  std::int32_t units = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, &units, output.data(), static_cast<std::int32_t>(output.size()),
                &status);
  if (status == U_INVALID_CHAR_FOUND) Fail("not UTF-8", output);
  for (const char c : output) {
    const bool control = static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    if (control && c != '\n' && c != '\t') Fail("a control character", output);
  }
}

/// Every tag that opens closes again, in order; elements without content do not.
void CheckHtml(const std::string &html) {
  static constexpr std::string_view kVoid[] = {"br", "img", "meta", "col", "hr", "link", "input"};
  std::vector<std::string_view> open;
  for (std::size_t at = 0; (at = html.find('<', at)) != std::string::npos;) {
    const std::size_t end = html.find('>', at);
    if (end == std::string::npos) Fail("an open tag", html);
    const std::string_view tag = std::string_view(html).substr(at + 1, end - at - 1);
    at = end + 1;
    if (tag.starts_with('!')) continue;
    const bool closes = tag.starts_with('/');
    const std::string_view name = tag.substr(closes, tag.find_first_of(" \n", closes) - closes);
    if (name.empty() || name.find_first_of("<\"'") != name.npos) Fail("a strange tag", html);
    if (std::ranges::find(kVoid, name) != std::end(kVoid)) continue;
    if (!closes) {
      open.push_back(name);
    } else if (open.empty() || open.back() != name) {
      Fail("tags that cross", html);
    } else {
      open.pop_back();
    }
  }
  if (!open.empty()) Fail("an element that is not closed", html);
}

/// One JSON value a line.
void CheckJson(const std::string &json) {
  std::istringstream lines(json);
  for (std::string line; std::getline(lines, line);) {
    rapidjson::StringStream stream(line.c_str());
    rapidjson::BaseReaderHandler<> ignore;
    if (!rapidjson::Reader().Parse<rapidjson::kParseValidateEncodingFlag>(stream, ignore)) {
      Fail("not JSON", line);
    }
  }
}

void Convert(const vs_wml::Deck &deck, vs_wml::Format format) {
  std::string text;
  try {
    vs_wml::Output output([&text](std::string_view piece) { text += piece; });
    const auto writer = vs_wml::MakeWriter(format, output, {});
    vs_wml::ReadDeck(deck, *writer);
  } catch (const vs_wml::ReadFailure &) {
    return;  // the deck makes the filter read without end
  }
  CheckText(text);
  if (format == vs_wml::Format::kHtml) CheckHtml(text);
  if (format == vs_wml::Format::kJson) CheckJson(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  if (size < 1) return 0;
  vs_wml::DeckOptions options;
  // 0 and 12 find the character set, 12 without adapting the deck; others serve the bytes
  // untouched.
  const unsigned choice = data[0] % 13U;
  options.raw = choice == 12;
  if (choice != 0 && choice != 12) {
    const WmlOverlayRecord &record = WmlOverlayId[choice - 1];
    options.identity = static_cast<std::int16_t>(record.id[0] | record.id[1] << 8);
  }
  std::string bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
  try {
    const vs_wml::Deck deck = vs_wml::PrepareDeck("deck", std::move(bytes), options);
    for (const auto format : {vs_wml::Format::kText, vs_wml::Format::kHtml, vs_wml::Format::kJson,
                              vs_wml::Format::kMarkdown}) {
      Convert(deck, format);
    }
    std::ostringstream trace;
    vs_wml::TraceDeck(deck, trace);
  } catch (const vs_wml::NotWml &) {
  } catch (const vs_wml::BrokenWmlc &) {
  } catch (const vs_wml::ReadFailure &) {
  }
  return 0;
}
