// One of the host's objects, used by the names of its members. A call fails if the object does not have the
// member or the member fails. Throws only std::bad_alloc.
#pragma once

#include <optional>
#include <span>

#include "host/status.h"
#include "win32/com_ptr.h"
#include "win32/variant.h"

namespace zolvane {

class LateBound {
 public:
  // Without an object every call fails.
  explicit LateBound(ComPtr<IDispatch> object) : object_{std::move(object)} {}

  explicit operator bool() const { return static_cast<bool>(object_); }

  // A property, or a method without arguments.
  std::optional<Variant> Read(const wchar_t* name) const;

  // A property that is an object. Empty if there is none.
  LateBound ReadObject(const wchar_t* name) const;

  // The member of a collection under a text key: passes the key to the property and, if that is refused, to
  // the default member of the property's object.
  LateBound ReadItem(const wchar_t* collection, const wchar_t* key) const;

  Status Write(const wchar_t* name, const Variant& value) const;

  // A method. Arguments stand in the order of the call and stay the caller's; the method may change those
  // that refer to a variable. `result` may be null.
  Status Call(const wchar_t* name, std::span<const VARIANT> arguments, Variant* result = nullptr) const;

 private:
  std::optional<DISPID> Find(const wchar_t* name) const;
  Status Invoke(DISPID member, WORD kind, DISPPARAMS& parameters, Variant* result) const;
  std::optional<Variant> ReadIndexed(DISPID member, const wchar_t* key) const;

  ComPtr<IDispatch> object_;
};

}  // namespace zolvane
