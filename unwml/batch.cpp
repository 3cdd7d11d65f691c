// SPDX-License-Identifier: MIT
#include "batch.h"

#include <sys/mman.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <new>
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

  // Waits until all inputs before this one are done with.
  void AwaitTurn(std::size_t index) {
    std::unique_lock lock(mutex_);
    turn_.wait(lock, [&] { return stopped_ || taken_ == index; });
    if (stopped_) throw OutputFailure(std::make_error_code(std::errc::operation_canceled));
  }

  // Waits for the outcome whose turn it is.
  Outcome Take() {
    std::unique_lock lock(mutex_);
    std::optional<Outcome> &place = ring_[taken_ % ring_.size()];
    finished_.wait(lock, [&] { return place.has_value(); });
    Outcome outcome = std::move(*place);
    place.reset();
    return outcome;
  }

  // The outcome that was taken is done with.
  void Next() {
    const std::lock_guard lock(mutex_);
    ++taken_;
    room_.notify_one();
    turn_.notify_all();
  }

  void Stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    room_.notify_all();
    turn_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable room_;
  std::condition_variable finished_;
  std::condition_variable turn_;
  std::size_t inputs_;
  std::size_t claimed_ = 0;
  std::size_t taken_ = 0;
  bool stopped_ = false;
  std::vector<std::optional<Outcome>> ring_;
};

// Addresses that the stacks of threads must leave for the documents.
class Reserve {
 public:
  Reserve()
      : begin_(
            mmap(nullptr, kBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0)) {
    if (begin_ == MAP_FAILED) throw std::bad_alloc();
  }
  ~Reserve() { munmap(begin_, kBytes); }
  Reserve(const Reserve &) = delete;
  Reserve &operator=(const Reserve &) = delete;

 private:
  static constexpr std::size_t kBytes = 64U << 20U;
  void *begin_;
};

// Joins the threads, however the work ends.
class Workers {
 public:
  Workers(const Work &work, Queue &queue, std::size_t count) : queue_(queue) {
    const auto convert = [&work, &queue] {
      Converter converter(work);
      while (const auto claimed = queue.Claim()) {
        const auto turn = [&queue, index = *claimed] { queue.AwaitTurn(index); };
        queue.Put(*claimed, converter.Convert(work.inputs.list[*claimed], turn));
      }
    };
    try {
      const Reserve reserve;
      threads_.reserve(count);
      while (threads_.size() < count) threads_.emplace_back(convert);
    } catch (const std::system_error &) {
      return;  // as many as the system allows do the work
    } catch (const std::bad_alloc &) {
      return;
    }
  }
  ~Workers() {
    queue_.Stop();
    for (std::thread &thread : threads_) thread.join();
  }
  Workers(const Workers &) = delete;
  Workers &operator=(const Workers &) = delete;
  bool None() const { return threads_.empty(); }

 private:
  Queue &queue_;
  std::vector<std::thread> threads_;
};

void ConvertHere(const Work &work, const std::function<void(const Input &, Outcome &)> &take) {
  Converter converter(work);
  for (const Input &input : work.inputs.list) {
    Outcome outcome = converter.Convert(input, [] {});
    take(input, outcome);
  }
}

}  // namespace

void ConvertAll(const Work &work, const std::function<void(const Input &, Outcome &)> &take) {
  const std::size_t count = std::min(work.options.jobs, work.inputs.list.size());
  if (count <= 1) return ConvertHere(work, take);
  Queue queue(work.inputs.list.size(), count * kWaitingPerThread);
  const Workers workers(work, queue, count);
  if (workers.None()) return ConvertHere(work, take);
  for (const Input &input : work.inputs.list) {
    Outcome outcome = queue.Take();
    take(input, outcome);
    queue.Next();
  }
}

}  // namespace unwml
