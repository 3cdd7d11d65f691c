// SPDX-License-Identifier: MIT
#include "archives/readers/entry_reader.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "archives/readers/bundle_reader.h"
#include "archives/readers/byte_source.h"
#include "archives/readers/har_reader.h"
#include "archives/readers/mail_reader.h"
#include "archives/readers/web_archive.h"
#include "archives/records/members.h"

namespace vs_wml {
namespace {

// Holds what may be a deck.
class DocumentReader : public ContentReader {
 public:
  DocumentReader(ReadContext &context, const ArchivePlace &place, ArchivedDocument about)
      : context_(context),
        place_(place),
        about_(std::move(about)),
        isWanted_(context.Types().Wants(about_.contentType)) {}

  void Feed(std::string_view bytes) override {
    if (!isWanted_) return;
    const std::size_t limit = context_.Limits().documentBytes;
    const std::size_t room = limit - std::min(limit, about_.bytes.size());
    about_.bytes += bytes.substr(0, room);
    isOver_ = isOver_ || bytes.size() > room;
  }

  void Finish() override {
    const bool isDeck = isWanted_ && LooksLikeDeck(about_.bytes);
    if (isDeck && isOver_) {
      context_.Damage(
          place_, std::nullopt, about_.uri,
          "is longer than " + LimitText(context_.Limits().documentBytes, "documentBytes"));
    } else if (isDeck) {
      context_.Deliver(std::move(about_));
    } else {
      if (isWanted_ && IsDeckType(about_.contentType)) {
        context_.Warn(place_, std::nullopt, about_.uri,
                      "is " + about_.contentType + ", but holds no deck");
      }
      context_.Skip();
    }
  }

 private:
  ReadContext &context_;
  const ArchivePlace &place_;
  ArchivedDocument about_;
  bool isWanted_;
  bool isOver_ = false;
};

// Gzip members or zstd frames around something else: their contents, joined.
class CompressedReader : public ContentReader, private MemberSink {
 public:
  CompressedReader(ReadContext &context, const ArchivePlace &place, ArchivedDocument about)
      : context_(context),
        place_(place),
        inner_(context, {NameOf(place), place.depth + 1}, About(place, std::move(about))),
        members_(*this, [](std::string_view) { return false; }) {}

  void Feed(std::string_view bytes) override { members_.Feed(bytes); }

  void Finish() override {
    members_.Finish();
    if (fault_.empty()) {
      inner_.Finish();
    } else {
      inner_.Abandon(fault_);
    }
  }

 private:
  // "b.wml" of "a.zip!dir/b.wml.gz".
  static std::string Stem(const ArchivePlace &place) {
    const std::size_t begin = place.archive.find_last_of("/!") + 1;
    return place.archive.substr(begin, place.archive.rfind('.') - begin);
  }
  static std::string NameOf(const ArchivePlace &place) { return place.archive + '!' + Stem(place); }
  static ArchivedDocument About(const ArchivePlace &place, ArchivedDocument about) {
    // What has no address of its own is named by where it lies.
    if (about.uri.empty() || about.uri == place.archive) about.uri = NameOf(place);
    about.archive = place.archive;
    return about;
  }

  void BeginMember(std::uint64_t /*offset*/) override {}
  void Decoded(std::string_view bytes) override { inner_.Feed(bytes); }
  void EndMember() override {}
  void DamagedMember(std::uint64_t offset, const std::string &why) override {
    if (fault_.empty()) fault_ = why + ", from byte " + std::to_string(offset) + " on";
  }
  void Garbage(std::uint64_t begin, std::uint64_t end) override {
    context_.Lose(place_, begin,
                  std::to_string(end - begin) + " bytes from here on belong to nothing");
  }

  ReadContext &context_;
  const ArchivePlace &place_;
  EntryReader inner_;
  MemberReader members_;
  std::string fault_;
};

using ReadAll = void (*)(ByteSource &, ReadContext &, const ArchivePlace &);

// Keeps what can only be read as a whole.
class SpoolingReader : public ContentReader {
 public:
  SpoolingReader(ReadContext &context, const ArchivePlace &place, ReadAll read)
      : context_(context), place_(place), read_(read) {}

  void Feed(std::string_view bytes) override { spool_.Append(bytes); }
  void Finish() override {
    spool_.Seek(0);
    read_(spool_, context_, place_);
  }

 private:
  ReadContext &context_;
  const ArchivePlace &place_;
  ReadAll read_;
  Spool spool_;
};

std::unique_ptr<ContentReader> MakeReader(ContentKind kind, ReadContext &context,
                                          const ArchivePlace &place, ArchivedDocument about) {
  const auto webArchive = [&](const RecordDialect &dialect, bool compressed) {
    return std::make_unique<WebArchiveReader>(context, place, dialect, compressed, 0);
  };
  switch (kind) {
    case ContentKind::kWarc:
      return webArchive(kWarcDialect, false);
    case ContentKind::kArc:
      return webArchive(kArcDialect, false);
    case ContentKind::kCompressedWarc:
      return webArchive(kWarcDialect, true);
    case ContentKind::kCompressedArc:
      return webArchive(kArcDialect, true);
    case ContentKind::kCompressed:
      return std::make_unique<CompressedReader>(context, place, std::move(about));
    case ContentKind::kBundle:
      return std::make_unique<SpoolingReader>(context, place, ReadBundle);
    case ContentKind::kHar:
      return std::make_unique<SpoolingReader>(context, place, ReadHar);
    case ContentKind::kMail:
      return std::make_unique<SpoolingReader>(context, place, ReadMail);
    case ContentKind::kDocument:
      break;
  }
  return std::make_unique<DocumentReader>(context, place, std::move(about));
}

}  // namespace

EntryReader::EntryReader(ReadContext &context, ArchivePlace place, ArchivedDocument about)
    : context_(context), place_(std::move(place)), about_(std::move(about)) {}

EntryReader::~EntryReader() = default;

void EntryReader::Feed(std::string_view bytes) {
  if (refused_) return;
  if (place_.depth > 1 && !context_.SpendNested(bytes.size())) {
    Abandon("what is nested in one entry comes to more than " +
            LimitText(context_.Limits().nestedBytes, "nestedBytes"));
    return;
  }
  if (reader_ != nullptr) {
    reader_->Feed(bytes);
    return;
  }
  beginning_ += bytes;
  if (beginning_.size() >= kKindProbe) Choose();
}

void EntryReader::Finish() {
  // An archive may be empty, and has no records then; anything in it is one.
  if (place_.depth == 0 && reader_ == nullptr && beginning_.empty()) return;
  if (reader_ == nullptr && !refused_) Choose();
  if (!refused_) reader_->Finish();
}

void EntryReader::Abandon(const std::string &why) {
  if (refused_) return;
  refused_ = true;
  const std::string &uri = about_.uri.empty() ? place_.archive : about_.uri;
  context_.Damage(place_, std::nullopt, uri, why);
  reader_.reset();
}

void EntryReader::Choose() {
  const std::string beginning = std::exchange(beginning_, {});
  const ContentKind kind = about_.contentType.empty()
                               ? SniffContent(beginning, place_.archive)
                               : SniffDocument(beginning, about_.contentType);
  if (kind != ContentKind::kDocument && place_.depth > context_.Limits().nesting) {
    Abandon("nests deeper than " + std::to_string(context_.Limits().nesting) +
            " archives (nesting)");
    return;
  }
  reader_ = MakeReader(kind, context_, place_, about_);
  reader_->Feed(beginning);
}

}  // namespace vs_wml
