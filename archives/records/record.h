/// \file
/// A record of a web archive.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_RECORDS_RECORD_H
#define VS_WML_ARCHIVES_RECORDS_RECORD_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vs_wml {

/// What a record's header says. Values are trimmed, addresses without angle brackets.
struct RecordHead {
  std::string type;  ///< WARC-Type in lower case; "response" and "filedesc" of an ARC
  std::string uri;
  std::string date;
  std::string id;
  std::string contentType;
  std::string payloadType;  ///< as the writer identified it
  std::string payloadDigest;
  std::string blockDigest;
  std::string refersTo;  ///< what a revisit stands for: an address, or a record id
  std::string truncated;
  std::string segment;
  std::optional<std::uint64_t> length;  ///< of the block
  std::vector<std::string> warnings;
};

/// The grammar of one kind of web archive.
struct RecordDialect {
  /// Whether a record starts here.
  enum class Start { kYes, kNo, kMoreBytes };
  Start (*match)(std::string_view bytes, bool last);
  /// The length of the header at the start of `bytes`, its blank line included; 0: there is
  /// no end of it in them.
  std::size_t (*headerLength)(std::string_view bytes);
  RecordHead (*parse)(std::string_view header);
  /// Where a record starts from `from` on, or may start when the bytes end too early to tell.
  /// npos: nowhere.
  std::size_t (*findStart)(std::string_view bytes, std::size_t from);
  std::size_t blankLines;  ///< line ends that close a record
  /// Whether the rest of a start may look like one.
  bool isAmbiguous;
};

extern const RecordDialect kWarcDialect;
extern const RecordDialect kArcDialect;

/// The dialect of an archive that begins so; null: neither.
const RecordDialect *DialectOf(std::string_view beginning);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_RECORDS_RECORD_H
