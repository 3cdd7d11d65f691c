// SPDX-License-Identifier: MIT
#include "archives/records/members.h"

#include <algorithm>
#include <utility>

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 262144;
// Kept behind the place of reading, to look for members in once one proves damaged.
constexpr std::size_t kHistory = std::size_t{1} << 20U;
constexpr std::size_t kLargestDictionary = std::size_t{16} << 20U;
constexpr std::size_t kFrameHeader = 8;  // of a skippable frame: mark and length
constexpr std::string_view kDictionaryMark = "\x5D\x2A\x4D\x18";

std::uint32_t FrameLength(std::string_view frame) {
  std::uint32_t length = 0;
  for (std::size_t i = kFrameHeader; i-- != kFrameHeader / 2;) {
    length = length << 8U | static_cast<unsigned char>(frame[i]);
  }
  return length;
}

}  // namespace

std::string DictionaryIn(std::string_view bytes) {
  if (bytes.size() <= kFrameHeader || !bytes.starts_with(kDictionaryMark)) return {};
  const std::string_view content = bytes.substr(kFrameHeader, FrameLength(bytes));
  if (!IsZstdFrame(content)) return std::string(content);
  return DecodeWhole(*MakeZstdDecoder({}), content, kLargestDictionary, false).bytes;
}

MemberReader::MemberReader(MemberSink &sink, IsStart isStart)
    : sink_(sink), isStart_(std::move(isStart)), out_(kPiece, '\0') {}

void MemberReader::UseDictionary(std::string_view bytes) {
  dictionary_ = DictionaryIn(bytes);
}

void MemberReader::Feed(std::string_view bytes) {
  raw_ += bytes;
  Run(false);
  Trim();
}

void MemberReader::Finish() {
  Run(true);
  if (state_ == State::kInside) Damage("is cut: the file ends in it");
  if (state_ == State::kSkipping) {
    sink_.DamagedMember(member_, "is cut: the file ends in it");
  } else if (state_ == State::kSearching) {
    at_ = raw_.size();
    if (!afterDamage_ && Offset(at_) > garbage_) sink_.Garbage(garbage_, Offset(at_));
  }
}

void MemberReader::Run(bool last) {
  bool goesOn = true;
  while (goesOn) {
    switch (state_) {
      case State::kBetween:
        goesOn = Between(last);
        break;
      case State::kInside:
        goesOn = Inside();
        break;
      case State::kSkipping:
        goesOn = Skip(last);
        break;
      case State::kSearching:
        goesOn = Search(last);
        break;
    }
  }
}

bool MemberReader::Between(bool last) {
  const std::string_view rest = Rest();
  if (rest.empty() || (rest.size() < 4 && !last)) return false;
  member_ = Offset(at_);
  if (IsSkippableFrame(rest)) {
    if (rest.size() < kFrameHeader) {
      if (last) state_ = State::kSkipping;
      return false;
    }
    const std::size_t whole = kFrameHeader + FrameLength(rest);
    if (takesDictionary_ && rest.starts_with(kDictionaryMark) && whole <= kLargestDictionary) {
      if (rest.size() < whole) {
        if (last) state_ = State::kSkipping;
        return false;
      }
      dictionary_ = DictionaryIn(rest.substr(0, whole));
    }
    skip_ = whole;
    state_ = State::kSkipping;
    return true;
  }
  const bool zstd = IsZstdFrame(rest);
  if (!zstd && !IsGzip(rest)) {
    garbage_ = Offset(at_);
    afterDamage_ = false;
    state_ = State::kSearching;
    return true;
  }
  if (decoder_ == nullptr || zstd != zstd_) {
    zstd_ = zstd;
    decoder_ = zstd ? MakeZstdDecoder(dictionary_) : MakeInflater(DeflateWrapper::kGzip);
  } else {
    decoder_->Reset();
  }
  takesDictionary_ = false;
  state_ = State::kInside;
  sink_.BeginMember(member_);
  return true;
}

bool MemberReader::Inside() {
  const DecodeStep step = decoder_->Decode(Rest(), out_.data(), out_.size());
  at_ += step.taken;
  if (step.given != 0) sink_.Decoded(std::string_view(out_).substr(0, step.given));
  if (step.state == DecodeState::kDamaged) {
    Damage("is damaged: " + decoder_->Fault());
    return true;
  }
  if (step.state == DecodeState::kFinished) {
    sink_.EndMember();
    state_ = State::kBetween;
    return true;
  }
  return at_ < raw_.size() || step.given == out_.size();
}

bool MemberReader::Skip(bool last) {
  const std::size_t part =
      static_cast<std::size_t>(std::min<std::uint64_t>(skip_, raw_.size() - at_));
  at_ += part;
  skip_ -= part;
  if (skip_ != 0 || (last && part == 0)) return false;
  state_ = State::kBetween;
  return true;
}

void MemberReader::Damage(const std::string &why) {
  sink_.DamagedMember(member_, why);
  // The decoder may have run far past the damage.
  at_ = member_ >= base_ ? static_cast<std::size_t>(member_ - base_) + 1 : 0;
  garbage_ = member_;
  afterDamage_ = true;
  state_ = State::kSearching;
}

// A mark alone means little in compressed bytes: what it begins has to decode to a record.
bool MemberReader::BeginsMember(std::size_t at, bool last) const {
  constexpr std::size_t kEnough = 512;
  const std::string_view bytes = std::string_view(raw_).substr(at);
  const auto decoder =
      IsGzip(bytes) ? MakeInflater(DeflateWrapper::kGzip) : MakeZstdDecoder(dictionary_);
  const DecodedWhole begin = DecodeWhole(*decoder, bytes, kEnough, false);
  return (begin.over || begin.state == DecodeState::kFinished || last) && isStart_(begin.bytes);
}

bool MemberReader::Search(bool last) {
  constexpr std::size_t kProbe = 65536;  // enough to decode a header from
  const std::string_view all = raw_;
  for (; at_ < all.size(); ++at_) {
    at_ = std::min(all.find_first_of("\x1F\x28", at_), all.size());
    const std::string_view rest = all.substr(at_);
    if (rest.size() < kProbe && !last) return false;
    if (rest.size() >= 4 && (IsGzip(rest) || IsZstdFrame(rest)) && BeginsMember(at_, last)) {
      if (!afterDamage_) sink_.Garbage(garbage_, Offset(at_));
      state_ = State::kBetween;
      return true;
    }
  }
  return false;
}

void MemberReader::Trim() {
  if (at_ < 2 * kHistory) return;
  const std::size_t gone = at_ - kHistory;
  raw_.erase(0, gone);
  at_ -= gone;
  base_ += gone;
}

}  // namespace vs_wml
