/// \file
/// What is said on standard error.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_MESSAGES_H
#define VS_WML_UNWML_MESSAGES_H

#include <string_view>

namespace unwml {

/// Writes "unwml: WHAT" as one line, escaped so that it stays one. Never throws; where there is
/// no memory for it, the line says that.
void Tell(std::string_view what) noexcept;
/// The same about something: "unwml: ABOUT: WHAT".
void Tell(std::string_view about, std::string_view what) noexcept;

}  // namespace unwml

#endif  // VS_WML_UNWML_MESSAGES_H
