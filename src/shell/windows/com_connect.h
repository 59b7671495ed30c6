// The class Connect as a COM object: the host's interface IAddIn, and the class's own default interface
// _Connect, which adds no members to those of IDispatch.
#pragma once

#include <add_in.h>
#include <hestrion_cmds.h>

#include <array>
#include <memory>

#include "shell/connect.h"
#include "shell/windows/thread_module.h"
#include "win32/com_object.h"

namespace zolvane {

class ComConnect final : public ComObject<ComConnect, IAddIn, _Connect> {
 public:
  explicit ComConnect(std::shared_ptr<ThreadModule> module);

  // Loads the page. Called once, before the object is handed out; if it fails, the object is not.
  HRESULT Initialize() { return ToHresult(connect_.Class_Initialize()); }

  HRESULT STDMETHODCALLTYPE get_Form(IAddInForm** form) override;
  HRESULT STDMETHODCALLTYPE get_Caption(BSTR* caption) override;

  static const std::array<NamedMember<ComConnect>, 2>& Members();

 private:
  const std::shared_ptr<ThreadModule> module_;
  Connect connect_;
};

}  // namespace zolvane
