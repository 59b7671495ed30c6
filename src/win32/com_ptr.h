// A counted reference to a COM object.
#pragma once

#include <utility>

#include "win32/windows_headers.h"

namespace zolvane {

template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  explicit ComPtr(Interface* object) : object_{object} {
    if (object_ != nullptr) {
      object_->AddRef();
    }
  }
  ComPtr(const ComPtr& other) : ComPtr{other.object_} {}
  ComPtr(ComPtr&& other) noexcept : object_{std::exchange(other.object_, nullptr)} {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ComPtr() { Reset(); }

  Interface* Get() const { return object_; }
  Interface* operator->() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

  // Lets go. The member is empty before the object is released, so an object that calls back finds nothing.
  void Reset() {
    if (auto* const object = std::exchange(object_, nullptr)) {
      object->Release();
    }
  }

  // Where a function puts the reference that it hands out.
  Interface** Put() {
    Reset();
    return &object_;
  }
  void** PutVoid() { return reinterpret_cast<void**>(Put()); }

  // The reference itself, for a caller who will release it.
  Interface* Detach() { return std::exchange(object_, nullptr); }

  // Another interface of the same object. Empty if the object does not have it.
  template <class Other>
  ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (object_ != nullptr && FAILED(object_->QueryInterface(__uuidof(Other), other.PutVoid()))) {
      other.Detach();
    }
    return other;
  }

 private:
  Interface* object_ = nullptr;
};

}  // namespace zolvane
