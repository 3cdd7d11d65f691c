/// \file
/// Something that may be a document or an archive.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_ENTRY_READER_H
#define VS_WML_ARCHIVES_READERS_ENTRY_READER_H

#include <memory>
#include <string>
#include <string_view>

#include "archives/payload/content_kind.h"
#include "archives/reading.h"

namespace vs_wml {

/// Takes the bytes of one kind of content.
class ContentReader {
 public:
  virtual ~ContentReader() = default;
  virtual void Feed(std::string_view bytes) = 0;
  virtual void Finish() = 0;
};

/// Finds out what comes, and reads it: a document is held until its end, an archive is read as
/// it comes, or waits in a temporary file when it cannot be.
class EntryReader : public ContentReader {
 public:
  /// `place`: what the bytes are called if they are an archive. `about`: what is known of them
  /// if they are a document.
  EntryReader(ReadContext &context, ArchivePlace place, ArchivedDocument about);
  ~EntryReader() override;

  void Feed(std::string_view bytes) override;
  void Finish() override;
  /// Instead of Finish: the bytes end where they should not.
  void Abandon(const std::string &why);

 private:
  void Choose();
  bool MayNest();
  void Pass(std::string_view bytes);

  ReadContext &context_;
  ArchivePlace place_;
  ArchivedDocument about_;
  std::string beginning_;
  std::unique_ptr<ContentReader> reader_;
  bool isDocument_ = false;
  bool refused_ = false;
};

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_ENTRY_READER_H
