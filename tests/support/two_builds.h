// The filter with its short cuts and without them, in one program: the same document read by
// both, with all that a host can see of it.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_TWO_BUILDS_H
#define VS_WML_TESTS_SUPPORT_TWO_BUILDS_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/session.h"

namespace vs_wml::test {

/// How a document is read. A host that goes back reads to the end from each of its first stops.
struct Plan {
  struct Patch {
    std::uint16_t offset;
    std::uint8_t value;
  };

  std::int16_t identity = 1151;
  std::uint32_t chunk = 0;    ///< bytes for each read of the host, 0: a whole block
  std::uint8_t stops = 0;     ///< bit n: the breaks n, n + 8, n + 16, ... are answered with SO_STOP
  bool goesBack = false;      ///< to the first stops
  bool storing = true;        ///< strings and references are answered
  BlockFaults faults{};       ///< of the host
  bool patchesFirst = false;  ///< the patches are made before the first read, else the second
  std::vector<Patch> patches{};  ///< to the save block
};

/// Hosts that give whole blocks, bytes and something between; that read in one go, stop now and
/// then and go back, and stop at every break.
std::vector<Plan> PlansFor(std::int16_t identity);

/// What a host sees.
struct Seen {
  std::string calls;                     ///< with their arguments, one a line
  std::string announced;                 ///< what resumed reads told again
  std::vector<std::uint32_t> positions;  ///< in each output routine
  std::vector<SavedState> saves;         ///< behind each read
  bool complete = true;                  ///< the host has not refused bytes to bound the work
};

Seen ReadAs(const Plan &plan, std::string_view document, const Library &library);

/// The build without short cuts.
const Library &RoadLibrary();

/// What a host sees of a document that differs between the linked library and the road; empty
/// when nothing does. Faults that count requests are of no use here: the road makes others, for
/// it reads the values of attributes again from where they stand.
std::string Difference(const Plan &plan, std::string_view document);

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_TWO_BUILDS_H
