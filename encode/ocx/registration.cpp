// DllRegisterServer / DllUnregisterServer: the ProgIDs, the class key with
// its control subkeys, and the type library.
#include <windows.h>

#include <oleauto.h>

#include <string>

#include "control.h"
#include "module.h"
#include "resource_ids.h"

namespace fe::ocx {

namespace {

constexpr wchar_t kDescription[] = L"Orvane File Encoding Control 12.0";
constexpr wchar_t kProgId[] = L"Orvane.FileEncoder.12";
constexpr wchar_t kIndependentProgId[] = L"Orvane.FileEncoder";
// Recompose on resize, cannot link inside, inside-out, activate when
// visible, invisible at run time, set client site first.
constexpr wchar_t kMiscStatus[] = L"132497";

std::wstring GuidText(REFGUID guid) {
  wchar_t text[40] = {};
  ::StringFromGUID2(guid, text, 40);
  return text;
}

std::wstring ClassKey() {
  return L"CLSID\\" + GuidText(CLSID_FileEncoder);
}

// Creates key (below HKEY_CLASSES_ROOT) and sets its default value, or the
// named value `name`, when value is given.
LSTATUS SetValue(const std::wstring& key, const wchar_t* value, const wchar_t* name = nullptr) {
  HKEY handle = nullptr;
  LSTATUS status = ::RegCreateKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, nullptr, 0, KEY_WRITE,
                                     nullptr, &handle, nullptr);
  if (status != ERROR_SUCCESS) return status;
  if (value != nullptr) {
    const auto bytes = static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t));
    status = ::RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value), bytes);
  }
  ::RegCloseKey(handle);
  return status;
}

LSTATUS DeleteTree(const std::wstring& key) {
  const LSTATUS status = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  if (status == ERROR_SUCCESS) ::RegDeleteKeyW(HKEY_CLASSES_ROOT, key.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

HRESULT WriteClassKeys() {
  const std::wstring path = ModulePath();
  const std::wstring classId = GuidText(CLSID_FileEncoder);
  const std::wstring libraryId = GuidText(LIBID_FileEncoderCtl);
  const std::wstring cls = ClassKey();
  // The class key is replaced whole.
  DeleteTree(cls);
  const std::wstring toolbox = path + L", " + std::to_wstring(IDB_TOOLBOX);
  const struct {
    std::wstring key;
    const wchar_t* value;
    const wchar_t* name;
  } entries[] = {
      {kProgId, kDescription, nullptr},
      {std::wstring(kProgId) + L"\\CLSID", classId.c_str(), nullptr},
      {kIndependentProgId, kDescription, nullptr},
      {std::wstring(kIndependentProgId) + L"\\CLSID", classId.c_str(), nullptr},
      {std::wstring(kIndependentProgId) + L"\\CurVer", kProgId, nullptr},
      {cls, kDescription, nullptr},
      {cls + L"\\ProgID", kProgId, nullptr},
      {cls + L"\\VersionIndependentProgID", kIndependentProgId, nullptr},
      {cls + L"\\Programmable", nullptr, nullptr},
      {cls + L"\\InprocServer32", path.c_str(), nullptr},
      {cls + L"\\InprocServer32", L"Apartment", L"ThreadingModel"},
      {cls + L"\\Control", nullptr, nullptr},
      {cls + L"\\Insertable", nullptr, nullptr},
      {cls + L"\\ToolboxBitmap32", toolbox.c_str(), nullptr},
      {cls + L"\\MiscStatus", L"0", nullptr},
      {cls + L"\\MiscStatus\\1", kMiscStatus, nullptr},
      {cls + L"\\TypeLib", libraryId.c_str(), nullptr},
      {cls + L"\\Version", L"1.0", nullptr},
  };
  for (const auto& entry : entries) {
    const LSTATUS status = SetValue(entry.key, entry.value, entry.name);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
  }
  return S_OK;
}

}  // namespace

}  // namespace fe::ocx

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() {
  using namespace fe::ocx;
  HRESULT hr = WriteClassKeys();
  if (FAILED(hr)) return SELFREG_E_CLASS;
  ITypeLib* library = nullptr;
  const std::wstring path = ModulePath();
  hr = ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
  if (SUCCEEDED(hr)) {
    hr = ::RegisterTypeLib(library, const_cast<OLECHAR*>(path.c_str()), nullptr);
    library->Release();
  }
  return SUCCEEDED(hr) ? S_OK : SELFREG_E_TYPELIB;
}

extern "C" HRESULT STDAPICALLTYPE DllUnregisterServer() {
  using namespace fe::ocx;
  // The CLSID key itself belongs to the system and stays.
  DeleteTree(kProgId);
  DeleteTree(kIndependentProgId);
  DeleteTree(ClassKey());
  // A library that was never registered is as good as unregistered.
  ::UnRegisterTypeLib(LIBID_FileEncoderCtl, 1, 0, LOCALE_NEUTRAL,
                      sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  return S_OK;
}
