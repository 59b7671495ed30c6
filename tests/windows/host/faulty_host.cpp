#include "windows/host/faulty_host.h"

#include <hestrion_cmds.h>

#include <algorithm>
#include <array>
#include <cwchar>
#include <stdexcept>
#include <utility>

#include "bench/windows/com/offered_object.h"
#include "host/forwarding.h"
#include "shell/windows/host/late_bound_names.h"
#include "win32/com_object.h"
#include "win32/counted.h"
#include "win32/text.h"

namespace zolvane {
namespace {

HostCall ByName(const wchar_t* member, const char* use = "") {
  const auto name = Utf8(member);
  return {.Name = name, .Kind = name + use, .IsByName = true};
}

std::string WithoutNumbers(std::string_view text) {
  std::string kept{text};
  std::erase_if(kept, [](char letter) { return letter >= '0' && letter <= '9'; });
  return kept;
}

HostCall Creation() {
  return {.Name = "create the service", .Kind = "create"};
}

HostCall Reading(std::string_view section, std::string_view key, std::string_view file) {
  const auto place = std::string{"read ["}.append(section).append("] ").append(key);
  return {.Name = place + " of " + std::string{file}, .Kind = WithoutNumbers(place)};
}

HostCall Writing(std::string_view section, std::string_view key, std::string_view file,
                 std::string_view value) {
  const auto place = std::string{"write ["}.append(section).append("] ").append(key);
  return {.Name = place + "=" + std::string{value} + " to " + std::string{file},
          .Kind = WithoutNumbers(place)};
}

HostCall Splitting(std::string_view delimiter, std::string_view text) {
  const auto kind = std::string{"split at "}.append(delimiter);
  return {.Name = kind + ": " + std::string{text}, .Kind = kind};
}

// ---- The portable side

class FailingService final : public ForwardingSettings {
 public:
  FailingService(std::shared_ptr<IniFileService> inner, HostFaults& faults)
      : ForwardingSettings{std::move(inner)}, faults_{faults} {}

  std::optional<std::string> ReadValue(std::string_view section, std::string_view key, std::string_view file,
                                       std::string_view fallback) override {
    return faults_.Strikes(Reading(section, key, file))
               ? std::nullopt
               : ForwardingSettings::ReadValue(section, key, file, fallback);
  }

  Status WriteValue(std::string_view section, std::string_view key, std::string_view file,
                    std::string_view value) override {
    return faults_.Strikes(Writing(section, key, file, value))
               ? Status::Failure()
               : ForwardingSettings::WriteValue(section, key, file, value);
  }

  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return faults_.Strikes(Splitting(delimiter, text)) ? std::nullopt
                                                       : ForwardingSettings::SplitText(delimiter, text);
  }

 private:
  HostFaults& faults_;
};

class FailingEnvironment final : public ForwardingEnvironment {
 public:
  FailingEnvironment(Environment& inner, HostFaults& faults)
      : ForwardingEnvironment{inner}, faults_{faults} {}

  std::shared_ptr<IniFileService> CreateIniFileService() override {
    return faults_.Strikes(Creation())
               ? nullptr
               : std::make_shared<FailingService>(ForwardingEnvironment::CreateIniFileService(), faults_);
  }

 private:
  HostFaults& faults_;
};

class FailingLink final : public ForwardingLink {
 public:
  FailingLink(std::shared_ptr<InstrumentLink> inner, HostFaults& faults)
      : ForwardingLink{std::move(inner)}, faults_{faults} {}

  std::optional<bool> Stop() override {
    return faults_.Strikes(ByName(names::stop)) ? std::nullopt : ForwardingLink::Stop();
  }
  Status SetStop(bool stop) override {
    return faults_.Strikes(ByName(names::stop, "=")) ? Status::Failure() : ForwardingLink::SetStop(stop);
  }
  Status SetHold(bool hold) override {
    return faults_.Strikes(ByName(names::hold)) ? Status::Failure() : ForwardingLink::SetHold(hold);
  }
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override {
    return faults_.Strikes(ByName(names::sendCommand)) ? std::nullopt
                                                       : ForwardingLink::SendCommand(command, reply, number);
  }

 private:
  HostFaults& faults_;
};

class FailingDialog final : public ForwardingDialog {
 public:
  FailingDialog(std::shared_ptr<HostDialog> inner, HostFaults& faults)
      : ForwardingDialog{std::move(inner)}, faults_{faults} {}

