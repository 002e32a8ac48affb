// CFileEncoder: the OLE control interfaces a host needs to insert the
// control. It is invisible at run time, has no window and no verbs of its
// own, and persists only its extent and the stock Enabled property.

#include "control.h"

namespace fe::ocx {

namespace {

constexpr DWORD kMiscStatus = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE |
                              OLEMISC_INSIDEOUT | OLEMISC_ACTIVATEWHENVISIBLE |
                              OLEMISC_INVISIBLEATRUNTIME | OLEMISC_SETCLIENTSITEFIRST;

// What the stream holds, in this order.
struct PersistedState {
  SIZEL extent;
  VARIANT_BOOL enabled;
};

HRESULT ReadBagLong(IPropertyBag* bag, IErrorLog* log, const wchar_t* name, LONG* value) {
  VARIANT v;
  ::VariantInit(&v);
  v.vt = VT_I4;
  const HRESULT hr = bag->Read(name, &v, log);
  if (SUCCEEDED(hr) && SUCCEEDED(::VariantChangeType(&v, &v, 0, VT_I4))) *value = v.lVal;
  ::VariantClear(&v);
  return hr;
}

HRESULT WriteBag(IPropertyBag* bag, const wchar_t* name, VARTYPE type, LONG value) {
  VARIANT v;
  ::VariantInit(&v);
  v.vt = type;
  if (type == VT_BOOL) {
    v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  } else {
    v.lVal = value;
  }
  return bag->Write(name, &v);
}

}  // namespace

// ---- IOleObject ----

STDMETHODIMP CFileEncoder::SetClientSite(IOleClientSite* site) {
  if (site != nullptr) site->AddRef();
  if (client_site_ != nullptr) client_site_->Release();
  client_site_ = site;
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetClientSite(IOleClientSite** site) {
  if (site == nullptr) return E_POINTER;
  *site = client_site_;
  if (client_site_ != nullptr) client_site_->AddRef();
  return S_OK;
}

STDMETHODIMP CFileEncoder::SetHostNames(LPCOLESTR, LPCOLESTR) {
  return S_OK;
}
STDMETHODIMP CFileEncoder::Close(DWORD) {
  return S_OK;
}
STDMETHODIMP CFileEncoder::SetMoniker(DWORD, IMoniker*) {
  return E_NOTIMPL;
}

STDMETHODIMP CFileEncoder::GetMoniker(DWORD, DWORD, IMoniker** moniker) {
  if (moniker != nullptr) *moniker = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP CFileEncoder::InitFromData(IDataObject*, BOOL, DWORD) {
  return E_NOTIMPL;
}

STDMETHODIMP CFileEncoder::GetClipboardData(DWORD, IDataObject** data) {
  if (data != nullptr) *data = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP CFileEncoder::DoVerb(LONG verb, LPMSG, IOleClientSite*, LONG, HWND, LPCRECT) {
  // Nothing to show or activate: the standard verbs succeed, others are
  // not the control's.
  return verb <= 0 ? S_OK : OLEOBJ_S_INVALIDVERB;
}

STDMETHODIMP CFileEncoder::EnumVerbs(IEnumOLEVERB** verbs) {
  return ::OleRegEnumVerbs(CLSID_FileEncoder, verbs);
}

STDMETHODIMP CFileEncoder::Update() {
  return S_OK;
}
STDMETHODIMP CFileEncoder::IsUpToDate() {
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetUserClassID(CLSID* clsid) {
  return GetClassID(clsid);
}

STDMETHODIMP CFileEncoder::GetUserType(DWORD form, LPOLESTR* type) {
  return ::OleRegGetUserType(CLSID_FileEncoder, form, type);
}

STDMETHODIMP CFileEncoder::SetExtent(DWORD aspect, SIZEL* size) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (size == nullptr) return E_POINTER;
  extent_ = *size;
  dirty_ = true;
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetExtent(DWORD aspect, SIZEL* size) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (size == nullptr) return E_POINTER;
  *size = extent_;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Advise(IAdviseSink*, DWORD* cookie) {
  if (cookie != nullptr) *cookie = 0;
  return OLE_E_ADVISENOTSUPPORTED;
}

STDMETHODIMP CFileEncoder::Unadvise(DWORD) {
  return OLE_E_NOCONNECTION;
}

STDMETHODIMP CFileEncoder::EnumAdvise(IEnumSTATDATA** advises) {
  if (advises != nullptr) *advises = nullptr;
  return OLE_E_ADVISENOTSUPPORTED;
}

STDMETHODIMP CFileEncoder::GetMiscStatus(DWORD, DWORD* status) {
  if (status == nullptr) return E_POINTER;
  *status = kMiscStatus;
  return S_OK;
}

STDMETHODIMP CFileEncoder::SetColorScheme(LOGPALETTE*) {
  return E_NOTIMPL;
}

// ---- IOleControl ----

STDMETHODIMP CFileEncoder::GetControlInfo(CONTROLINFO* info) {
  if (info == nullptr) return E_POINTER;
  info->cb = sizeof(CONTROLINFO);
  info->hAccel = nullptr;
  info->cAccel = 0;
  info->dwFlags = 0;
  return S_OK;
}

STDMETHODIMP CFileEncoder::OnMnemonic(MSG*) {
  return S_OK;
}
STDMETHODIMP CFileEncoder::OnAmbientPropertyChange(DISPID) {
  return S_OK;
}
STDMETHODIMP CFileEncoder::FreezeEvents(BOOL) {
  return S_OK;
}

// ---- IOleWindow, IOleInPlaceObject: windowless ----

STDMETHODIMP CFileEncoder::GetWindow(HWND* window) {
  if (window == nullptr) return E_POINTER;
  *window = nullptr;
  return E_FAIL;
}

STDMETHODIMP CFileEncoder::ContextSensitiveHelp(BOOL) {
  return E_NOTIMPL;
}
STDMETHODIMP CFileEncoder::InPlaceDeactivate() {
  return S_OK;
}
STDMETHODIMP CFileEncoder::UIDeactivate() {
  return S_OK;
}
STDMETHODIMP CFileEncoder::SetObjectRects(LPCRECT, LPCRECT) {
  return S_OK;
}
STDMETHODIMP CFileEncoder::ReactivateAndUndo() {
  return E_NOTIMPL;
}

// ---- IViewObject, IViewObject2: a framed box in design mode ----

STDMETHODIMP CFileEncoder::Draw(DWORD aspect, LONG, void*, DVTARGETDEVICE*, HDC, HDC draw,
                                LPCRECTL bounds, LPCRECTL, BOOL(STDMETHODCALLTYPE*)(ULONG_PTR),
                                ULONG_PTR) {
  if (aspect != DVASPECT_CONTENT) return DV_E_DVASPECT;
  if (draw == nullptr || bounds == nullptr) return E_INVALIDARG;
  RECT frame = {bounds->left, bounds->top, bounds->right, bounds->bottom};
  ::FillRect(draw, &frame, static_cast<HBRUSH>(::GetStockObject(LTGRAY_BRUSH)));
  ::FrameRect(draw, &frame, static_cast<HBRUSH>(::GetStockObject(BLACK_BRUSH)));
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetColorSet(DWORD, LONG, void*, DVTARGETDEVICE*, HDC,
                                       LOGPALETTE** colors) {
  if (colors != nullptr) *colors = nullptr;
  return S_FALSE;
}

STDMETHODIMP CFileEncoder::Freeze(DWORD, LONG, void*, DWORD*) {
  return E_NOTIMPL;
}
STDMETHODIMP CFileEncoder::Unfreeze(DWORD) {
  return E_NOTIMPL;
}

STDMETHODIMP CFileEncoder::SetAdvise(DWORD, DWORD, IAdviseSink* sink) {
  if (sink != nullptr) sink->AddRef();
  if (view_sink_ != nullptr) view_sink_->Release();
  view_sink_ = sink;
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetAdvise(DWORD* aspects, DWORD* flags, IAdviseSink** sink) {
  if (aspects != nullptr) *aspects = DVASPECT_CONTENT;
  if (flags != nullptr) *flags = 0;
  if (sink != nullptr) {
    *sink = view_sink_;
    if (view_sink_ != nullptr) view_sink_->AddRef();
  }
  return S_OK;
}

STDMETHODIMP CFileEncoder::GetExtent(DWORD aspect, LONG, DVTARGETDEVICE*, LPSIZEL size) {
  return GetExtent(aspect, size);
}

// ---- IPersist, IPersistStreamInit, IPersistPropertyBag ----

STDMETHODIMP CFileEncoder::GetClassID(CLSID* clsid) {
  if (clsid == nullptr) return E_POINTER;
  *clsid = CLSID_FileEncoder;
  return S_OK;
}

STDMETHODIMP CFileEncoder::IsDirty() {
  return dirty_ ? S_OK : S_FALSE;
}

STDMETHODIMP CFileEncoder::Load(LPSTREAM stream) {
  if (stream == nullptr) return E_POINTER;
  PersistedState state{};
  ULONG read = 0;
  const HRESULT hr = stream->Read(&state, sizeof state, &read);
  if (FAILED(hr)) return hr;
  if (read != sizeof state) return STG_E_READFAULT;
  extent_ = state.extent;
  enabled_ = state.enabled != VARIANT_FALSE;
  dirty_ = false;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Save(LPSTREAM stream, BOOL clearDirty) {
  if (stream == nullptr) return E_POINTER;
  const PersistedState state{extent_, enabled_ ? VARIANT_TRUE : VARIANT_FALSE};
  const HRESULT hr = stream->Write(&state, sizeof state, nullptr);
  if (SUCCEEDED(hr) && clearDirty) dirty_ = false;
  return hr;
}

STDMETHODIMP CFileEncoder::GetSizeMax(ULARGE_INTEGER* size) {
  if (size == nullptr) return E_POINTER;
  size->QuadPart = sizeof(PersistedState);
  return S_OK;
}

STDMETHODIMP CFileEncoder::InitNew() {
  dirty_ = false;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Load(IPropertyBag* bag, IErrorLog* log) {
  if (bag == nullptr) return E_POINTER;
  LONG enabled = enabled_ ? 1 : 0;
  ReadBagLong(bag, log, L"_ExtentX", &extent_.cx);
  ReadBagLong(bag, log, L"_ExtentY", &extent_.cy);
  ReadBagLong(bag, log, L"Enabled", &enabled);
  enabled_ = enabled != 0;
  dirty_ = false;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Save(IPropertyBag* bag, BOOL clearDirty, BOOL) {
  if (bag == nullptr) return E_POINTER;
  HRESULT hr = WriteBag(bag, L"_ExtentX", VT_I4, extent_.cx);
  if (SUCCEEDED(hr)) hr = WriteBag(bag, L"_ExtentY", VT_I4, extent_.cy);
  if (SUCCEEDED(hr)) hr = WriteBag(bag, L"Enabled", VT_BOOL, enabled_ ? 1 : 0);
  if (SUCCEEDED(hr) && clearDirty) dirty_ = false;
  return hr;
}

}  // namespace fe::ocx
