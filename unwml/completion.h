/// \file
/// Completions for shells, made from the table of options.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_COMPLETION_H
#define VS_WML_UNWML_COMPLETION_H

#include <ostream>
#include <string_view>

namespace unwml {

/// Prints the completion of "bash", "zsh" or "fish".
void PrintCompletion(std::string_view shell, std::ostream &out);

}  // namespace unwml

#endif  // VS_WML_UNWML_COMPLETION_H
