/// \file
/// Finds the files of pictures.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_IMAGES_PICTURE_FINDER_H
#define VS_WML_HOST_IMAGES_PICTURE_FINDER_H

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vs_wml {

/// Where the pictures of a document may lie.
struct PictureFolders {
  std::filesystem::path beside;  ///< the document's own folder, empty: none
  std::filesystem::path assets;  ///< a folder with the files of a site, empty: none
};

/// The file for the source of a picture, nothing when there is none.
///
/// A relative source is looked for beside the document; a source is looked for under
/// the assets by its path ("http://host/a/b.wbmp" and "/a/b.wbmp": host/a/b.wbmp,
/// a/b.wbmp) and then by its last part alone. Files outside of the two folders are never
/// given, whatever "..", links and percent-encoding say.
std::optional<std::filesystem::path> FindPicture(std::string_view source,
                                                 const PictureFolders &folders);

/// The bytes of a regular file of at most a megabyte, nothing when it cannot be read.
std::optional<std::string> ReadPictureFile(const std::filesystem::path &file);

}  // namespace vs_wml

#endif  // VS_WML_HOST_IMAGES_PICTURE_FINDER_H
