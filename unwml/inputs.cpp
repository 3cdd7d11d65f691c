// SPDX-License-Identifier: MIT
#include "inputs.h"

#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>

#include "output_names.h"

namespace unwml {
namespace {

namespace fs = std::filesystem;

// What decks are named; the last one is what programs that save sites make of a query.
constexpr const char *kDeckNames[] = {"*.wml", "*.wmlc", "*.wml[?@]*"};

bool Matches(const std::string &name, const char *pattern) {
  return fnmatch(pattern, name.c_str(), FNM_CASEFOLD) == 0;
}

class Finder {
 public:
  explicit Finder(const Options &options)
      : options_(options), outputs_(options.format->extension) {}

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
    if (name == "-") {
      Add(name, "stdin", Origin::kNamed);
    } else if (fs::is_directory(name, error)) {
      AddFolder(name);
    } else {
      Add(name, MirroredName(name), Origin::kNamed);
    }
  }

  // A folder that is the only input is what the outputs are laid out as.
  void AddFolder(const std::string &name) {
    const fs::path mirrored = inputs_.several ? MirroredName(name) : fs::path();
    const std::size_t before = inputs_.list.size();
    inputs_.several = true;
    IsNew(name);
    Walk(name, mirrored);
    if (inputs_.list.size() != before) return;
    inputs_.list.push_back(
        {name, "", "no decks in this folder (*.wml, *.wmlc; --name tells of others)"});
  }

  void AddListed() {
    std::string names;
    try {
      names = ReadWhole(options_.filesFrom, Origin::kNamed);
    } catch (const std::runtime_error &failure) {
      throw std::runtime_error(options_.filesFrom + ": " + failure.what());
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

  void Walk(const fs::path &directory, const fs::path &mirrored) {
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
      Take(found, mirrored / found.path().filename());
    }
  }

  void Take(const fs::directory_entry &found, const fs::path &mirrored) {
    std::error_code error;
    const bool folder = found.is_directory(error);
    if (!folder && !IsWanted(found.path())) return;
    if (found.is_symlink(error) && !options_.follow) {
      ++inputs_.links;
    } else if (!folder) {
      Add(found.path().string(), mirrored, Origin::kFound);
    } else if (IsNew(found.path())) {
      Walk(found.path(), mirrored);
    }
  }

  bool IsWanted(const fs::path &path) const {
    const std::string name = path.filename().string();
    return std::any_of(std::begin(kDeckNames), std::end(kDeckNames),
                       [&](const char *pattern) { return Matches(name, pattern); }) ||
           std::any_of(options_.names.begin(), options_.names.end(),
                       [&](const std::string &pattern) { return Matches(name, pattern.c_str()); });
  }

  // Links can lead around in circles: where they are followed each folder is walked once.
  bool IsNew(const fs::path &folder) {
    struct stat status {};
    if (!options_.follow || stat(folder.c_str(), &status) != 0) return true;
    return walked_.insert({status.st_dev, status.st_ino}).second;
  }

  void Add(std::string path, const fs::path &mirrored, Origin origin) {
    Input input{std::move(path), "", "", origin};
    if (options_.output) {
      input.output = options_.output->file.empty() ? outputs_.For(mirrored) : options_.output->file;
    }
    inputs_.list.push_back(std::move(input));
  }

  // Refuses outputs that would take the place of an input. Only inputs with the extension
  // of an output are in danger.
  void KeepInputs() {
    if (!options_.output) return;
    const std::string &file = options_.output->file;
    const fs::path extension =
        file.empty() ? options_.format->extension : fs::path(file).extension();
    std::error_code error;
    std::unordered_set<std::string> inputs;
    for (const Input &input : inputs_.list) {
      const fs::path path(input.path);
      if (path.extension() == extension) inputs.insert(fs::weakly_canonical(path, error).string());
    }
    if (inputs.empty()) return;
    for (Input &input : inputs_.list) {
      const fs::path output = fs::path(options_.output->folder) / input.output;
      if (inputs.contains(fs::weakly_canonical(output, error).string())) {
        input.error = "its output " + output.string() + " would replace an input";
      }
    }
  }

  const Options &options_;
  Inputs inputs_;
  OutputNames outputs_;
  std::set<std::pair<dev_t, ino_t>> walked_;
};

}  // namespace

Inputs FindInputs(const Options &options) {
  return Finder(options).Run();
}

}  // namespace unwml