  Status SetStyle(std::int16_t style) override {
    return faults_.Strikes(ByName(names::style)) ? Status::Failure() : ForwardingDialog::SetStyle(style);
  }
  Status SetTitle(const std::string& title) override {
    return faults_.Strikes(ByName(names::title)) ? Status::Failure() : ForwardingDialog::SetTitle(title);
  }
  Status SetMessage(const std::string& message) override {
    return faults_.Strikes(ByName(names::message)) ? Status::Failure()
                                                   : ForwardingDialog::SetMessage(message);
  }
  Status Show(bool show) override {
    return faults_.Strikes(ByName(names::show)) ? Status::Failure() : ForwardingDialog::Show(show);
  }
  std::optional<std::int16_t> Result() override {
    return faults_.Strikes(ByName(names::result)) ? std::nullopt : ForwardingDialog::Result();
  }

 private:
  HostFaults& faults_;
};

class FailingObject final : public ForwardingObject {
 public:
  FailingObject(std::shared_ptr<HostObject> inner, HostFaults& faults)
      : ForwardingObject{std::move(inner)}, faults_{faults} {}

  std::shared_ptr<InstrumentLink> Link() override {
    return faults_.Strikes(ByName(names::instrumentLink))
               ? nullptr
               : std::make_shared<FailingLink>(ForwardingObject::Link(), faults_);
  }
  Status WriteLogLine(const std::string& line) override {
    return faults_.Strikes(ByName(names::writeLogLine)) ? Status::Failure()
                                                        : ForwardingObject::WriteLogLine(line);
  }
  std::optional<bool> HostDialogAvailable() override {
    return faults_.Strikes(ByName(names::hostDialogAvailable)) ? std::nullopt
                                                               : ForwardingObject::HostDialogAvailable();
  }
  std::shared_ptr<HostDialog> MessageDialog() override {
    return faults_.Strikes(ByName(names::dialogs))
               ? nullptr
               : std::make_shared<FailingDialog>(ForwardingObject::MessageDialog(), faults_);
  }

 private:
  HostFaults& faults_;
};

class FailingPanel final : public ForwardingPanel {
 public:
  FailingPanel(std::shared_ptr<StatusPanel> inner, HostFaults& faults)
      : ForwardingPanel{std::move(inner)}, faults_{faults} {}

  std::optional<std::string> Text() override {
    return faults_.Strikes(ByName(names::text)) ? std::nullopt : ForwardingPanel::Text();
  }
  Status SetText(const std::string& text) override {
    return faults_.Strikes(ByName(names::text, "=")) ? Status::Failure() : ForwardingPanel::SetText(text);
  }

 private:
  HostFaults& faults_;
};

class FailingWindow final : public ForwardingWindow {
 public:
  FailingWindow(std::shared_ptr<HostWindow> inner, HostFaults& faults)
      : ForwardingWindow{std::move(inner)}, faults_{faults} {}

  Status SetChanged(bool changed) override {
    return faults_.Strikes(ByName(names::changed)) ? Status::Failure()
                                                   : ForwardingWindow::SetChanged(changed);
  }
  std::shared_ptr<StatusPanel> FindStatusPanel() override {
    return faults_.Strikes(ByName(names::statusBar))
               ? nullptr
               : std::make_shared<FailingPanel>(ForwardingWindow::FindStatusPanel(), faults_);
  }
  Status TakeFocus() override {
    return faults_.Strikes(ByName(names::setFocus)) ? Status::Failure() : ForwardingWindow::TakeFocus();
  }

