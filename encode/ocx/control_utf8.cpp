// CFileEncoder: UTF-8 bytes and strings. These methods report only through
// their call result: CodePage, LastError and the error path stay untouched.
#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"

namespace fe::ocx {

STDMETHODIMP CFileEncoder::IsValidUtf8(VARIANT InputBytes, VARIANT* Result) {
  VARIANT* result = ClearedResult(Result);
  if (result == nullptr) return E_POINTER;
  if (IsMissing(InputBytes) || !IsByteArray(InputBytes)) return E_INVALIDARG;
  SAFEARRAY* array = ByteArrayOf(InputBytes);
  result->vt = VT_BOOL;
  result->boolVal = VARIANT_FALSE;
  if (array == nullptr) return E_INVALIDARG;
  if (::SafeArrayGetDim(array) != 1) return kInvalidCall;
  const ULONG count = array->rgsabound[0].cElements;
  if (array->pvData == nullptr || count == 0) return S_OK;
  if (Utf8Validate(static_cast<const uint8_t*>(array->pvData), static_cast<int32_t>(count))) {
    result->boolVal = VARIANT_TRUE;
  }
  return S_OK;
}

STDMETHODIMP CFileEncoder::StrToUtf8(VARIANT InputText, VARIANT* Result) {
  VARIANT* result = ClearedResult(Result);
  if (result == nullptr) return E_POINTER;
  BSTR text = nullptr;
  if (!StringOf(InputText, &text)) return E_INVALIDARG;
  const int length = static_cast<int>(::SysStringLen(text));
  int size = 0;
  if (length > 0) {
    // An unpaired surrogate has no UTF-8 form and fails the call.
    size = ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, length, nullptr, 0, nullptr,
                                 nullptr);
    if (size <= 0) return HRESULT_FROM_WIN32(::GetLastError());
  }
  SAFEARRAY* array = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
  if (array == nullptr) return static_cast<HRESULT>(0x8007000E);
  if (size > 0 &&
      ::WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text, length,
                            static_cast<char*>(array->pvData), size, nullptr, nullptr) != size) {
    ::SafeArrayDestroy(array);
    return E_FAIL;
  }
  result->vt = VT_ARRAY | VT_UI1;
  result->parray = array;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Utf8ToStr(VARIANT InputBytes, VARIANT* Result) {
  VARIANT* result = ClearedResult(Result);
  if (result == nullptr) return E_POINTER;
  std::string bytes;
  BSTR text = nullptr;
  if (IsByteArray(InputBytes)) {
    SAFEARRAY* array = ByteArrayOf(InputBytes);
    if (array == nullptr || ::SafeArrayGetDim(array) != 1 || ::SafeArrayGetElemsize(array) != 1) {
      return E_INVALIDARG;
    }
    const LONG count = static_cast<LONG>(array->rgsabound[0].cElements);
    if (count > 0 && array->pvData != nullptr) {
      bytes.assign(static_cast<const char*>(array->pvData), static_cast<size_t>(count));
    }
  } else if (StringOf(InputBytes, &text)) {
    // Scripts may hold bytes as a string of byte-valued characters.
    const UINT length = ::SysStringLen(text);
    bytes.resize(length);
    for (UINT i = 0; i < length; ++i) {
      if (text[i] > 0xFF) return kTypeMismatch;
      bytes[i] = static_cast<char>(text[i]);
    }
  } else {
    return kTypeMismatch;
  }
  std::wstring wide;
  if (!bytes.empty()) {
    const int length = static_cast<int>(bytes.size());
    const int size =
        ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), length, nullptr, 0);
    if (size <= 0) return HRESULT_FROM_WIN32(::GetLastError());
    wide.resize(static_cast<size_t>(size));
    if (::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), length, wide.data(),
                              size) != size) {
      return E_FAIL;
    }
  }
  result->vt = VT_BSTR;
  result->bstrVal = ::SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (result->bstrVal == nullptr) {
    result->vt = VT_EMPTY;
    return static_cast<HRESULT>(0x8007000E);
  }
  return S_OK;
}

}  // namespace fe::ocx
