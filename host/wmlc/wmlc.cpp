// SPDX-License-Identifier: MIT
#include "host/wmlc/wmlc.h"

#include <wbxml/wbxml.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "host/wmlc/wmlc_check.h"

namespace vs_wml {
namespace {

constexpr std::size_t kLongestDeck = 1U << 20U;
constexpr std::size_t kDeepest = 200;
constexpr std::size_t kMostText = 16U << 20U;

// The public ids of WML 1.0 to 1.3.
constexpr std::uint32_t kPublicIds[] = {0x02, 0x04, 0x09, 0x0A};

struct CharsetNumber {
  std::uint32_t number;  // MIB
  const char *name;
};

constexpr CharsetNumber kCharsets[] = {
    {3, "US-ASCII"},        {4, "ISO-8859-1"},      {5, "ISO-8859-2"},      {6, "ISO-8859-3"},
    {7, "ISO-8859-4"},      {8, "ISO-8859-5"},      {9, "ISO-8859-6"},      {10, "ISO-8859-7"},
    {11, "ISO-8859-8"},     {12, "ISO-8859-9"},     {13, "ISO-8859-10"},    {17, "Shift_JIS"},
    {18, "EUC-JP"},         {38, "EUC-KR"},         {106, "UTF-8"},         {111, "ISO-8859-15"},
    {113, "GBK"},           {114, "GB18030"},       {2025, "GB2312"},       {2026, "Big5"},
    {2084, "KOI8-R"},       {2250, "windows-1250"}, {2251, "windows-1251"}, {2252, "windows-1252"},
    {2253, "windows-1253"}, {2254, "windows-1254"}, {2255, "windows-1255"}, {2256, "windows-1256"},
    {2257, "windows-1257"}, {2258, "windows-1258"}};

// The number that libwbxml takes for UTF-8, whose bytes it passes on as they are. It
// cannot convert other character sets.
constexpr char kUtf8Number = 106;

struct Destroy {
  void operator()(WBXMLConvWBXML2XML *converter) const { wbxml_conv_wbxml2xml_destroy(converter); }
};

struct Free {
  void operator()(WB_UTINY *text) const { std::free(text); }
};

void RequireModest(std::string_view bytes) {
  if (bytes.size() > kLongestDeck) throw BrokenWmlc("compiled deck is too long");
  const WmlcDemand demand = MeasureWmlc(bytes);
  if (!demand.wellFormed) throw BrokenWmlc("compiled deck is damaged");
  if (demand.depth > kDeepest) throw BrokenWmlc("compiled deck nests too deep");
  if (demand.text > kMostText) throw BrokenWmlc("compiled deck stands for too much text");
}

}  // namespace

bool IsWmlc(std::string_view bytes) {
  const WmlcHeader header = ReadWmlcHeader(bytes);
  if (!header.valid) return false;
  if (header.publicId == 0) return header.publicName.find("DTD WML") != std::string_view::npos;
  return std::find(std::begin(kPublicIds), std::end(kPublicIds), header.publicId) !=
         std::end(kPublicIds);
}

DecodedWmlc DecodeWmlc(std::string_view bytes) {
  RequireModest(bytes);
  const WmlcHeader header = ReadWmlcHeader(bytes);
  WBXMLConvWBXML2XML *created = nullptr;
  if (wbxml_conv_wbxml2xml_create(&created) != WBXML_OK) throw std::bad_alloc();
  const std::unique_ptr<WBXMLConvWBXML2XML, Destroy> converter(created);
  wbxml_conv_wbxml2xml_set_gen_type(created, WBXML_GEN_XML_COMPACT);
  wbxml_conv_wbxml2xml_enable_preserve_whitespaces(created);

  std::string input(bytes);
  input.replace(header.charsetStart, header.charsetEnd - header.charsetStart, 1, kUtf8Number);
  WB_UTINY *decoded = nullptr;
  WB_ULONG length = 0;
  const WBXMLError error =
      wbxml_conv_wbxml2xml_run(created, reinterpret_cast<WB_UTINY *>(input.data()),
                               static_cast<WB_ULONG>(input.size()), &decoded, &length);
  const std::unique_ptr<WB_UTINY, Free> text(decoded);
  if (error != WBXML_OK || decoded == nullptr) {
    throw BrokenWmlc("compiled deck is damaged: " +
                     std::string(reinterpret_cast<const char *>(wbxml_errors_string(error))));
  }
  DecodedWmlc result{{reinterpret_cast<const char *>(decoded), length}, {}};
  for (const CharsetNumber &entry : kCharsets) {
    if (entry.number == header.charset) result.charset = entry.name;
  }
  return result;
}

}  // namespace vs_wml
