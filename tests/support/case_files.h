// The documents of tests/cases.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_CASE_FILES_H
#define VS_WML_TESTS_SUPPORT_CASE_FILES_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vs_wml::test {

/// A document, and beside it the calls that a host must receive for it. A number in the name is
/// the identity (NAME.1160.wml), 1151 without. `.once` marks a document that reads differently
/// when it is restored from a save block.
struct Case {
  std::filesystem::path document;
  std::int16_t identity = 1151;
  bool once = false;

  std::filesystem::path Calls() const;
  std::string Name() const;  ///< fit for a test's name
};

/// All of them, by name.
std::vector<Case> AllCases();

std::string ReadFile(const std::filesystem::path &path);

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_CASE_FILES_H
