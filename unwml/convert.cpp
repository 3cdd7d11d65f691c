// SPDX-License-Identifier: MIT
#include "convert.h"

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
#include "host/reader.h"

namespace unwml {
namespace {

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

}  // namespace

std::uint64_t Converter::Run(const Input &input, const vs_wml::Output::Destination &destination) {
  if (!input.error.empty()) throw std::runtime_error(input.error);
  std::string bytes = ReadWhole(input.path);
  const std::uint64_t size = bytes.size();
  vs_wml::Deck deck = vs_wml::PrepareDeck(input.path, std::move(bytes), options_.deck);
  const std::filesystem::path folder = std::filesystem::path(input.path).parent_path();
  deck.pictures = {folder.empty() ? "." : folder, options_.assets};
  vs_wml::Output output(destination);
  if (!options_.format->writer) {
    OutputBuffer buffer(output);
    std::ostream stream(&buffer);
    vs_wml::TraceDeck(deck, stream);
    buffer.Finish();
  } else {
    const auto writer = vs_wml::MakeWriter(*options_.format->writer, output, options_.writer);
    vs_wml::ReadDeck(deck, *writer);
  }
  return size;
}

Outcome Converter::Convert(const Input &input) {
  Outcome outcome;
  try {
    if (input.output.empty()) {
      outcome.bytes =
          Run(input, [&](std::string_view piece) { outcome.output.emplace_back(piece); });
    } else {
      std::optional<PendingFile> file;
      outcome.bytes = Run(input, [&](std::string_view piece) {
        if (!file) file.emplace(input.output);
        file->Write(piece);
      });
      if (!file) file.emplace(input.output);
      file->Commit();
    }
  } catch (const std::bad_alloc &) {
    outcome.error = "out of memory";
  } catch (const std::exception &failure) {
    outcome.error = failure.what();
  }
  if (!outcome.error.empty()) outcome.output.clear();
  return outcome;
}

}  // namespace unwml
