// Path and temporary-file helpers on 8-bit paths of at most 260 characters.
// On Linux the separator is '/', '\' is an ordinary character, and there
// are no drive letters.
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

using fe::platform::kSeparator;

constexpr size_t kMaxPath = 260;
constexpr int kTempNameAttempts = 256;

bool IsSeparator(char c) {
  return c == kSeparator || (fe::platform::kHasDrives && c == '/');
}

bool HasDriveLetter(const char* path) {
  return fe::platform::kHasDrives && std::isalpha(static_cast<unsigned char>(path[0])) &&
         path[1] == ':';
}

char* Allocate(size_t size) {
  auto* block = static_cast<char*>(fe::platform::AllocateZeroed(size));
  if (block == nullptr) fe::SetLastError(fe::ControlError(ovErrorOutOfMemory));
  return block;
}

// Copies text into a buffer of kMaxPath (+ extra) bytes, cut to fit.
void CopyPath(char* target, const std::string& text, size_t size = kMaxPath) {
  const size_t length = std::min(text.size(), size - 1);
  std::memcpy(target, text.data(), length);
  target[length] = '\0';
}

bool IsDirectory(const char* path) {
  const uint32_t attributes = fe::platform::FileAttributes(path);
  return attributes != fe::platform::kNoAttributes &&
         (attributes & fe::platform::kAttributeDirectory) != 0;
}

bool Exists(const char* path) {
  return fe::platform::FileAttributes(path) != fe::platform::kNoAttributes;
}

}  // namespace

extern "C" {

void EngineFree(void* block) {
  fe::platform::Release(block);
}

int32_t GetCurrentDrive(void) {
  char directory[kMaxPath];
  if (fe::platform::CurrentDirectory(directory, kMaxPath) == 0) return 0;
  if (!HasDriveLetter(directory)) return 0;
  return std::toupper(static_cast<unsigned char>(directory[0])) - 'A' + 1;
}

uint32_t GetDriveDirectory(int32_t drive, char* buffer) {
  if (buffer == nullptr || drive < 0 || drive > 26) return 0;
  if (drive == 0) {
    const uint32_t length = fe::platform::CurrentDirectory(buffer, kMaxPath);
    return length < kMaxPath ? length : 0;
  }
  char root[] = {static_cast<char>('A' + drive - 1), ':', kSeparator, '\0'};
  if (fe::platform::DriveType(root) == 0) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidFileName));
    return 0;
  }
  root[2] = '.';  // "X:." names the current directory of drive X
  const uint32_t length = fe::platform::FullPathName(root, buffer, kMaxPath);
  return length < kMaxPath ? length : 0;
}

char* NormalizePath(char* path) {
  if (path == nullptr) return nullptr;
  int dots = 0;
  for (size_t i = 0; path[i] != '\0'; ++i) {
    if (path[i] == '/' && fe::platform::kHasDrives) path[i] = kSeparator;
    const char c = path[i];
    if (c == '.') {
      ++dots;
      continue;
    }
    if (c == kSeparator && dots > 0) {
      // Each dot before the separator takes one segment back; a segment
      // that merely ends in dots ("x.") goes too, as it always has.
      size_t target = i;
      for (int k = 0; k < dots; ++k) {
        while (target > 0 && path[--target] != kSeparator) {
        }
      }
      std::memmove(path + target, path + i, std::strlen(path + i) + 1);
      i = target;
    }
    dots = 0;
  }
  return path;
}

char* CombinePath(const char* base, const char* name, char* output) {
  // Either argument may be the output buffer itself.
  const std::string baseText = base != nullptr ? base : "";
  const std::string nameText = name != nullptr ? name : "";
  if (output == nullptr) {
    output = Allocate(kMaxPath);
    if (output == nullptr) return nullptr;
  }
  std::string combined;
  if (nameText.empty()) {
    combined = baseText;
  } else if (IsSeparator(nameText[0]) || HasDriveLetter(nameText.c_str()) || baseText.empty()) {
    combined = nameText;
  } else {
    combined = baseText;
    if (!IsSeparator(combined.back())) combined += kSeparator;
    combined += nameText;
  }
  CopyPath(output, combined);
  return NormalizePath(output);
}

