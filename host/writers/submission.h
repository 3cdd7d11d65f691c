/// \file
/// What an action sends, as a form of a page sends it.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_WRITERS_SUBMISSION_H
#define VS_WML_HOST_WRITERS_SUBMISSION_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/document.h"

namespace vs_wml {

struct Submission {
  struct Value {
    std::string name;
    std::string text;      ///< as far as it is known: variables are `{name}`
    std::string variable;  ///< the variable whose value it is, when it is nothing else
    bool known = true;     ///< no variable without a value is in it
  };
  std::string address;
  bool post = false;
  bool multipart = false;
  std::vector<Value> values;
};

/// Whether a task may need a form: it posts, sends fields, or has variables in its target.
bool TakesForm(const Task &task);

/// What following a link sends, when that takes a form: it posts, sends fields, or asks for
/// variables in its query. Nothing when it does not, or when no form could send it.
std::optional<Submission> SubmissionOf(const Link &link);

}  // namespace vs_wml

#endif  // VS_WML_HOST_WRITERS_SUBMISSION_H
