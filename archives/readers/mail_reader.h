/// \file
/// MHTML, mail, and multipart bodies as a gateway sent them.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_ARCHIVES_READERS_MAIL_READER_H
#define VS_WML_ARCHIVES_READERS_MAIL_READER_H

#include "archives/readers/byte_source.h"
#include "archives/reading.h"

namespace vs_wml {

/// A record is a part that is not made of parts. Reads a message, several in the form of mbox,
/// parts without a header in front of them, and either behind a status line of HTTP.
void ReadMail(ByteSource &source, ReadContext &context, const ArchivePlace &place);

}  // namespace vs_wml

#endif  // VS_WML_ARCHIVES_READERS_MAIL_READER_H
