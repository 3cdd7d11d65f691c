// What holds for the calls of every document, however damaged.
//
// SPDX-License-Identifier: MIT
#ifndef VS_WML_TESTS_SUPPORT_CALL_CHECKER_H
#define VS_WML_TESTS_SUPPORT_CALL_CHECKER_H

#include <cstdint>
#include <string>

#include "vs_wml.h"

namespace vs_wml::test {

/// Follows the calls of one stream. A plain value: a copy taken at a stop goes with the
/// save block taken there.
class CallChecker {
 public:
  /// The first rule that was broken; empty while all hold.
  const std::string &Fault() const { return fault_; }
  /// The last read came to the end of the document.
  bool Finished() const { return finished_; }
  bool Aborted() const { return aborted_; }

  void BeginRead();
  /// `calls` is the number of output calls that the read made.
  void EndRead(std::uint64_t calls);

  void Any();  ///< every call but SOSetProperty and SODescribeCell
  void EmitChar(std::uint32_t character);
  /// `stops`: the host answers with SO_STOP.
  void EmitBreak(std::uint32_t kind, std::uint32_t zero, bool stops);
  void AbortStream();
  void SwitchCharset(std::uint32_t hostCharset);
  void OpenTable();
  void CloseTable();
  void DescribeRow(const RowDescription &row);
  void DescribeCell(const CellDescription &cell);
  void OpenLink(std::uint32_t code, std::uint32_t number);
  void CloseLink(std::uint32_t code, std::uint32_t number);
  void OpenReference();
  void SetProperty(std::uint32_t code);
  void Fail(const char *rule);

 private:
  enum class Reference { kNone, kOpen, kTargeted };

  std::string fault_;
  bool reading_ = false;
  bool announced_ = false;  ///< a character set, in this read
  bool stopped_ = false;
  bool finished_ = false;
  bool aborted_ = false;
  bool inTable_ = false;
  bool inLink_ = false;
  std::uint16_t links_ = 0;
  bool rowDescribed_ = false;
  std::uint32_t cellsDue_ = 0;
  Reference reference_ = Reference::kNone;
};

}  // namespace vs_wml::test

#endif  // VS_WML_TESTS_SUPPORT_CALL_CHECKER_H
