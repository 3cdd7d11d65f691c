/// \file
/// What the codes of a compiled deck stand for: WML 1.0 to 1.3 (WAP-191 and its predecessors).
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WMLC_WML_TOKENS_H
#define VS_WML_HOST_WMLC_WML_TOKENS_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "host/wmlc/wbxml.h"

namespace vs_wml {

/// The element of a code, empty when there is none. `wml10`: in WML 1.0, whose elements have
/// names of their own; a code that it lacks has the meaning of later versions.
std::string_view FindWmlTag(WbxmlName name, bool wml10);

struct WmlAttribute {
  std::string_view name;   ///< empty: the code has none
  std::string_view value;  ///< what the value begins with
};
WmlAttribute FindWmlAttribute(WbxmlName name, bool wml10);

/// The part of a value that a code stands for, empty when there is none.
std::string_view FindWmlValue(WbxmlName name, bool wml10);

struct WmlDocumentType {
  std::string_view publicId;
  std::string_view systemId;
  bool wml10 = false;
};

/// The document type that a header names by number or in words, when it is one of WML's.
std::optional<WmlDocumentType> FindWmlDocumentType(const WbxmlHeader &header);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WMLC_WML_TOKENS_H
