// The add-in's state of one thread of the host: its page, the page's windows and the records in force.
#pragma once

#include <memory>

#include "shell/add_in_module.h"
#include "shell/windows/host/windows_environment.h"
#include "shell/windows/page/page_window.h"
#include "win32/com_ptr.h"
#include "win32/module_instance.h"

namespace zolvane {

class ComForm;

// Lives as long as one of that thread's objects refers to it. So the host's objects are released while the
// host still runs, and neither when the thread ends nor when the module is unloaded.
class ThreadModule final : public PageOwner, public std::enable_shared_from_this<ThreadModule> {
 public:
  // The calling thread's, made if there is none.
  static std::shared_ptr<ThreadModule> OfThisThread();

  ~ThreadModule() override;
  ThreadModule(const ThreadModule&) = delete;
  ThreadModule& operator=(const ThreadModule&) = delete;

  AddInModule& AddIn() { return addIn_; }

  // The COM object of a page: the same one as long as anything holds it.
  ComPtr<ComForm> FormOf(const std::shared_ptr<frmAddIn>& page);

  // The object is gone.
  void Forget(const ComForm& form);

  // In a box over the window that the page is in.
  void TellNotStored() override;

 private:
  ThreadModule();

  const ModuleLock lock_;
  PageWindowFactory views_;
  WindowsEnvironment environment_;
  AddInModule addIn_;
  ComForm* form_ = nullptr;
};

}  // namespace zolvane
