// SPDX-License-Identifier: MIT
#include "standard_output.h"

#include <unistd.h>

#include <utility>

#include "files.h"
#include "messages.h"

namespace unwml {

namespace {

void WriteToStream(std::string_view bytes) {
  try {
    WriteAll(STDOUT_FILENO, bytes);
  } catch (const std::system_error &failure) {
    throw OutputFailure(failure.code());
  }
}

}  // namespace

StandardOutput::StandardOutput(bool pager) : command_(pager ? PagerCommand() : std::nullopt) {}

void StandardOutput::Write(std::string_view bytes) {
  if (!command_) return WriteToStream(bytes);
  held_ += bytes;
  if (!ExceedsScreen(held_)) return;
  const std::string command = *std::exchange(command_, std::nullopt);
  try {
    pager_.emplace(command);
  } catch (const std::system_error &failure) {
    Tell(failure.what());
  }
  WriteToStream(std::exchange(held_, ""));
}

void StandardOutput::Finish() {
  command_.reset();
  pager_.reset();
  WriteToStream(std::exchange(held_, ""));
}

void StandardOutput::Abandon() {
  command_.reset();
  pager_.reset();
}

void DocumentOutput::Write(std::string_view piece) {
  if (piece.empty()) return;
  if (!written_ && size_ + piece.size() <= kMostHeld) {
    held_.emplace_back(piece);
    size_ += piece.size();
    return;
  }
  if (!written_) {
    awaitTurn_();
    Finish();
    written_ = true;
  }
  output_->Write(piece);
  last_ = piece.back();
}

bool DocumentOutput::Fail() {
  held_.clear();
  if (written_ && last_ != '\n') output_->Write("\n");
  return written_;
}

void DocumentOutput::Finish() {
  for (const std::string &piece : held_) output_->Write(piece);
  held_.clear();
}

}  // namespace unwml
