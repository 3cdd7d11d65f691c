// Lists what the archive library finds, for tests that compare it with other readers:
// `list_documents [--quiet] FILE...` writes a line for each document, its fields separated by
// tabs: offset, length, address, status, digest, warnings, and the body in hexadecimal.
//
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <optional>
#include <string>

#include "archives/archive.h"

namespace {

std::string Number(std::optional<std::uint64_t> value) {
  return value ? std::to_string(*value) : "-";
}

class Lister : public vs_wml::ArchiveSink {
 public:
  explicit Lister(bool quiet) : quiet_(quiet) {}

  vs_wml::Verdict Document(vs_wml::ArchivedDocument document) override {
    if (quiet_) return vs_wml::Verdict::kDeck;
    std::string body;
    char digits[3];
    for (const char c : document.bytes) {
      std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(c) & 0xFFU);
      body += digits;
    }
    std::printf("%s\t%s\t%s\t%d\t%s\t%zu\t%s\n", Number(document.offset).c_str(),
                Number(document.length).c_str(), document.uri.c_str(), document.status.value_or(0),
                document.digest.c_str(), document.warnings.size(), body.c_str());
    return vs_wml::Verdict::kDeck;
  }
  void Notice(const vs_wml::ArchiveNotice &notice) override {
    std::fprintf(stderr, "%s: %s\n", notice.archive.c_str(), notice.Line().c_str());
  }

 private:
  bool quiet_;
};

}  // namespace

int main(int argc, char **argv) {
  const bool quiet = argc > 1 && std::strcmp(argv[1], "--quiet") == 0;
  Lister lister(quiet);
  bool lost = false;
  for (int i = quiet ? 2 : 1; i < argc; ++i) {
    vs_wml::ArchiveOptions options;
    options.name = argv[i];
    std::ifstream file(argv[i], std::ios::binary);
    try {
      const vs_wml::ArchiveSummary summary = vs_wml::ForEachDocument(file, options, lister);
      std::fprintf(stderr, "%s\n", summary.Line().c_str());
      lost = lost || summary.lost || !file.is_open();
    } catch (const std::exception &failure) {
      std::fprintf(stderr, "%s: %s\n", argv[i], failure.what());
      lost = true;
    }
  }
  return lost ? 1 : 0;
}
