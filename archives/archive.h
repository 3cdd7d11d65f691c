/// \file
/// Decks in archives: web archives (WARC, ARC), bundles (ZIP, WACZ, TAR, 7z), HAR, MHTML and
/// mail, and any of these inside of another.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_ARCHIVE_H
#define VS_WML_ARCHIVES_ARCHIVE_H

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

/// Over one of these a record is reported, with the name of the limit, and skipped.
struct ArchiveLimits {
  std::size_t documentBytes = std::size_t{16} << 20U;  ///< a document, before and after decoding
  std::size_t headerBytes = std::size_t{128} << 10U;   ///< a record's header, and HTTP's
  std::size_t nesting = 5;  ///< archives and compressed files inside of the archive
  /// What all that lies in one nested archive comes to, decompressed.
  std::uint64_t nestedBytes = std::uint64_t{1} << 30U;
};

struct ArchiveOptions {
  std::string name;  ///< of the archive, as messages and documents give it
  /// The media types looked into, in any case; empty: DefaultTypes(). Whether a document of
  /// such a type is a deck is seen by its content.
  std::vector<std::string> types;
  bool allTypes = false;  ///< look into everything
  /// Reads the one record that starts at this offset of the archive, and no other.
  std::optional<std::uint64_t> at;
  ArchiveLimits limits;
};

/// The types that are looked into unless told otherwise: those of decks, those that decks are
/// often served under, and none at all.
const std::vector<std::string> &DefaultTypes();

/// A document as it lay in the archive, its transfer and content codings undone.
struct ArchivedDocument {
  std::string bytes;
  std::string uri;      ///< its address; without one the archive and the member: "a.zip!b.wml"
  std::string date;     ///< as recorded; that of an ARC in the form of RFC 3339. Empty: unknown
  std::string archive;  ///< ArchiveOptions::name, a member in it: "crawl.wacz!archive/data.warc"
  /// Where its record (the record's gzip member, its zstd frame) starts in `archive`, and the
  /// bytes from there up to the next one. Neither where it has no start of its own.
  std::optional<std::uint64_t> offset;
  std::optional<std::uint64_t> length;
  std::string recordId;       ///< without angle brackets
  std::string digest;         ///< the payload's as recorded, else the record's
  std::optional<int> status;  ///< of HTTP
  std::string contentType;    ///< as the transport said, in lower case, without parameters
  std::string charset;        ///< as the transport said
  /// `bytes` are in `charset` whatever they say themselves: they were text when recorded.
  bool charsetIsCertain = false;
  std::vector<std::string> warnings;
};

struct ArchiveNotice {
  enum class Kind {
    kNote,     ///< something to know: a revisit
    kWarning,  ///< something was repaired
    kDamage,   ///< something is lost
  };
  Kind kind = Kind::kWarning;
  std::string archive;
  std::optional<std::uint64_t> offset;  ///< in `archive`, of the record or the first lost byte
  std::string uri;                      ///< of the record, if known
  std::string text;

  /// All of it in a line, without the archive's name.
  std::string Line() const;
};

/// What became of a document.
enum class Verdict { kDeck, kSkipped, kDamaged };

class ArchiveSink {
 public:
  virtual ~ArchiveSink() = default;
  /// Takes a document that looks like a deck. What it throws passes through.
  virtual Verdict Document(ArchivedDocument document) = 0;
  virtual void Notice(const ArchiveNotice &notice) = 0;
};

/// records = decks + skipped + damaged.
struct ArchiveSummary {
  std::uint64_t records = 0;
  std::uint64_t decks = 0;
  std::uint64_t skipped = 0;
  std::uint64_t damaged = 0;
  bool lost = false;   ///< some bytes were damaged or belonged to nothing
  bool found = false;  ///< a record starts at ArchiveOptions::at
  /// "5 records: 2 decks, 3 skipped, 0 damaged"
  std::string Line() const;
};

/// Reads an archive to its end. A stream that can seek is read where its archive needs it; one
/// that cannot is read ahead into a temporary file then. Throws std::runtime_error when the
/// stream fails, and what the sink throws.
ArchiveSummary ForEachDocument(std::istream &stream, const ArchiveOptions &options,
                               ArchiveSink &sink);

/// Reads an archive that comes in pieces. Web archives are read as they come; others wait in a
/// temporary file for their end.
class ArchiveParser {
 public:
  /// `sink` has to outlive the parser. ArchiveOptions::at is not served.
  ArchiveParser(const ArchiveOptions &options, ArchiveSink &sink);
  ~ArchiveParser();
  ArchiveParser(const ArchiveParser &) = delete;
  ArchiveParser &operator=(const ArchiveParser &) = delete;

  void Feed(std::string_view bytes);
  /// Once, at the end; the archive counts as cut without it.
  ArchiveSummary Finish();

 private:
  class Reading;
  std::unique_ptr<Reading> reading_;
};

/// Bytes that LooksLikeArchive wants to see, unless there are fewer.
inline constexpr std::size_t kArchiveProbe = 65536;

/// Whether a file that begins so is an archive, or a document that is compressed. The name
/// helps where the first bytes are damaged: "x.warc.gz".
bool LooksLikeArchive(std::string_view beginning, std::string_view name);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_ARCHIVE_H
