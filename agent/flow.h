/// \file
/// Flows: a deck, played step by step. docs/flows.md describes the files.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_FLOW_H
#define VS_WML_AGENT_FLOW_H

#include <cstddef>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vs_wml {

/// A file that is no flow; the message says what is wrong with it and where.
class FlowError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The first step that failed.
struct FlowFailure {
  std::size_t step = 0;  ///< from 1 on, 0: the start
  std::size_t line = 0;  ///< of the file, from 1 on; 0: not known
  std::string what;      ///< what was expected, what there was
  std::string card;      ///< address of the card that was shown, empty: none
  std::string request;   ///< method and address of the last request, empty: none
};

class Flow {
 public:
  /// Reads a flow. Throws FlowError.
  explicit Flow(std::string_view json);
  ~Flow();
  Flow(Flow &&) noexcept;

  const std::string &Name() const;
  /// Plays it with an agent of its own; nothing when all its steps hold. With `restoring`, the
  /// agent is saved and restored after every step, and what it saves then must be the same.
  std::optional<FlowFailure> Play(bool restoring = false) const;

 private:
  struct Parsed;
  std::unique_ptr<Parsed> parsed_;
};

}  // namespace vs_wml

#endif  // VS_WML_AGENT_FLOW_H
