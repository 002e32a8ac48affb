// windows.h must come first.
#include <windows.h>
// RtlGenRandom is exported by advapi32 under this name.
#include <ntsecapi.h>

#include <string>

#include "platform/platform.h"

namespace fe::platform {

namespace {

std::wstring Wide(const char* path) {
  const int n = ::MultiByteToWideChar(CP_UTF8, 0, path, -1, nullptr, 0);
  std::wstring wide(static_cast<size_t>(n > 0 ? n : 1), L'\0');
  if (n > 0) ::MultiByteToWideChar(CP_UTF8, 0, path, -1, wide.data(), n);
  wide.resize(wide.size() - 1);
  return wide;
}

std::string Narrow(const wchar_t* text) {
  const int n = ::WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<size_t>(n > 0 ? n : 1), '\0');
  if (n > 0) ::WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), n, nullptr, nullptr);
  narrow.resize(narrow.size() - 1);
  return narrow;
}

HANDLE Native(FileHandle file) {
  return reinterpret_cast<HANDLE>(file);
}

// Across volumes: a complete copy beside the target takes its place (or
// its new name) by a rename, so a failed copy never touches the target.
bool CopyBesideThenMove(const wchar_t* from, const std::wstring& target, DWORD moveFlags) {
  std::wstring folder = target.substr(0, target.find_last_of(L"\\/") + 1);
  if (folder.empty()) folder = L".";
  wchar_t copy[MAX_PATH];
  if (!::GetTempFileNameW(folder.c_str(), L"~r", 0, copy)) return false;
  if (!::CopyFileW(from, copy, FALSE) ||
      !::MoveFileExW(copy, target.c_str(), moveFlags | MOVEFILE_WRITE_THROUGH)) {
    const DWORD error = ::GetLastError();
    ::DeleteFileW(copy);
    ::SetLastError(error);
    return false;
  }
  ::DeleteFileW(from);
  return true;
}

}  // namespace

FileHandle OpenFile(const char* path, FileOpen mode) {
  if (path == nullptr) path = "";
  const HANDLE file =
      mode == FileOpen::kRead
          ? ::CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                          FILE_FLAG_SEQUENTIAL_SCAN, nullptr)
          : ::CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                          mode == FileOpen::kCreateNew ? CREATE_NEW : CREATE_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  return file == INVALID_HANDLE_VALUE ? kInvalidFile : reinterpret_cast<FileHandle>(file);
}

bool IdentifyFile(FileHandle file, FileIdentity* identity) {
  BY_HANDLE_FILE_INFORMATION info;
  if (!::GetFileInformationByHandle(Native(file), &info)) return false;
  identity->volume = info.dwVolumeSerialNumber;
  identity->index = (uint64_t{info.nFileIndexHigh} << 32) | info.nFileIndexLow;
  identity->size = (uint64_t{info.nFileSizeHigh} << 32) | info.nFileSizeLow;
  identity->modified = static_cast<int64_t>((uint64_t{info.ftLastWriteTime.dwHighDateTime} << 32) |
                                            info.ftLastWriteTime.dwLowDateTime);
  identity->permissions = info.dwFileAttributes;
  identity->regular =
      (info.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) == 0;
  return true;
}

