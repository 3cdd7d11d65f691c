// SPDX-License-Identifier: MIT
#include "archives/reading.h"

#include <utility>

namespace vs_wml {

std::string ArchiveNotice::Line() const {
  std::string line;
  if (offset) line += "byte " + std::to_string(*offset) + ": ";
  if (!uri.empty()) line += uri + ": ";
  return line + text;
}

std::string ArchiveSummary::Line() const {
  return std::to_string(records) + " records: " + std::to_string(decks) + " decks, " +
         std::to_string(skipped) + " skipped, " + std::to_string(damaged) + " damaged";
}

void ReadContext::Deliver(ArchivedDocument document) {
  switch (sink_.Document(std::move(document))) {
    case Verdict::kDeck:
      ++summary_.decks;
      break;
    case Verdict::kSkipped:
      ++summary_.skipped;
      break;
    case Verdict::kDamaged:
      ++summary_.damaged;
      summary_.lost = true;
      break;
  }
  ++summary_.records;
}

void ReadContext::Skip() {
  ++summary_.records;
  ++summary_.skipped;
}

void ReadContext::Damage(const ArchivePlace &place, std::optional<std::uint64_t> offset,
                         const std::string &uri, const std::string &why) {
  ++summary_.records;
  ++summary_.damaged;
  summary_.lost = true;
  Tell(ArchiveNotice::Kind::kDamage, place, offset, uri, why);
}

void ReadContext::Lose(const ArchivePlace &place, std::optional<std::uint64_t> offset,
                       const std::string &what) {
  summary_.lost = true;
  Tell(ArchiveNotice::Kind::kDamage, place, offset, {}, what);
}

void ReadContext::Warn(const ArchivePlace &place, std::optional<std::uint64_t> offset,
                       const std::string &uri, const std::string &what) {
  Tell(ArchiveNotice::Kind::kWarning, place, offset, uri, what);
}

void ReadContext::Note(const ArchivePlace &place, std::optional<std::uint64_t> offset,
                       const std::string &uri, const std::string &what) {
  Tell(ArchiveNotice::Kind::kNote, place, offset, uri, what);
}

void ReadContext::Tell(ArchiveNotice::Kind kind, const ArchivePlace &place,
                       std::optional<std::uint64_t> offset, const std::string &uri,
                       const std::string &text) {
  sink_.Notice({kind, place.archive, offset, uri, text});
}

bool ReadContext::SpendNested(std::uint64_t bytes) {
  nested_ += bytes;
  return nested_ <= Limits().nestedBytes;
}

std::string LimitText(std::uint64_t bytes, const char *name) {
  return std::to_string(bytes) + " bytes (" + name + ')';
}

}  // namespace vs_wml
