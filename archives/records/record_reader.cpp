// SPDX-License-Identifier: MIT
#include "archives/records/record_reader.h"

#include <algorithm>
#include <utility>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

using Start = RecordDialect::Start;
constexpr auto npos = std::string_view::npos;
// Kept behind the place of reading: a length that is too long by less is repaired.
constexpr std::size_t kHistory = std::size_t{1} << 20U;

bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

// Whether bytes that begin no record are yet part of one.
bool HasRecordFields(std::string_view bytes) {
  return bytes.find("WARC-Type:") != npos || bytes.find("WARC-Record-ID:") != npos ||
         bytes.find("WARC-Target-URI:") != npos;
}

std::string Count(std::uint64_t number, const char *what) {
  return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
}

}  // namespace

void RecordReader::BeginPlain(std::uint64_t offset) {
  plain_ = true;
  base_ = offset;
}

void RecordReader::Feed(std::string_view bytes) {
  bytes_ += bytes;
  Run(End::kOpen);
  Trim();
}

void RecordReader::Run(End end) {
  bool goesOn = true;
  while (goesOn) {
    switch (state_) {
      case State::kBetween:
        goesOn = Between(end);
        break;
      case State::kHeader:
        goesOn = Header(end);
        break;
      case State::kBlock:
        goesOn = Block(end);
        break;
      case State::kBehind:
        goesOn = Behind(end);
        break;
      case State::kStretched:
        goesOn = Stretch(end);
        break;
      case State::kSearching:
        goesOn = Search(end);
        break;
    }
  }
}

bool RecordReader::Between(End end) {
  const bool beginsMember = base_ + at_ == memberPosition_;
  while (at_ < bytes_.size() && IsLineEnd(bytes_[at_])) ++at_;
  if (beginsMember) memberPosition_ = base_ + at_;
  const std::string_view rest = Rest();
  if (rest.empty()) return false;
  switch (dialect_.match(rest, end != End::kOpen)) {
    case Start::kYes:
      BeginRecord();
      return true;
    case Start::kMoreBytes:
      return false;
    case Start::kNo:
      break;
  }
  searchNear_ = Near();
  scanned_ = at_;
  passed_ = Passed::kGarbage;
  state_ = State::kSearching;
  return true;
}

void RecordReader::BeginRecord() {
  const bool hasStart = plain_ || base_ + at_ == memberPosition_;
  const std::optional<std::uint64_t> offset =
      hasStart ? std::optional<std::uint64_t>(Near()) : std::nullopt;
  ReleasePending(offset);
  record_.emplace();
  record_->offset = offset;
  record_->near = Near();
  closedMember_ = false;
  state_ = State::kHeader;
}

bool RecordReader::Header(End end) {
  std::string_view rest = Rest();
  bool nextFollows = false;
  if (closedMember_) {
    // The header goes on in the next member, or that begins with a record of its own.
    const auto there = static_cast<std::size_t>(memberPosition_ - (base_ + at_));
    const Start start = dialect_.match(rest.substr(there), end != End::kOpen);
    if (start == Start::kMoreBytes && end != End::kFile) return false;
    if (start == Start::kYes) {
      rest = rest.substr(0, there);
      nextFollows = true;
    } else {
      closedMember_ = false;
    }
  }
  const std::string_view looked = rest.substr(0, headerLimit_);
  const std::size_t length = dialect_.headerLength(looked);
  if (length != 0) return BeginBlock(length);
  if (looked.size() < headerLimit_ && end == End::kOpen && !nextFollows) return false;
  const std::string why =
      looked.size() == headerLimit_
          ? "its header is longer than " + Count(headerLimit_, "byte") + " (headerBytes)"
          : "its header is cut: " + Count(looked.size(), "byte") + " are there";
  sink_.Broken(record_->near, why);
  record_.reset();
  at_ += looked.size();
  searchNear_ = Near();
  scanned_ = at_;
  passed_ = Passed::kReported;
  state_ = nextFollows ? State::kBetween : State::kSearching;
  closedMember_ = false;
  return true;
}

bool RecordReader::BeginBlock(std::size_t headerLength) {
  record_->head = dialect_.parse(Rest().substr(0, headerLength));
  record_->block = sink_.Begin(record_->head);
  at_ += headerLength;
  blockPosition_ = base_ + at_;
  left_ = record_->head.length.value_or(0);
  scanned_ = at_;
  state_ = record_->head.length ? State::kBlock : State::kStretched;
  return true;
}

