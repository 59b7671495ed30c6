// A host one of whose calls fails: the same call for the portable parts and, over COM, for the module.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/windows/com/offered_settings.h"
#include "host/environment.h"
#include "host/host_object.h"
#include "host/host_window.h"
#include "win32/com_ptr.h"

namespace zolvane {

// How a call over COM fails. A way that does not fit the call counts as Refusal.
enum class FailureWay : std::uint8_t {
  NoSuchName,         // the member's name is not understood
  Refusal,            // a failing status
  Exception,          // an error of the member, with a description
  DeferredException,  // the same, to be filled in on demand
  WrongResult,        // success, with a result of no use
  RefusedResult,      // a failing status beside a result
  RefusedNextStep,    // an object whose members cannot be reached
};
inline constexpr std::size_t failureWays = 7;

struct HostCall {
  std::string Name;  // what is called, as both sides see it
  std::string Kind;  // calls of one kind are told apart by their values only
  bool IsByName = false;
};

// All calls of a host in their order, between Begin and End. The failing one, counted from 1, does not
// reach the host.
class HostFaults {
 public:
  void Begin(std::size_t failing, FailureWay way);

  // From now on the host does this at the call that would fail, and the call then goes on as usual.
  void ActInsteadOfFailing(std::function<void()> act) { act_ = std::move(act); }

  void End() { isCounting_ = false; }

  // True when this call has to fail.
  bool Strikes(HostCall call);

  FailureWay Way() const { return way_; }
  std::size_t Variety() const { return failing_; }  // for ways that exist in several forms
  const std::vector<HostCall>& Calls() const { return calls_; }

 private:
  bool isCounting_ = false;
  std::size_t failing_ = 0;
  FailureWay way_ = FailureWay::Refusal;
  std::function<void()> act_;
  std::vector<HostCall> calls_;
};

// ---- For the portable parts. The faults, and what is given by reference, outlive what is made.

std::unique_ptr<Environment> Failing(Environment& environment, HostFaults& faults);
std::shared_ptr<HostObject> Failing(std::shared_ptr<HostObject> object, HostFaults& faults);
std::shared_ptr<HostWindow> Failing(std::shared_ptr<HostWindow> window, HostFaults& faults);

// ---- For the module

// Stands in front of an object used by name, and of every object that this one gives.
ComPtr<IDispatch> Failing(const ComPtr<IDispatch>& object, HostFaults& faults);

// The settings-file service as a COM class, in place of OfferedSettings.
class FailingSettings {
 public:
  FailingSettings(const OfferedSettings::Create& create, HostFaults& faults);
  ~FailingSettings();
  FailingSettings(const FailingSettings&) = delete;
  FailingSettings& operator=(const FailingSettings&) = delete;

 private:
  DWORD registration_ = 0;
};

}  // namespace zolvane
