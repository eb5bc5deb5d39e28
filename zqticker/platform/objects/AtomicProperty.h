// A property that any thread may read while another writes it.
#pragma once

#include <mutex>
#include <utility>

namespace zq::platform {

// A value behind a small mutex, for properties that are documented as atomic. Copies take the
// value, never the lock. A mutex rather than std::atomic, so that one class serves flags and Refs.
template <class T>
class AtomicProperty {
 public:
  AtomicProperty() = default;
  explicit AtomicProperty(T value) : value_(std::move(value)) {}
  AtomicProperty(const AtomicProperty& other) : value_(other.load()) {}
  AtomicProperty& operator=(const AtomicProperty& other) {
    store(other.load());
    return *this;
  }

  T load() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

  void store(T value) {
    // The old value is destroyed after the lock is released: its destructor may be anyone's code.
    const std::lock_guard lock(mutex_);
    std::swap(value_, value);
  }

 private:
  mutable std::mutex mutex_;
  T value_{};
};

} // namespace zq::platform
