// Stand-ins for the Win32 path calls. There are no drive letters: the drive
// type of a root is always unknown, and the Windows directory, the
// temporary fallback, is /tmp.
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "platform/platform.h"
#include "platform/posix/system_errors.h"

namespace fe::platform {

namespace {

// Copies text into buffer as the Win32 calls do: the length on success, the
// size needed (terminator included) when it does not fit.
uint32_t CopyOut(const std::string& text, char* buffer, uint32_t size) {
  if (text.size() + 1 > size) return static_cast<uint32_t>(text.size() + 1);
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return static_cast<uint32_t>(text.size());
}

}  // namespace

uint32_t CurrentDirectory(char* buffer, uint32_t size) {
  char path[PATH_MAX];
  if (::getcwd(path, sizeof path) == nullptr) {
    SetLastErrorFromErrno();
    return 0;
  }
  return CopyOut(path, buffer, size);
}

uint32_t FullPathName(const char* name, char* buffer, uint32_t size) {
  if (name == nullptr || *name == '\0') {
    SetLastErrorCode(87);
    return 0;
  }
  std::string full = name;
  if (name[0] != '/') {
    char cwd[PATH_MAX];
    if (::getcwd(cwd, sizeof cwd) == nullptr) {
      SetLastErrorFromErrno();
      return 0;
    }
    full = std::string(cwd) + (cwd[std::strlen(cwd) - 1] == '/' ? "" : "/") + name;
  }
  return CopyOut(full, buffer, size);
}

uint32_t DriveType(const char*) {
  return 0;
}  // DRIVE_UNKNOWN: no drives here

uint32_t WindowsDirectory(char* buffer, uint32_t size) {
  return CopyOut("/tmp", buffer, size);
}

uint32_t EnvironmentVariable(const char* name, char* buffer, uint32_t size) {
  const char* value = std::getenv(name);
  if (value == nullptr) {
    SetLastErrorCode(203);  // ERROR_ENVVAR_NOT_FOUND
    return 0;
  }
  return CopyOut(value, buffer, size);
}

uint32_t GetTickCount() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                               static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

}  // namespace fe::platform