char* GetFullPathFromName(const char* name, char* output) {
  if (name == nullptr || *name == '\0') {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return nullptr;
  }
  char normalized[kMaxPath + 1];
  CopyPath(normalized, name, sizeof normalized);
  NormalizePath(normalized);
  if (output == nullptr) {
    output = Allocate(kMaxPath + 1);
    if (output == nullptr) return nullptr;
  }
  int32_t drive = 0;
  const char* rest = normalized;
  if (HasDriveLetter(normalized)) {
    drive = std::toupper(static_cast<unsigned char>(normalized[0])) - 'A' + 1;
    rest += 2;
  }
  if (IsSeparator(rest[0])) {
    // A network name (two separators), or a root on a named drive, is
    // complete; a bare root gets the current drive in front.
    const int32_t current = drive == 0 && !IsSeparator(rest[1]) ? GetCurrentDrive() : 0;
    std::string full = normalized;
    if (current > 0) full = std::string{static_cast<char>('A' + current - 1), ':'} + full;
    CopyPath(output, full, kMaxPath + 1);
    return output;
  }
  char directory[kMaxPath];
  if (GetDriveDirectory(drive, directory) == 0) return nullptr;
  return CombinePath(directory, rest, output);
}

char* GetPathDirectory(const char* name, char* output) {
  char full[kMaxPath + 1];
  if (GetFullPathFromName(name, full) == nullptr) return nullptr;
  if (std::strlen(full) + 1 > kMaxPath) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return nullptr;
  }
  if (!IsDirectory(name)) {
    char* cut = nullptr;
    for (char* p = full; *p != '\0'; ++p) {
      if (*p == '/' || *p == '\\') cut = p;
    }
    if (cut == nullptr || full[1] == '\0') return nullptr;
    // A drive root such as C:\ keeps its separator; so does the Linux root.
    const bool root = (cut > full && cut[-1] == ':') || cut == full;
    cut[root ? 1 : 0] = '\0';
  }
  if (output == nullptr) {
    output = Allocate(kMaxPath + 1);
    if (output == nullptr) return nullptr;
  }
  CopyPath(output, full, kMaxPath + 1);
  return output;
}

char* GetTempDirectory(char* buffer) {
  if (buffer == nullptr) return nullptr;
  char windows[kMaxPath] = {};
  const uint32_t windowsLength = fe::platform::WindowsDirectory(windows, kMaxPath);
  const std::string fallback = windowsLength > 0 && windowsLength < kMaxPath
                                   ? std::string(windows)
                                   : std::string(fe::platform::kHasDrives ? "C:\\" : "/");
  // The first of TMP and TEMP that is set decides, even when it names no
  // directory: then the Windows directory is used and the other variable is
  // never looked at.
  char candidate[kMaxPath] = {};
  uint32_t length = fe::platform::EnvironmentVariable("TMP", candidate, kMaxPath);
  if (length == 0) length = fe::platform::EnvironmentVariable("TEMP", candidate, kMaxPath);
  std::string chosen;
  if (length > 0 && length < kMaxPath) {
    chosen = IsDirectory(candidate) ? std::string(candidate) : fallback;
  } else {
    const std::string temp =
        fallback + (IsSeparator(fallback.back()) ? "" : std::string(1, kSeparator)) + "TEMP";
    chosen = IsDirectory(temp.c_str()) ? temp : fallback;
  }
  CopyPath(buffer, chosen);
  return buffer;
}

char* CreateTempFileName(const char* directory, const char* /*ignored*/, char* output) {
  if (output == nullptr) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return nullptr;
  }
  char folder[kMaxPath];
  if (directory == nullptr || *directory == '\0') {
    GetTempDirectory(folder);
  } else {
    if (!IsDirectory(directory)) return nullptr;
    CopyPath(folder, directory);
  }
  std::string base = folder;
  if (base.empty() || !IsSeparator(base.back())) base += kSeparator;
  for (int attempt = 0; attempt < kTempNameAttempts; ++attempt) {
    // Five hex digits of the tick count, read afresh each time without
    // waiting: quick retries often see the same name, as they always have.
    char ticks[16];
    std::snprintf(ticks, sizeof ticks, "%08lx",
                  static_cast<unsigned long>(fe::platform::GetTickCount()));
    char name[32];
    std::snprintf(name, sizeof name, "~r%s.%s", ticks + 3, "tmp");
    const std::string candidate = base + name;
    if (Exists(candidate.c_str())) continue;
    // Reserve the name by creating the file exclusively: a name another
    // thread or program took meanwhile counts as existing, so two
    // operations never share a temporary file. Any other failure to create
    // it is not an error here.
    const fe::platform::FileHandle file =
        fe::platform::OpenFile(candidate.c_str(), fe::platform::FileOpen::kCreateNew);
    if (file == fe::platform::kInvalidFile && fe::LastError() == fe::kErrorFileExists) continue;
    fe::platform::CloseFile(file);
    CopyPath(output, candidate);
    return output;
  }
  return nullptr;
}

}  // extern "C"
