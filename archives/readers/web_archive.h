/// \file
/// Web archives: documents from their records.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_WEB_ARCHIVE_H
#define VS_WML_ARCHIVES_READERS_WEB_ARCHIVE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "archives/http/message.h"
#include "archives/readers/entry_reader.h"
#include "archives/reading.h"
#include "archives/records/members.h"
#include "archives/records/record_reader.h"

namespace vs_wml {

/// Makes documents of records, and passes over those that are none.
class RecordJudge : public RecordSink {
 public:
  RecordJudge(ReadContext &context, ArchivePlace place)
      : context_(context),
        place_(std::move(place)),
        isSingle_(context.Options().at.has_value() && place_.depth == 0) {}

  std::unique_ptr<BlockTaker> Begin(const RecordHead &head) override;
  void End(Record record) override;
  void Broken(std::uint64_t offset, const std::string &why) override;
  void Garbage(std::uint64_t begin, std::uint64_t end) override;
  bool IsDone() const { return isDone_; }

 private:
  void Judge(Record &record);
  void JudgeDocument(Record &record);
  void ReadNested(const Record &record, std::string_view bytes);
  void Deliver(const Record &record, DecodedBody decoded);
  void Refuse(const Record &record, const std::string &why);
  void WarnOf(const Record &record);

  ReadContext &context_;
  ArchivePlace place_;
  bool isSingle_;  // one record was asked for
  bool isDone_ = false;
};

/// A WARC or an ARC, compressed or not, in pieces.
class WebArchiveReader : public ContentReader {
 public:
  /// `offset`: of the first byte that is fed.
  WebArchiveReader(ReadContext &context, ArchivePlace place, const RecordDialect &dialect,
                   bool compressed, std::uint64_t offset);

  void Feed(std::string_view bytes) override;
  void Finish() override;
  /// Whether there is no more to do: the only record that was asked for is read.
  bool IsDone() const { return judge_.IsDone(); }
  /// For members that are read without the frame in front of them all.
  void UseDictionary(std::string_view bytes) { members_.UseDictionary(bytes); }

 private:
  RecordJudge judge_;
  RecordReader records_;
  MemberReader members_;
  bool compressed_;
  std::uint64_t position_;
};

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_WEB_ARCHIVE_H
