#include "files.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "cleanup.h"
#include "failure.h"
#include "file_encoder.h"

namespace fe::cli {

namespace {

constexpr size_t kBlock = 1 << 20;
mode_t creationMask = 022;

std::string TemporaryDirectory() {
  char buffer[PATH_MAX];
  if (GetTempDirectory(buffer) == nullptr) return "/tmp";
  std::string directory = buffer;
  while (directory.size() > 1 && directory.back() == '/')
    directory.pop_back();
  return directory;
}

std::string FolderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

void WriteAll(int descriptor, const void* bytes, size_t length, const std::string& label) {
  const auto* at = static_cast<const uint8_t*>(bytes);
  while (length > 0) {
    const ssize_t done = write(descriptor, at, length);
    if (done < 0) {
      if (errno == EINTR) continue;
      FailFromSystem(label);
    }
    at += done;
    length -= static_cast<size_t>(done);
  }
}

// Copies everything readable from one descriptor to another.
void Pump(int from, const std::string& fromLabel, int to, const std::string& toLabel) {
  std::vector<uint8_t> block(kBlock);
  for (;;) {
    const ssize_t got = read(from, block.data(), block.size());
    if (got < 0) {
      if (errno == EINTR) continue;
      FailFromSystem(fromLabel);
    }
    if (got == 0) return;
    WriteAll(to, block.data(), static_cast<size_t>(got), toLabel);
  }
}

// Refuses, before any work, an output the caller could not write: a folder,
// a file without write permission, a missing or unwritable parent folder.
void CheckWritableTarget(const std::string& name, const std::string& target) {
  struct stat status;
  if (stat(target.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) {
      errno = EISDIR;
      FailFromSystem(name);
    }
    if (access(target.c_str(), W_OK) != 0) FailFromSystem(name);
    if (!S_ISREG(status.st_mode)) return;  // a device or a pipe is written as it is
  }
  if (access(FolderOf(target).c_str(), W_OK | X_OK) != 0) FailFromSystem(name);
}

// The quoted-printable, uuencode, Base32 and Base85 file codecs do not
// check their writes (files written by earlier versions were made the same
// way), so a full disk would end their output early without a failure. A
// write that fails for want of room leaves less than one write's worth free
// (the codecs write at most this much at once): a result whose file system
// has less than that left is not trusted.
constexpr uint64_t kRoomAfterWriting = 1 << 20;

void CheckRoomLeft(int descriptor, const std::string& label) {
  struct statvfs room;
  if (fstatvfs(descriptor, &room) != 0) return;
  if (room.f_blocks != 0 &&
      static_cast<uint64_t>(room.f_bavail) * room.f_frsize < kRoomAfterWriting) {
    errno = ENOSPC;
    FailFromSystem(label);
  }
}

const std::string kStandardInput = "standard input";
const std::string kStandardOutput = "standard output";

}  // namespace

std::string InputLabel(const std::string& name) {
  return IsStandardStream(name) ? kStandardInput : name;
}

void RememberCreationMask() {
  creationMask = umask(0);
  umask(creationMask);
}

uint64_t FileSize(const std::string& path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 ? static_cast<uint64_t>(status.st_size) : 0;
}

std::vector<uint8_t> ReadWhole(const std::string& name) {
  const bool standard = IsStandardStream(name);
  const int descriptor = standard ? STDIN_FILENO : open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) FailFromSystem(name);
  const std::string label = InputLabel(name);
  std::vector<uint8_t> bytes;
  struct stat status;
  if (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
    if (!standard) close(descriptor);
    errno = EISDIR;
    FailFromSystem(label);
  }
  for (;;) {
    const size_t used = bytes.size();
    bytes.resize(used + kBlock);
    const ssize_t got = read(descriptor, bytes.data() + used, kBlock);
    if (got < 0 && errno == EINTR) {
      bytes.resize(used);
      continue;
    }
    if (got <= 0) {
      const int readError = errno;
      bytes.resize(used);
      if (!standard) close(descriptor);
      if (got < 0) {
        errno = readError;
        FailFromSystem(label);
      }
      return bytes;
    }
    bytes.resize(used + static_cast<size_t>(got));
  }
}

TemporaryFile::TemporaryFile(const std::string& directory) {
  std::string pattern = directory.empty() ? TemporaryDirectory() + "/fileencoder-XXXXXX"
                                          : directory + "/.fileencoder-XXXXXX";
  descriptor_ = mkostemp(pattern.data(), O_CLOEXEC);
  if (descriptor_ < 0) FailFromSystem(directory.empty() ? TemporaryDirectory() : directory);
  path_ = pattern;
  slot_ = RememberTemporary(path_);
}

