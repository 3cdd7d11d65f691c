/// \file
/// The documents that the command line names.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_INPUTS_H
#define VS_WML_UNWML_INPUTS_H

#include <string>
#include <vector>

#include "options.h"

namespace unwml {

struct Input {
  std::string path;    ///< "-": standard input
  std::string output;  ///< where -o puts it, empty: standard output
  std::string error;   ///< why it cannot be read, known beforehand; empty: nothing known
};

struct Inputs {
  std::vector<Input> list;
  bool several = false;  ///< more than one document may come, however many there are
};

/// Finds the documents: directories are walked for *.wml and *.wmlc in order of names. Throws
/// std::runtime_error when the list of files cannot be read.
Inputs FindInputs(const Options &options);

}  // namespace unwml

#endif  // VS_WML_UNWML_INPUTS_H
