// Stand-ins for the Win32 path calls. There are no drive letters: the drive
// type of a root is always unknown, and the Windows directory, the
// temporary fallback, is /tmp.
#include <limits.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
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

// How many UTF-16 units the Windows build would count for a UTF-8 text:
// two for each four-byte sequence, one for every other character.
uint32_t Utf16Length(const std::string& text) {
  uint32_t units = 0;
  for (const unsigned char c : text) {
    if ((c & 0xC0) != 0x80) ++units;
    if (c >= 0xF0) ++units;
  }
  return units;
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

// TMPDIR, then TMP and TEMP (as GetTempPath reads them), else /tmp.
uint32_t TempPath(std::string* folder) {
  const char* found = nullptr;
  for (const char* name : {"TMPDIR", "TMP", "TEMP"}) {
    found = std::getenv(name);
    if (found != nullptr && *found != '\0') break;
    found = nullptr;
  }
  *folder = found != nullptr ? found : "/tmp";
  if (folder->back() != '/') *folder += '/';
  return Utf16Length(*folder);
}

uint32_t ExpandEnvironment(const char* text, std::string* expanded) {
  expanded->clear();
  for (const char* p = text; *p != '\0';) {
    const char* end = *p == '%' ? std::strchr(p + 1, '%') : nullptr;
    if (end == nullptr) {
      expanded->push_back(*p++);
      continue;
    }
    const std::string name(p + 1, end);
    const char* value = name.empty() ? nullptr : std::getenv(name.c_str());
    if (value == nullptr) {
      // Not a variable: the first '%' stays and the search goes on after it.
      expanded->push_back(*p++);
      continue;
    }
    expanded->append(value);
    p = end + 1;
  }
  return Utf16Length(*expanded) + 1;
}

uint32_t AbsolutePath(const char* path, std::string* full) {
  char buffer[PATH_MAX + 1];
  const uint32_t n = FullPathName(path, buffer, sizeof buffer);
  if (n == 0 || n >= sizeof buffer) return 0;
  *full = buffer;
  return Utf16Length(*full);
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

}  // namespace fe::platform
