/// \file
/// A readable log of what the filter tells its host, one call a line.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_TRACE_H
#define VS_WML_HOST_WRITERS_TRACE_H

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>

#include "vs_wml.h"

namespace vs_wml {

/// Writes calls as lines: the name of the output routine, then its arguments.
///
///     SOSwitchCharset unicode
///     SOEmitChar "Hello \{201C}you\{201D}"
///     SOEmitBreak paragraph
///
/// Consecutive characters share a line. A character outside printable ASCII, '"'
/// and '\' are written as their code in hexadecimal, \{201C}. Arguments and record
/// fields that have only one value are left out while they hold it and are shown as
/// `name!=value` when they do not, so that two equal traces mean equal calls.
///
/// A host calls the method of each output routine from that routine, with the same
/// arguments but for the two user words. Not thread-safe; one trace a stream.
class Trace {
 public:
  /// Lines go to `out`, which has to outlive the trace. The last characters are written by
  /// Flush.
  explicit Trace(std::ostream &out) : out_(out) {}
  Trace(const Trace &) = delete;
  Trace &operator=(const Trace &) = delete;

  /// Writes out characters that are still being collected for one line.
  void Flush();
  /// Writes a line of the host's own between the calls.
  void Note(std::string_view line);

  void EmitChar(std::uint32_t character);
  void EmitControlCode(std::uint32_t code);
  void SetCharSize(std::uint32_t halfPoints);
  void EmitBreak(std::uint32_t kind, std::uint32_t zero);
  void DeclareSection(std::uint32_t zero0, std::uint32_t zero1, std::uint32_t zero2);
  void AbortStream(std::uint32_t zero);
  void SelectFontNumber(std::uint32_t fontNumber);
  void SelectFontName(std::uint32_t one, const char *name);
  void OpenFontList();
  void AddFontListEntry(std::uint32_t fontNumber, std::uint32_t family, const char *name);
  void CloseFontList();
  void OpenTable();
  void CloseTable();
  void InsertGraphic(const GraphicRecord &graphic);
  void OpenLink(std::uint32_t code, std::uint32_t number, const VwLinkRecord &link);
  void CloseLink(std::uint32_t code, std::uint32_t number);
  /// `index` is the host's answer.
  void StoreString(const std::uint16_t *string, std::uint32_t code, std::uint32_t length,
                   std::uint32_t index);
  void DescribeRow(const RowDescription &row);
  void SetTextColor(std::uint32_t zero, std::uint32_t color);
  void SwitchCharset(std::uint32_t hostCharset);
  /// `id` is the host's answer.
  void OpenReference(std::uint32_t id);
  void DescribeCell(const CellDescription &cell);
  void SetProperty(std::uint32_t code, std::uint32_t a, std::uint32_t b, std::uint32_t c);

 private:
  std::ostream &out_;
  std::string characters_;  ///< the line's characters so far, escaped
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_TRACE_H
