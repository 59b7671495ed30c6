// The first three slots of a COM object: its interfaces, and the count of its references.
#pragma once

#include <atomic>
#include <utility>

#include "win32/com_ptr.h"

namespace zolvane {

// `Self` derives from this, is made by Make and deletes itself with its last reference. Asked
// for IUnknown, `Interface` or one of `Others`, it gives its Interface: the others are bases of
// that or add no member to it.
template <class Self, class Interface, class... Others>
class Counted : public Interface {
 public:
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  template <class... Arguments>
  static ComPtr<Self> Make(Arguments&&... arguments) {
    return ComPtr<Self>{new Self{std::forward<Arguments>(arguments)...}};
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) {
      return E_POINTER;
    }
    *object = nullptr;
    if (iid != IID_IUnknown && iid != __uuidof(Interface) && ((iid != __uuidof(Others)) && ...)) {
      return E_NOINTERFACE;
    }
    *object = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) {
      references_ = endsNow;
      delete static_cast<Self*>(this);
    }
    return left;
  }

 protected:
  Counted() = default;
  ~Counted() = default;

 private:
  // Far from zero, so that a host that uses the object once more while it ends does not end it twice.
  static constexpr ULONG endsNow = 0x40000000;

  std::atomic<ULONG> references_{0};
};

}  // namespace zolvane
