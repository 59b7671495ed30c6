#include "shell/windows/thread_module.h"

#include <string>

#include "shell/windows/com_form.h"

namespace zolvane {
namespace {

// One pointer for each thread, given back when the module is unloaded. A thread_local object would keep the
// module loaded until its thread ends.
class ThreadSlot {
 public:
  ThreadSlot() : index_{TlsAlloc()} {}
  ~ThreadSlot() { TlsFree(index_); }
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  ThreadModule* Get() const { return static_cast<ThreadModule*>(TlsGetValue(index_)); }
  void Set(ThreadModule* module) const { TlsSetValue(index_, module); }

 private:
  DWORD index_;
};

const ThreadSlot threadSlot;

}  // namespace

std::shared_ptr<ThreadModule> ThreadModule::OfThisThread() {
  if (auto* const present = threadSlot.Get()) {
    return present->shared_from_this();
  }
  std::shared_ptr<ThreadModule> made{new ThreadModule};
  threadSlot.Set(made.get());
  return made;
}

ThreadModule::ThreadModule()
    : views_{[this] { return weak_from_this(); }},
      environment_{[this] { return views_.OwnerWindow(); }},
      addIn_{environment_, views_} {}

// The host may call while the page is taken down. It then gets a fresh module and not this one.
ThreadModule::~ThreadModule() {
  if (threadSlot.Get() == this) {
    threadSlot.Set(nullptr);
  }
}

ComPtr<ComForm> ThreadModule::FormOf(const std::shared_ptr<frmAddIn>& page) {
  if (form_ != nullptr && form_->IsOf(page)) {
    return ComPtr<ComForm>{form_};
  }
  auto form = ComForm::Make(shared_from_this(), page);
  form_ = form.Get();
  return form;
}

void ThreadModule::Forget(const ComForm& form) {
  if (form_ == &form) {
    form_ = nullptr;
  }
}

void ThreadModule::TellNotStored() {
  PassOver(environment_.ShowMessageBox(
      {.Text = "Your choice could not be stored in\r\n" + addIn_.Config().Settings.ConfigFilePath() +
               "\r\n\r\nThe page shows it, but it is not in the file. Please make sure that the file can be "
               "written, then choose again.",
       .Style = message_style::okOnly + message_style::stopIcon,
       .Title = std::string{pageCaption}}));
}

}  // namespace zolvane
