// SPDX-License-Identifier: MIT
#include "host/writers/submission.h"

#include <algorithm>

#include "host/deck/variables.h"
#include "host/text/ascii.h"
#include "host/text/utf8.h"
#include "host/writers/target.h"

namespace vs_wml {
namespace {

unsigned HexValue(char c) {
  return static_cast<unsigned>(IsDigit(c) ? c - '0' : ToLower(c) - 'a' + 10);
}

// A name or value of a query as it was before it was encoded.
std::string Decoded(std::string_view text) {
  std::string decoded;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool escape = text[at] == '%' && at + 2 < text.size() && IsHexDigit(text[at + 1]) &&
                        IsHexDigit(text[at + 2]);
    if (escape) {
      decoded += static_cast<char>(HexValue(text[at + 1]) * 16 + HexValue(text[at + 2]));
      at += 2;
    } else {
      decoded += text[at] == '+' ? ' ' : text[at];
    }
  }
  return WithoutControls(RepairUtf8(decoded));
}

// Whether a text holds what stands for a variable without a value: a name between braces.
bool HasVariable(std::string_view text) {
  for (std::size_t at = text.find('{'); at != std::string_view::npos; at = text.find('{', at + 1)) {
    const std::size_t end = text.find('}', at);
    if (end == std::string_view::npos) return false;
    if (IsVariableName(text.substr(at + 1, end - at - 1))) return true;
  }
  return false;
}

// A value of a query, in which variables can be told by their braces alone.
Submission::Value QueryValue(std::string name, std::string text, bool resolved) {
  Submission::Value value{std::move(name), std::move(text), {}, true};
  if (resolved || !HasVariable(value.text)) return value;
  value.known = false;
  const std::string_view inside = std::string_view(value.text).substr(1, value.text.size() - 2);
  if (value.text.front() == '{' && IsVariableName(inside)) value.variable = inside;
  return value;
}

// A form that gets takes the place of the query: what is in that becomes values.
void TakeQuery(Submission &submission, bool resolved) {
  std::string &address = submission.address;
  address.resize(std::min(address.find('#'), address.size()));
  const std::size_t mark = address.find('?');
  if (mark == std::string::npos) return;
  std::string_view query = std::string_view(address).substr(mark + 1);
  std::vector<Submission::Value> values;
  while (!query.empty()) {
    const std::size_t end = std::min(query.find('&'), query.size());
    const std::string_view part = query.substr(0, end);
    const std::size_t equals = std::min(part.find('='), part.size());
    if (!part.empty()) {
      values.push_back(QueryValue(Decoded(part.substr(0, equals)),
                                  Decoded(part.substr(std::min(equals + 1, part.size()))),
                                  resolved));
    }
    query.remove_prefix(std::min(end + 1, query.size()));
  }
  submission.values.insert(submission.values.begin(), values.begin(), values.end());
  address.resize(mark);
}

}  // namespace

bool TakesForm(const Task &task) {
  return task.kind == TaskKind::kGo &&
         (task.Posts() || !task.target.resolved || !task.PostFields().empty());
}

std::optional<Submission> SubmissionOf(const Link &link) {
  if (link.action == nullptr || !TakesForm(link.action->task)) return std::nullopt;
  if (link.target.empty() || link.target.starts_with('#') || !IsSafeTarget(link.target)) {
    return std::nullopt;
  }
  const Task &task = link.action->task;
  Submission submission;
  submission.address = link.target;
  submission.post = task.Posts();
  submission.multipart = task.IsMultipart();
  bool possible = true;
  for (const NameValue &field : task.PostFields()) {
    possible = possible && field.name.resolved;
    submission.values.push_back({std::string(field.name.shown), std::string(field.value.shown),
                                 std::string(SoleVariable(field.value)), field.value.resolved});
  }
  if (!submission.post) TakeQuery(submission, task.target.resolved);
  possible = possible && (task.target.resolved || !HasVariable(submission.address));
  return possible ? std::optional(std::move(submission)) : std::nullopt;
}

}  // namespace vs_wml
