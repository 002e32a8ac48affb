// CFileEncoder: the text filters and the text-file conversion.
#include <string>

#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"

namespace fe::ocx {

namespace {

// A filter's input: UTF-8 bytes from a byte array, else UTF-16 text (other
// types converted to a string first).
struct FilterInput {
  bool bytes = false;
  std::string utf8;
  std::wstring text;
};

HRESULT GetFilterInput(const VARIANT& value, FilterInput* input) {
  if (IsByteArray(value)) {
    SAFEARRAY* array = ByteArrayOf(value);
    if (array == nullptr || ::SafeArrayGetDim(array) != 1) return E_INVALIDARG;
    input->bytes = true;
    const ULONG count = array->rgsabound[0].cElements;
    if (array->pvData != nullptr && count > 0)
      input->utf8.assign(static_cast<const char*>(array->pvData), count);
    return S_OK;
  }
  BSTR text = nullptr;
  if (StringOf(value, &text)) {
    input->text.assign(text ? text : L"", ::SysStringLen(text));
    return S_OK;
  }
  if (IsMissing(value)) return E_INVALIDARG;
  VARIANT converted;
  ::VariantInit(&converted);
  const HRESULT hr =
      ::VariantChangeType(&converted, const_cast<VARIANT*>(&Dereference(value)), 0, VT_BSTR);
  if (FAILED(hr)) return hr;
  input->text.assign(converted.bstrVal ? converted.bstrVal : L"",
                     ::SysStringLen(converted.bstrVal));
  ::VariantClear(&converted);
  return S_OK;
}

const char16_t* Units(const std::wstring& text) {
  return reinterpret_cast<const char16_t*>(text.c_str());
}

// UTF-8 filter output as a string; invalid UTF-8 gives an empty string.
std::wstring FromUtf8(const std::string& utf8) {
  if (utf8.empty()) return {};
  const int length = static_cast<int>(utf8.size());
  const int size =
      ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), length, nullptr, 0);
  if (size <= 0) return {};
  std::wstring text(static_cast<size_t>(size), L'\0');
  ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), length, text.data(), size);
  return text;
}

// Runs a filter's size query and then the filter into a buffer one larger;
// an empty or failed result is an empty text.
template <typename Unit, typename Filter>
std::basic_string<Unit> RunFilter(Filter filter) {
  const int32_t size = filter(nullptr, 0);
  if (size <= 0) return {};
  std::basic_string<Unit> result(static_cast<size_t>(size) + 1, Unit{});
  const int32_t written = filter(result.data(), size + 1);
  result.resize(written > 0 ? static_cast<size_t>(written) : 0);
  return result;
}

using TextFilter = int32_t (*)(const char*, int32_t, char*, int32_t);
using WideFilter = int32_t (*)(const char16_t*, char16_t*, int32_t);

HRESULT FilterMethod(const VARIANT& InputText, VARIANT* Result, TextFilter textFilter,
                     WideFilter wideFilter) {
  if (OutArgument(Result) == nullptr) return E_POINTER;
  FilterInput input;
  const HRESULT hr = GetFilterInput(InputText, &input);
  if (FAILED(hr)) return hr;
  std::wstring filtered;
  if (input.bytes) {
    if (!input.utf8.empty()) {
      const auto length = static_cast<int32_t>(input.utf8.size());
      filtered = FromUtf8(RunFilter<char>([&](char* out, int32_t capacity) {
        return textFilter(input.utf8.data(), length, out, capacity);
      }));
    }
  } else if (!input.text.empty()) {
    const std::u16string result = RunFilter<char16_t>([&](char16_t* out, int32_t capacity) {
      return wideFilter(Units(input.text), out, capacity);
    });
    filtered.assign(reinterpret_cast<const wchar_t*>(result.data()), result.size());
  }
  return SetOutText(Result, filtered);
}

bool IsInstalled(DWORD codePage) {
  // UTF-16 is converted by the engine itself.
  return codePage == 1200 || codePage == 1201 || ::IsValidCodePage(codePage);
}

}  // namespace

STDMETHODIMP CFileEncoder::FilterHtml(VARIANT InputText, VARIANT* Result) {
  return FilterMethod(InputText, Result, FilterHtmlText, FilterHtmlWide);
}

STDMETHODIMP CFileEncoder::FilterMarkdown(VARIANT InputText, VARIANT* Result) {
  return FilterMethod(InputText, Result, FilterMarkdownText, FilterMarkdownWide);
}

STDMETHODIMP CFileEncoder::FilterUnicode(VARIANT InputText, VARIANT* Result) {
  return FilterMethod(InputText, Result, FilterUnicodeText, FilterUnicodeWide);
}

STDMETHODIMP CFileEncoder::IsConfusable(VARIANT InputText, VARIANT* Result) {
  VARIANT* result = ClearedResult(Result);
  if (result == nullptr) return E_POINTER;
  FilterInput input;
  const HRESULT hr = GetFilterInput(InputText, &input);
  if (FAILED(hr)) return hr;
  const bool confusable =
      input.bytes
          ? IsConfusableText(input.utf8.data(), static_cast<int32_t>(input.utf8.size())) != 0
          : IsConfusableWide(Units(input.text)) != 0;
  result->vt = VT_BOOL;
  result->boolVal = confusable ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

// Reached only through the function table. The fourth argument is the
// destination code page (65001 when omitted), the fifth conversion options
// (__encoderConvertConstants, none when omitted); a source code page of 0
// or 3 asks for detection.
STDMETHODIMP CFileEncoder::ConvertFile(VARIANT InputFile, VARIANT SourceCodePage,
                                       VARIANT OutputFile, VARIANT DestinationCodePage,
                                       VARIANT Options, VARIANT* Error) {
  SetOutInteger(Error, 0);
  std::string input, output;
  bool inputGiven = false, outputGiven = false;
  HRESULT hr = GetUtf8Argument(InputFile, &input, &inputGiven);
  if (FAILED(hr)) return hr;
  DWORD source = 0;
  hr = GetOptionalInteger(&SourceCodePage, 0, &source);
  if (FAILED(hr)) return hr;
  hr = GetUtf8Argument(OutputFile, &output, &outputGiven);
  if (FAILED(hr)) return hr;
  DWORD destination = 0;
  hr = GetOptionalInteger(&DestinationCodePage, CP_UTF8, &destination);
  if (FAILED(hr)) return hr;
  DWORD options = 0;
  hr = GetOptionalInteger(&Options, 0, &options);
  if (FAILED(hr)) return hr;
  const bool detect = source == CP_ACP || source == CP_THREAD_ACP;
  if (!detect && !IsInstalled(source)) return kInvalidCodePage;
  if (destination == CP_ACP) destination = ::GetACP();
  if (!IsInstalled(destination)) return kInvalidCodePage;
  if (ConvertTextFile(inputGiven ? input.c_str() : nullptr, source,
                      outputGiven ? output.c_str() : nullptr, destination,
                      options | (detect ? fileConvertUnicode : 0))) {
    return S_OK;
  }
  const DWORD error = ::GetLastError();
  SetOutInteger(Error, static_cast<LONG>(error & 0xFFFF));
  return ReportError(error);
}

}  // namespace fe::ocx