void RecordReader::TakeBlock(std::size_t count) {
  record_->block->Take(Rest().substr(0, count));
  at_ += count;
}

bool RecordReader::Block(End end) {
  // A member ended in the block: what follows is the rest of it, or the next record.
  if (closedMember_ && base_ + at_ == memberPosition_ && left_ != 0) {
    const Start start = dialect_.match(Rest(), end != End::kOpen);
    if (start == Start::kMoreBytes && end != End::kFile) return false;
    if (start == Start::kYes) {
      EndInBlock(End::kMember);
      return true;
    }
    if (!Rest().empty()) closedMember_ = false;
  }
  const std::size_t part =
      static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes_.size() - at_));
  TakeBlock(part);
  left_ -= part;
  if (left_ == 0) {
    state_ = State::kBehind;
    return true;
  }
  if (end == End::kFile) EndInBlock(End::kFile);
  return end == End::kFile;
}

// The block has fewer bytes than its header says.
void RecordReader::EndInBlock(End end) {
  const std::uint64_t there = base_ + at_ - blockPosition_;
  const std::uint64_t wanted = there + left_;
  const std::string found = std::to_string(there) + " of " + Count(wanted, "byte") + " are there";
  if (end == End::kFile && plain_ && FindSwallowed()) return;
  // A member that ended as it should was written so.
  if (end == End::kMember || (closedMember_ && !plain_)) {
    record_->head.warnings.push_back("its Content-Length is too long: " + found);
  } else {
    record_->damage = "is cut: " + found;
  }
  CloseRecord();
}

// Looks for a record inside of the block, which ends there then. Only with a length that is
// known to be wrong: the payload may be an archive itself.
bool RecordReader::FindSwallowed() {
  const std::size_t begin = static_cast<std::size_t>(std::max(blockPosition_, base_) - base_);
  const std::string_view known = std::string_view(bytes_).substr(0, at_);
  std::size_t found = begin;
  do {
    found = dialect_.findStart(known, found);
    if (found == npos) return false;
    const bool startsLine = found != 0 && known[found - 1] == '\n';
    if (startsLine && dialect_.match(std::string_view(bytes_).substr(found), true) == Start::kYes) {
      break;
    }
    ++found;
  } while (true);
  const std::size_t end = std::max(WithoutLineEnds(found), begin);
  record_->block->TakeBack(at_ - end);
  const std::uint64_t size = base_ + end - blockPosition_;
  record_->head.warnings.push_back("its Content-Length is too long: the next record begins after " +
                                   Count(size, "byte"));
  if (blockPosition_ < base_) {
    record_->damage = "its Content-Length is wrong by more than a megabyte: records may be lost";
  }
  at_ = found;
  CloseRecord();
  return true;
}

std::size_t RecordReader::WithoutLineEnds(std::size_t end) const {
  for (std::size_t line = 0; line < dialect_.blankLines && end != 0; ++line) {
    if (bytes_[end - 1] != '\n') break;
    --end;
    if (end != 0 && bytes_[end - 1] == '\r') --end;
  }
  return end;
}

bool RecordReader::Behind(End end) {
  std::size_t next = at_;
  while (next < bytes_.size() && IsLineEnd(bytes_[next])) ++next;
  const std::string_view rest = std::string_view(bytes_).substr(next);
  const auto lines = static_cast<std::size_t>(
      std::count(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
                 bytes_.begin() + static_cast<std::ptrdiff_t>(next), '\n'));
  if (rest.empty()) {
    if (end == End::kOpen && lines < dialect_.blankLines) return false;
    if (lines < dialect_.blankLines && end == End::kFile && plain_) {
      record_->head.warnings.emplace_back("the file is cut in the empty lines behind the record");
    }
    at_ = next;
    CloseRecord();
    return true;
  }
  const Start start = dialect_.match(rest, end != End::kOpen);
  if (start == Start::kMoreBytes) return false;
  if (start == Start::kYes && lines == 0 && dialect_.isAmbiguous && FindSwallowed()) return true;
  if (start == Start::kNo && lines < dialect_.blankLines) {
    if (FindSwallowed()) return true;
    scanned_ = at_;
    state_ = State::kStretched;
    return true;
  }
  at_ = next;
  CloseRecord();
  return true;
}

