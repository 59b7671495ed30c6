#include "shell/windows/host/com_host.h"

#include <array>
#include <string>
#include <type_traits>
#include <utility>

#include "shell/windows/host/late_bound_names.h"
#include "win32/guarded.h"
#include "win32/late_bound.h"
#include "win32/text.h"

namespace zolvane {
namespace {

// Out of memory counts as a failed call. A page that is taken down makes such calls, and
// nothing may be thrown there.
template <class Body>
auto OrFailure(Body body) noexcept {
  using Result = decltype(body());
  if constexpr (std::is_same_v<Result, Status>) {
    return GuardedOr(Status::Failure(E_OUTOFMEMORY), body);
  } else {
    return GuardedOr(Result{}, body);
  }
}

template <class Value>
Status Set(const LateBound& object, const wchar_t* name, const Value& value) {
  return OrFailure([&] { return object.Write(name, Variant{value}); });
}

template <class Value>
Status Call(const LateBound& object, const wchar_t* name, const Value& value) {
  return OrFailure([&] {
    const Variant argument{value};
    return object.Call(name, {&argument.Get(), 1});
  });
}

// A property, converted by a member of Variant.
template <auto Convert>
auto ReadAs(const LateBound& object, const wchar_t* name) {
  return OrFailure([&] {
    const auto value = object.Read(name);
    return value ? ((*value).*Convert)() : std::nullopt;
  });
}

// The found object behind the interface; null if there is none.
template <class Wrapper, class Interface, class Find>
std::shared_ptr<Interface> Wrapped(Find find) {
  return OrFailure([&]() -> std::shared_ptr<Interface> {
    LateBound object = find();
    return object ? std::make_shared<Wrapper>(std::move(object)) : nullptr;
  });
}

class ComInstrumentLink final : public InstrumentLink {
 public:
  explicit ComInstrumentLink(LateBound link) : link_{std::move(link)} {}

  std::optional<bool> Stop() override { return ReadAs<&Variant::ToBool>(link_, names::stop); }
  Status SetStop(bool stop) override { return Set(link_, names::stop, stop); }
  Status SetHold(bool hold) override { return Set(link_, names::hold, hold); }
  std::optional<bool> SendCommand(std::string& command, std::string& reply, std::int32_t number) override;

 private:
  LateBound link_;
};

VARIANT ReferenceTo(UniqueBstr& text) {
  VARIANT reference{};
  V_VT(&reference) = VT_BYREF | VT_BSTR;
  V_BSTRREF(&reference) = text.InOut();
  return reference;
}

VARIANT Number(std::int32_t number) {
  VARIANT value{};
  V_VT(&value) = VT_I4;
  V_I4(&value) = number;
  return value;
}

std::optional<bool> ComInstrumentLink::SendCommand(std::string& command, std::string& reply,
                                                   std::int32_t number) {
  return OrFailure([&] {
    auto commandText = Bstr(command);
    auto replyText = Bstr(reply);
    const std::array arguments{ReferenceTo(commandText), ReferenceTo(replyText), Number(number)};
    Variant answered;
    const Status status = link_.Call(names::sendCommand, arguments, &answered);
    command = Utf8FromBstr(commandText.Get());
    reply = Utf8FromBstr(replyText.Get());
    return status.Ok() ? answered.ToBool() : std::nullopt;
  });
}

class ComHostDialog final : public HostDialog {
 public:
  explicit ComHostDialog(LateBound dialogue) : dialogue_{std::move(dialogue)} {}

  Status SetStyle(std::int16_t style) override { return Set(dialogue_, names::style, style); }
  Status SetTitle(const std::string& title) override { return Set(dialogue_, names::title, title); }
  Status SetMessage(const std::string& message) override { return Set(dialogue_, names::message, message); }

  Status Show(bool show) override { return Call(dialogue_, names::show, show); }

  std::optional<std::int16_t> Result() override {
    return ReadAs<&Variant::ToInt16>(dialogue_, names::result);
  }

 private:
  LateBound dialogue_;
};

class ComHostObject final : public HostObject {
 public:
  explicit ComHostObject(LateBound host) : host_{std::move(host)} {}

  std::shared_ptr<InstrumentLink> Link() override {
    return Wrapped<ComInstrumentLink, InstrumentLink>(
        [this] { return host_.ReadObject(names::instrumentLink); });
  }

  Status WriteLogLine(const std::string& line) override { return Call(host_, names::writeLogLine, line); }

  std::optional<bool> HostDialogAvailable() override {
    return ReadAs<&Variant::ToBool>(host_, names::hostDialogAvailable);
  }

  std::shared_ptr<HostDialog> MessageDialog() override {
    return Wrapped<ComHostDialog, HostDialog>(
        [this] { return host_.ReadObject(names::dialogs).ReadObject(names::messageDialog); });
  }

 private:
  LateBound host_;
};

class ComStatusPanel final : public StatusPanel {
 public:
  explicit ComStatusPanel(LateBound panel) : panel_{std::move(panel)} {}

  std::optional<std::string> Text() override { return ReadAs<&Variant::ToText>(panel_, names::text); }
  Status SetText(const std::string& text) override { return Set(panel_, names::text, text); }

 private:
  LateBound panel_;
};

class ComHostWindow final : public HostWindow {
 public:
  explicit ComHostWindow(LateBound window) : window_{std::move(window)} {}

  Status SetChanged(bool changed) override { return Set(window_, names::changed, changed); }

  std::shared_ptr<StatusPanel> FindStatusPanel() override {
    return Wrapped<ComStatusPanel, StatusPanel>([this] {
      return window_.ReadObject(names::statusBar).ReadItem(names::panels, names::statusPanelKey);
    });
  }

  Status TakeFocus() override {
    return OrFailure([&] { return window_.Call(names::setFocus, {}); });
  }

 private:
  LateBound window_;
};

}  // namespace

std::shared_ptr<HostObject> WrapHostObject(IDispatch* object) {
  return object != nullptr ? std::make_shared<ComHostObject>(LateBound{ComPtr<IDispatch>{object}}) : nullptr;
}

std::shared_ptr<HostWindow> WrapHostWindow(IDispatch* window) {
  return window != nullptr ? std::make_shared<ComHostWindow>(LateBound{ComPtr<IDispatch>{window}}) : nullptr;
}

}  // namespace zolvane