bool IdentifyPath(const char* path, FileIdentity* identity) {
  // Attributes only, sharing everything: looking never disturbs anybody.
  const HANDLE file = ::CreateFileW(Wide(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const bool ok = IdentifyFile(reinterpret_cast<FileHandle>(file), identity);
  ::CloseHandle(file);
  return ok;
}

bool ReadFile(FileHandle file, void* buffer, uint32_t size, uint32_t* read) {
  DWORD count = 0;
  const BOOL ok = ::ReadFile(Native(file), buffer, size, &count, nullptr);
  *read = count;
  return ok != FALSE;
}

bool WriteFile(FileHandle file, const void* buffer, uint32_t size, uint32_t* written) {
  DWORD count = 0;
  const BOOL ok = ::WriteFile(Native(file), buffer, size, &count, nullptr);
  *written = count;
  return ok != FALSE;
}

bool SeekFile(FileHandle file, int64_t offset) {
  LARGE_INTEGER position;
  position.QuadPart = offset;
  return ::SetFilePointerEx(Native(file), position, nullptr, FILE_BEGIN) != FALSE;
}

bool GetFileSize(FileHandle file, uint64_t* size) {
  LARGE_INTEGER length;
  if (!::GetFileSizeEx(Native(file), &length)) return false;
  *size = static_cast<uint64_t>(length.QuadPart);
  return true;
}

void CloseFile(FileHandle file) {
  if (file != kInvalidFile) ::CloseHandle(Native(file));
}

uint32_t FileAttributes(const char* path) {
  return ::GetFileAttributesW(Wide(path).c_str());
}

bool RemoveFile(const char* path) {
  return ::DeleteFileW(Wide(path).c_str()) != FALSE;
}

void RemoveCreatedFile(const char* path, const FileIdentity& created) {
  FileIdentity current;
  if (created.regular && IdentifyPath(path, &current) && current.SameFile(created)) {
    ::DeleteFileW(Wide(path).c_str());
  }
}

bool ReplaceFileAtomically(const char* from, const char* to, const FileIdentity& expected) {
  FileIdentity current;
  if (!IdentifyPath(to, &current)) return false;
  // Another program changed or replaced the file meanwhile: its data wins.
  if (!current.Unchanged(expected)) {
    ::SetLastError(ERROR_SHARING_VIOLATION);
    return false;
  }
  const std::wstring source = Wide(from), target = Wide(to);
  if (::MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) return true;
  if (::GetLastError() != ERROR_NOT_SAME_DEVICE) return false;
  return CopyBesideThenMove(source.c_str(), target, MOVEFILE_REPLACE_EXISTING);
}

bool MoveFileToNewName(const char* from, const char* to) {
  const std::wstring source = Wide(from), target = Wide(to);
  if (::MoveFileExW(source.c_str(), target.c_str(), 0)) return true;
  if (::GetLastError() != ERROR_NOT_SAME_DEVICE) return false;
  return CopyBesideThenMove(source.c_str(), target, 0);
}

bool CreateUniqueTempFile(const char* folder, const char* prefix, std::string* output) {
  wchar_t name[MAX_PATH];
  if (!::GetTempFileNameW(Wide(folder).c_str(), Wide(prefix).c_str(), 0, name)) return false;
  *output = Narrow(name);
  return true;
}

uint32_t TempPath(std::string* folder) {
  wchar_t path[MAX_PATH + 1];
  const DWORD n = ::GetTempPathW(MAX_PATH + 1, path);
  if (n == 0 || n > MAX_PATH) return n;
  *folder = Narrow(path);
  return n;
}

bool GetFileTimes(FileHandle file, int64_t* created, int64_t* modified) {
  FILETIME creation, write;
  if (!::GetFileTime(Native(file), &creation, nullptr, &write)) return false;
  *created =
      static_cast<int64_t>((uint64_t{creation.dwHighDateTime} << 32) | creation.dwLowDateTime);
  *modified = static_cast<int64_t>((uint64_t{write.dwHighDateTime} << 32) | write.dwLowDateTime);
  return true;
}

bool SetFileTimes(FileHandle file, int64_t created, int64_t modified) {
  const auto fileTime = [](int64_t value) {
    return FILETIME{static_cast<DWORD>(value),
                    static_cast<DWORD>(static_cast<uint64_t>(value) >> 32)};
  };
  const FILETIME creation = fileTime(created);
  const FILETIME write = fileTime(modified);
  return ::SetFileTime(Native(file), &creation, nullptr, &write) != FALSE;
}

bool SetFileAttributeBits(const char* path, uint32_t attributes) {
  return ::SetFileAttributesW(Wide(path).c_str(), attributes) != FALSE;
}

uint32_t ExpandEnvironment(const char* text, std::string* expanded) {
  const std::wstring wide = Wide(text);
  const DWORD n = ::ExpandEnvironmentStringsW(wide.c_str(), nullptr, 0);
  if (n == 0) return 0;
  std::wstring out(n, L'\0');
  const DWORD written = ::ExpandEnvironmentStringsW(wide.c_str(), out.data(), n);
  if (written == 0 || written > n) return 0;
  *expanded = Narrow(out.c_str());
  return written;
}

uint32_t AbsolutePath(const char* path, std::string* full) {
  const std::wstring wide = Wide(path);
  const DWORD n = ::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
  if (n == 0) return 0;
  std::wstring out(n, L'\0');
  const DWORD written = ::GetFullPathNameW(wide.c_str(), n, out.data(), nullptr);
  if (written == 0 || written >= n) return 0;
  *full = Narrow(out.c_str());
  return written;
}

uint32_t CurrentDirectory(char* buffer, uint32_t size) {
  return ::GetCurrentDirectoryA(size, buffer);
}

uint32_t FullPathName(const char* name, char* buffer, uint32_t size) {
  return ::GetFullPathNameA(name, size, buffer, nullptr);
}

uint32_t DriveType(const char* root) {
  return ::GetDriveTypeA(root);
}

uint32_t WindowsDirectory(char* buffer, uint32_t size) {
  return ::GetWindowsDirectoryA(buffer, size);
}

uint32_t EnvironmentVariable(const char* name, char* buffer, uint32_t size) {
  return ::GetEnvironmentVariableA(name, buffer, size);
}

uint32_t GetTickCount() {
  return ::GetTickCount();
}

int64_t SystemTimeAsFileTime() {
  FILETIME now;
  ::GetSystemTimeAsFileTime(&now);
  return static_cast<int64_t>((uint64_t{now.dwHighDateTime} << 32) | now.dwLowDateTime);
}

bool RandomBytes(void* buffer, size_t size) {
  // RtlGenRandom takes a 32-bit count; the engine never asks for more.
  return ::SystemFunction036(buffer, static_cast<ULONG>(size)) != FALSE;
}

}  // namespace fe::platform
