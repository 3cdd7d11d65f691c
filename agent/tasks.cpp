// SPDX-License-Identifier: MIT
#include "agent/tasks.h"

#include <utility>

#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::string_view kUrlEncoded = "application/x-www-form-urlencoded; charset=utf-8";

void CheckLength(std::size_t size) {
  if (size > kLongestValue) throw ValueTooLong("a value grows beyond 64 KB");
}

std::string Converted(const std::string &value, Conversion conversion) {
  switch (conversion) {
    case Conversion::kEscape:
      return PercentEncode(value);
    case Conversion::kUnescape:
      return PercentDecode(value);
    default:
      return value;
  }
}

std::size_t SizeOf(const ContextVariables &variables) {
  std::size_t size = 0;
  for (const auto &[name, value] : variables) size += name.size() + value.size();
  return size;
}

using Pairs = Assignments;

Pairs EvaluatePairs(std::span<const NameValue> pairs, const ContextVariables &variables) {
  Pairs evaluated;
  for (const NameValue &pair : pairs) {
    evaluated.emplace_back(Evaluate(pair.name, variables, Conversion::kVerbatim),
                           Evaluate(pair.value, variables, Conversion::kVerbatim));
  }
  return evaluated;
}

std::string UrlEncoded(const Pairs &pairs) {
  std::string encoded;
  for (const auto &[name, value] : pairs) {
    if (!encoded.empty()) encoded += '&';
    encoded += PercentEncode(name) + '=' + PercentEncode(value);
  }
  return encoded;
}

// A boundary that no value has in it.
std::string Boundary(const Pairs &pairs) {
  std::string boundary = "vs-wml-boundary";
  const auto occurs = [&] {
    for (const auto &[name, value] : pairs) {
      if (value.find(boundary) != std::string::npos) return true;
    }
    return false;
  };
  for (int n = 1; occurs(); ++n) boundary = "vs-wml-boundary-" + std::to_string(n);
  return boundary;
}

// The name of a part: quotes and line ends percent-encoded (RFC 7578, 2).
std::string PartName(std::string_view name) {
  std::string quoted;
  for (const char c : name) {
    if (c == '"' || c == '\r' || c == '\n') {
      quoted += PercentEncode({&c, 1});
    } else {
      quoted += c;
    }
  }
  return quoted;
}

void FillMultipart(const Pairs &pairs, Request &request) {
  const std::string boundary = Boundary(pairs);
  const std::string delimiter = "--" + boundary;
  request.contentType = "multipart/form-data; boundary=" + boundary;
  for (const auto &[name, value] : pairs) {
    request.body += delimiter;
    request.body += "\r\nContent-Disposition: form-data; name=\"";
    request.body += PartName(name);
    request.body += "\"\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n";
    request.body += value;
    request.body += "\r\n";
  }
  request.body += delimiter + "--\r\n";
}

}  // namespace

std::string Evaluate(const Value &value, const ContextVariables &variables, Conversion usual) {
  std::string text;
  ForEachPiece(
      value.written,
      [&](std::string_view piece) {
        CheckLength(text.size() + piece.size());
        text += piece;
      },
      [&](const VariableReference &reference) {
        const auto found = variables.find(reference.name);
        if (found == variables.end()) return;
        const bool isDefault = reference.conversion == Conversion::kDefault;
        const std::string shown =
            Converted(found->second, isDefault ? usual : reference.conversion);
        CheckLength(text.size() + shown.size());
        text += shown;
      });
  return text;
}

std::string EvaluateShort(const Value &value, const ContextVariables &variables) {
  try {
    return Evaluate(value, variables, Conversion::kVerbatim);
  } catch (const ValueTooLong &) {
    return {};
  }
}

Assignments EvaluateAssignments(const Task &task, const ContextVariables &variables) {
  Assignments assignments = EvaluatePairs(task.Variables(), variables);
  std::erase_if(assignments, [](const auto &pair) { return !IsVariableName(pair.first); });
  return assignments;
}

void Assign(std::string_view name, std::string value, ContextVariables &variables) {
  if (value.empty()) {
    if (const auto found = variables.find(name); found != variables.end()) variables.erase(found);
    return;
  }
  CheckLength(value.size());
  variables.insert_or_assign(std::string(name), std::move(value));
}

void Assign(const Assignments &assignments, ContextVariables &variables) {
  for (const auto &[name, value] : assignments) Assign(name, value, variables);
  if (!assignments.empty() && SizeOf(variables) > kMostVariableBytes) {
    throw ValueTooLong("the variables grow beyond 1 MB");
  }
}

std::string EvaluateTarget(const Task &task, const ContextVariables &variables) {
  return Evaluate(task.target, variables, Conversion::kEscape);
}

Request MakeRequest(const Task &task, std::string target, const std::string &deck,
                    const ContextVariables &variables) {
  Request request;
  request.url = std::move(target);
  if (task.details == nullptr) return request;
  const TaskDetails &details = *task.details;
  request.accept = details.acceptCharset;
  request.fresh = EqualIgnoringCase(Trim(details.cacheControl), "no-cache");
  if (EqualIgnoringCase(Trim(details.sendReferer), "true")) request.referer = deck;
  const Pairs pairs = EvaluatePairs(task.PostFields(), variables);
  const std::string data = Evaluate(details.postData, variables, Conversion::kVerbatim);
  if (!task.Posts()) {
    const std::string query = data.empty() ? UrlEncoded(pairs) : data;
    if (query.empty()) return request;
    const bool hasQuery = request.url.find('?') != std::string::npos;
    request.url += (hasQuery ? "&" : "?") + query;
    return request;
  }
  request.method = "POST";
  if (task.IsMultipart()) {
    FillMultipart(pairs, request);
  } else {
    request.contentType = kUrlEncoded;
    request.body = data.empty() ? UrlEncoded(pairs) : data;
  }
  return request;
}

}  // namespace vs_wml
