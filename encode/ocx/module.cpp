#include "module.h"

#include <oleauto.h>

namespace fe::ocx {

namespace {
HINSTANCE module_instance = nullptr;
LONG module_locks = 0;
ITypeLib* type_library = nullptr;
}  // namespace

HINSTANCE ModuleInstance() {
  return module_instance;
}

std::wstring ModulePath() {
  wchar_t path[MAX_PATH + 1] = {};
  const DWORD length = ::GetModuleFileNameW(module_instance, path, MAX_PATH);
  return std::wstring(path, length);
}

void LockModule() {
  ::InterlockedIncrement(&module_locks);
}
void UnlockModule() {
  ::InterlockedDecrement(&module_locks);
}
bool ModuleInUse() {
  return module_locks != 0;
}

HRESULT GetTypeInfo(REFGUID guid, ITypeInfo** info) {
  if (type_library == nullptr) {
    // The library is resource 1 of the module itself; loading it does not
    // need (or touch) the registry.
    ITypeLib* loaded = nullptr;
    const HRESULT hr = ::LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &loaded);
    if (FAILED(hr)) return hr;
    if (::InterlockedCompareExchangePointer(reinterpret_cast<void**>(&type_library), loaded,
                                            nullptr) != nullptr) {
      loaded->Release();
    }
  }
  return type_library->GetTypeInfoOfGuid(guid, info);
}

}  // namespace fe::ocx

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) {
    fe::ocx::module_instance = instance;
    ::DisableThreadLibraryCalls(instance);
  }
  return TRUE;
}
