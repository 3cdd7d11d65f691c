// SPDX-License-Identifier: MIT
#include "inputs.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <unordered_set>

#include "files.h"

namespace unwml {
namespace {

namespace fs = std::filesystem;

bool IsDeckName(const fs::path &path) {
  std::string extension = path.extension().string();
  for (char &c : extension) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
  }
  return extension == ".wml" || extension == ".wmlc";
}

class Finder {
 public:
  explicit Finder(const Options &options) : options_(options) {}

  Inputs Run() {
    inputs_.several = options_.inputs.size() > 1 || !options_.filesFrom.empty();
    for (const std::string &name : options_.inputs) AddNamed(name);
    if (!options_.filesFrom.empty()) AddListed();
    KeepInputs();
    return std::move(inputs_);
  }

 private:
  void AddNamed(const std::string &name) {
    std::error_code error;
    if (name != "-" && fs::is_directory(name, error)) {
      inputs_.several = true;
      Walk(name, name);
    } else {
      Add(name, name == "-" ? fs::path("stdin") : MirroredName(name));
    }
  }

  void AddListed() {
    std::string names;
    try {
      names = ReadWhole(options_.filesFrom);
    } catch (const std::runtime_error &failure) {
      throw std::runtime_error(Printable(options_.filesFrom) + ": " + failure.what());
    }
    const char separator = names.find('\0') != std::string::npos ? '\0' : '\n';
    for (std::string_view rest = names; !rest.empty();) {
      const std::size_t end = std::min(rest.find(separator), rest.size());
      std::string_view name = rest.substr(0, end);
      if (separator == '\n' && name.ends_with('\r')) name.remove_suffix(1);
      if (!name.empty()) AddNamed(std::string(name));
      rest.remove_prefix(std::min(end + 1, rest.size()));
    }
  }

  void Walk(const fs::path &directory, const fs::path &root) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    fs::directory_iterator entry(directory, error);
    while (!error && entry != fs::directory_iterator()) {
      entries.push_back(*entry);
      entry.increment(error);
    }
    if (error) inputs_.list.push_back({directory.string(), "", error.message()});
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry &found : entries) {
      if (found.is_directory(error)) {
        if (!found.is_symlink(error)) Walk(found.path(), root);
      } else if (IsDeckName(found.path())) {
        Add(found.path().string(), found.path().lexically_relative(root));
        // Nobody named it: a pipe would be waited for, a device read without end.
        if (found.is_other(error)) inputs_.list.back().error = "not a regular file";
      }
    }
  }

  // Where a file that was named itself lies under -o: as it was named, if that stays
  // inside, else directly.
  static fs::path MirroredName(const std::string &name) {
    const fs::path path = fs::path(name).lexically_normal();
    const bool outside = path.is_absolute() || (!path.empty() && *path.begin() == "..");
    return outside ? path.filename() : path;
  }

  void Add(std::string path, fs::path mirrored) {
    Input input{std::move(path), "", ""};
    if (!options_.outputDirectory.empty()) {
      mirrored.replace_extension(options_.format->extension);
      input.output = (fs::path(options_.outputDirectory) / mirrored).string();
      if (!outputs_.insert(input.output).second) {
        input.error = "its output " + Printable(input.output) + " is that of another input";
      }
    }
    inputs_.list.push_back(std::move(input));
  }

  // Refuses outputs that would take the place of an input. Only inputs with the extension
  // of the outputs are in danger.
  void KeepInputs() {
    if (options_.outputDirectory.empty()) return;
    std::error_code error;
    std::unordered_set<std::string> inputs;
    for (const Input &input : inputs_.list) {
      const fs::path path(input.path);
      if (path.extension() == options_.format->extension) {
        inputs.insert(fs::weakly_canonical(path, error).string());
      }
    }
    if (inputs.empty()) return;
    for (Input &input : inputs_.list) {
      if (inputs.contains(fs::weakly_canonical(input.output, error).string())) {
        input.error = "its output " + Printable(input.output) + " would replace an input";
      }
    }
  }

  const Options &options_;
  Inputs inputs_;
  std::unordered_set<std::string> outputs_;
};

}  // namespace

Inputs FindInputs(const Options &options) {
  return Finder(options).Run();
}

}  // namespace unwml
