// CFileEncoder: tokens and UUIDs as strings.
#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"

namespace fe::ocx {

HRESULT CFileEncoder::StoreIdentifier(VARIANT* Result, bool made, const char* text) {
  if (!made) {
    SetOutText(Result, L"");
    return ReportError(::GetLastError());
  }
  return SetOutText(Result, ToWide(text, strlen(text), CP_UTF8));
}

STDMETHODIMP CFileEncoder::CreateToken(VARIANT BitLength, VARIANT EncodingType, VARIANT* Result) {
  if (OutArgument(Result) == nullptr) return E_POINTER;
  // 0 for either lets the token operation choose its own default.
  DWORD bits = 0, encoding = 0;
  HRESULT hr = GetOptionalInteger(&BitLength, 0, &bits);
  if (FAILED(hr)) return hr;
  hr = GetOptionalInteger(&EncodingType, 0, &encoding);
  if (FAILED(hr)) return hr;
  char token[1025];
  const bool made =
      CreateTokenText(static_cast<int32_t>(bits), static_cast<int32_t>(encoding), token) > 0;
  return StoreIdentifier(Result, made, token);
}

STDMETHODIMP CFileEncoder::CreateUuid7(VARIANT* Result) {
  if (OutArgument(Result) == nullptr) return E_POINTER;
  EncoderUuid record;
  char text[37] = "";
  const bool made = CreateUuid7Record(&record) && FormatUuid(&record, text) == 36;
  return StoreIdentifier(Result, made, text);
}

STDMETHODIMP CFileEncoder::CreateUuid8(VARIANT CustomValue, VARIANT* Result) {
  if (OutArgument(Result) == nullptr) return E_POINTER;
  // A signed 32-bit value, so -1 is 0xFFFFFFFF; a missing or empty value
  // counts as 0: no custom first field.
  LONG custom = 0;
  const VARIANT& value = Dereference(CustomValue);
  const bool empty = value.vt == VT_BSTR && (value.bstrVal == nullptr || *value.bstrVal == L'\0');
  if (!IsMissing(value) && !empty) {
    VARIANT converted;
    ::VariantInit(&converted);
    const HRESULT hr = ::VariantChangeType(&converted, const_cast<VARIANT*>(&value), 0, VT_I4);
    if (FAILED(hr)) return hr;
    custom = converted.lVal;
  }
  EncoderUuid record;
  char text[37] = "";
  const bool made = CreateUuid8Record(&record, custom) && FormatUuid(&record, text) == 36;
  return StoreIdentifier(Result, made, text);
}

}  // namespace fe::ocx
