/// \file
/// Playing flows.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_FLOWS_H
#define VS_WML_UNWML_FLOWS_H

#include <string>
#include <vector>

namespace unwml {

/// Plays the flows of these files ("-": standard input), tells how each went, and sums up. Returns
/// the exit code: kWrongUsage when one is no flow, kSomeFailed when one failed.
int PlayFlows(const std::vector<std::string> &files);

}  // namespace unwml

#endif  // VS_WML_UNWML_FLOWS_H
