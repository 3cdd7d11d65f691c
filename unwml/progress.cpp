// SPDX-License-Identifier: MIT
#include "progress.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

namespace unwml {
namespace {

constexpr auto kInterval = std::chrono::milliseconds(100);
constexpr std::size_t kBarWidth = 30;

}  // namespace

Progress::Progress(std::size_t documents)
    : documents_(documents),
      active_(documents > 1 && isatty(STDERR_FILENO) != 0 && isatty(STDOUT_FILENO) == 0) {}

void Progress::Advance(std::uint64_t bytes) {
  ++done_;
  bytes_ += bytes;
  if (!active_) return;
  const auto now = Clock::now();
  if (now - last_ >= kInterval) Show(now);
}

void Progress::Show(Clock::time_point now) {
  last_ = now;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  const double rate = static_cast<double>(done_) / seconds;
  const auto remaining = static_cast<unsigned>(static_cast<double>(documents_ - done_) / rate);
  const std::size_t filled = kBarWidth * done_ / documents_;
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(),
                "\r[%s%s] %zu/%zu  %.0f decks/s  %.1f MB/s  %u:%02u left\x1B[K",
                std::string(filled, '#').c_str(), std::string(kBarWidth - filled, ' ').c_str(),
                done_, documents_, rate, static_cast<double>(bytes_) / seconds / 1e6,
                remaining / 60, remaining % 60);
  std::fputs(line.data(), stderr);
  shown_ = true;
}

void Progress::Clear() {
  if (shown_) std::fputs("\r\x1B[K", stderr);
  shown_ = false;
}

}  // namespace unwml
