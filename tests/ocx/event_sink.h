// A minimal event sink for the control's events: IDispatch with the
// _IFileEncoderEvents identity; subclasses say what Invoke does.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include "file_encoder_h.h"

namespace fe::test {

class EventSink : public IDispatch {
 public:
  virtual ~EventSink() = default;
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    if (iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID__IFileEncoderEvents) {
      *object = static_cast<IDispatch*>(this);
      AddRef();
      return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
  }
  // The sinks live on the test's stack: the count is only watched.
  STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
  STDMETHODIMP_(ULONG) Release() override { return --references; }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

  ULONG references = 1;
};

}  // namespace fe::test
