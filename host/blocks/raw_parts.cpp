// SPDX-License-Identifier: MIT
#include "host/blocks/raw_parts.h"

#include <utility>

#include "host/serve/served_bytes.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

// Without the control characters that an attribute value may hold.
std::string CleanText(std::string text) {
  for (char &c : text) {
    if (c == '\t' || c == '\n' || c == '\r') c = ' ';
  }
  return WithoutControls(std::move(text));
}

}  // namespace

Link RawParts::LinkOf(ToldReference told) {
  LinkText &text = links_.emplace_back();
  text.target = CleanText(ResolveReferences(told.target));
  text.title = CleanText(std::move(told.label).value_or(""));
  Link link;
  link.number = told.number;
  link.target = text.target;
  link.title = text.title;
  return link;
}

Image RawParts::ImageOf(ToldReference told) {
  Image image;
  image.source = CleanText(ResolveReferences(told.target));
  image.hasAlternative = told.label.has_value();
  image.alternative = CleanText(std::move(told.label).value_or(""));
  return image;
}

void RawParts::EndBlock(bool linkGoesOn) {
  const std::size_t kept = linkGoesOn ? 1 : 0;
  while (links_.size() > kept) links_.pop_front();
}

}  // namespace vs_wml
