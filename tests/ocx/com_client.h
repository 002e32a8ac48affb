// A small late-binding client for the control tests: creates the control by
// its ProgID and calls it through IDispatch, as scripts do.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <string>
#include <vector>

namespace fe::test {

// A VARIANT that clears itself.
class Variant {
 public:
  Variant() { ::VariantInit(&value_); }
  explicit Variant(LONG number) : Variant() {
    value_.vt = VT_I4;
    value_.lVal = number;
  }
  explicit Variant(const wchar_t* text) : Variant() {
    value_.vt = VT_BSTR;
    value_.bstrVal = ::SysAllocString(text);
  }
  ~Variant() { ::VariantClear(&value_); }
  Variant(const Variant&) = delete;
  Variant& operator=(const Variant&) = delete;
  VARIANT* get() { return &value_; }
  VARIANT& operator*() { return value_; }
  VARIANT* operator->() { return &value_; }

  // A missing optional argument, as script hosts pass it.
  static void Missing(VARIANT* v) {
    ::VariantInit(v);
    v->vt = VT_ERROR;
    v->scode = DISP_E_PARAMNOTFOUND;
  }

 private:
  VARIANT value_;
};

// One-dimensional or two-dimensional byte arrays.
inline SAFEARRAY* ByteArray(const std::vector<BYTE>& bytes) {
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
  if (!bytes.empty()) memcpy(array->pvData, bytes.data(), bytes.size());
  return array;
}

inline SAFEARRAY* TwoDimensionalByteArray() {
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
  return ::SafeArrayCreate(VT_UI1, 2, bounds);
}

inline std::vector<BYTE> BytesOf(SAFEARRAY* array) {
  if (array == nullptr) return {};
  const BYTE* data = static_cast<const BYTE*>(array->pvData);
  return std::vector<BYTE>(data, data + array->rgsabound[0].cElements);
}

class Dispatch {
 public:
  explicit Dispatch(IDispatch* object) : object_(object) {}
  ~Dispatch() {
    if (object_ != nullptr) object_->Release();
  }
  Dispatch(const Dispatch&) = delete;
  Dispatch& operator=(const Dispatch&) = delete;

  static HRESULT Create(const wchar_t* progId, IDispatch** object) {
    CLSID clsid;
    const HRESULT hr = ::CLSIDFromProgID(progId, &clsid);
    if (FAILED(hr)) return hr;
    return ::CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(object));
  }

  IDispatch* get() const { return object_; }

  DISPID IdOf(const wchar_t* name) const {
    DISPID id = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    object_->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
    return id;
  }

  // Invokes `name`; arguments in their declared order. On failure the
  // exception's scode is returned when there is one.
  HRESULT Call(const wchar_t* name, WORD flags, std::vector<VARIANT*> arguments,
               VARIANT* result = nullptr, EXCEPINFO* exception = nullptr) {
    std::vector<VARIANT> reversed;
    for (auto it = arguments.rbegin(); it != arguments.rend(); ++it)
      reversed.push_back(**it);
    DISPPARAMS params = {reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    DISPID named = DISPID_PROPERTYPUT;
    if (flags == DISPATCH_PROPERTYPUT) {
      params.rgdispidNamedArgs = &named;
      params.cNamedArgs = 1;
    }
    EXCEPINFO local = {};
    EXCEPINFO* info = exception != nullptr ? exception : &local;
    UINT argumentError = 0;
    HRESULT hr = object_->Invoke(IdOf(name), IID_NULL, LOCALE_USER_DEFAULT, flags, &params, result,
                                 info, &argumentError);
    if (hr == DISP_E_EXCEPTION) {
      hr = info->scode;
      if (info == &local) {
        ::SysFreeString(local.bstrSource);
        ::SysFreeString(local.bstrDescription);
        ::SysFreeString(local.bstrHelpFile);
      }
    }
    return hr;
  }

  HRESULT Get(const wchar_t* name, VARIANT* value) {
    return Call(name, DISPATCH_PROPERTYGET, {}, value);
  }
  HRESULT Put(const wchar_t* name, VARIANT* value) {
    return Call(name, DISPATCH_PROPERTYPUT, {value});
  }
  HRESULT Method(const wchar_t* name, std::vector<VARIANT*> arguments) {
    return Call(name, DISPATCH_METHOD, std::move(arguments));
  }

 private:
  IDispatch* object_;
};

// A by-reference variant argument pointing at `target`, as VBScript passes
// its variables.
inline VARIANT ByReference(VARIANT* target) {
  VARIANT v;
  ::VariantInit(&v);
  v.vt = VT_BYREF | VT_VARIANT;
  v.pvarVal = target;
  return v;
}

}  // namespace fe::test
