/// \file
/// Bytes for readers that fetch them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_BYTE_SOURCE_H
#define VS_WML_ARCHIVES_READERS_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

namespace vs_wml {

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Reads up to `room` bytes; 0: the end. Throws std::runtime_error.
  virtual std::size_t Read(char *to, std::size_t room) = 0;
  /// `position` is at most Size().
  virtual void Seek(std::uint64_t position) = 0;
  virtual std::uint64_t Size() const = 0;
};

/// A stream that can seek, from where it stands on.
class StreamSource : public ByteSource {
 public:
  explicit StreamSource(std::istream &stream);
  std::size_t Read(char *to, std::size_t room) override;
  void Seek(std::uint64_t position) override;
  std::uint64_t Size() const override { return size_; }

 private:
  std::istream &stream_;
  std::istream::pos_type begin_;
  std::uint64_t size_ = 0;
};

/// Bytes kept until they can be read: a few in memory, many in a temporary file without a name.
class Spool : public ByteSource {
 public:
  /// Throws std::runtime_error when the file cannot be written.
  void Append(std::string_view bytes);
  std::size_t Read(char *to, std::size_t room) override;
  void Seek(std::uint64_t position) override;
  std::uint64_t Size() const override { return size_; }

 private:
  struct Close {
    void operator()(std::FILE *file) const { std::fclose(file); }
  };
  std::string memory_;
  std::unique_ptr<std::FILE, Close> file_;
  std::uint64_t size_ = 0;
  std::uint64_t position_ = 0;
};

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_BYTE_SOURCE_H
