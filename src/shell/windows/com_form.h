// The page as a COM object: the host's interface IAddInForm over the page's members. A member fails only if
// memory runs out or the host gives no place for a result, whatever the host's own objects answer.
#pragma once

#include <hestrion_cmds.h>

#include <array>
#include <memory>

#include "shell/frm_add_in.h"
#include "win32/com_object.h"

namespace zolvane {

class ThreadModule;

class ComForm final : public ComObject<ComForm, IAddInForm> {
 public:
  ComForm(std::shared_ptr<ThreadModule> module, std::shared_ptr<frmAddIn> page);
  ~ComForm();

  bool IsOf(const std::shared_ptr<frmAddIn>& page) const { return page_ == page; }

  HRESULT STDMETHODCALLTYPE SaveChanges() override;
  HRESULT STDMETHODCALLTYPE LoadDefaults() override;
  HRESULT STDMETHODCALLTYPE putref_ObjectParent(IDispatch* objectParent) override;
  HRESULT STDMETHODCALLTYPE putref_FormParent(IDispatch* formParent) override;
  HRESULT STDMETHODCALLTYPE get_Frame(IDispatch** frame) override;
  HRESULT STDMETHODCALLTYPE get_hwnd(LONG* hwnd) override;
  HRESULT STDMETHODCALLTYPE get_HelpContextID(LONG* helpContextID) override;
  HRESULT STDMETHODCALLTYPE get_ShowStatusBar(VARIANT_BOOL* showStatusBar) override;
  HRESULT STDMETHODCALLTYPE get_ShowButtons(VARIANT_BOOL* showButtons) override;

  static const std::array<NamedMember<ComForm>, 9>& Members();

 private:
  const std::shared_ptr<ThreadModule> module_;
  const std::shared_ptr<frmAddIn> page_;
};

}  // namespace zolvane
