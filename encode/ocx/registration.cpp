// DllRegisterServer / DllUnregisterServer: the ProgIDs, the class key with
// its control subkeys, and the type library, machine-wide. DllInstall with
// the command line "user" (regsvr32 /n /i:user) writes the same entries under
// the current user's classes key, for users without administrator rights.
#include <windows.h>

#include <oleauto.h>

#include <string>
#include <utility>
#include <vector>

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

// Creates key (below root) and sets its default value, or the named value
// `name`, when value is given.
LSTATUS SetValue(HKEY root, const std::wstring& key, const wchar_t* value,
                 const wchar_t* name = nullptr) {
  HKEY handle = nullptr;
  LSTATUS status =
      ::RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &handle, nullptr);
  if (status != ERROR_SUCCESS) return status;
  if (value != nullptr) {
    const auto bytes = static_cast<DWORD>((wcslen(value) + 1) * sizeof(wchar_t));
    status = ::RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value), bytes);
  }
  ::RegCloseKey(handle);
  return status;
}

// One registry entry: the default value of key, or its value `name`;
// key_only makes the key with no value at all.
struct Entry {
  std::wstring key;
  std::wstring value;
  const wchar_t* name = nullptr;
  bool key_only = false;
};

HRESULT WriteEntries(HKEY root, const std::vector<Entry>& entries) {
  for (const Entry& entry : entries) {
    const LSTATUS status =
        SetValue(root, entry.key, entry.key_only ? nullptr : entry.value.c_str(), entry.name);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
  }
  return S_OK;
}

LSTATUS DeleteTree(HKEY root, const std::wstring& key) {
  const LSTATUS status = ::RegDeleteTreeW(root, key.c_str());
  if (status == ERROR_SUCCESS) ::RegDeleteKeyW(root, key.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

HRESULT WriteClassKeys(HKEY root) {
  const std::wstring path = ModulePath();
  const std::wstring classId = GuidText(CLSID_FileEncoder);
  const std::wstring libraryId = GuidText(LIBID_FileEncoderCtl);
  const std::wstring cls = ClassKey();
  // The class key is replaced whole.
  DeleteTree(root, cls);
  const std::wstring toolbox = path + L", " + std::to_wstring(IDB_TOOLBOX);
  const std::wstring progId = kProgId;
  const std::wstring independent = kIndependentProgId;
  return WriteEntries(root, {
                                {progId, kDescription},
                                {progId + L"\\CLSID", classId},
                                {independent, kDescription},
                                {independent + L"\\CLSID", classId},
                                {independent + L"\\CurVer", progId},
                                {cls, kDescription},
                                {cls + L"\\ProgID", progId},
                                {cls + L"\\VersionIndependentProgID", independent},
                                {cls + L"\\Programmable", L"", nullptr, true},
                                {cls + L"\\InprocServer32", path},
                                {cls + L"\\InprocServer32", L"Apartment", L"ThreadingModel"},
                                {cls + L"\\Control", L"", nullptr, true},
                                {cls + L"\\Insertable", L"", nullptr, true},
                                {cls + L"\\ToolboxBitmap32", toolbox},
                                {cls + L"\\MiscStatus", L"0"},
                                {cls + L"\\MiscStatus\\1", kMiscStatus},
                                {cls + L"\\TypeLib", libraryId},
                                {cls + L"\\Version", L"1.0"},
                            });
}

void DeleteClassKeys(HKEY root) {
  DeleteTree(root, kProgId);
  DeleteTree(root, kIndependentProgId);
  DeleteTree(root, ClassKey());
}

// The proxy/stub classes of OLE automation, as RegisterTypeLib names them:
// dual interfaces are marshalled through their v-table, dispinterfaces
// through IDispatch alone.
constexpr wchar_t kDualProxyStub[] = L"{00020424-0000-0000-C000-000000000046}";
constexpr wchar_t kDispatchProxyStub[] = L"{00020420-0000-0000-C000-000000000046}";

struct LibraryInterface {
  GUID id;
  std::wstring name;
  const wchar_t* proxy_stub;
};

// The dispatch interfaces of the library, found as RegisterTypeLib finds
// them, so the per-user entries match the machine-wide ones.
std::vector<LibraryInterface> DispatchInterfaces(ITypeLib* library) {
  std::vector<LibraryInterface> found;
  for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
    TYPEKIND kind = TKIND_MAX;
    if (FAILED(library->GetTypeInfoType(index, &kind)) || kind != TKIND_DISPATCH) continue;
    ITypeInfo* info = nullptr;
    if (FAILED(library->GetTypeInfo(index, &info))) continue;
    TYPEATTR* attributes = nullptr;
    BSTR name = nullptr;
    if (SUCCEEDED(info->GetTypeAttr(&attributes)) &&
        SUCCEEDED(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr))) {
      const bool dual = (attributes->wTypeFlags & TYPEFLAG_FDUAL) != 0;
      found.push_back({attributes->guid, name, dual ? kDualProxyStub : kDispatchProxyStub});
    }
    ::SysFreeString(name);
    if (attributes != nullptr) info->ReleaseTypeAttr(attributes);
    info->Release();
  }
  return found;
}

