// SPDX-License-Identifier: MIT
#include "archives/archive.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "archives/payload/content_kind.h"
#include "archives/readers/bundle_reader.h"
#include "archives/readers/byte_source.h"
#include "archives/readers/entry_reader.h"
#include "archives/readers/har_reader.h"
#include "archives/readers/web_archive.h"
#include "archives/reading.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 262144;
constexpr std::size_t kLongestDictionaryFrame = std::size_t{16} << 20U;

// Reads on; the number of bytes is 0 at the end only.
std::size_t ReadPiece(std::istream &stream, std::vector<char> &piece) {
  stream.read(piece.data(), static_cast<std::streamsize>(piece.size()));
  if (stream.bad()) throw std::runtime_error("cannot be read");
  return static_cast<std::size_t>(stream.gcount());
}

bool CanSeek(std::istream &stream) {
  const bool can = stream.tellg() != std::istream::pos_type(-1);
  stream.clear();
  return can;
}

// Reads the archive where it can be read best: in order, or, where the stream can seek, as its
// own table of contents says.
void ReadStream(std::istream &stream, ReadContext &context, const ArchivePlace &place,
                EntryReader &whole) {
  const bool canSeek = CanSeek(stream);
  const std::istream::pos_type begin = canSeek ? stream.tellg() : std::istream::pos_type(0);
  std::vector<char> piece(kPiece);
  std::size_t count = ReadPiece(stream, piece);
  const ContentKind kind =
      SniffContent({piece.data(), std::min(count, kKindProbe)}, context.Options().name);
  if (canSeek && (kind == ContentKind::kBundle || kind == ContentKind::kHar)) {
    stream.clear();
    stream.seekg(begin);
    StreamSource source(stream);
    kind == ContentKind::kBundle ? ReadBundle(source, context, place)
                                 : ReadHar(source, context, place);
    return;
  }
  for (; count != 0; count = ReadPiece(stream, piece)) whole.Feed({piece.data(), count});
  whole.Finish();
}

// Reads the record that starts at an offset, if one does.
void ReadAt(std::istream &stream, std::uint64_t offset, ReadContext &context,
            const ArchivePlace &place) {
  std::vector<char> piece(kPiece);
  const std::istream::pos_type begin = stream.tellg();
  const std::size_t front = ReadPiece(stream, piece);
  // The dictionary of a compressed WARC lies in front of all its records.
  std::string dictionary(piece.data(), IsSkippableFrame({piece.data(), front}) ? front : 0);
  while (!dictionary.empty() && dictionary.size() < kLongestDictionaryFrame) {
    const std::size_t more = ReadPiece(stream, piece);
    if (more == 0) break;
    dictionary.append(piece.data(), more);
  }
  stream.clear();
  stream.seekg(begin + static_cast<std::streamoff>(offset == 0 ? 0 : offset - 1));
  const char before = offset == 0 ? '\0' : static_cast<char>(stream.get());
  std::size_t count = stream ? ReadPiece(stream, piece) : 0;
  const std::string_view beginning(piece.data(), count);
  const RecordDialect *dialect = nullptr;
  bool compressed = false;
  if (IsGzip(beginning) || IsZstdFrame(beginning)) {
    compressed = true;
    const auto decoder = IsGzip(beginning) ? MakeInflater(DeflateWrapper::kGzip)
                                           : MakeZstdDecoder(DictionaryIn(dictionary));
    dialect = DialectOf(DecodeWhole(*decoder, beginning, kKindProbe, false).bytes);
  } else if (!beginning.empty() && !IsWhiteSpace(beginning[0])) {
    dialect = DialectOf(beginning);
    if (dialect != nullptr && dialect->isAmbiguous && IsLetter(before)) dialect = nullptr;
  }
  if (dialect == nullptr) {
    context.Lose(place, offset, "no record starts here");
    return;
  }
  context.Summary().found = true;
  WebArchiveReader reader(context, place, *dialect, compressed, offset);
  reader.UseDictionary(dictionary);
  for (; count != 0 && !reader.IsDone(); count = ReadPiece(stream, piece)) {
    reader.Feed({piece.data(), count});
  }
  if (!reader.IsDone()) reader.Finish();
}

}  // namespace

ArchiveSummary ForEachDocument(std::istream &stream, const ArchiveOptions &options,
                               ArchiveSink &sink) {
  ReadContext context(options, sink);
  const ArchivePlace place{options.name, 0};
  if (options.at) {
    ReadAt(stream, *options.at, context, place);
  } else {
    EntryReader whole(context, place, {});
    ReadStream(stream, context, place, whole);
  }
  return context.Summary();
}

class ArchiveParser::Reading {
 public:
  Reading(const ArchiveOptions &options, ArchiveSink &sink)
      : context_(options, sink), whole_(context_, {options.name, 0}, {}) {}

  void Feed(std::string_view bytes) { whole_.Feed(bytes); }
  ArchiveSummary Finish() {
    whole_.Finish();
    return context_.Summary();
  }

 private:
  ReadContext context_;
  EntryReader whole_;
};

ArchiveParser::ArchiveParser(const ArchiveOptions &options, ArchiveSink &sink)
    : reading_(std::make_unique<Reading>(options, sink)) {}

ArchiveParser::~ArchiveParser() = default;

void ArchiveParser::Feed(std::string_view bytes) {
  reading_->Feed(bytes);
}

ArchiveSummary ArchiveParser::Finish() {
  return reading_->Finish();
}

bool LooksLikeArchive(std::string_view beginning, std::string_view name) {
  return SniffContent(beginning, name) != ContentKind::kDocument;
}

}  // namespace vs_wml
