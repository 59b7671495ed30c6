// The entry points of the component.
#include <add_in.h>

#include "shell/windows/class_factory.h"
#include "shell/windows/page/window_class.h"
#include "shell/windows/registration.h"
#include "win32/guarded.h"
#include "win32/module_instance.h"

using namespace zolvane;

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
  if (object == nullptr) {
    return E_POINTER;
  }
  *object = nullptr;
  if (classId != __uuidof(::Connect)) {
    return CLASS_E_CLASSNOTAVAILABLE;
  }
  return Guarded([&] { return MakeClassFactory()->QueryInterface(iid, object); });
}

STDAPI DllCanUnloadNow() {
  return ModuleLock::IsHeld() ? S_FALSE : S_OK;
}

STDAPI DllRegisterServer() {
  return Guarded(RegisterComponent);
}

STDAPI DllUnregisterServer() {
  return Guarded(UnregisterComponent);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
    UnregisterWindowClasses();
  }
  return TRUE;
}
