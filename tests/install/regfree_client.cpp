// Creates the control with nothing in the registry: from the activation
// context of the manifest that ships beside the control
//   regfree_client context <folder of FileEncoder.ocx>
// or from the process's own manifest, which names the control's assembly as
// a dependency (regfree_client.exe.manifest beside the program)
//   regfree_client application
// It prints what it did and exits 0 when the control answered correctly.
#include <windows.h>

#include <cstdio>
#include <string>

#include "com_client.h"

using fe::test::Dispatch;
using fe::test::Variant;

namespace {

bool RegisteredInRegistry() {
  HKEY key = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, L"Orvane.FileEncoder", 0, KEY_READ, &key) ==
      ERROR_SUCCESS) {
    ::RegCloseKey(key);
    return true;
  }
  return false;
}

// Quoted-printable of "=" through the text properties: "=3D".
int UseControl() {
  IDispatch* raw = nullptr;
  const HRESULT hr = Dispatch::Create(L"Orvane.FileEncoder", &raw);
  if (FAILED(hr)) {
    std::printf("create failed: 0x%08lX\n", static_cast<unsigned long>(hr));
    return 1;
  }
  Dispatch control(raw);
  Variant encoding(2L);
  Variant decoded(L"=");
  Variant encoded;
  if (FAILED(control.Put(L"Encoding", encoding.get())) ||
      FAILED(control.Put(L"DecodedText", decoded.get())) ||
      FAILED(control.Get(L"EncodedText", encoded.get())) || encoded->vt != VT_BSTR) {
    std::printf("the control did not answer\n");
    return 1;
  }
  std::printf("created; EncodedText = %ls\n", encoded->bstrVal);
  return std::wstring(encoded->bstrVal) == L"=3D" ? 0 : 1;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  if (argc < 2) return 2;
  if (RegisteredInRegistry()) {
    std::printf("the control is registered: nothing to prove\n");
    return 1;
  }
  ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int status = 1;
  if (std::wstring(argv[1]) == L"context" && argc == 3) {
    const std::wstring folder = argv[2];
    const std::wstring manifest = folder + L"\\Orvane.FileEncoder.manifest";
    ACTCTXW request = {sizeof request};
    request.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    request.lpSource = manifest.c_str();
    request.lpAssemblyDirectory = folder.c_str();
    HANDLE context = ::CreateActCtxW(&request);
    if (context == INVALID_HANDLE_VALUE) {
      std::printf("CreateActCtx failed: %lu\n", ::GetLastError());
    } else {
      ULONG_PTR cookie = 0;
      if (::ActivateActCtx(context, &cookie)) {
        status = UseControl();
        ::DeactivateActCtx(0, cookie);
      }
      ::ReleaseActCtx(context);
    }
  } else if (std::wstring(argv[1]) == L"application") {
    status = UseControl();
  }
  ::CoUninitialize();
  return status;
}
