// SPDX-License-Identifier: MIT
#include "host/images/picture_finder.h"

#include <fstream>
#include <system_error>
#include <vector>

#include "host/deck/variables.h"

namespace vs_wml {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFile = 1U << 20U;
constexpr std::size_t kLongestPath = 4096;  // no file has a longer one (PATH_MAX)

// `file` under `folder`, when it exists and really lies there.
std::optional<fs::path> Inside(const fs::path &folder, std::string_view file) {
  if (folder.empty() || file.empty() || file.size() > kLongestPath ||
      file.find('\0') != std::string_view::npos) {
    return std::nullopt;
  }
  std::error_code error;
  const fs::path root = fs::canonical(folder, error);
  if (error) return std::nullopt;
  const fs::path found = fs::canonical(root / fs::path(file).relative_path(), error);
  if (error || !fs::is_regular_file(found, error)) return std::nullopt;
  const fs::path relative = found.lexically_relative(root);
  if (relative.empty() || *relative.begin() == "..") return std::nullopt;
  return found;
}

// The path of a source without query, percent-encoding and, with a host, its scheme.
struct SourcePath {
  std::string path;
  bool hasHost = false;
};

SourcePath PathOf(std::string_view source) {
  SourcePath result;
  source = source.substr(0, source.find_first_of("?#"));
  const std::size_t scheme = source.find("://");
  if (scheme != std::string_view::npos) {
    source.remove_prefix(scheme + 3);
    result.hasHost = true;
  }
  result.path = PercentDecode(source);
  return result;
}

}  // namespace

std::optional<fs::path> FindPicture(std::string_view source, const PictureFolders &folders) {
  const SourcePath path = PathOf(source);
  const bool relative = !path.hasHost && !path.path.empty() && path.path.front() != '/';
  if (relative) {
    if (auto found = Inside(folders.beside, path.path)) return found;
  }
  if (folders.assets.empty()) return std::nullopt;
  std::vector<std::string> names = {path.path};
  if (path.hasHost) {
    const std::size_t host = path.path.find('/');
    if (host != std::string::npos) names.push_back(path.path.substr(host + 1));
  }
  names.push_back(path.path.substr(path.path.rfind('/') + 1));
  for (const std::string &name : names) {
    if (auto found = Inside(folders.assets, name)) return found;
  }
  return std::nullopt;
}

std::optional<std::string> ReadPictureFile(const fs::path &file) {
  std::error_code error;
  const std::uintmax_t size = fs::file_size(file, error);
  if (error || size > kLargestFile) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  in.read(bytes.data(), static_cast<std::streamsize>(size));
  bytes.resize(static_cast<std::size_t>(in.gcount()));
  return in.bad() ? std::nullopt : std::optional(std::move(bytes));
}

}  // namespace vs_wml
