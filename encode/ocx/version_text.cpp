#include "version_text.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

#include "marshalling.h"

namespace fe::ocx {

std::wstring FileVersionText(const std::wstring& path) {
  DWORD handle = 0;
  const DWORD size = ::GetFileVersionInfoSizeW(path.c_str(), &handle);
  if (size == 0) return {};
  std::string data(size, '\0');
  VS_FIXEDFILEINFO* info = nullptr;
  UINT length = 0;
  if (!::GetFileVersionInfoW(path.c_str(), 0, size, data.data()) ||
      !::VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&info), &length) ||
      info == nullptr) {
    return {};
  }
  char text[64];
  std::snprintf(text, sizeof text, "%hu.%hu.%hu.%hu", HIWORD(info->dwFileVersionMS),
                LOWORD(info->dwFileVersionMS), HIWORD(info->dwFileVersionLS),
                LOWORD(info->dwFileVersionLS));
  return ToWide(text, std::strlen(text), CP_THREAD_ACP);
}

}  // namespace fe::ocx
