/// \file
/// Reading and writing files.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_FILES_H
#define VS_WML_UNWML_FILES_H

#include <string>
#include <string_view>
#include <utility>

namespace unwml {

/// An open file. Those of the standard streams stay open.
class Descriptor {
 public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor();
  Descriptor(Descriptor &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor &operator=(Descriptor &&other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

/// How the program came by the name of a file.
enum class Origin {
  kNamed,  ///< on the command line or in a list: whatever it is, it is meant
  kFound   ///< in a folder: a pipe would be waited for, a device read without end
};

/// The bytes of a file, or of standard input for "-". Of a name that was found only a regular
/// file is read, looked at after it was opened. Throws std::runtime_error with the reason,
/// without the name.
std::string ReadWhole(const std::string &path, Origin origin);

/// Writes all of `bytes` into the file that is called `name`. Throws std::system_error.
void WriteAll(int descriptor, std::string_view bytes, const std::string &name = "write");

/// Throws std::system_error for errno.
[[noreturn]] void ThrowSystem(const std::string &what);

}  // namespace unwml

#endif  // VS_WML_UNWML_FILES_H
