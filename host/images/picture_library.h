/// \file
/// The pictures of a document, loaded once each.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_IMAGES_PICTURE_LIBRARY_H
#define VS_WML_HOST_IMAGES_PICTURE_LIBRARY_H

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "host/images/picture_finder.h"
#include "host/images/wbmp.h"

namespace vs_wml {

/// A picture file that was found and understood.
class LoadedPicture {
 public:
  std::optional<Bitmap> bitmap;  ///< of a WBMP
  std::string mediaType;         ///< of a format that browsers show, empty for a WBMP
  std::string bytes;             ///< the file, of a format that browsers show

  /// The picture as a `data:` URI, a WBMP as PNG. Made once. Throws std::runtime_error.
  const std::string &DataUri() const;

 private:
  mutable std::string dataUri_;
};

class PictureLibrary {
 public:
  explicit PictureLibrary(PictureFolders folders) : folders_(std::move(folders)) {}

  /// The picture of a source, null when there is none that can be shown. It stays where
  /// it is as long as the library.
  const LoadedPicture *Find(const std::string &source);

 private:
  static std::optional<LoadedPicture> Load(std::string bytes);

  PictureFolders folders_;
  std::map<std::string, std::optional<LoadedPicture>> pictures_;
  std::size_t size_ = 0;  // of what is loaded
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_IMAGES_PICTURE_LIBRARY_H
