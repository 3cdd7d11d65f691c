/// \file
/// Writers: sinks that turn blocks into a format.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITER_H
#define VS_WML_HOST_WRITER_H

#include <cstddef>
#include <memory>

#include "host/document.h"
#include "host/text/output.h"

namespace vs_wml {

enum class Format { kText, kHtml, kJson, kMarkdown };

struct WriterOptions {
  std::size_t width = 80;    ///< columns of text
  bool color = false;        ///< ANSI styles in text
  bool images = false;       ///< small pictures drawn in text with block characters
  bool hyperlinks = false;   ///< addresses in text are links on terminals that can (OSC 8)
  bool nameHeading = false;  ///< head text and Markdown with the document's name
  /// HTML and Markdown fetch pictures that are not at hand; otherwise these are links.
  bool remoteImages = false;
};

/// A writer of one document after the other. The output has to outlive it; it is
/// flushed at the end of each document.
std::unique_ptr<BlockSink> MakeWriter(Format format, Output &output, const WriterOptions &options);

std::unique_ptr<BlockSink> MakeTextWriter(Output &output, const WriterOptions &options);
std::unique_ptr<BlockSink> MakeHtmlWriter(Output &output, const WriterOptions &options);
std::unique_ptr<BlockSink> MakeJsonWriter(Output &output);
std::unique_ptr<BlockSink> MakeMarkdownWriter(Output &output, const WriterOptions &options);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITER_H
