// SPDX-License-Identifier: MIT
#include "batch.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

namespace unwml {
namespace {

constexpr std::size_t kWaitingPerThread = 16;

// Threads take the next input; finished ones lie in a ring until their turn comes.
class Queue {
 public:
  Queue(std::size_t inputs, std::size_t places) : inputs_(inputs), ring_(places) {}

  // The next input to work on; nothing when there are no more.
  std::optional<std::size_t> Claim() {
    std::unique_lock lock(mutex_);
    room_.wait(lock,
               [&] { return stopped_ || claimed_ == inputs_ || claimed_ < taken_ + ring_.size(); });
    if (stopped_ || claimed_ == inputs_) return std::nullopt;
    return claimed_++;
  }

  void Put(std::size_t index, Outcome outcome) {
    const std::lock_guard lock(mutex_);
    ring_[index % ring_.size()] = std::move(outcome);
    if (index == taken_) finished_.notify_one();
  }

  // Waits for the outcome whose turn it is.
  Outcome Take() {
    std::unique_lock lock(mutex_);
    std::optional<Outcome> &place = ring_[taken_ % ring_.size()];
    finished_.wait(lock, [&] { return place.has_value(); });
    Outcome outcome = std::move(*place);
    place.reset();
    ++taken_;
    room_.notify_one();
    return outcome;
  }

  void Stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    room_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable room_;
  std::condition_variable finished_;
  std::size_t inputs_;
  std::size_t claimed_ = 0;
  std::size_t taken_ = 0;
  bool stopped_ = false;
  std::vector<std::optional<Outcome>> ring_;
};

// Joins the threads, however the work ends.
class Workers {
 public:
  Workers(const Options &options, const Inputs &inputs, Queue &queue, std::size_t count)
      : queue_(queue) {
    const auto work = [&options, &inputs, &queue] {
      Converter converter(options);
      while (const auto claimed = queue.Claim()) {
        queue.Put(*claimed, converter.Convert(inputs.list[*claimed]));
      }
    };
    threads_.reserve(count);
    try {
      while (threads_.size() < count) threads_.emplace_back(work);
    } catch (const std::system_error &) {
      // As many as the system allows do the work.
      if (threads_.empty() && count != 0) throw;
    }
  }
  ~Workers() {
    queue_.Stop();
    for (std::thread &thread : threads_) thread.join();
  }
  Workers(const Workers &) = delete;
  Workers &operator=(const Workers &) = delete;

 private:
  Queue &queue_;
  std::vector<std::thread> threads_;
};

}  // namespace

void ConvertAll(const Options &options, const Inputs &inputs,
                const std::function<void(const Input &, const Outcome &)> &take) {
  const std::size_t count = std::min(options.jobs, inputs.list.size());
  Queue queue(inputs.list.size(), std::max<std::size_t>(count, 1) * kWaitingPerThread);
  const Workers workers(options, inputs, queue, count);
  for (const Input &input : inputs.list) {
    take(input, queue.Take());
  }
}

}  // namespace unwml
