// SPDX-License-Identifier: MIT
#include "tests/support/case_files.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace vs_wml::test {
namespace {

Case FromPath(const std::filesystem::path &path) {
  Case result{path};
  std::filesystem::path name = path.stem();
  for (; name.has_extension(); name = name.stem()) {
    const std::string part = name.extension().string().substr(1);
    if (part == "once") {
      result.once = true;
    } else {
      result.identity = static_cast<std::int16_t>(std::stoi(part));
    }
  }
  return result;
}

}  // namespace

std::filesystem::path Case::Calls() const {
  return std::filesystem::path(document).replace_extension(".calls");
}

std::string Case::Name() const {
  std::string name = document.stem().string();
  std::ranges::replace_if(
      name, [](char c) { return c == '.' || c == '-'; }, '_');
  return name;
}

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const auto &entry : std::filesystem::directory_iterator(VS_WML_TEST_CASES)) {
    if (entry.path().extension() == ".wml") cases.push_back(FromPath(entry.path()));
  }
  std::ranges::sort(cases, {}, &Case::document);
  return cases;
}

std::string ReadFile(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace vs_wml::test
