#include "shell/windows/class_factory.h"

#include "shell/windows/com_connect.h"
#include "shell/windows/thread_module.h"
#include "win32/counted.h"
#include "win32/guarded.h"
#include "win32/module_instance.h"

namespace zolvane {
namespace {

class ClassFactory final : public Counted<ClassFactory, IClassFactory> {
 public:
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 private:
  const ModuleLock lock_;
};

HRESULT ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  if (outer != nullptr) {
    return CLASS_E_NOAGGREGATION;
  }
  return Guarded([&] {
    const auto connect = ComConnect::Make(ThreadModule::OfThisThread());
    const HRESULT initialized = connect->Initialize();
    return SUCCEEDED(initialized) ? connect->QueryInterface(iid, object) : initialized;
  });
}

HRESULT ClassFactory::LockServer(BOOL lock) {
  if (lock != FALSE) {
    ModuleLock::Add();
  } else {
    ModuleLock::Remove();
  }
  return S_OK;
}

}  // namespace

ComPtr<IClassFactory> MakeClassFactory() {
  return ClassFactory::Make().As<IClassFactory>();
}

}  // namespace zolvane
