#include "marshalling.h"

#include <oleauto.h>

#include <algorithm>
#include <cstring>

namespace fe::ocx {

namespace {

class ScopedVariant {
 public:
  ScopedVariant() { ::VariantInit(&value_); }
  ~ScopedVariant() { ::VariantClear(&value_); }
  ScopedVariant(const ScopedVariant&) = delete;
  ScopedVariant& operator=(const ScopedVariant&) = delete;
  VARIANT* get() { return &value_; }

 private:
  VARIANT value_;
};

// Adds 0x10000 to a negative 16-bit value so that flags such as 0x8000
// passed by hosts with 16-bit integers arrive intact.
DWORD FoldSixteenBits(LONG value) {
  return static_cast<DWORD>(value >= -32768 && value < 0 ? value + 0x10000 : value);
}

}  // namespace

bool IsMissing(const VARIANT& value) {
  const VARIANT& v = Dereference(value);
  return v.vt == VT_EMPTY || v.vt == VT_ERROR;
}

const VARIANT& Dereference(const VARIANT& value) {
  const VARIANT* v = &value;
  while (v->vt == (VT_BYREF | VT_VARIANT) && v->pvarVal != nullptr)
    v = v->pvarVal;
  return *v;
}

VARIANT* OutArgument(VARIANT* argument) {
  if (argument == nullptr) return nullptr;
  while (argument->vt == (VT_BYREF | VT_VARIANT) && argument->pvarVal != nullptr) {
    argument = argument->pvarVal;
  }
  return argument->vt == VT_ERROR ? nullptr : argument;
}

void SetOutInteger(VARIANT* argument, LONG value) {
  VARIANT* target = OutArgument(argument);
  if (target == nullptr) return;
  if ((target->vt & VT_BYREF) && (target->vt & VT_TYPEMASK) == VT_I4 && !(target->vt & VT_ARRAY)) {
    *target->plVal = value;
    return;
  }
  ::VariantClear(target);
  target->vt = VT_I4;
  target->lVal = value;
}

std::string ToMultiByte(const wchar_t* text, size_t length, UINT codePage) {
  if (length == 0) return {};
  const int n = ::WideCharToMultiByte(codePage, 0, text, static_cast<int>(length), nullptr, 0,
                                      nullptr, nullptr);
  std::string result(static_cast<size_t>(n > 0 ? n : 0), '\0');
  if (n > 0) {
    ::WideCharToMultiByte(codePage, 0, text, static_cast<int>(length), result.data(), n, nullptr,
                          nullptr);
  }
  return result;
}

std::wstring ToWide(const char* text, size_t length, UINT codePage) {
  if (length == 0) return {};
  const int n = ::MultiByteToWideChar(codePage, 0, text, static_cast<int>(length), nullptr, 0);
  std::wstring result(static_cast<size_t>(n > 0 ? n : 0), L'\0');
  if (n > 0) {
    ::MultiByteToWideChar(codePage, 0, text, static_cast<int>(length), result.data(), n);
  }
  return result;
}

// The byte array an argument holds: directly, by reference, or inside a
// by-reference variant; null for anything else.
SAFEARRAY* ByteArrayOf(const VARIANT& value) {
  if (value.vt == (VT_ARRAY | VT_UI1)) return value.parray;
  if (value.vt == (VT_BYREF | VT_ARRAY | VT_UI1)) return value.pparray ? *value.pparray : nullptr;
  if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal != nullptr) {
    const VARIANT& inner = *value.pvarVal;
    if (inner.vt == (VT_ARRAY | VT_UI1)) return inner.parray;
    if (inner.vt == (VT_BYREF | VT_ARRAY | VT_UI1)) return inner.pparray ? *inner.pparray : nullptr;
  }
  return nullptr;
}

bool IsByteArray(const VARIANT& value) {
  const VARIANT& v = Dereference(value);
  return (v.vt & ~VT_BYREF) == (VT_ARRAY | VT_UI1);
}

// The string an argument holds, directly or by reference; false otherwise.
bool StringOf(const VARIANT& value, BSTR* text) {
  const VARIANT& v = Dereference(value);
  if (v.vt == VT_BSTR) {
    *text = v.bstrVal;
    return true;
  }
  if (v.vt == (VT_BYREF | VT_BSTR) && v.pbstrVal != nullptr) {
    *text = *v.pbstrVal;
    return true;
  }
  return false;
}

// The result variant, cleared; null when the caller gave none.
VARIANT* ClearedResult(VARIANT* Result) {
  VARIANT* target = OutArgument(Result);
  if (target != nullptr) ::VariantClear(target);
  return target;
}

HRESULT GetUtf8Argument(const VARIANT& value, std::string* text, bool* present) {
  *present = false;
  text->clear();
  if (IsMissing(value)) return S_OK;
  ScopedVariant converted;
  // Numbers become their decimal text.
  const HRESULT hr = ::VariantChangeType(converted.get(), const_cast<VARIANT*>(&value), 0, VT_BSTR);
  if (FAILED(hr)) return hr;
  const BSTR string = converted.get()->bstrVal;
  if (string == nullptr) return S_OK;
  *text = ToMultiByte(string, wcslen(string), CP_UTF8);
  *present = true;
  return S_OK;
}

