/// \file
/// ZIP, WACZ, TAR and 7z.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_BUNDLE_READER_H
#define VS_WML_ARCHIVES_READERS_BUNDLE_READER_H

#include "archives/readers/byte_source.h"
#include "archives/reading.h"

namespace vs_wml {

void ReadBundle(ByteSource &source, ReadContext &context, const ArchivePlace &place);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_BUNDLE_READER_H
