/// \file
/// The file format of flows: names, and what JSON does not give.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_FLOW_JSON_H
#define VS_WML_AGENT_FLOW_JSON_H

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <rapidjson/document.h>

namespace vs_wml {

inline constexpr std::string_view kStepNames[] = {"open",   "follow", "press", "enter",
                                                  "choose", "back",   "wait",  "expect"};
inline constexpr std::string_view kExpectedNames[] = {
    "url",      "card",      "title",   "text",  "lacks",    "links",   "actions", "fields",
    "selected", "variables", "history", "timer", "requests", "request", "error"};

inline const rapidjson::Value *FindMember(const rapidjson::Value &object, const char *name) {
  const auto found = object.FindMember(name);
  return found == object.MemberEnd() ? nullptr : &found->value;
}

inline std::string TextOf(const rapidjson::Value &text) {
  return {text.GetString(), text.GetStringLength()};
}

/// The name that differs least from `name`; empty when none is near.
std::string_view NearestName(std::string_view name, std::span<const std::string_view> known);

/// The line of an offset, from 1 on.
std::size_t LineAt(std::string_view text, std::size_t offset);

/// The lines on which the steps of a well-formed flow begin.
std::vector<std::size_t> StepLines(std::string_view json);

/// Bytes of base64 (RFC 4648, 4), white space left out; nothing when it is none.
std::optional<std::string> DecodeBase64(std::string_view text);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_FLOW_JSON_H
