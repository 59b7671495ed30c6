// A host's objects and its settings-file service, as small as a session needs them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bench/windows/com/offered_object.h"
#include "host/ini_file_service.h"
#include "shell/windows/host/late_bound_names.h"

namespace zolvane::small_host {

inline constexpr WORD read = DISPATCH_PROPERTYGET;
inline constexpr WORD set = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

inline HRESULT Accept(const MemberUse&) {
  return S_OK;
}

inline OfferedMember Object(const wchar_t* name, const ComPtr<IDispatch>& object) {
  return {name, read, [object](const MemberUse& use) { return use.Give(object); }};
}

// A settings-file service with one record in every table.
class OneRecordEach final : public IniFileService {
 public:
  std::optional<std::string> ReadValue(std::string_view, std::string_view key, std::string_view,
                                       std::string_view fallback) override {
    if (key == "Installed") {
      return "1";
    }
    return key == "Item1" ? "\"A name that fits in no small string\",1,2,3" : std::string{fallback};
  }
  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view) override {
    return Status::Success();
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    std::vector<std::string> pieces;
    while (!text.empty()) {
      const auto end = text.find(delimiter);
      pieces.emplace_back(text.substr(0, end));
      text.remove_prefix(end == std::string_view::npos ? text.size() : end + delimiter.size());
    }
    return pieces;
  }
};

// The host's objects that a session needs.
struct HostObjects {
  ComPtr<IDispatch> Link =
      Offer({{names::hold, set, Accept},
             {names::stop, read, [](const MemberUse& use) { return use.Give(std::optional{false}); }},
             {names::sendCommand, DISPATCH_METHOD,
              [](const MemberUse& use) { return use.Give(std::optional{true}); }}});
  ComPtr<IDispatch> Host = Offer({Object(names::instrumentLink, Link)});
  ComPtr<IDispatch> Panel = Offer({{names::text, set | read, Accept}});
  ComPtr<IDispatch> Panels = Offer({Object(L"", Panel)});
  ComPtr<IDispatch> StatusBar = Offer({Object(names::panels, Panels)});
  ComPtr<IDispatch> Window = Offer({Object(names::statusBar, StatusBar), {names::changed, set, Accept}});
};

}  // namespace zolvane::small_host
