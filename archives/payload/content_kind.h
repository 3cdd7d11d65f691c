/// \file
/// What a file or a member is, by its first bytes.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_PAYLOAD_CONTENT_KIND_H
#define VS_WML_ARCHIVES_PAYLOAD_CONTENT_KIND_H

#include <cstddef>
#include <string_view>

namespace vs_wml {

enum class ContentKind {
  kDocument,  ///< none of those below
  kWarc,
  kArc,
  kCompressedWarc,  ///< gzip or zstd members
  kCompressedArc,
  kCompressed,  ///< gzip or zstd around something else
  kBundle,      ///< ZIP, 7z, TAR, which may be compressed; what is in xz or bzip2
  kHar,
  kMail,  ///< MHTML, mail, multipart
};

/// Bytes that tell the kind, unless there are fewer.
inline constexpr std::size_t kKindProbe = 65536;

/// `name` helps where the first bytes are damaged: "x.warc.gz".
ContentKind SniffContent(std::string_view beginning, std::string_view name);

/// The kind of a document that came under a media type: an archive only where the type says
/// so, or says nothing.
ContentKind SniffDocument(std::string_view beginning, std::string_view type);

/// Whether a media type is that of an archive.
bool IsArchiveType(std::string_view type);
bool IsMultipart(std::string_view type);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_PAYLOAD_CONTENT_KIND_H