 private:
  HostFaults& faults_;
};

// ---- Objects used by name

bool IsOneOf(const wchar_t* name, std::initializer_list<const wchar_t*> names) {
  return std::ranges::any_of(names, [&](const auto* other) { return _wcsicmp(name, other) == 0; });
}

// Steps on the way to an object that the add-in counts as one call.
bool IsSecondStep(const wchar_t* name) {
  return IsOneOf(name, {names::panels, names::messageDialog});
}

bool HasSecondStep(const wchar_t* name) {
  return IsOneOf(name, {names::statusBar, names::dialogs});
}

bool IsObject(const wchar_t* name) {
  return HasSecondStep(name) || IsOneOf(name, {names::instrumentLink});
}

void PutText(VARIANT* place, const wchar_t* text) {
  V_VT(place) = VT_BSTR;
  V_BSTR(place) = SysAllocString(text);
}

// Something that is no object.
void PutNoObject(VARIANT* place, std::size_t variety) {
  VariantInit(place);
  switch (variety % 4) {
    case 0:
      return;
    case 1:
      V_VT(place) = VT_DISPATCH;
      V_DISPATCH(place) = nullptr;
      return;
    case 2:
      V_VT(place) = VT_I4;
      V_I4(place) = 5;
      return;
    default:
      PutText(place, L"an object");
  }
}

// Something that is neither a number nor a text.
void PutNoValue(VARIANT* place, std::size_t variety) {
  VariantInit(place);
  switch (variety % 3) {
    case 0:
      V_VT(place) = VT_NULL;
      return;
    case 1:
      V_VT(place) = VT_ERROR;
      V_ERROR(place) = DISP_E_PARAMNOTFOUND;
      return;
    default:
      V_VT(place) = VT_DISPATCH;
      V_DISPATCH(place) = Offer({}).Detach();
  }
}

HRESULT WINAPI FillIn(EXCEPINFO* exception) {
  exception->bstrDescription = SysAllocString(L"described late");
  exception->scode = E_ACCESSDENIED;
  return S_OK;
}

HRESULT RaiseException(EXCEPINFO* exception, bool isDeferred) {
  if (exception != nullptr) {
    *exception = {};
    exception->bstrSource = SysAllocString(L"the host");
    exception->wCode = 1004;
    if (isDeferred) {
      exception->pfnDeferredFillIn = FillIn;
    } else {
      exception->bstrDescription = SysAllocString(L"what went wrong");
      exception->bstrHelpFile = SysAllocString(L"host.hlp");
    }
  }
  return DISP_E_EXCEPTION;
}

// The whole object takes part in one call at a time, as its callers do.
class FailingByName final : public ComObject<FailingByName, IDispatch> {
 public:
  FailingByName(ComPtr<IDispatch> inner, HostFaults& faults, bool refuses)
      : inner_{std::move(inner)}, faults_{faults}, refuses_{refuses} {}

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale,
                                          DISPID* ids) override {
    if (refuses_) {
      return DISP_E_UNKNOWNNAME;
    }
    name_ = names[0];
    isStruck_ = !IsSecondStep(names[0]) && faults_.Strikes(ByName(names[0]));
    if (isStruck_ && faults_.Way() == FailureWay::NoSuchName) {
      isStruck_ = false;
      return faults_.Variety() % 2 == 0 ? E_NOTIMPL : DISP_E_UNKNOWNNAME;
    }
    return inner_->GetIDsOfNames(iid, names, count, locale, ids);
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD kinds, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
    if (refuses_) {
      return DISP_E_MEMBERNOTFOUND;
    }
    const bool isStruck = std::exchange(isStruck_, false);
    if (isStruck && (faults_.Way() != FailureWay::RefusedNextStep || !HasSecondStep(name_.c_str()))) {
      return Fail(result, exception);
    }
    const HRESULT invoked =
        inner_->Invoke(id, iid, locale, kinds, parameters, result, exception, badArgument);
    if (SUCCEEDED(invoked) && result != nullptr && V_VT(result) == VT_DISPATCH &&
        V_DISPATCH(result) != nullptr) {
      ComPtr<IDispatch> given;
      *given.Put() = V_DISPATCH(result);
      V_DISPATCH(result) = Make(std::move(given), faults_, isStruck).Detach();
    }
    return invoked;
  }

 private:
  HRESULT Fail(VARIANT* result, EXCEPINFO* exception) const {
    switch (faults_.Way()) {
      case FailureWay::Exception:
        return RaiseException(exception, false);
      case FailureWay::DeferredException:
        return RaiseException(exception, true);
      case FailureWay::WrongResult:
        if (result == nullptr) {
          return RPC_E_DISCONNECTED;
        }
        IsObject(name_.c_str()) ? PutNoObject(result, faults_.Variety())
                                : PutNoValue(result, faults_.Variety());
        return S_OK;
      case FailureWay::RefusedResult:
        if (result != nullptr) {
          PutText(result, L"True");
        }
        return RPC_E_SERVERFAULT;
      default:
        return E_FAIL;
    }
  }

  ComPtr<IDispatch> inner_;
  HostFaults& faults_;
  bool refuses_;
  bool isStruck_ = false;
  std::wstring name_;
};

// ---- The settings-file service

// An array that is no list of texts; null counts as an empty one.
SAFEARRAY* NoTexts(std::size_t variety) {
  std::array<SAFEARRAYBOUND, 2> bounds{{{.cElements = 2, .lLbound = 0}, {.cElements = 2, .lLbound = 0}}};
  switch (variety % 3) {
    case 0:
      return nullptr;
    case 1:
      return SafeArrayCreateVector(VT_I4, 0, 3);
    default:
      return SafeArrayCreate(VT_BSTR, 2, bounds.data());
  }
}

class FailingSettingsObject final : public ComObject<FailingSettingsObject, IIniFileService> {
 public:
  FailingSettingsObject(ComPtr<IIniFileService> inner, HostFaults& faults)
      : inner_{std::move(inner)}, faults_{faults} {}

