// The frame of every function that the host or the system calls. Nothing thrown (memory ran out, in practice)
// leaves it.
#pragma once

#include <exception>
#include <new>
#include <utility>

#include "host/status.h"
#include "win32/windows_headers.h"

namespace zolvane {

// Runs the body; its result, or the failure that what it threw stands for.
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

// The same for functions whose result is not a status.
template <class Result, class Body>
Result GuardedOr(Result fallback, Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (...) {
    return fallback;
  }
}

// A status as the system spells it, and back. Every success counts as the one success.
constexpr HRESULT ToHresult(const Status& status) {
  if (status.Ok()) {
    return S_OK;
  }
  return status.Code() < 0 && status.Code() != Status::genericFailure ? status.Code() : E_FAIL;
}

constexpr Status ToStatus(HRESULT result) {
  return result < 0 ? Status::Failure(result) : Status::Success();
}

}  // namespace zolvane
