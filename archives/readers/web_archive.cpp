// SPDX-License-Identifier: MIT
#include "archives/readers/web_archive.h"

#include <algorithm>
#include <utility>

#include "archives/http/chunks.h"
#include "archives/http/message.h"
#include "archives/payload/content_kind.h"
#include "archives/payload/digest.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

bool HoldsDocument(const RecordHead &head) {
  return head.type == "response" || head.type == "resource" || head.type == "conversion";
}

bool IsHttpType(std::string_view contentType) {
  return ParseMediaType(contentType).name == "application/http";
}

// Whether the block's first line is a field, where its status line is missing.
bool BeginsWithField(std::string_view block) {
  const std::string_view line = block.substr(0, std::min(block.find('\n'), block.size()));
  const std::size_t colon = line.find(':');
  return colon != std::string_view::npos && colon != 0 &&
         std::all_of(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char c) { return IsLetter(c) || IsDigit(c) || c == '-' || c == '_'; });
}

// Holds the block of a record as long as it may be a deck.
class BlockHolder : public BlockTaker {
 public:
  BlockHolder(const ReadContext &context, const RecordHead &head)
      : context_(context),
        saysHttp_(IsHttpType(head.contentType)),
        contentType_(head.contentType),
        payloadType_(head.payloadType),
        state_(HoldsDocument(head) ? State::kBegin : State::kPassed) {}

  void Take(std::string_view bytes) override {
    constexpr std::size_t kSlice = 4096;  // most heads are shorter
    size_ += bytes.size();
    while (!bytes.empty() && state_ != State::kPassed) {
      const bool isHeld = state_ == State::kHeld;
      const std::string_view part = bytes.substr(0, isHeld ? bytes.size() : kSlice);
      Hold(part);
      bytes.remove_prefix(part.size());
      if (!isHeld) Look(false);
    }
  }

  void TakeBack(std::uint64_t count) override {
    size_ -= std::min(count, size_);
    if (held_.size() > size_) held_.resize(static_cast<std::size_t>(size_));
  }

  // The block is all there.
  void Close() {
    if (state_ == State::kBegin || state_ == State::kHead) Look(true);
  }

  bool IsHeld() const { return state_ == State::kHeld; }
  bool IsHeadOver() const { return headOver_; }
  bool IsOver() const { return size_ > held_.size(); }
  const HttpHead &Http() const { return http_; }
  std::string_view Block() const { return held_; }
  std::string_view Body() const {
    // Bytes that were taken back may have been of the head.
    return std::string_view(held_).substr(std::min(bodyAt_, held_.size()));
  }

 private:
  enum class State { kBegin, kHead, kHeld, kPassed };

  void Hold(std::string_view bytes) {
    const std::size_t limit = context_.Limits().documentBytes + context_.Limits().headerBytes;
    held_ += bytes.substr(0, limit - std::min(limit, held_.size()));
  }

  // Tells HTTP from a bare payload, and looks for the end of the head.
  void Look(bool last) {
    constexpr std::size_t kEnough = 64;
    if (state_ == State::kBegin) {
      if (held_.size() < kEnough && !last) return;
      if (!LooksLikeHttp(held_) && !(saysHttp_ && BeginsWithField(held_))) {
        HttpHead bare;
        bare.rawType = saysHttp_ ? payloadType_ : contentType_;
        bare.type = ParseMediaType(bare.rawType);
        Decide(std::move(bare));
        return;
      }
      state_ = State::kHead;
    }
    bodyAt_ = HeaderLength(held_);
    if (bodyAt_ == 0 && last) bodyAt_ = held_.size();
    if (bodyAt_ != 0) {
      Decide(ParseHttpHead(std::string_view(held_).substr(0, bodyAt_)));
    } else if (held_.size() >= context_.Limits().headerBytes) {
      headOver_ = true;
      Pass();
    }
  }

