/// \file
/// All documents, on as many threads as wanted, in order.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_UNWML_BATCH_H
#define VS_WML_UNWML_BATCH_H

#include <functional>

#include "convert.h"

namespace unwml {

/// Converts the inputs on options.jobs threads, or as many as can be started. `take` gets each
/// outcome in the order of the inputs, on the calling thread, and writes what is held of it; what
/// it throws ends the work. Finished documents wait for their turn; when too many do, the threads
/// wait too, so that memory is bounded whatever the number of documents.
void ConvertAll(const Work &work, const std::function<void(const Input &, Outcome &)> &take);

}  // namespace unwml

#endif  // VS_WML_UNWML_BATCH_H
