// SPDX-License-Identifier: MIT
#include "convert.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <new>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <streambuf>
#include <system_error>

#include "files.h"
#include "host/deck.h"
#include "host/images/wbmp.h"
#include "host/reader.h"
#include "host/text/fold.h"
#include "host/text/printable.h"

namespace unwml {
namespace {

namespace fs = std::filesystem;

constexpr const char *kNoMemory = "out of memory";  // short enough to need none

// A stream over an output. What the output throws is kept: it must not pass through
// the filter, which calls what writes here.
class OutputBuffer : public std::streambuf {
 public:
  explicit OutputBuffer(vs_wml::Output &output) : output_(output) {}
  void Finish() {
    if (failure_) std::rethrow_exception(failure_);
    output_.Flush();
  }

 protected:
  int_type overflow(int_type character) override {
    const char c = traits_type::to_char_type(character);
    return xsputn(&c, 1) == 1 ? character : traits_type::eof();
  }
  std::streamsize xsputn(const char *text, std::streamsize count) override {
    if (failure_) return 0;
    try {
      output_ << std::string_view(text, static_cast<std::size_t>(count));
    } catch (...) {
      failure_ = std::current_exception();
      return 0;
    }
    return count;
  }

 private:
  vs_wml::Output &output_;
  std::exception_ptr failure_;
};

// Begins each line with a name.
class LinePrefix {
 public:
  LinePrefix(std::string prefix, const vs_wml::Output::Destination &destination)
      : prefix_(std::move(prefix)), destination_(destination) {}

  void Take(std::string_view piece) {
    std::string lines;
    while (!piece.empty()) {
      if (atStart_) lines += prefix_;
      const std::size_t length = std::min(piece.find('\n'), piece.size() - 1) + 1;
      lines += piece.substr(0, length);
      atStart_ = lines.back() == '\n';
      piece.remove_prefix(length);
    }
    destination_(lines);
  }

 private:
  std::string prefix_;
  const vs_wml::Output::Destination &destination_;
  bool atStart_ = true;
};

bool IsPictureName(const std::string &path) {
  return vs_wml::FoldName(fs::path(path).extension().string()) == ".wbmp";
}

// A deck that shows the picture in the file and its size.
vs_wml::Deck PictureDeck(const std::string &path, const std::string &bytes) {
  const auto bitmap = vs_wml::DecodeWbmp(bytes);
  if (!bitmap) throw std::runtime_error("not a WBMP picture");
  const std::string file = fs::path(path).filename().string();
  std::string source;
  for (const char c : file) {
    std::array<char, 4> escape{};
    std::snprintf(escape.data(), escape.size(), "%%%02X", static_cast<unsigned char>(c));
    source += escape.data();
  }
  std::string name;
  for (const char c : vs_wml::Printable(file)) {
    name += c == '&'   ? "&amp;"
            : c == '<' ? "&lt;"
            : c == '"' ? "&quot;"
            : c == '$' ? "$$"
                       : std::string{c};
  }
  const std::string deck = "<wml><card title=\"" + name + "\"><p><img src=\"./" + source +
                           "\" alt=\"" + name + "\"/></p><p>WBMP, " +
                           std::to_string(bitmap->width) + " by " + std::to_string(bitmap->height) +
                           " pixels</p></card></wml>";
  return vs_wml::PrepareDeck(path, deck, {});
}

}  // namespace

void Converter::Write(vs_wml::Deck &deck, const vs_wml::Output::Destination &destination) const {
  vs_wml::Output output(destination);
  if (!work_.options.format->writer) {
    OutputBuffer buffer(output);
    std::ostream stream(&buffer);
    vs_wml::TraceDeck(deck, stream);
    buffer.Finish();
  } else {
    const auto writer =
        vs_wml::MakeWriter(*work_.options.format->writer, output, work_.options.writer);
    vs_wml::ReadDeck(deck, *writer);
  }
}

void Converter::Run(const Input &input, const vs_wml::Output::Destination &destination,
                    Outcome &outcome) {
  if (!input.error.empty()) throw std::runtime_error(input.error);
  std::string bytes = ReadWhole(input.path, input.origin);
  outcome.bytes = bytes.size();
  vs_wml::Deck deck = IsPictureName(input.path)
                          ? PictureDeck(input.path, bytes)
                          : vs_wml::PrepareDeck(input.path, std::move(bytes), work_.options.deck);
  const fs::path folder = fs::path(input.path).parent_path();
  deck.pictures = {folder.empty() ? "." : folder, work_.options.assets};
  if (work_.options.withFilename) {
    LinePrefix lines(vs_wml::Printable(input.path) + ':', destination);
    Write(deck, [&](std::string_view piece) { lines.Take(piece); });
  } else {
    Write(deck, destination);
  }
  outcome.warnings = std::move(deck.info.warnings);
}

void Converter::ToFile(const Input &input, Outcome &outcome) {
  outcome.skipped = work_.options.skipExisting && work_.folder->Has(input.output);
  if (outcome.skipped) return;
  std::optional<PendingFile> file;
  Run(
      input,
      [&](std::string_view piece) {
        if (!file) file.emplace(*work_.folder, input.output);
        file->Write(piece);
      },
      outcome);
  if (!file) file.emplace(*work_.folder, input.output);
  file->Commit();
}

void Converter::ToStandardOutput(const Input &input, Outcome &outcome) {
  Run(
      input, [&](std::string_view piece) { outcome.output->Write(piece); }, outcome);
}

Outcome Converter::Convert(const Input &input, const std::function<void()> &awaitTurn) noexcept {
  Outcome outcome;
  try {
    try {
      if (work_.folder != nullptr) {
        ToFile(input, outcome);
      } else {
        outcome.output.emplace(work_.standardOutput, awaitTurn);
        ToStandardOutput(input, outcome);
      }
    } catch (const OutputFailure &) {
      throw;
    } catch (const std::bad_alloc &) {
      outcome.error = kNoMemory;
    } catch (const std::exception &failure) {
      outcome.error = failure.what();
    }
    if (!outcome.error.empty() && outcome.output && outcome.output->Fail()) {
      outcome.error += "; what was written of it up to there is incomplete";
    }
  } catch (const OutputFailure &) {
    outcome.fatal = std::current_exception();
  } catch (const std::bad_alloc &) {
    outcome.error = kNoMemory;
  }
  return outcome;
}

}  // namespace unwml