  void Decide(HttpHead head) {
    http_ = std::move(head);
    std::string type = http_.type.name;
    if (type.empty()) type = ParseMediaType(payloadType_).name;
    if (context_.Types().Wants(type) || IsArchiveType(type)) {
      state_ = State::kHeld;
    } else {
      Pass();
    }
  }

  void Pass() {
    held_ = {};
    state_ = State::kPassed;
  }

  const ReadContext &context_;
  bool saysHttp_;
  bool headOver_ = false;
  std::string contentType_;
  std::string payloadType_;
  State state_;
  HttpHead http_;
  std::string held_;
  std::size_t bodyAt_ = 0;
  std::uint64_t size_ = 0;
};

std::string NameOf(const Record &record, const ArchivePlace &place) {
  if (!record.head.uri.empty()) return record.head.uri;
  return place.archive + '!' + std::to_string(record.near);
}

ArchivedDocument Describe(const Record &record, const ArchivePlace &place) {
  const auto *block = static_cast<const BlockHolder *>(record.block.get());
  ArchivedDocument document;
  document.uri = NameOf(record, place);
  document.date = record.head.date;
  document.archive = place.archive;
  document.offset = record.offset;
  document.length = record.length;
  document.recordId = record.head.id;
  document.digest =
      record.head.payloadDigest.empty() ? record.head.blockDigest : record.head.payloadDigest;
  document.status = block->Http().status;
  document.contentType = block->Http().type.name;
  document.charset = block->Http().type.charset;
  document.warnings = record.head.warnings;
  return document;
}

// Whether the recorded digest is that of the payload, as it was transferred, with its chunks
// joined or decoded; or that of the block, where the record has no other.
bool HasItsDigest(const Record &record, const BlockHolder &block, std::string_view decoded) {
  const auto differs = [](std::string_view digest, std::string_view bytes) {
    return CompareDigest(digest, bytes) == DigestMatch::kDifferent;
  };
  const std::string &payload = record.head.payloadDigest;
  if (payload.empty()) return !differs(record.head.blockDigest, block.Block());
  if (!differs(payload, block.Body()) || !differs(payload, decoded)) return true;
  return BeginsWithChunk(block.Body()) && !differs(payload, JoinChunks(block.Body()).bytes);
}

}  // namespace

std::unique_ptr<BlockTaker> RecordJudge::Begin(const RecordHead &head) {
  return std::make_unique<BlockHolder>(context_, head);
}

void RecordJudge::End(Record record) {
  if (isDone_) return;
  if (place_.depth == 0) context_.RenewNested();
  Judge(record);
  isDone_ = isSingle_;
}

void RecordJudge::Judge(Record &record) {
  auto *block = static_cast<BlockHolder *>(record.block.get());
  if (!record.damage.empty()) {
    Refuse(record, record.damage);
    return;
  }
  block->Close();
  const std::string &type = record.head.type;
  if (type == "revisit" || type == "continuation") {
    const std::string &target = record.head.refersTo;
    context_.Note(place_, record.near, record.head.uri,
                  type + (target.empty() ? "" : " of " + target) + ", not resolved");
  }
  if (block->IsHeadOver()) {
    Refuse(record, "its HTTP header is longer than " +
                       LimitText(context_.Limits().headerBytes, "headerBytes"));
  } else if (block->IsHeld()) {
    JudgeDocument(record);
  } else {
    WarnOf(record);
    context_.Skip();
  }
}

