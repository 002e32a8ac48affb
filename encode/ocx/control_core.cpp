// CFileEncoder: lifetime, interfaces, dispatch and the error routine.

#include <vector>

#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"
#include "module.h"

namespace fe::ocx {

CFileEncoder::CFileEncoder() : events_(this) {
  LockModule();
  LPOLESTR progId = nullptr;
  if (SUCCEEDED(::ProgIDFromCLSID(CLSID_FileEncoder, &progId))) {
    error_source_ = progId;
    ::CoTaskMemFree(progId);
  }
}

CFileEncoder::~CFileEncoder() {
  if (client_site_ != nullptr) client_site_->Release();
  if (view_sink_ != nullptr) view_sink_->Release();
  UnlockModule();
}

STDMETHODIMP CFileEncoder::QueryInterface(REFIID iid, void** object) {
  if (object == nullptr) return E_POINTER;
  void* found = nullptr;
  if (iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_IFileEncoder) {
    found = static_cast<IFileEncoder*>(this);
  } else if (iid == IID_IConnectionPointContainer) {
    found = static_cast<IConnectionPointContainer*>(this);
  } else if (iid == IID_IProvideClassInfo || iid == IID_IProvideClassInfo2) {
    found = static_cast<IProvideClassInfo2*>(this);
  } else if (iid == IID_ISupportErrorInfo) {
    found = static_cast<ISupportErrorInfo*>(this);
  } else if (iid == IID_IOleObject) {
    found = static_cast<IOleObject*>(this);
  } else if (iid == IID_IOleControl) {
    found = static_cast<IOleControl*>(this);
  } else if (iid == IID_IOleWindow || iid == IID_IOleInPlaceObject) {
    found = static_cast<IOleInPlaceObject*>(this);
  } else if (iid == IID_IViewObject || iid == IID_IViewObject2) {
    found = static_cast<IViewObject2*>(this);
  } else if (iid == IID_IPersist || iid == IID_IPersistStreamInit) {
    found = static_cast<IPersistStreamInit*>(this);
  } else if (iid == IID_IPersistPropertyBag) {
    found = static_cast<IPersistPropertyBag*>(this);
  }
  *object = found;
  if (found == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

STDMETHODIMP_(ULONG) CFileEncoder::AddRef() {
  return ::InterlockedIncrement(&references_);
}

STDMETHODIMP_(ULONG) CFileEncoder::Release() {
  const ULONG left = ::InterlockedDecrement(&references_);
  if (left == 0) delete this;
  return left;
}

STDMETHODIMP CFileEncoder::GetTypeInfoCount(UINT* count) {
  if (count == nullptr) return E_POINTER;
  *count = 1;
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetTypeInfo(UINT index, LCID, ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  return fe::ocx::GetTypeInfo(IID_IFileEncoder, info);
}

STDMETHODIMP CFileEncoder::GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID,
                                         DISPID* ids) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  ITypeInfo* info = nullptr;
  HRESULT hr = fe::ocx::GetTypeInfo(IID_IFileEncoder, &info);
  if (FAILED(hr)) return hr;
  hr = info->GetIDsOfNames(names, count, ids);
  info->Release();
  return hr;
}

STDMETHODIMP CFileEncoder::Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* params,
                                  VARIANT* result, EXCEPINFO* exception, UINT* argumentError) {
  if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
  ITypeInfo* info = nullptr;
  HRESULT hr = fe::ocx::GetTypeInfo(IID_IFileEncoder, &info);
  if (FAILED(hr)) return hr;
  // Error information left from an earlier call must not be taken for this
  // call's: failures that register none (argument errors) report bare.
  ::SetErrorInfo(0, nullptr);
  hr = info->Invoke(static_cast<IFileEncoder*>(this), id, flags, params, result, exception,
                    argumentError);
  info->Release();
  return hr;
}

bool CFileEncoder::InUserMode() const {
  if (client_site_ == nullptr) return true;
  IDispatch* ambient = nullptr;
  if (FAILED(client_site_->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&ambient)))) {
    return false;
  }
  VARIANT value;
  ::VariantInit(&value);
  DISPPARAMS none = {nullptr, nullptr, 0, 0};
  const HRESULT hr = ambient->Invoke(DISPID_AMBIENT_USERMODE, IID_NULL, LOCALE_USER_DEFAULT,
                                     DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr);
  ambient->Release();
  const bool userMode = SUCCEEDED(hr) && value.vt == VT_BOOL && value.boolVal != VARIANT_FALSE;
  ::VariantClear(&value);
  return userMode;
}

HRESULT CFileEncoder::ReportError(DWORD code) {
  if (code == 0) code = ::GetLastError();
  if (code == 0) return S_OK;
  last_error_ = code;
  char text[128];
  FormatErrorMessage(code, text, sizeof text);
  const std::wstring description = ToWide(text, strlen(text), CP_UTF8);
  ICreateErrorInfo* create = nullptr;
  if (SUCCEEDED(::CreateErrorInfo(&create))) {
    create->SetGUID(IID_IFileEncoder);
    create->SetSource(const_cast<LPOLESTR>(error_source_.c_str()));
    create->SetDescription(const_cast<LPOLESTR>(description.c_str()));
    IErrorInfo* info = nullptr;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(&info)))) {
      ::SetErrorInfo(0, info);
      info->Release();
    }
    create->Release();
  }
  if (!throw_error_) return S_OK;
  // The control's own codes fail the call in the control facility, which
  // script hosts raise as error number N. A platform error number is
  // returned as it is, a success code, so it never raises: callers of
  // earlier versions rely on both.
  if ((code & 0x1FFF0000) == 0x00040000) return static_cast<HRESULT>(0x800A0000 | (code & 0xFFFF));
  return static_cast<HRESULT>(code);
}

STDMETHODIMP CFileEncoder::InterfaceSupportsErrorInfo(REFIID iid) {
  return iid == IID_IFileEncoder ? S_OK : S_FALSE;
}

STDMETHODIMP CFileEncoder::GetClassInfo(ITypeInfo** info) {
  if (info == nullptr) return E_POINTER;
  *info = nullptr;
  return fe::ocx::GetTypeInfo(CLSID_FileEncoder, info);
}

STDMETHODIMP CFileEncoder::GetGUID(DWORD kind, GUID* guid) {
  if (guid == nullptr) return E_POINTER;
  if (kind != GUIDKIND_DEFAULT_SOURCE_DISP_IID) {
    *guid = GUID_NULL;
    return E_INVALIDARG;
  }
  *guid = DIID__IFileEncoderEvents;
  return S_OK;
}

STDMETHODIMP CFileEncoder::EnumConnectionPoints(IEnumConnectionPoints** points) {
  return CreateConnectionPointEnumerator(&events_, points);
}

STDMETHODIMP CFileEncoder::FindConnectionPoint(REFIID iid, IConnectionPoint** point) {
  if (point == nullptr) return E_POINTER;
  *point = nullptr;
  if (iid != DIID__IFileEncoderEvents) return CONNECT_E_NOCONNECTION;
  *point = &events_;
  events_.AddRef();
  return S_OK;
}

}  // namespace fe::ocx