  HRESULT STDMETHODCALLTYPE ReadValue(BSTR section, BSTR key, BSTR file, BSTR fallback,
                                      BSTR* value) override {
    if (!faults_.Strikes(Reading(Utf8FromBstr(section), Utf8FromBstr(key), Utf8FromBstr(file)))) {
      return inner_->ReadValue(section, key, file, fallback, value);
    }
    if (faults_.Way() == FailureWay::RefusedResult) {
      *value = SysAllocString(L"1");
    }
    return Refusal();
  }

  HRESULT STDMETHODCALLTYPE WriteValue(BSTR section, BSTR key, BSTR file, BSTR value) override {
    const bool fails = faults_.Strikes(
        Writing(Utf8FromBstr(section), Utf8FromBstr(key), Utf8FromBstr(file), Utf8FromBstr(value)));
    return fails ? Refusal() : inner_->WriteValue(section, key, file, value);
  }

  HRESULT STDMETHODCALLTYPE Reserved() override { return E_NOTIMPL; }

  HRESULT STDMETHODCALLTYPE SplitText(SAFEARRAY** pieces, BSTR delimiter, BSTR text, LONG* number) override {
    if (!faults_.Strikes(Splitting(Utf8FromBstr(delimiter), Utf8FromBstr(text)))) {
      return inner_->SplitText(pieces, delimiter, text, number);
    }
    if (faults_.Way() == FailureWay::WrongResult) {
      *pieces = NoTexts(faults_.Variety());
      return S_OK;
    }
    if (faults_.Way() == FailureWay::RefusedResult) {
      *pieces = SafeArrayCreateVector(VT_BSTR, 0, 3);
    }
    return Refusal();
  }

 private:
  HRESULT Refusal() const {
    constexpr std::array refusals{E_FAIL, DISP_E_EXCEPTION, RPC_E_DISCONNECTED};
    return refusals[faults_.Variety() % refusals.size()];
  }

  ComPtr<IIniFileService> inner_;
  HostFaults& faults_;
};

class FailingFactory final : public Counted<FailingFactory, IClassFactory> {
 public:
  FailingFactory(ComPtr<IClassFactory> inner, HostFaults& faults)
      : inner_{std::move(inner)}, faults_{faults} {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    *object = nullptr;
    if (faults_.Strikes(Creation())) {
      return faults_.Way() == FailureWay::WrongResult ? S_OK : E_NOINTERFACE;
    }
    ComPtr<IIniFileService> service;
    const HRESULT created = inner_->CreateInstance(outer, __uuidof(IIniFileService), service.PutVoid());
    return SUCCEEDED(created)
               ? FailingSettingsObject::Make(std::move(service), faults_)->QueryInterface(iid, object)
               : created;
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override { return inner_->LockServer(lock); }

 private:
  ComPtr<IClassFactory> inner_;
  HostFaults& faults_;
};

ComPtr<IClassFactory> FactoryOf(const OfferedSettings::Create& create) {
  const OfferedSettings offered{create};
  ComPtr<IClassFactory> factory;
  CoGetClassObject(__uuidof(::IniFileService), CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory,
                   factory.PutVoid());
  return factory;
}

}  // namespace

void HostFaults::Begin(std::size_t failing, FailureWay way) {
  isCounting_ = true;
  failing_ = failing;
  way_ = way;
  calls_.clear();
}

bool HostFaults::Strikes(HostCall call) {
  if (!isCounting_) {
    return false;
  }
  calls_.push_back(std::move(call));
  const bool isTheOne = calls_.size() == failing_;
  if (isTheOne && act_) {
    act_();
    return false;
  }
  return isTheOne;
}

std::unique_ptr<Environment> Failing(Environment& environment, HostFaults& faults) {
  return std::make_unique<FailingEnvironment>(environment, faults);
}

std::shared_ptr<HostObject> Failing(std::shared_ptr<HostObject> object, HostFaults& faults) {
  return std::make_shared<FailingObject>(std::move(object), faults);
}

std::shared_ptr<HostWindow> Failing(std::shared_ptr<HostWindow> window, HostFaults& faults) {
  return std::make_shared<FailingWindow>(std::move(window), faults);
}

ComPtr<IDispatch> Failing(const ComPtr<IDispatch>& object, HostFaults& faults) {
  return FailingByName::Make(object, faults, false).As<IDispatch>();
}

FailingSettings::FailingSettings(const OfferedSettings::Create& create, HostFaults& faults) {
  const auto factory = FailingFactory::Make(FactoryOf(create), faults);
  const HRESULT registered = CoRegisterClassObject(__uuidof(::IniFileService), factory.Get(),
                                                   CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration_);
  if (FAILED(registered)) {
    throw std::runtime_error{"the settings-file service could not be offered"};
  }
}

FailingSettings::~FailingSettings() {
  CoRevokeClassObject(registration_);
}

}  // namespace zolvane
