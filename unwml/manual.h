/// \file
/// What unwml says about itself, all from the table of options.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_MANUAL_H
#define VS_WML_UNWML_MANUAL_H

#include <ostream>

namespace unwml {

void PrintHelp(std::ostream &out);
void PrintVersion(std::ostream &out);
/// The manual page, in roff.
void PrintManual(std::ostream &out);
/// The completion for bash.
void PrintCompletion(std::ostream &out);

}  // namespace unwml

#endif  // VS_WML_UNWML_MANUAL_H
