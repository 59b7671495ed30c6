#include "bench/windows/com/offered_host.h"

#include <string>
#include <utility>

#include "shell/windows/host/late_bound_names.h"
#include "win32/guarded.h"
#include "win32/text.h"

namespace zolvane {
namespace {

constexpr WORD get = DISPATCH_PROPERTYGET;
constexpr WORD put = DISPATCH_PROPERTYPUT;
constexpr WORD method = DISPATCH_METHOD;

// Sets a property to its new value, unless that is of another type.
template <class Value, class Set>
HRESULT Take(const std::optional<Value>& value, Set set) {
  return value ? ToHresult(set(*value)) : DISP_E_TYPEMISMATCH;
}

// ---- The instrument link ----

HRESULT Send(InstrumentLink& link, const MemberUse& use) {
  BSTR* const command = use.TextVariableAt(0);
  BSTR* const reply = use.TextVariableAt(1);
  const auto number = use.Int32At(2);
  if (use.Arguments.size() != 3 || command == nullptr || reply == nullptr || !number) {
    return DISP_E_TYPEMISMATCH;
  }
  std::string commandText = Utf8FromBstr(*command);
  std::string replyText = Utf8FromBstr(*reply);
  const auto answered = link.SendCommand(commandText, replyText, *number);
  UniqueBstr oldReply{std::exchange(*reply, Bstr(replyText).Detach())};
  return use.Give(answered);
}

ComPtr<IDispatch> OfferLink(const std::shared_ptr<InstrumentLink>& link) {
  if (!link) {
    return {};
  }
  return Offer({
      {names::stop, get | put,
       [link](const MemberUse& use) {
         return use.IsSet ? Take(use.BoolAt(0), [&](bool stop) { return link->SetStop(stop); })
                          : use.Give(link->Stop());
       }},
      {names::hold, put,
       [link](const MemberUse& use) {
         return Take(use.BoolAt(0), [&](bool hold) { return link->SetHold(hold); });
       }},
      {names::sendCommand, method, [link](const MemberUse& use) { return Send(*link, use); }},
  });
}

// ---- The message dialogue ----

ComPtr<IDispatch> OfferDialog(const std::shared_ptr<HostDialog>& dialog) {
  if (!dialog) {
    return {};
  }
  return Offer({
      {names::style, put,
       [dialog](const MemberUse& use) {
         return Take(use.Int16At(0), [&](std::int16_t style) { return dialog->SetStyle(style); });
       }},
      {names::title, put,
       [dialog](const MemberUse& use) {
         return Take(use.TextAt(0), [&](const std::string& title) { return dialog->SetTitle(title); });
       }},
      {names::message, put,
       [dialog](const MemberUse& use) {
         return Take(use.TextAt(0), [&](const std::string& text) { return dialog->SetMessage(text); });
       }},
      {names::show, method,
       [dialog](const MemberUse& use) {
         return Take(use.BoolAt(0), [&](bool show) { return dialog->Show(show); });
       }},
      {names::result, get, [dialog](const MemberUse& use) { return use.Give(dialog->Result()); }},
  });
}

ComPtr<IDispatch> OfferDialogs(const std::shared_ptr<HostObject>& object) {
  return Offer({{names::messageDialog, get,
                 [object](const MemberUse& use) { return use.Give(OfferDialog(object->MessageDialog())); }}});
}

// ---- The window ----

ComPtr<IDispatch> OfferPanel(const std::shared_ptr<StatusPanel>& panel) {
  if (!panel) {
    return {};
  }
  return Offer({{names::text, get | put, [panel](const MemberUse& use) {
                   return use.IsSet ? Take(use.TextAt(0),
                                           [&](const std::string& text) { return panel->SetText(text); })
                                    : use.Give(panel->Text());
                 }}});
}

HRESULT GivePanel(HostWindow& window, const MemberUse& use) {
  if (use.Arguments.size() != 1) {
    return DISP_E_BADPARAMCOUNT;
  }
  const auto key = use.TextAt(0);
  const bool isKnown = key && Wide(*key) == names::statusPanelKey;
  return isKnown ? use.Give(OfferPanel(window.FindStatusPanel())) : DISP_E_BADINDEX;
}

ComPtr<IDispatch> OfferStatusBar(const std::shared_ptr<HostWindow>& window, PanelsShape shape) {
  const auto givePanel = [window](const MemberUse& use) { return GivePanel(*window, use); };
  if (shape == PanelsShape::IndexedProperty) {
    return Offer({{names::panels, get, givePanel}});
  }
  return Offer({{names::panels, get, [givePanel](const MemberUse& use) {
                   return use.Arguments.empty() ? use.Give(Offer({{L"", get, givePanel}}))
                                                : DISP_E_BADPARAMCOUNT;
                 }}});
}

}  // namespace

ComPtr<IDispatch> OfferHostObject(std::shared_ptr<HostObject> object) {
  return Offer({
      {names::instrumentLink, get,
       [object](const MemberUse& use) { return use.Give(OfferLink(object->Link())); }},
      {names::writeLogLine, method,
       [object](const MemberUse& use) {
         return Take(use.TextAt(0), [&](const std::string& line) { return object->WriteLogLine(line); });
       }},
      {names::hostDialogAvailable, get,
       [object](const MemberUse& use) { return use.Give(object->HostDialogAvailable()); }},
      {names::dialogs, get, [object](const MemberUse& use) { return use.Give(OfferDialogs(object)); }},
  });
}

ComPtr<IDispatch> OfferHostWindow(std::shared_ptr<HostWindow> window, PanelsShape shape) {
  return Offer({
      {names::changed, put,
       [window](const MemberUse& use) {
         return Take(use.BoolAt(0), [&](bool changed) { return window->SetChanged(changed); });
       }},
      {names::statusBar, get,
       [window, shape](const MemberUse& use) { return use.Give(OfferStatusBar(window, shape)); }},
      {names::setFocus, method, [window](const MemberUse&) { return ToHresult(window->TakeFocus()); }},
  });
}

}  // namespace zolvane