HRESULT GetOptionalInteger(const VARIANT* value, DWORD fallback, DWORD* result) {
  if (value == nullptr || result == nullptr) return E_INVALIDARG;
  if (IsMissing(*value)) {
    *result = fallback;
    return S_OK;
  }
  // 16- and 32-bit integers are folded, whether given directly or by
  // reference (a script variable, a ByRef Integer); other kinds are only
  // converted.
  if (value->vt == VT_I2) {
    *result = FoldSixteenBits(value->iVal);
    return S_OK;
  }
  if (value->vt == VT_I4) {
    *result = FoldSixteenBits(value->lVal);
    return S_OK;
  }
  ScopedVariant converted;
  const HRESULT hr = ::VariantChangeType(converted.get(), const_cast<VARIANT*>(value), 0, VT_I4);
  if (FAILED(hr)) return hr;
  const LONG number = converted.get()->lVal;
  *result = (value->vt & VT_BYREF) ? FoldSixteenBits(number) : static_cast<DWORD>(number);
  return S_OK;
}

HRESULT GetDataInput(const VARIANT& argument, UINT codePage, DataInput* input) {
  if (argument.vt == VT_ERROR) return E_INVALIDARG;
  const VARIANT* value = &argument;
  if ((argument.vt & VT_TYPEMASK) == VT_VARIANT) {
    if (!(argument.vt & VT_BYREF) || (argument.vt & VT_ARRAY) || argument.pvarVal == nullptr) {
      return E_INVALIDARG;
    }
    value = argument.pvarVal;
  }
  const bool byReference = (value->vt & VT_BYREF) != 0;
  if (value->vt & VT_ARRAY) {
    SAFEARRAY* array = byReference ? *value->pparray : value->parray;
    if (array != nullptr && ::SafeArrayGetDim(array) != 1) return kInvalidCall;
    if ((value->vt & VT_TYPEMASK) != VT_UI1) return E_INVALIDARG;
    if (array == nullptr) return S_FALSE;
    // An array of no elements is data of length 0, not a missing array.
    static const BYTE kNoBytes[1] = {};
    input->length = array->rgsabound[0].cElements;
    input->data = input->length > 0 ? static_cast<const BYTE*>(array->pvData) : kNoBytes;
    return S_OK;
  }
  if ((value->vt & VT_TYPEMASK) != VT_BSTR) return E_INVALIDARG;
  const BSTR string = byReference ? *value->pbstrVal : value->bstrVal;
  const size_t length = string == nullptr ? 0 : ::SysStringLen(string);
  // The input ends at the first zero byte of the converted text.
  input->text = ToMultiByte(string, length, codePage);
  input->text.resize(strlen(input->text.c_str()));
  if (input->text.empty()) return S_FALSE;
  input->data = reinterpret_cast<const BYTE*>(input->text.data());
  input->length = static_cast<DWORD>(input->text.size());
  return S_OK;
}

HRESULT DataOutput::Prepare(VARIANT* argument) {
  target_ = OutArgument(argument);
  if (target_ == nullptr) return E_INVALIDARG;
  const VARTYPE type = target_->vt & VT_TYPEMASK;
  if (type == VT_EMPTY || type == VT_BSTR) {
    return (target_->vt & VT_ARRAY) ? E_INVALIDARG : S_OK;
  }
  if (type != VT_UI1 || !(target_->vt & VT_ARRAY)) return E_INVALIDARG;
  bytes_ = true;
  SAFEARRAY* array = *Array();
  if (array != nullptr) {
    if (::SafeArrayGetDim(array) != 1) return E_INVALIDARG;
    has_array_ = true;
    capacity_ = array->rgsabound[0].cElements;
  }
  return S_OK;
}

SAFEARRAY** DataOutput::Array() const {
  return (target_->vt & VT_BYREF) ? target_->pparray : &target_->parray;
}

HRESULT DataOutput::StoreBytes(const BYTE* data, DWORD length) {
  SAFEARRAY** array = Array();
  if (array == nullptr) return E_POINTER;
  if (*array == nullptr) {
    *array = ::SafeArrayCreateVector(VT_UI1, 0, length);
    if (*array == nullptr) return kOutOfMemoryError;
  }
  // A caller's array keeps its size; only the first `length` bytes change,
  // and never more than it holds.
  const DWORD fits = std::min<DWORD>(length, (*array)->rgsabound[0].cElements);
  if (fits > 0) std::memcpy((*array)->pvData, data, fits);
  return S_OK;
}

HRESULT DataOutput::StoreText(const std::wstring& text) {
  return SetOutText(target_, text);
}

HRESULT SetOutText(VARIANT* argument, const std::wstring& text) {
  VARIANT* target = OutArgument(argument);
  if (target == nullptr) return S_OK;
  const BSTR string = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  if (string == nullptr) return E_OUTOFMEMORY;
  if (target->vt == (VT_BYREF | VT_BSTR)) {
    ::SysFreeString(*target->pbstrVal);
    *target->pbstrVal = string;
  } else {
    ::VariantClear(target);
    target->vt = VT_BSTR;
    target->bstrVal = string;
  }
  return S_OK;
}

}  // namespace fe::ocx
