#include "shell/windows/class_factory.h"

#include <atomic>

#include "shell/windows/com_connect.h"
#include "shell/windows/guarded.h"
#include "shell/windows/module_instance.h"
#include "shell/windows/thread_module.h"

namespace zolvane {
namespace {

class ClassFactory final : public IClassFactory {
 public:
  ClassFactory() = default;
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override;
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override;

 private:
  ~ClassFactory() = default;

  const ModuleLock lock_;
  std::atomic<ULONG> references_{0};
};

HRESULT ClassFactory::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  if (iid != IID_IUnknown && iid != IID_IClassFactory) {
    return E_NOINTERFACE;
  }
  *object = static_cast<IClassFactory*>(this);
  AddRef();
  return S_OK;
}

ULONG ClassFactory::Release() {
  const ULONG left = --references_;
  if (left == 0) {
    delete this;
  }
  return left;
}

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
  return ComPtr<IClassFactory>{new ClassFactory};
}

}  // namespace zolvane