void RecordJudge::JudgeDocument(Record &record) {
  const auto *block = static_cast<const BlockHolder *>(record.block.get());
  const std::size_t limit = context_.Limits().documentBytes;
  DecodedBody decoded = DecodeBody(block->Http(), block->Body(), limit);
  const std::string &type = block->Http().type.name;
  const bool isOver = block->IsOver() || decoded.over;
  const bool isDeck = LooksLikeDeck(decoded.bytes);
  if (!isOver && !decoded.damaged && SniffDocument(decoded.bytes, type) != ContentKind::kDocument) {
    ReadNested(record, decoded.bytes);
  } else if (isDeck && isOver) {
    Refuse(record, "is longer than " + LimitText(limit, "documentBytes"));
  } else if ((isDeck || IsDeckType(type)) && decoded.damaged) {
    Refuse(record, decoded.warnings.back());
  } else if (isDeck) {
    Deliver(record, std::move(decoded));
  } else {
    WarnOf(record);
    if (IsDeckType(type)) {
      context_.Warn(place_, record.near, record.head.uri, "is " + type + ", but holds no deck");
    }
    context_.Skip();
  }
}

// The document is an archive.
void RecordJudge::ReadNested(const Record &record, std::string_view bytes) {
  const HttpHead &http = static_cast<const BlockHolder *>(record.block.get())->Http();
  WarnOf(record);
  EntryReader entry(context_, {NameOf(record, place_), place_.depth + 1}, Describe(record, place_));
  if (IsMultipart(http.type.name)) entry.Feed("Content-Type: " + http.rawType + "\r\n\r\n");
  entry.Feed(bytes);
  entry.Finish();
}

void RecordJudge::Deliver(const Record &record, DecodedBody decoded) {
  const auto *block = static_cast<const BlockHolder *>(record.block.get());
  ArchivedDocument document = Describe(record, place_);
  std::vector<std::string> &warnings = document.warnings;
  for (const auto &more : {block->Http().warnings, decoded.warnings}) {
    warnings.insert(warnings.end(), more.begin(), more.end());
  }
  if (!record.head.truncated.empty()) {
    warnings.push_back("its writer cut it: " + record.head.truncated);
  }
  if (record.head.segment == "1") {
    warnings.emplace_back("it goes on in other records, which are not joined");
  }
  if (!HasItsDigest(record, *block, decoded.bytes)) {
    warnings.push_back("its digest is not " + document.digest);
  }
  document.bytes = std::move(decoded.bytes);
  context_.Deliver(std::move(document));
}

void RecordJudge::Refuse(const Record &record, const std::string &why) {
  WarnOf(record);
  context_.Damage(place_, record.near, record.head.uri, why);
}

void RecordJudge::WarnOf(const Record &record) {
  for (const std::string &warning : record.head.warnings) {
    context_.Warn(place_, record.near, record.head.uri, warning);
  }
}

void RecordJudge::Broken(std::uint64_t offset, const std::string &why) {
  if (isDone_) return;
  context_.Damage(place_, offset, {}, why);
  isDone_ = isSingle_;
}

void RecordJudge::Garbage(std::uint64_t begin, std::uint64_t end) {
  if (isDone_) return;
  const std::uint64_t size = end > begin ? end - begin : 0;
  context_.Lose(place_, begin,
                (size == 0 ? std::string("bytes") : std::to_string(size) + " bytes") +
                    " from here on belong to no record");
}

WebArchiveReader::WebArchiveReader(ReadContext &context, ArchivePlace place,
                                   const RecordDialect &dialect, bool compressed,
                                   std::uint64_t offset)
    : judge_(context, std::move(place)),
      records_(dialect, context.Limits().headerBytes, judge_),
      members_(records_,
               [&dialect](std::string_view decoded) {
                 return dialect.match(decoded, true) == RecordDialect::Start::kYes;
               }),
      compressed_(compressed),
      position_(offset) {
  if (compressed_) {
    members_.Begin(offset);
  } else {
    records_.BeginPlain(offset);
  }
}

void WebArchiveReader::Feed(std::string_view bytes) {
  position_ += bytes.size();
  if (compressed_) {
    members_.Feed(bytes);
  } else {
    records_.Feed(bytes);
  }
}

void WebArchiveReader::Finish() {
  if (compressed_) members_.Finish();
  records_.Finish(position_);
}

}  // namespace vs_wml
