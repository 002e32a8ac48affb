// Client sites for the design-mode tests: the host's ambient properties
// answer UserMode through the site's IDispatch.
#pragma once

#include <windows.h>

#include <ocidl.h>
#include <olectl.h>

namespace fe::test {

class AmbientSite final : public IOleClientSite, public IDispatch {
 public:
  // userMode: what UserMode answers; withDispatch false: the site has no
  // ambient properties at all.
  AmbientSite(bool userMode, bool withDispatch) : user_mode_(userMode), dispatch_(withDispatch) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (iid == IID_IUnknown || iid == IID_IOleClientSite) {
      *object = static_cast<IOleClientSite*>(this);
    } else if (iid == IID_IDispatch && dispatch_) {
      *object = static_cast<IDispatch*>(this);
    } else {
      *object = nullptr;
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override { return --references_; }

  STDMETHODIMP SaveObject() override { return S_OK; }
  STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** moniker) override {
    *moniker = nullptr;
    return E_NOTIMPL;
  }
  STDMETHODIMP GetContainer(IOleContainer** container) override {
    *container = nullptr;
    return E_NOINTERFACE;
  }
  STDMETHODIMP ShowObject() override { return S_OK; }
  STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
  STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*,
                      UINT*) override {
    ++ambient_reads_;
    if (id != DISPID_AMBIENT_USERMODE || result == nullptr) return DISP_E_MEMBERNOTFOUND;
    result->vt = VT_BOOL;
    result->boolVal = user_mode_ ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }

  int ambient_reads() const { return ambient_reads_; }

 private:
  ULONG references_ = 1;
  bool user_mode_;
  bool dispatch_;
  int ambient_reads_ = 0;
};

}  // namespace fe::test