// The block goes on until a record starts: its length is too short, or missing.
bool RecordReader::Stretch(End end) {
  const std::string_view all = bytes_;
  const bool last = end != End::kOpen;
  std::size_t found = scanned_;
  while ((found = dialect_.findStart(all, found)) != npos) {
    const Start start = dialect_.match(all.substr(found), last);
    if (start == Start::kMoreBytes) break;
    if (start == Start::kYes) break;
    ++found;
  }
  const bool begins = found != npos && dialect_.match(all.substr(found), last) == Start::kYes;
  std::size_t stop = begins ? found : last ? all.size() : std::min(found, all.size());
  stop = std::max(WithoutLineEnds(stop), at_);
  if (!begins && !last) {
    // The line ends in front of a start are not of the block; nor is a part of a start.
    scanned_ = std::min(found, all.size());
    const std::size_t line = all.find_last_not_of("\r\n", scanned_ == 0 ? 0 : scanned_ - 1);
    stop = line == npos ? at_ : std::max(at_, std::min(line + 1, scanned_));
    TakeBlock(stop - at_);
    return false;
  }
  TakeBlock(stop - at_);
  const std::uint64_t size = base_ + at_ - blockPosition_;
  if (record_->head.length) {
    record_->head.warnings.push_back(
        "its Content-Length is too short: " + std::to_string(*record_->head.length) + " of " +
        Count(size, "byte"));
  }
  at_ = begins ? found : all.size();
  CloseRecord();
  return true;
}

void RecordReader::CloseRecord() {
  pending_ = std::move(record_);
  pendingMember_ = member_;
  record_.reset();
  closedMember_ = false;
  state_ = State::kBetween;
}

// `next`: where the next record starts, or the bytes end that are the record's own; nothing
// when the next one has no start of its own.
void RecordReader::ReleasePending(std::optional<std::uint64_t> next) {
  if (!pending_) return;
  Record record = std::move(*pending_);
  pending_.reset();
  if (!next) {
    record.offset.reset();
  } else if (record.offset) {
    record.length = *next - *record.offset;
  }
  sink_.End(std::move(record));
}

bool RecordReader::Search(End end) {
  const std::string_view all = bytes_;
  const bool last = end != End::kOpen;
  while (true) {
    const std::size_t found = dialect_.findStart(all, scanned_);
    const std::size_t stop = std::min(found, all.size());
    if (passed_ == Passed::kGarbage && HasRecordFields(all.substr(at_, stop - at_))) {
      passed_ = Passed::kRecord;
    }
    at_ = stop;
    scanned_ = stop;
    if (found != npos) {
      const Start start = dialect_.match(all.substr(found), last);
      if (start == Start::kMoreBytes) return false;
      if (start == Start::kNo) {
        scanned_ = found + 1;
        continue;
      }
    } else if (!last) {
      return false;
    }
    EndSearch();
    return true;
  }
}

void RecordReader::EndSearch() {
  state_ = State::kBetween;
  if (plain_) ReleasePending(searchNear_);
  if (passed_ == Passed::kRecord) {
    sink_.Broken(searchNear_, "no record begins as this one does");
  } else if (passed_ == Passed::kGarbage) {
    sink_.Garbage(searchNear_, Near());
  }
}

void RecordReader::BeginMember(std::uint64_t offset) {
  plain_ = false;
  member_ = offset;
  memberPosition_ = base_ + bytes_.size();
}

void RecordReader::EndMember() {
  if ((state_ == State::kBlock && left_ != 0) || state_ == State::kHeader) {
    closedMember_ = true;
    memberPosition_ = base_ + bytes_.size();
  } else {
    Run(End::kMember);
  }
}

void RecordReader::DamagedMember(std::uint64_t offset, const std::string &why) {
  if (record_ && record_->block != nullptr) {
    record_->damage = why;
    CloseRecord();
  } else if (!record_ && pending_ && pendingMember_ == offset) {
    pending_->damage = why;
  } else {
    ReleasePending(offset);
    sink_.Broken(offset, why);
  }
  record_.reset();
  at_ = bytes_.size();
  state_ = State::kBetween;
}

void RecordReader::Garbage(std::uint64_t begin, std::uint64_t end) {
  ReleasePending(begin);
  sink_.Garbage(begin, end);
}

void RecordReader::Finish(std::uint64_t offset) {
  Run(End::kFile);
  ReleasePending(offset);
}

void RecordReader::Trim() {
  if (at_ < 2 * kHistory) return;
  const std::size_t gone = at_ - kHistory;
  bytes_.erase(0, gone);
  at_ -= gone;
  base_ += gone;
  scanned_ -= std::min(scanned_, gone);
}

}  // namespace vs_wml
