// The About box: dialog 201 of the module, modal, owned by the active window.
#include <windows.h>

#include "control.h"
#include "module.h"
#include "resource_ids.h"

namespace fe::ocx {

namespace {

// CAboutFileEncoder handles only the command message: OK or Cancel ends the
// dialog; everything else gets the default handling.
class CAboutFileEncoder {
 public:
  static INT_PTR CALLBACK DialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    if (message == WM_COMMAND && HIWORD(wParam) == 0 &&
        (LOWORD(wParam) == IDOK || LOWORD(wParam) == IDCANCEL)) {
      ::EndDialog(dialog, 0);
      return TRUE;
    }
    return FALSE;
  }
};

}  // namespace

STDMETHODIMP CFileEncoder::About() {
  if (::DialogBoxParamW(ModuleInstance(), MAKEINTRESOURCEW(IDD_ABOUTBOX), ::GetActiveWindow(),
                        CAboutFileEncoder::DialogProc, 0) == -1) {
    ::SetLastError(ERROR_OUTOFMEMORY);
  }
  return S_OK;
}

}  // namespace fe::ocx
