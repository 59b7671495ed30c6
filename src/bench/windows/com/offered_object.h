// An object that the host offers to late-bound callers, as a table of named members.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "host/status.h"
#include "win32/com_ptr.h"

namespace zolvane {

// One use of a member. The arguments are in the order of the call; the new value of a property comes last.
struct MemberUse {
  std::vector<VARIANT*> Arguments;
  bool IsSet = false;
  VARIANT* Result = nullptr;  // never null

  // An argument as the type asked for. Returns nullopt if there is none or it does not convert.
  std::optional<bool> BoolAt(std::size_t index) const;
  std::optional<std::int16_t> Int16At(std::size_t index) const;
  std::optional<std::int32_t> Int32At(std::size_t index) const;
  std::optional<std::string> TextAt(std::size_t index) const;

  // The text variable that an argument refers to. Null if it refers to none.
  BSTR* TextVariableAt(std::size_t index) const;

  // Each stores a result and succeeds. Without a value it fails.
  HRESULT Give(std::optional<bool> value) const;
  HRESULT Give(std::optional<std::int16_t> value) const;
  HRESULT Give(std::optional<std::int32_t> value) const;
  HRESULT Give(const std::optional<std::string>& value) const;
  HRESULT Give(ComPtr<IDispatch> object) const;  // may be empty: nothing
};

struct OfferedMember {
  const wchar_t* Name;  // found in any case; an empty name is the object's default member
  WORD Kinds;           // DISPATCH_METHOD and so on: every way in which it may be used
  std::function<HRESULT(const MemberUse& use)> Run;
};

ComPtr<IDispatch> Offer(std::vector<OfferedMember> members);

// How many offered objects are still in use, in the whole process.
long OfferedObjectsAlive();

}  // namespace zolvane
