/// \file
/// Block handles: what the filter reads a document through.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_BLOCKS_BLOCK_SOURCE_H
#define VS_WML_HOST_BLOCKS_BLOCK_SOURCE_H

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "vs_wml.h"

namespace vs_wml {

/// A block handle that counts what it serves. The filter reads some documents more
/// than once (a table is measured before it is told), and a document can be written
/// so that it reads the rest of it again and again: once `limit` bytes have been
/// served, reading fails, which ends the document.
class BlockSource {
 public:
  BlockSource(const BlockSource &) = delete;
  BlockSource &operator=(const BlockSource &) = delete;
  virtual ~BlockSource() = default;

  /// What VwLocalUp takes; valid as long as the source.
  VwHandle Handle() { return reinterpret_cast<VwHandle>(&record_.handle); }
  /// Bytes served so far, those served twice counted twice.
  std::uint64_t Served() const { return served_; }
  /// Whether the limit has ended the document.
  bool Exhausted() const { return exhausted_; }
  void SetLimit(std::uint64_t bytes) { limit_ = bytes; }

  /// The limit that no sensible document reaches: a multiple of its size.
  static std::uint64_t SensibleLimit(std::uint64_t size) { return 32 * size + (1U << 22U); }

 protected:
  BlockSource();

  /// Reads up to `wanted` bytes at `position`; returns how many, 0 at the end.
  virtual std::uint32_t ReadAt(std::uint32_t position, char *buffer, std::uint32_t wanted) = 0;
  virtual std::uint32_t Size() = 0;

 private:
  struct Record {
    VwBlockHandle handle;
    BlockSource *owner;
  };
  static BlockSource &Owner(VwHandle self) { return *reinterpret_cast<Record *>(self)->owner; }
  static std::uint32_t Read(VwHandle self, void *buffer, std::uint32_t wanted,
                            std::uint32_t *delivered);
  static std::uint32_t Seek(VwHandle self, std::uint32_t origin, std::uint32_t offset);
  static std::uint32_t Tell(VwHandle self, std::uint32_t *position);

  Record record_;
  std::uint32_t position_ = 0;
  std::uint64_t served_ = 0;
  std::uint64_t limit_ = UINT64_MAX;
  bool exhausted_ = false;
};

/// Serves bytes that stay where they are; they have to outlive the source.
class MemorySource : public BlockSource {
 public:
  explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}

 protected:
  std::uint32_t ReadAt(std::uint32_t position, char *buffer, std::uint32_t wanted) override;
  std::uint32_t Size() override { return static_cast<std::uint32_t>(bytes_.size()); }

 private:
  std::string_view bytes_;
};

/// Serves a file without holding it in memory. Throws std::system_error when it
/// cannot be opened; a read that fails later ends the document.
class FileSource : public BlockSource {
 public:
  explicit FileSource(const std::string &path);

 protected:
  std::uint32_t ReadAt(std::uint32_t position, char *buffer, std::uint32_t wanted) override;
  std::uint32_t Size() override;

 private:
  struct Close {
    void operator()(std::FILE *file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> file_;
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_BLOCKS_BLOCK_SOURCE_H