std::wstring LibraryKey() {
  return L"TypeLib\\" + GuidText(LIBID_FileEncoderCtl);
}

// RegisterTypeLib writes only below the machine's classes: the same entries
// are written here below the user's.
HRESULT WriteLibraryKeys(HKEY root) {
  const std::wstring path = ModulePath();
  ITypeLib* library = nullptr;
  HRESULT hr = ::LoadTypeLibEx(path.c_str(), REGKIND_NONE, &library);
  if (FAILED(hr)) return hr;
  TLIBATTR* attributes = nullptr;
  BSTR description = nullptr;
  hr = library->GetLibAttr(&attributes);
  if (SUCCEEDED(hr)) {
    hr = library->GetDocumentation(MEMBERID_NIL, nullptr, &description, nullptr, nullptr);
  }
  std::vector<LibraryInterface> interfaces;
  std::wstring flags;
  if (SUCCEEDED(hr)) {
    interfaces = DispatchInterfaces(library);
    flags = std::to_wstring(attributes->wLibFlags);
  }
  if (attributes != nullptr) library->ReleaseTLibAttr(attributes);
  library->Release();
  if (FAILED(hr)) return hr;

  const std::wstring version = LibraryKey() + L"\\1.0";
  const std::wstring folder = path.substr(0, path.find_last_of(L'\\'));
  const std::wstring libraryId = GuidText(LIBID_FileEncoderCtl);
  const wchar_t* platform = sizeof(void*) == 8 ? L"win64" : L"win32";
  std::vector<Entry> entries = {
      {version, description != nullptr ? description : L""},
      {version + L"\\0\\" + platform, path},
      {version + L"\\FLAGS", flags},
      {version + L"\\HELPDIR", folder},
  };
  ::SysFreeString(description);
  for (const LibraryInterface& item : interfaces) {
    const std::wstring key = L"Interface\\" + GuidText(item.id);
    entries.push_back({key, item.name});
    entries.push_back({key + L"\\ProxyStubClsid", item.proxy_stub});
    entries.push_back({key + L"\\ProxyStubClsid32", item.proxy_stub});
    entries.push_back({key + L"\\TypeLib", libraryId});
    entries.push_back({key + L"\\TypeLib", L"1.0", L"Version"});
  }
  return WriteEntries(root, entries);
}

void DeleteLibraryKeys(HKEY root) {
  DeleteTree(root, LibraryKey());
  DeleteTree(root, L"Interface\\" + GuidText(IID_IFileEncoder));
  DeleteTree(root, L"Interface\\" + GuidText(DIID__IFileEncoderEvents));
}

// The current user's classes key, which HKEY_CLASSES_ROOT merges over the
// machine's on Windows.
class UserClasses {
 public:
  UserClasses() {
    status_ = ::RegCreateKeyExW(HKEY_CURRENT_USER, L"Software\\Classes", 0, nullptr, 0,
                                KEY_READ | KEY_WRITE, nullptr, &key_, nullptr);
  }
  ~UserClasses() {
    if (key_ != nullptr) ::RegCloseKey(key_);
  }
  UserClasses(const UserClasses&) = delete;
  UserClasses& operator=(const UserClasses&) = delete;
  LSTATUS status() const { return status_; }
  HKEY key() const { return key_; }

 private:
  HKEY key_ = nullptr;
  LSTATUS status_;
};

HRESULT InstallForUser() {
  UserClasses classes;
  if (classes.status() != ERROR_SUCCESS) return HRESULT_FROM_WIN32(classes.status());
  if (FAILED(WriteClassKeys(classes.key()))) {
    DeleteClassKeys(classes.key());
    return SELFREG_E_CLASS;
  }
  if (FAILED(WriteLibraryKeys(classes.key()))) {
    // Half a registration would make the class creatable without its
    // type library: take it all back.
    DeleteLibraryKeys(classes.key());
    DeleteClassKeys(classes.key());
    return SELFREG_E_TYPELIB;
  }
  return S_OK;
}

HRESULT UninstallForUser() {
  UserClasses classes;
  if (classes.status() != ERROR_SUCCESS) return HRESULT_FROM_WIN32(classes.status());
  DeleteClassKeys(classes.key());
  DeleteLibraryKeys(classes.key());
  return S_OK;
}

}  // namespace

}  // namespace fe::ocx

extern "C" HRESULT STDAPICALLTYPE DllRegisterServer() {
  using namespace fe::ocx;
  HRESULT hr = WriteClassKeys(HKEY_CLASSES_ROOT);
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
  DeleteClassKeys(HKEY_CLASSES_ROOT);
  // A library that was never registered is as good as unregistered.
  ::UnRegisterTypeLib(LIBID_FileEncoderCtl, 1, 0, LOCALE_NEUTRAL,
                      sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32);
  return S_OK;
}

// regsvr32 /n /i:user installs for the current user, regsvr32 /u /n /i:user
// removes that again; no other command line is understood.
extern "C" HRESULT STDAPICALLTYPE DllInstall(BOOL install, LPCWSTR command_line) {
  using namespace fe::ocx;
  if (command_line == nullptr || ::lstrcmpiW(command_line, L"user") != 0) return E_INVALIDARG;
  return install ? InstallForUser() : UninstallForUser();
}
