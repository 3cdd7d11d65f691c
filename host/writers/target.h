/// \file
/// Link targets and image sources.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_TARGET_H
#define VS_WML_HOST_WRITERS_TARGET_H

#include <string>
#include <string_view>

#include "host/document.h"

namespace vs_wml {

/// Whether a target may be followed from a page: relative, or of a scheme that runs
/// nothing (http, https, mailto, tel and the like).
bool IsSafeTarget(std::string_view target);

/// Whether an image may be shown from a page: relative, http or https.
bool IsSafeSource(std::string_view source);

/// Where a link leads, for people: its target, with what is sent there, or "(back)" and
/// "(refresh)" for what has none.
std::string LinkTargetText(const Link &link);

/// The last part of a path, without query and fragment.
std::string_view BaseName(std::string_view target);

/// What stands for an image in text: its alternative text, else its file name.
std::string_view ImageLabel(const Image &image);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_TARGET_H
