// Module-wide state of the control DLL: its instance handle, the count of
// live objects and locks that DllCanUnloadNow reads, and the type library
// loaded from its own resources.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>

namespace fe::ocx {

HINSTANCE ModuleInstance();
// The module's full path (at most MAX_PATH characters).
std::wstring ModulePath();

void LockModule();
void UnlockModule();
bool ModuleInUse();

// Type information for an interface or class of the type library.
HRESULT GetTypeInfo(REFGUID guid, ITypeInfo** info);

}  // namespace fe::ocx
