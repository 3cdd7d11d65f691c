// SPDX-License-Identifier: MIT
#include "messages.h"

#include <unistd.h>

#include <exception>
#include <string>

#include "files.h"
#include "host/text/printable.h"

namespace unwml {
namespace {

constexpr std::string_view kNoMemory = "unwml: out of memory\n";

void TellLine(std::string_view about, std::string_view separator, std::string_view what) noexcept {
  try {
    try {
      const std::string line = "unwml: " + vs_wml::Printable(about) + std::string(separator) +
                               vs_wml::Printable(what) + '\n';
      WriteAll(STDERR_FILENO, line);
    } catch (const std::bad_alloc &) {
      WriteAll(STDERR_FILENO, kNoMemory);
    }
  } catch (const std::exception &) {
    // Nobody is there to be told.
    return;
  }
}

}  // namespace

void Tell(std::string_view what) noexcept {
  TellLine("", "", what);
}

void Tell(std::string_view about, std::string_view what) noexcept {
  TellLine(about, ": ", what);
}

}  // namespace unwml
