// Reads any document as any host, with the short cuts and without them: a header says how, the
// rest is the document.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tests/support/two_builds.h"

using namespace vs_wml::test;

namespace {

/// Takes the header apart, a byte at a time; 0 behind its end.
class Header {
 public:
  explicit Header(std::string_view bytes) : bytes_(bytes) {}

  std::uint8_t Byte() {
    return at_ < bytes_.size() ? static_cast<std::uint8_t>(bytes_[at_++]) : std::uint8_t{0};
  }
  std::uint16_t Word() {
    const std::uint8_t low = Byte();
    return static_cast<std::uint16_t>(low | Byte() << 8);
  }
  std::string_view Rest() const { return bytes_.substr(at_); }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

enum Flags : std::uint8_t {
  kGoesBack = 0x01,
  kForgets = 0x02,
  kPatchesFirst = 0x04,
  kReadsFail = 0x08,  // from the position that follows
  kSeeksFail = 0x10,
  kTellsFail = 0x20,
  kTellsLie = 0x40,
};
constexpr std::uint8_t kPatchesMax = 7;

Plan TakePlan(Header &header) {
  Plan plan;
  plan.identity = kIdentities[header.Byte() % std::size(kIdentities)];
  plan.chunk = header.Byte();
  plan.stops = header.Byte();
  const std::uint8_t flags = header.Byte();
  plan.goesBack = (flags & kGoesBack) != 0;
  plan.storing = (flags & kForgets) == 0;
  plan.patchesFirst = (flags & kPatchesFirst) != 0;
  if (flags & kReadsFail) plan.faults.readFrom = header.Word();
  plan.faults.forever = true;
  plan.faults.seekAt = flags & kSeeksFail ? 1 : 0;
  plan.faults.tellAt = flags & kTellsFail ? 1 : 0;
  plan.faults.tellLie = flags & kTellsLie ? 1 : 0;
  for (int patches = header.Byte() % (kPatchesMax + 1); patches > 0; --patches) {
    const std::uint16_t offset = header.Word();
    plan.patches.push_back({offset, header.Byte()});
  }
  return plan;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int * /*argc*/, char *** /*argv*/) {
  RoadLibrary();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Header header({reinterpret_cast<const char *>(data), size});
  const Plan plan = TakePlan(header);
  const std::string difference = Difference(plan, header.Rest());
  if (difference.empty()) return 0;
  std::fprintf(stderr, "the short cuts tell something else\n%s\n", difference.c_str());
  std::abort();
}
