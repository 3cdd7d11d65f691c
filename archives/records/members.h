/// \file
/// Compressed members that follow one another: gzip members, zstd frames.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_RECORDS_MEMBERS_H
#define VS_WML_ARCHIVES_RECORDS_MEMBERS_H

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "archives/coding/decoder.h"

namespace vs_wml {

/// Takes what a file of members holds. Offsets are those of the file.
class MemberSink {
 public:
  virtual ~MemberSink() = default;
  virtual void BeginMember(std::uint64_t offset) = 0;
  virtual void Decoded(std::string_view bytes) = 0;
  virtual void EndMember() = 0;
  /// Instead of EndMember: the member cannot be read on; what was decoded may be wrong.
  virtual void DamagedMember(std::uint64_t offset, const std::string &why) = 0;
  /// Bytes that belong to no member.
  virtual void Garbage(std::uint64_t begin, std::uint64_t end) = 0;
};

/// Reads members as they come, and goes on behind damaged ones at the next that begins as
/// it should.
class MemberReader {
 public:
  /// Whether a member that decodes to this is what is looked for behind damage.
  using IsStart = std::function<bool(std::string_view decoded)>;

  MemberReader(MemberSink &sink, IsStart isStart);

  /// `offset`: of the first byte that is fed, in the file.
  void Begin(std::uint64_t offset) { base_ = offset; }
  /// What zstd frames were compressed with, where it does not come in front of them.
  void UseDictionary(std::string_view bytes);
  void Feed(std::string_view bytes);
  void Finish();

 private:
  enum class State { kBetween, kInside, kSkipping, kSearching };

  void Run(bool last);
  bool Between(bool last);
  bool Inside();
  bool Skip(bool last);
  bool Search(bool last);
  void Damage(const std::string &why);
  bool BeginsMember(std::size_t at, bool last) const;
  void Trim();
  std::uint64_t Offset(std::size_t at) const { return base_ + at; }
  std::string_view Rest() const { return std::string_view(raw_).substr(at_); }

  MemberSink &sink_;
  IsStart isStart_;
  std::unique_ptr<Decoder> decoder_;
  std::string dictionary_;
  std::string raw_;         // read and not yet let go: some of it lies behind `at_`
  std::uint64_t base_ = 0;  // where raw_ starts
  std::size_t at_ = 0;
  std::uint64_t member_ = 0;   // where the member at hand starts
  std::uint64_t garbage_ = 0;  // where the garbage at hand starts
  std::uint64_t skip_ = 0;     // bytes of a skippable frame still to come
  bool takesDictionary_ = true;
  bool zstd_ = false;
  bool afterDamage_ = false;
  State state_ = State::kBetween;
  std::string out_;
};

/// The dictionary that the skippable frame at the start of a .warc.zst holds, decompressed;
/// empty: none. `bytes` begin with the whole frame.
std::string DictionaryIn(std::string_view bytes);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_RECORDS_MEMBERS_H
