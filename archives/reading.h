/// \file
/// What all readers of one archive share.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READING_H
#define VS_WML_ARCHIVES_READING_H

#include <cstdint>
#include <optional>
#include <string>

#include "archives/archive.h"
#include "archives/payload/deck_evidence.h"

namespace vs_wml {

/// Where a reader stands: what it reads is called `archive`, and lies in `depth` others.
struct ArchivePlace {
  std::string archive;
  std::size_t depth = 0;
};

class ReadContext {
 public:
  ReadContext(const ArchiveOptions &options, ArchiveSink &sink)
      : options_(options), sink_(sink), types_(options.types, options.allTypes) {}
  ReadContext(const ReadContext &) = delete;
  ReadContext &operator=(const ReadContext &) = delete;

  const ArchiveOptions &Options() const { return options_; }
  const ArchiveLimits &Limits() const { return options_.limits; }
  const TypeFilter &Types() const { return types_; }
  ArchiveSummary &Summary() { return summary_; }

  /// Each record goes into one of these, and is counted there.
  void Deliver(ArchivedDocument document);
  void Skip();
  void Damage(const ArchivePlace &place, std::optional<std::uint64_t> offset,
              const std::string &uri, const std::string &why);

  /// A damage that is no record.
  void Lose(const ArchivePlace &place, std::optional<std::uint64_t> offset,
            const std::string &what);
  void Warn(const ArchivePlace &place, std::optional<std::uint64_t> offset, const std::string &uri,
            const std::string &what);
  void Note(const ArchivePlace &place, std::optional<std::uint64_t> offset, const std::string &uri,
            const std::string &what);

  /// Accounts for bytes that come out of a nested archive; false when there are too many.
  bool SpendNested(std::uint64_t bytes);
  /// A new entry of the outermost archive begins.
  void RenewNested() { nested_ = 0; }

 private:
  void Tell(ArchiveNotice::Kind kind, const ArchivePlace &place,
            std::optional<std::uint64_t> offset, const std::string &uri, const std::string &text);

  ArchiveOptions options_;
  ArchiveSink &sink_;
  TypeFilter types_;
  ArchiveSummary summary_;
  std::uint64_t nested_ = 0;
};

/// "16777216 bytes (documentBytes)", as messages name limits.
std::string LimitText(std::uint64_t bytes, const char *name);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READING_H
