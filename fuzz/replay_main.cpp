// Runs a fuzz target over files: `replay PATH...`, where a folder stands for the files in
// it. What a compiler without libFuzzer uses, and the way to look at a find in a debugger.
//
// SPDX-License-Identifier: MIT
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void Replay(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char **argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      Replay(argv[i]);
      ++count;
      continue;
    }
    for (const auto &entry : std::filesystem::directory_iterator(argv[i])) {
      Replay(entry.path());
      ++count;
    }
  }
  std::printf("%zu inputs\n", count);
  return count == 0 ? 1 : 0;
}