TemporaryFile::~TemporaryFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!path_.empty()) unlink(path_.c_str());
  ForgetTemporary(slot_);
}

void TemporaryFile::Release() {
  ForgetTemporary(slot_);
  slot_ = -1;
  path_.clear();
}

InputFile::InputFile(const std::string& name, const std::string& stagedName)
    : path_(name), label_(name) {
  if (!IsStandardStream(name)) return;
  label_ = kStandardInput;
  if (stagedName.empty() || stagedName.find('/') != std::string::npos || stagedName == "." ||
      stagedName == "..") {
    FailUsage("--name must be a file name without a folder");
  }
  std::string pattern = TemporaryDirectory() + "/fileencoder-XXXXXX";
  if (mkdtemp(pattern.data()) == nullptr) FailFromSystem(TemporaryDirectory());
  folder_ = pattern;
  folderSlot_ = RememberTemporary(folder_);
  path_ = folder_ + "/" + stagedName;
  fileSlot_ = RememberTemporary(path_);
  // The destructor does not run when the constructor fails: clean up here.
  try {
    const int descriptor = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) FailFromSystem(path_);
    try {
      Pump(STDIN_FILENO, label_, descriptor, path_);
    } catch (...) {
      close(descriptor);
      throw;
    }
    if (close(descriptor) != 0) FailFromSystem(path_);
  } catch (...) {
    RemoveStaged();
    throw;
  }
}

InputFile::~InputFile() {
  RemoveStaged();
}

void InputFile::RemoveStaged() {
  if (folder_.empty()) return;
  unlink(path_.c_str());
  rmdir(folder_.c_str());
  ForgetTemporary(fileSlot_);
  ForgetTemporary(folderSlot_);
  folder_.clear();
}

PendingOutput::PendingOutput(const std::string& name) : name_(name), target_(name) {
  if (IsStandardStream(name)) {
    file_ = std::make_unique<TemporaryFile>();
    return;
  }
  // Replace the file a link points to, not the link.
  char resolved[PATH_MAX];
  struct stat status;
  if (lstat(name.c_str(), &status) == 0 && S_ISLNK(status.st_mode) &&
      realpath(name.c_str(), resolved) != nullptr) {
    target_ = resolved;
  }
  CheckWritableTarget(name, target_);
  replaces_ = stat(target_.c_str(), &status) != 0 || S_ISREG(status.st_mode);
  // A device or a pipe is written as it is, at the end.
  file_ = replaces_ ? std::make_unique<TemporaryFile>(FolderOf(target_))
                    : std::make_unique<TemporaryFile>();
}

void PendingOutput::Write(const void* bytes, size_t length) {
  WriteAll(file_->descriptor(), bytes, length, replaces_ ? name_ : file_->path());
}

void PendingOutput::Commit() {
  // By name: an engine operation may have put a new file in its place.
  const int result = open(file_->path().c_str(), O_RDONLY | O_CLOEXEC);
  if (result < 0) FailFromSystem(file_->path());
  try {
    CheckRoomLeft(result, replaces_ ? name_ : file_->path());
  } catch (...) {
    close(result);
    throw;
  }
  struct stat status;
  if (!replaces_) {
    const bool standard = IsStandardStream(name_);
    const int descriptor = standard ? STDOUT_FILENO : open(target_.c_str(), O_WRONLY | O_CLOEXEC);
    if (descriptor < 0) {
      close(result);
      FailFromSystem(name_);
    }
    try {
      Pump(result, file_->path(), descriptor, standard ? kStandardOutput : name_);
    } catch (...) {
      close(result);
      if (!standard) close(descriptor);
      throw;
    }
    close(result);
    if (!standard) close(descriptor);
    return;
  }
  // An existing file keeps its permission bits; a new one gets the usual
  // bits of a created file.
  const mode_t mode =
      stat(target_.c_str(), &status) == 0 ? (status.st_mode & 07777) : (0666 & ~creationMask);
  const bool stored = fchmod(result, mode) == 0 && fsync(result) == 0;
  close(result);
  if (!stored) FailFromSystem(name_);
  if (rename(file_->path().c_str(), target_.c_str()) != 0) FailFromSystem(name_);
  file_->Release();
}

void WriteResult(const std::string& name, const void* bytes, size_t length) {
  if (IsStandardStream(name)) {
    WriteAll(STDOUT_FILENO, bytes, length, kStandardOutput);
    return;
  }
  PendingOutput output(name);
  output.Write(bytes, length);
  output.Commit();
}

}  // namespace fe::cli
