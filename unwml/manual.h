/// \file
/// What unwml says about itself, all from the tables of options and formats.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_MANUAL_H
#define VS_WML_UNWML_MANUAL_H

#include <ostream>

namespace unwml {

/// At most 80 columns.
void PrintHelp(std::ostream &out);
void PrintVersion(std::ostream &out);
/// The manual page, in roff.
void PrintManual(std::ostream &out);

}  // namespace unwml

#endif  // VS_WML_UNWML_MANUAL_H
