// SPDX-License-Identifier: MIT
#include "host/images/picture_library.h"

#include <utility>

#include "host/images/picture_formats.h"

namespace vs_wml {
namespace {

using namespace std::string_view_literals;

struct Signature {
  std::string_view bytes;
  const char *mediaType;
};

constexpr Signature kSignatures[] = {{"\x89PNG\r\n\x1A\n"sv, "image/png"},
                                     {"GIF87a"sv, "image/gif"},
                                     {"GIF89a"sv, "image/gif"},
                                     {"\xFF\xD8\xFF"sv, "image/jpeg"}};

// Sources that are looked for in a document, and bytes of pictures that are held; a
// document that names more names nonsense.
constexpr std::size_t kMostSources = 10000;
constexpr std::size_t kMostBytes = 64U << 20U;

}  // namespace

const std::string &LoadedPicture::DataUri() const {
  if (dataUri_.empty()) {
    dataUri_ = bitmap ? vs_wml::DataUri("image/png", EncodePng(*bitmap))
                      : vs_wml::DataUri(mediaType, bytes);
  }
  return dataUri_;
}

const LoadedPicture *PictureLibrary::Find(const std::string &source) {
  auto found = pictures_.find(source);
  if (found == pictures_.end()) {
    if (pictures_.size() == kMostSources || size_ > kMostBytes) return nullptr;
    std::optional<LoadedPicture> loaded;
    if (const auto file = FindPicture(source, folders_)) {
      if (auto bytes = ReadPictureFile(*file)) loaded = Load(std::move(*bytes));
    }
    if (loaded) size_ += loaded->bytes.size() + (loaded->bitmap ? loaded->bitmap->rows.size() : 0);
    found = pictures_.emplace(source, std::move(loaded)).first;
  }
  return found->second ? &*found->second : nullptr;
}

std::optional<LoadedPicture> PictureLibrary::Load(std::string bytes) {
  for (const Signature &signature : kSignatures) {
    if (std::string_view(bytes).starts_with(signature.bytes)) {
      LoadedPicture picture;
      picture.mediaType = signature.mediaType;
      picture.bytes = std::move(bytes);
      return picture;
    }
  }
  LoadedPicture picture;
  picture.bitmap = DecodeWbmp(bytes);
  if (!picture.bitmap) return std::nullopt;
  return picture;
}

}  // namespace vs_wml
