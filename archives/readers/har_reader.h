/// \file
/// HTTP archives (HAR): the log of a browser, in JSON.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_HAR_READER_H
#define VS_WML_ARCHIVES_READERS_HAR_READER_H

#include "archives/readers/byte_source.h"
#include "archives/reading.h"

namespace vs_wml {

/// A record is an entry of the log. No text of it is held beyond the limit of a document.
void ReadHar(ByteSource &source, ReadContext &context, const ArchivePlace &place);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_HAR_READER_H
