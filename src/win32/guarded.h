// Every function that the host or the system calls runs in one of these. Nothing thrown leaves it; in
// practice that is std::bad_alloc.
#pragma once

#include <exception>
#include <new>
#include <utility>

#include "host/status.h"
#include "win32/windows_headers.h"

namespace zolvane {

// Returns the body's result, or the HRESULT for what it threw.
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

// A status as the system spells it, and back. Any success code becomes Success.
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
