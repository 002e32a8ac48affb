// The class object of FileEncoder and the module's entry points for COM.
#include <windows.h>

#include <unknwn.h>

#include <new>

#include "control.h"
#include "module.h"

namespace fe::ocx {

namespace {

class ClassFactory final : public IClassFactory {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    if (iid == IID_IUnknown || iid == IID_IClassFactory) {
      *object = static_cast<IClassFactory*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  // The one class object lives as long as the module.
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }

  STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    auto* control = new (std::nothrow) CFileEncoder();
    if (control == nullptr) return E_OUTOFMEMORY;
    control->AddRef();
    const HRESULT hr = control->QueryInterface(iid, object);
    control->Release();
    return hr;
  }

  STDMETHODIMP LockServer(BOOL lock) override {
    if (lock) {
      LockModule();
    } else {
      UnlockModule();
    }
    return S_OK;
  }
};

ClassFactory class_factory;

}  // namespace

}  // namespace fe::ocx

extern "C" HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  *object = nullptr;
  if (clsid != CLSID_FileEncoder) return CLASS_E_CLASSNOTAVAILABLE;
  return fe::ocx::class_factory.QueryInterface(iid, object);
}

extern "C" HRESULT STDAPICALLTYPE DllCanUnloadNow() {
  return fe::ocx::ModuleInUse() ? S_FALSE : S_OK;
}
