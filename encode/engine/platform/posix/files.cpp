// Stand-ins for the Win32 file calls: POSIX descriptors, errno mapped to the
// Win32 numbers. A directory, or a character, block, FIFO or socket device,
// reports the Windows directory and device attribute bits; share modes are
// open file description locks; MoveFileEx's replace is a rename, across
// file systems through a flushed copy beside the target.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "platform/platform.h"
#include "platform/posix/system_errors.h"

namespace fe::platform {

namespace {

bool Fail() {
  SetLastErrorFromErrno();
  return false;
}

// Windows' share modes between the engine's own opens: a read open holds a
// shared lock, a create an exclusive one, on the open file description, so
// that conflicting opens of the same inode by any name, from any thread or
// process that uses the engine, fail as they would on Windows.
bool LockLikeShareMode(int fd, FileOpen mode) {
  struct flock lock = {};
  lock.l_type = mode == FileOpen::kRead ? F_RDLCK : F_WRLCK;
  lock.l_whence = SEEK_SET;
  if (::fcntl(fd, F_OFD_SETLK, &lock) == 0) return true;
  if (errno == EAGAIN || errno == EACCES) {
    SetLastErrorCode(32);  // ERROR_SHARING_VIOLATION
  } else {
    SetLastErrorFromErrno();
  }
  return false;
}

FileIdentity IdentityOf(const struct stat& info) {
  FileIdentity identity;
  identity.volume = static_cast<uint64_t>(info.st_dev);
  identity.index = static_cast<uint64_t>(info.st_ino);
  identity.size = static_cast<uint64_t>(info.st_size);
  identity.modified = int64_t{info.st_mtim.tv_sec} * 1000000000 + info.st_mtim.tv_nsec;
  identity.permissions = static_cast<uint32_t>(info.st_mode & 07777);
  identity.regular = S_ISREG(info.st_mode);
  return identity;
}

std::string FolderOf(const char* path) {
  const char* slash = std::strrchr(path, '/');
  if (slash == nullptr) return ".";
  if (slash == path) return "/";
  return std::string(path, static_cast<size_t>(slash - path));
}

// A new file of a name nobody has, in `folder`.
int CreateUniqueIn(const std::string& folder, std::string* name) {
  static std::atomic<uint32_t> counter{0};
  for (int attempt = 0; attempt < 1000; ++attempt) {
    char leaf[64];
    std::snprintf(leaf, sizeof leaf, "/~r%x-%x.tmp", static_cast<unsigned>(::getpid()),
                  static_cast<unsigned>(counter.fetch_add(1)));
    *name = folder + leaf;
    const int fd = ::open(name->c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd >= 0 || errno != EEXIST) return fd;
  }
  return -1;
}

bool CopyContents(int in, int out) {
  char buffer[65536];
  for (ssize_t n; (n = ::read(in, buffer, sizeof buffer)) != 0;) {
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    for (ssize_t done = 0; done < n;) {
      const ssize_t w = ::write(out, buffer + done, static_cast<size_t>(n - done));
      if (w < 0 && errno != EINTR) return false;
      if (w > 0) done += w;
    }
  }
  return ::fsync(out) == 0;
}

// Renames without replacing: renameat2's no-replace flag, or a hard link
// where the file system does not offer it.
bool RenameToNewName(const char* from, const char* to) {
  if (::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) return true;
  if (errno != EINVAL && errno != ENOSYS) return false;
  if (::link(from, to) != 0) return false;
  ::unlink(from);
  return true;
}

// Across file systems: a complete, flushed copy beside `to` takes its place
// by a rename (or appears under the new name); only then is `from` removed.
// `to` is never truncated.
bool CopyBesideThenRename(const char* from, const char* to, uint32_t permissions, bool replace) {
  const int in = ::open(from, O_RDONLY | O_CLOEXEC);
  if (in < 0) return Fail();
  std::string copy;
  const int out = CreateUniqueIn(FolderOf(to), &copy);
  if (out < 0) {
    SetLastErrorFromErrno();
    ::close(in);
    return false;
  }
  bool ok = ::fchmod(out, permissions) == 0 && CopyContents(in, out);
  ok = ::close(out) == 0 && ok;
  ok = ok && (replace ? ::rename(copy.c_str(), to) == 0 : RenameToNewName(copy.c_str(), to));
  if (!ok) SetLastErrorFromErrno();
  ::close(in);
  if (!ok) {
    ::unlink(copy.c_str());
    return false;
  }
  ::unlink(from);
  return true;
}

}  // namespace

FileHandle OpenFile(const char* path, FileOpen mode) {
  if (path == nullptr) path = "";
  int flags = O_RDONLY;
  if (mode == FileOpen::kCreate) flags = O_RDWR | O_CREAT;
  if (mode == FileOpen::kCreateNew) flags = O_RDWR | O_CREAT | O_EXCL;
  const int fd = ::open(path, flags | O_CLOEXEC, 0666);
  if (fd < 0) {
    SetLastErrorFromErrno();
    return kInvalidFile;
  }
  struct stat info;
  if (::fstat(fd, &info) != 0) {
    SetLastErrorFromErrno();
    ::close(fd);
    return kInvalidFile;
  }
  if (S_ISDIR(info.st_mode)) {
    ::close(fd);
    SetLastErrorCode(5);  // Windows will not open a directory as a file
    return kInvalidFile;
  }
  // Devices have no share modes. A regular file is locked before it is
  // truncated, so a conflicting open never destroys anybody's data.
  if (S_ISREG(info.st_mode)) {
    bool ok = LockLikeShareMode(fd, mode);
    if (ok && mode != FileOpen::kRead && ::ftruncate(fd, 0) != 0) ok = Fail();
    if (!ok) {
      ::close(fd);
      return kInvalidFile;
    }
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
  if (!(info.st_mode & S_IWUSR)) attributes |= kAttributeReadOnly;
  return attributes != 0 ? attributes : kAttributeNormal;
}

bool IdentifyFile(FileHandle file, FileIdentity* identity) {
  struct stat info;
  if (::fstat(static_cast<int>(file), &info) != 0) return Fail();
  *identity = IdentityOf(info);
  return true;
}

bool IdentifyPath(const char* path, FileIdentity* identity) {
  struct stat info;
  if (::stat(path, &info) != 0) return Fail();
  *identity = IdentityOf(info);
  return true;
}

bool RemoveFile(const char* path) {
  return ::unlink(path) == 0 || Fail();
}

void RemoveCreatedFile(const char* path, const FileIdentity& created) {
  struct stat info;
  if (!created.regular || ::lstat(path, &info) != 0) return;
  if (S_ISREG(info.st_mode) && IdentityOf(info).SameFile(created)) {
    ::unlink(path);
    return;
  }
  // Written through a link: empty the file it leads to, keep both.
  if (!S_ISLNK(info.st_mode)) return;
  const int fd = ::open(path, O_WRONLY | O_CLOEXEC);
  if (fd < 0) return;
  FileIdentity opened;
  if (IdentifyFile(fd, &opened) && opened.SameFile(created)) {
    [[maybe_unused]] const int ignored = ::ftruncate(fd, 0);
  }
  ::close(fd);
}

bool ReplaceFileAtomically(const char* from, const char* to, const FileIdentity& expected) {
  FileIdentity current;
  if (!IdentifyPath(to, &current)) return false;
  // Another program changed or replaced the file meanwhile: its data wins.
  if (!current.Unchanged(expected)) {
    SetLastErrorCode(32);
    return false;
  }
  // Read-only as Windows sees it: the owner may not write.
  if ((current.permissions & S_IWUSR) == 0) {
    SetLastErrorCode(5);
    return false;
  }
  struct stat owner;
  if (::stat(to, &owner) != 0 || ::chmod(from, current.permissions) != 0) return Fail();
  // The owner too, where the caller may set it.
  [[maybe_unused]] const int ignored = ::chown(from, owner.st_uid, owner.st_gid);
  if (::rename(from, to) == 0) return true;
  if (errno != EXDEV) return Fail();
  return CopyBesideThenRename(from, to, current.permissions, true);
}

bool MoveFileToNewName(const char* from, const char* to) {
  if (RenameToNewName(from, to)) return true;
  if (errno != EXDEV) return Fail();
  struct stat source;
  if (::stat(from, &source) != 0) return Fail();
  return CopyBesideThenRename(from, to, source.st_mode & 07777, false);
}

// GetTempFileName's scheme: the first three characters of the prefix and a
// 16-bit number in hexadecimal, starting from the clock and counting up
// until a name is free; the file is created exclusively.
bool CreateUniqueTempFile(const char* folder, const char* prefix, std::string* output) {
  std::string base = folder;
  if (base.empty() || base.back() != '/') base += '/';
  base.append(prefix, ::strnlen(prefix, 3));
  const uint32_t start = GetTickCount() & 0xFFFF;
  for (uint32_t step = 0; step < 0x10000; ++step) {
    const uint32_t unique = (start + step) & 0xFFFF;
    if (unique == 0) continue;
    char leaf[16];
    std::snprintf(leaf, sizeof leaf, "%X.TMP", static_cast<unsigned>(unique));
    const std::string name = base + leaf;
    const int fd = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd >= 0) {
      ::close(fd);
      *output = name;
      return true;
    }
    if (errno != EEXIST) return Fail();
  }
  SetLastErrorCode(80);  // ERROR_FILE_EXISTS: every name is taken
  return false;
}

// The birth time cannot be set here; only the last-write time is kept.
bool SetFileTimes(FileHandle file, int64_t /*created*/, int64_t modified) {
  const int64_t sinceUnixEpoch = modified - int64_t{11644473600} * 10000000;
  struct timespec times[2];
  times[0].tv_nsec = UTIME_OMIT;
  times[1].tv_sec = static_cast<time_t>(sinceUnixEpoch / 10000000);
  times[1].tv_nsec = static_cast<long>(sinceUnixEpoch % 10000000) * 100;
  if (times[1].tv_nsec < 0) {
    times[1].tv_sec -= 1;
    times[1].tv_nsec += 1000000000;
  }
  return ::futimens(static_cast<int>(file), times) == 0 || Fail();
}

bool SetFileAttributeBits(const char* path, uint32_t attributes) {
  struct stat info;
  if (::stat(path, &info) != 0) return Fail();
  mode_t mode = info.st_mode & 07777;
  if (attributes & kAttributeReadOnly) {
    mode &= ~(S_IWUSR | S_IWGRP | S_IWOTH);
  } else {
    mode |= S_IWUSR;
  }
  return ::chmod(path, mode) == 0 || Fail();
}

bool GetFileTimes(FileHandle file, int64_t* created, int64_t* modified) {
  struct statx info = {};
  if (::statx(static_cast<int>(file), "", AT_EMPTY_PATH, STATX_BTIME | STATX_MTIME, &info) != 0) {
    return Fail();
  }
  // Seconds since 1970 to 100-nanosecond units since 1601.
  const auto fileTime = [](const struct statx_timestamp& t) {
    return (int64_t{t.tv_sec} + 11644473600) * 10000000 + t.tv_nsec / 100;
  };
  *created = (info.stx_mask & STATX_BTIME) ? fileTime(info.stx_btime) : 0;
  *modified = fileTime(info.stx_mtime);
  return true;
}

}  // namespace fe::platform
