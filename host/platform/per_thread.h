/// \file
/// One object for each thread.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_PER_THREAD_H
#define VS_WML_HOST_PLATFORM_PER_THREAD_H

#include <pthread.h>

#include <memory>
#include <new>

namespace vs_wml {

/// Makes an object of a thread at its first use there and destroys it when the thread ends. A
/// `thread_local` object with a destructor does the same, but ends the process when no memory is
/// left to register it; this one throws. Lives as long as the program or library that holds it.
template <typename T>
class PerThread {
 public:
  /// Throws std::bad_alloc when the system has no room for another.
  PerThread() {
    if (pthread_key_create(&key_, Destroy) != 0) throw std::bad_alloc();
  }
  ~PerThread() {
    Destroy(pthread_getspecific(key_));
    pthread_key_delete(key_);
  }
  PerThread(const PerThread &) = delete;
  PerThread &operator=(const PerThread &) = delete;

  /// The calling thread's object, valid until it ends. Throws std::bad_alloc.
  T &Get() {
    if (void *known = pthread_getspecific(key_)) return *static_cast<T *>(known);
    auto made = std::make_unique<T>();
    if (pthread_setspecific(key_, made.get()) != 0) throw std::bad_alloc();
    return *made.release();
  }

 private:
  static void Destroy(void *object) { delete static_cast<T *>(object); }

  pthread_key_t key_{};
};

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_PER_THREAD_H
