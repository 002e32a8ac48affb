// Stand-ins for the Win32 file calls: POSIX descriptors, errno mapped to the
// Win32 numbers. A directory, or a character, block, FIFO or socket device,
// reports the Windows directory and device attribute bits.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/platform.h"
#include "platform/posix/system_errors.h"

namespace fe::platform {

namespace {

bool Fail() {
  SetLastErrorFromErrno();
  return false;
}

// Copies `from` to `to` and flushes it to disk, for moves across file
// systems; the source is removed only once the copy is complete.
bool CopyThenRemove(const char* from, const char* to) {
  const int in = ::open(from, O_RDONLY | O_CLOEXEC);
  if (in < 0) return Fail();
  const int out = ::open(to, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (out < 0) {
    const int saved = errno;
    ::close(in);
    errno = saved;
    return Fail();
  }
  char buffer[65536];
  bool ok = true;
  for (ssize_t n; ok && (n = ::read(in, buffer, sizeof buffer)) != 0;) {
    if (n < 0) {
      ok = errno == EINTR;
      continue;
    }
    for (ssize_t done = 0; ok && done < n;) {
      const ssize_t w = ::write(out, buffer + done, static_cast<size_t>(n - done));
      if (w < 0 && errno != EINTR) ok = false;
      if (w > 0) done += w;
    }
  }
  if (ok) ok = ::fsync(out) == 0;
  const int saved = errno;
  ::close(in);
  ::close(out);
  errno = saved;
  if (!ok) {
    ::unlink(to);
    return Fail();
  }
  return ::unlink(from) == 0 || Fail();
}

}  // namespace

FileHandle OpenFile(const char* path, FileOpen mode) {
  if (path == nullptr) path = "";
  const int flags = mode == FileOpen::kRead ? O_RDONLY : (O_RDWR | O_CREAT | O_TRUNC);
  const int fd = ::open(path, flags | O_CLOEXEC, 0666);
  if (fd < 0) {
    SetLastErrorFromErrno();
    return kInvalidFile;
  }
  struct stat info;
  if (::fstat(fd, &info) == 0 && S_ISDIR(info.st_mode)) {
    ::close(fd);
    SetLastErrorCode(5);  // Windows will not open a directory as a file
    return kInvalidFile;
  }
  if (mode == FileOpen::kRead) ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
  return fd;
}

bool ReadFile(FileHandle file, void* buffer, uint32_t size, uint32_t* read) {
  *read = 0;
  for (;;) {
    const ssize_t n = ::read(static_cast<int>(file), buffer, size);
    if (n >= 0) {
      *read = static_cast<uint32_t>(n);
      return true;
    }
    if (errno != EINTR) return Fail();
  }
}

bool WriteFile(FileHandle file, const void* buffer, uint32_t size, uint32_t* written) {
  *written = 0;
  const auto* bytes = static_cast<const char*>(buffer);
  while (*written < size) {
    const ssize_t n = ::write(static_cast<int>(file), bytes + *written, size - *written);
    if (n < 0) {
      if (errno == EINTR) continue;
      return Fail();
    }
    *written += static_cast<uint32_t>(n);
  }
  return true;
}

bool SeekFile(FileHandle file, int64_t offset) {
  return ::lseek(static_cast<int>(file), offset, SEEK_SET) >= 0 || Fail();
}

bool GetFileSize(FileHandle file, uint64_t* size) {
  struct stat info;
  if (::fstat(static_cast<int>(file), &info) != 0) return Fail();
  *size = static_cast<uint64_t>(info.st_size);
  return true;
}

void CloseFile(FileHandle file) {
  if (file != kInvalidFile) ::close(static_cast<int>(file));
}

uint32_t FileAttributes(const char* path) {
  struct stat info;
  if (::stat(path, &info) != 0) {
    SetLastErrorFromErrno();
    return kNoAttributes;
  }
  uint32_t attributes = 0;
  if (S_ISDIR(info.st_mode)) attributes |= kAttributeDirectory;
  if (S_ISCHR(info.st_mode) || S_ISBLK(info.st_mode) || S_ISFIFO(info.st_mode) ||
      S_ISSOCK(info.st_mode)) {
    attributes |= kAttributeDevice;
  }
  if (!(info.st_mode & S_IWUSR)) attributes |= 0x1;  // read-only
  return attributes != 0 ? attributes : 0x80;        // normal
}

bool RemoveFile(const char* path) {
  return ::unlink(path) == 0 || Fail();
}

bool MoveFileReplacing(const char* from, const char* to) {
  if (::rename(from, to) == 0) return true;
  if (errno != EXDEV) return Fail();
  return CopyThenRemove(from, to);
}

}  // namespace fe::platform
