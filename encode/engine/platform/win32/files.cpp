// windows.h must come first.
#include <windows.h>

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

HANDLE Native(FileHandle file) {
  return reinterpret_cast<HANDLE>(file);
}

}  // namespace

FileHandle OpenFile(const char* path, FileOpen mode) {
  if (path == nullptr) path = "";
  const HANDLE file =
      mode == FileOpen::kRead
          ? ::CreateFileW(Wide(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                          FILE_FLAG_SEQUENTIAL_SCAN, nullptr)
          : ::CreateFileW(Wide(path).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                          CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN,
                          nullptr);
  return file == INVALID_HANDLE_VALUE ? kInvalidFile : reinterpret_cast<FileHandle>(file);
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

bool MoveFileReplacing(const char* from, const char* to) {
  return ::MoveFileExW(Wide(from).c_str(), Wide(to).c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_COPY_ALLOWED) != FALSE;
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

}  // namespace fe::platform
