/// \file
/// Values under the variables of a context, and what a task asks of the network.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_TASKS_H
#define VS_WML_AGENT_TASKS_H

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "agent/browser_state.h"
#include "host/deck/deck_parts.h"
#include "host/deck/variables.h"

namespace vs_wml {

/// The most bytes of a value, and of all variables of a context with their names.
inline constexpr std::size_t kLongestValue = std::size_t{1} << 16U;
inline constexpr std::size_t kMostVariableBytes = std::size_t{1} << 20U;

/// A value, or all variables together, would be longer than that.
class ValueTooLong : public std::length_error {
 public:
  using std::length_error::length_error;
};

/// A value under these variables; kDefault conversions are taken as `usual`. Throws ValueTooLong.
std::string Evaluate(const Value &value, const ContextVariables &variables, Conversion usual);

/// The same, but empty when it is too long.
std::string EvaluateShort(const Value &value, const ContextVariables &variables);

/// The assignments of a task. Those whose names are none are left out (WAP-191, 9.3).
Assignments EvaluateAssignments(const Task &task, const ContextVariables &variables);

/// Makes them. Throws ValueTooLong, with some of them made.
void Assign(const Assignments &assignments, ContextVariables &variables);
void Assign(std::string_view name, std::string value, ContextVariables &variables);

/// Where a `go` leads: an address as the task writes it, under the variables.
std::string EvaluateTarget(const Task &task, const ContextVariables &variables);

/// The request of a `go` in the deck of that address: `target` is the resolved address without
/// fragment. Post fields are sent in its query, or in the body (WAP-191, 9.5.1, RFC 7578).
Request MakeRequest(const Task &task, std::string target, const std::string &deck,
                    const ContextVariables &variables);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_TASKS_H
