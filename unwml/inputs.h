/// \file
/// The documents that the command line names.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_INPUTS_H
#define VS_WML_UNWML_INPUTS_H

#include <cstddef>
#include <string>
#include <vector>

#include "files.h"
#include "options.h"

namespace unwml {

struct Input {
  std::string path;    ///< "-": standard input
  std::string output;  ///< where -o puts it, relative to its folder; empty: standard output
  std::string error;   ///< why it cannot be read, known beforehand; empty: nothing known
  Origin origin = Origin::kNamed;
};

struct Inputs {
  std::vector<Input> list;
  bool several = false;   ///< more than one document may come, however many there are
  std::size_t links = 0;  ///< symbolic links to decks and folders that were not followed
};

/// Finds the documents. Folders are walked in order of names for decks and for what
/// options.names match. Throws std::runtime_error when the list of files cannot be read.
Inputs FindInputs(const Options &options);

}  // namespace unwml

#endif  // VS_WML_UNWML_INPUTS_H
