#include <windows.h>

#include "platform/platform.h"

namespace fe::platform {

int FormatMessageText(uint32_t code, char* buffer, int size) {
  // The message table is linked into whichever module holds the engine: the
  // control DLL, or a program built on the engine.
  HMODULE module = nullptr;
  ::GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCSTR>(&FormatMessageText), &module);
  const DWORD flags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS;
  const DWORD length =
      ::FormatMessageA(flags, module, code, MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer,
                       static_cast<DWORD>(size), nullptr);
  if (length == 0 || static_cast<int>(length) >= size) return 0;
  return static_cast<int>(length);
}

}  // namespace fe::platform
