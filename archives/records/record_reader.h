/// \file
/// The records of a web archive, from its bytes as they come.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_RECORDS_RECORD_READER_H
#define VS_WML_ARCHIVES_RECORDS_RECORD_READER_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "archives/records/members.h"
#include "archives/records/record.h"

namespace vs_wml {

/// Takes the block of a record. It is not held by the reader.
class BlockTaker {
 public:
  virtual ~BlockTaker() = default;
  virtual void Take(std::string_view bytes) = 0;
  /// The last `count` bytes taken were none of the block.
  virtual void TakeBack(std::uint64_t count) = 0;
};

/// A record that was read; its length is known once the next one begins.
struct Record {
  RecordHead head;
  std::unique_ptr<BlockTaker> block;
  std::optional<std::uint64_t> offset;  ///< where it starts in the file, if it does there
  std::optional<std::uint64_t> length;  ///< bytes from there up to the next one
  std::uint64_t near = 0;               ///< a place in the file to name in messages
  std::string damage;                   ///< what is wrong, when it is not whole
};

class RecordSink {
 public:
  virtual ~RecordSink() = default;
  /// What takes the block of a record with this header.
  virtual std::unique_ptr<BlockTaker> Begin(const RecordHead &head) = 0;
  virtual void End(Record record) = 0;
  /// A record of which not even the header could be read.
  virtual void Broken(std::uint64_t offset, const std::string &why) = 0;
  /// Bytes that belong to no record.
  virtual void Garbage(std::uint64_t begin, std::uint64_t end) = 0;
};

/// Reads records from bytes (Feed), or from the members of a compressed file (as a
/// MemberSink). Wrong lengths are repaired where the next record can be seen.
class RecordReader : public MemberSink {
 public:
  RecordReader(const RecordDialect &dialect, std::size_t headerLimit, RecordSink &sink)
      : dialect_(dialect), headerLimit_(headerLimit), sink_(sink) {}

  /// The bytes of a file that is not compressed, from `offset` on.
  void BeginPlain(std::uint64_t offset);
  void Feed(std::string_view bytes);
  /// The file ends, at `offset`.
  void Finish(std::uint64_t offset);

  void BeginMember(std::uint64_t offset) override;
  void Decoded(std::string_view bytes) override { Feed(bytes); }
  void EndMember() override;
  void DamagedMember(std::uint64_t offset, const std::string &why) override;
  void Garbage(std::uint64_t begin, std::uint64_t end) override;

 private:
  enum class State { kBetween, kHeader, kBlock, kBehind, kStretched, kSearching };
  enum class End { kOpen, kMember, kFile };
  // What is passed over in search of the next record.
  enum class Passed { kGarbage, kRecord, kReported };

  void Run(End end);
  bool Between(End end);
  bool Header(End end);
  bool Block(End end);
  bool Behind(End end);
  bool Stretch(End end);
  bool Search(End end);

  void BeginRecord();
  bool BeginBlock(std::size_t headerLength);
  void CloseRecord();
  void ReleasePending(std::optional<std::uint64_t> next);
  bool FindSwallowed();
  void TakeBlock(std::size_t count);
  void EndInBlock(End end);
  void EndSearch();
  std::uint64_t Near() const { return plain_ ? base_ + at_ : member_; }
  std::string_view Rest() const { return std::string_view(bytes_).substr(at_); }
  std::size_t WithoutLineEnds(std::size_t end) const;
  void Trim();

  const RecordDialect &dialect_;
  std::size_t headerLimit_;
  RecordSink &sink_;
  std::string bytes_;  // some lie behind `at_`, for lengths that prove to be wrong
  std::size_t at_ = 0;
  std::uint64_t base_ = 0;  // position of bytes_; in the file when it is plain
  bool plain_ = true;
  State state_ = State::kBetween;

  std::uint64_t member_ = 0;          // where the member at hand starts
  std::uint64_t memberPosition_ = 0;  // position of its first decoded byte that is no line end
  bool closedMember_ = false;         // a member has ended at memberPosition_, inside of a block

  std::optional<Record> record_;     // the one at hand
  std::optional<Record> pending_;    // the one before, until its length is known
  std::uint64_t pendingMember_ = 0;  // the member that it ended in
  std::uint64_t blockPosition_ = 0;
  std::uint64_t left_ = 0;        // bytes of the block still to come
  std::uint64_t searchNear_ = 0;  // a place to name for what is passed over
  std::size_t scanned_ = 0;       // bytes_ up to here hold no start
  Passed passed_ = Passed::kGarbage;
};

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_RECORDS_RECORD_READER_H
