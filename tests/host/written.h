/// \file
/// What a writer makes of the content of a card.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_HOST_WRITTEN_H
#define VS_WML_TESTS_HOST_WRITTEN_H

#include <string>

#include "host/deck.h"
#include "host/reader.h"
#include "host/text/output.h"
#include "host/writer.h"

namespace vs_wml::test {

inline std::string Written(Format format, const std::string &content,
                           const WriterOptions &options = {}) {
  std::string written;
  Output output([&](std::string_view piece) { written += piece; });
  const auto writer = MakeWriter(format, output, options);
  ReadDeck(PrepareDeck("deck.wml", "<wml><card>" + content + "</card></wml>", {}), *writer);
  return written;
}

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_HOST_WRITTEN_H
