/// \file
/// What may be typed into an input (WAP-191, 11.6.3).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_INPUT_MASK_H
#define VS_WML_AGENT_INPUT_MASK_H

#include <optional>
#include <string>
#include <string_view>

#include "host/deck/deck_parts.h"

namespace vs_wml {

/// `text` as an input with this `format` takes it: as it is, or with the format's literal
/// characters put in where people left them out, as phones do by themselves. Nothing when it does
/// not fit. A format that is none (WAP-191 has no code for one of its characters) takes all text.
std::optional<std::string> FitMask(std::string_view format, std::string_view text);

/// `text` as the field takes it; nothing when its format, its length or its emptiness is refused.
std::optional<std::string> FitField(const Field &field, std::string_view text);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_INPUT_MASK_H
