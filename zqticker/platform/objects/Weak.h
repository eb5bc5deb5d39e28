// References that do not own. One class serves displays, delegates and targets, whatever owns
// them: a QObject parent, a Ref, or the stack.
#pragma once

#include "zqticker/zqticker_export.h"

#include <atomic>
#include <memory>
#include <type_traits>

namespace zq::platform {

// Base of everything that a Weak may refer to. Its destructor clears every Weak to it.
class ZQTICKER_EXPORT WeakReferenced {
 protected:
  WeakReferenced();
  // A copy is another object: nothing that refers to the source refers to it.
  WeakReferenced(const WeakReferenced&);
  WeakReferenced& operator=(const WeakReferenced&);
  virtual ~WeakReferenced();

 private:
  template <class T>
  friend class Weak;
  std::shared_ptr<std::atomic<bool>> alive_;
};

// A reference that does not own; reads as null once its object has gone.
//
// Thread: an object that is used from several threads must be resolved on the thread that
// destroys it; the liveness flag alone may be read from any.
template <class T>
class Weak {
 public:
  Weak() = default;
  Weak(std::nullptr_t) {}
  Weak(T* object) : object_(object) {
    static_assert(std::is_base_of_v<WeakReferenced, T>);
    if (object)
      alive_ = static_cast<const WeakReferenced*>(object)->alive_;
  }
  Weak(const std::shared_ptr<T>& object) : Weak(object.get()) {}

  T* get() const { return alive_ && alive_->load(std::memory_order_acquire) ? object_ : nullptr; }
  T* operator->() const { return get(); }
  explicit operator bool() const { return get() != nullptr; }

  friend bool operator==(const Weak& a, const Weak& b) { return a.get() == b.get(); }

 private:
  T* object_ = nullptr;
  std::shared_ptr<std::atomic<bool>> alive_;
};

} // namespace zq::platform
