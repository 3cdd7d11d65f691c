/// \file
/// Which output belongs to which input.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_OUTPUT_NAMES_H
#define VS_WML_UNWML_OUTPUT_NAMES_H

#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_set>

namespace unwml {

/// Gives each input a name of its own under the folder of outputs, the same whatever the disk:
/// names that differ in case only count as one.
class OutputNames {
 public:
  /// `extension` is that of the outputs, with its dot.
  explicit OutputNames(std::string_view extension) : extension_(extension) {}

  /// The output of an input whose place is `mirrored`. The extension takes the place of the
  /// input's ("a.html"); if that name is taken it follows the input's ("a.wmlc.html"), and if
  /// that is taken too, a number stands before it ("a-2.html").
  std::string For(const std::filesystem::path &mirrored);

 private:
  bool Claim(const std::filesystem::path &output);

  std::string extension_;
  std::unordered_set<std::string> taken_;  // folded
};

/// Where a file or folder that was named itself lies under the folder of outputs: as it was
/// named, if that stays inside, else directly.
std::filesystem::path MirroredName(const std::string &name);

}  // namespace unwml

#endif  // VS_WML_UNWML_OUTPUT_NAMES_H
