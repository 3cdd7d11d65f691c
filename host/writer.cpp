// SPDX-License-Identifier: MIT
#include "host/writer.h"

namespace vs_wml {

std::unique_ptr<BlockSink> MakeWriter(Format format, Output &output, const WriterOptions &options) {
  switch (format) {
    case Format::kHtml:
      return MakeHtmlWriter(output, options);
    case Format::kJson:
      return MakeJsonWriter(output);
    case Format::kMarkdown:
      return MakeMarkdownWriter(output, options);
    case Format::kText:
      break;
  }
  return MakeTextWriter(output, options);
}

}  // namespace vs_wml
