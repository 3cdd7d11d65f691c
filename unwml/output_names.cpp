// SPDX-License-Identifier: MIT
#include "output_names.h"

#include <cstddef>

#include "host/text/fold.h"

namespace unwml {
namespace {

namespace fs = std::filesystem;

// A name that a query was saved with ("deck.wml?x=1", "deck.wml@x=1") is told from others by all
// of it.
bool HasQuery(const std::string &name) {
  return name.find('?') != std::string::npos || name.find(".wml@") != std::string::npos;
}

}  // namespace

bool OutputNames::Claim(const fs::path &output) {
  return taken_.insert(vs_wml::FoldName(output.string())).second;
}

std::string OutputNames::For(const fs::path &mirrored) {
  const fs::path folder = mirrored.parent_path();
  const std::string name = mirrored.filename().string();
  const std::string stem = HasQuery(name) ? name : mirrored.stem().string();
  fs::path output = folder / (stem + extension_);
  if (!Claim(output)) {
    output = folder / (name + extension_);
    for (std::size_t number = 2; !Claim(output); ++number) {
      output = folder / (stem + '-' + std::to_string(number) + extension_);
    }
  }
  return output.string();
}

fs::path MirroredName(const std::string &name) {
  fs::path path = fs::path(name).lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  const bool outside = path.is_absolute() || (!path.empty() && *path.begin() == "..");
  if (outside) path = path.filename();
  return path == "." || path == ".." ? fs::path() : path;
}

}  // namespace unwml
