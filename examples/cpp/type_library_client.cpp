// FileEncoder from C++ through the interface the type library declares
// (early binding: calls go straight through the v-table, no IDispatch).
// Uuencodes a file, decodes the result again and checks that the copy has
// the same contents.
//   type_library_client <input file> <work folder>
// Build: include the header that widl (or MIDL) makes from the type library
// and link the identifiers file it makes beside it.
#include <windows.h>

#include <cstdio>
#include <string>

#include "file_encoder_h.h"

namespace {

// A VARIANT holding a string, cleared when it goes.
struct Text {
  VARIANT value;
  explicit Text(const std::wstring& text) {
    ::VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = ::SysAllocString(text.c_str());
  }
  ~Text() { ::VariantClear(&value); }
};

VARIANT Number(LONG number) {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_I4;
  value.lVal = number;
  return value;
}

// An optional argument left out, as the dispatch convention spells it.
VARIANT Missing() {
  VARIANT value;
  ::VariantInit(&value);
  value.vt = VT_ERROR;
  value.scode = DISP_E_PARAMNOTFOUND;
  return value;
}

int Report(IFileEncoder* control, const char* step, HRESULT hr, const VARIANT& error) {
  BSTR text = nullptr;
  control->get_LastErrorString(&text);
  std::printf("%s failed (0x%08lX, error %ld): %ls\n", step, static_cast<unsigned long>(hr),
              error.vt == VT_I4 ? error.lVal : 0L, text != nullptr ? text : L"");
  ::SysFreeString(text);
  return 1;
}

int Run(IFileEncoder* control, const std::wstring& input, const std::wstring& folder) {
  const Text source(input);
  const Text encoded(folder + L"\\sample.uue");
  const Text decoded(folder + L"\\sample.copy");
  VARIANT error = Number(0);

  HRESULT hr = control->EncodeFile(source.value, encoded.value, Number(fileEncodeUucode), &error);
  if (FAILED(hr) || error.lVal != 0) return Report(control, "EncodeFile", hr, error);
  hr = control->DecodeFile(encoded.value, decoded.value, Number(fileDecodeUucode), &error);
  if (FAILED(hr) || error.lVal != 0) return Report(control, "DecodeFile", hr, error);
  hr = control->CompareFile(source.value, decoded.value, Number(fileCompareContents), Missing(),
                            &error);
  if (FAILED(hr) || error.lVal != 0) return Report(control, "CompareFile", hr, error);

  BSTR version = nullptr;
  control->get_Version(&version);
  std::printf("FileEncoder %ls: uuencoded, decoded and compared: the copy is identical\n", version);
  ::SysFreeString(version);
  return 0;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc != 3) {
    std::printf("usage: type_library_client <input file> <work folder>\n");
    return 2;
  }
  if (FAILED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  IFileEncoder* control = nullptr;
  HRESULT hr = ::CoCreateInstance(CLSID_FileEncoder, nullptr, CLSCTX_INPROC_SERVER,
                                  IID_IFileEncoder, reinterpret_cast<void**>(&control));
  int status = 1;
  if (SUCCEEDED(hr)) {
    status = Run(control, argv[1], argv[2]);
    control->Release();
  } else {
    std::printf("the control is not registered (0x%08lX)\n", static_cast<unsigned long>(hr));
  }
  ::CoUninitialize();
  return status;
}
