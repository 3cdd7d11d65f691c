/// \file
/// Inputs and selects, and the variables that they set (WAP-191, 11.6).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_AGENT_FORMS_H
#define VS_WML_AGENT_FORMS_H

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "agent/browser_state.h"

namespace vs_wml {

/// Gives the fields of the card on top of the history their variables, and selects their choices,
/// as when the card is entered or refreshed.
void InitialiseFields(BrowserState &state);

/// What a person types into an input. False when the field refuses it.
bool Enter(std::size_t field, std::string_view text, BrowserState &state);

/// Makes exactly these options of a select chosen: positions from 1 on in any order, of which a
/// select of one choice takes the last. Gives the actions of the options that were picked, in
/// the order of the options.
std::vector<const Action *> Choose(std::size_t field, std::span<const std::uint32_t> options,
                                   BrowserState &state);

}  // namespace vs_wml

#endif  // VS_WML_AGENT_FORMS_H
