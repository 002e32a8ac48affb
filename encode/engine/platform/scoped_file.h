// Closes a file handle when it goes out of scope.
#pragma once

#include "platform/platform.h"

namespace fe::platform {

class ScopedFile {
 public:
  explicit ScopedFile(FileHandle file = kInvalidFile) : file_(file) {}
  ~ScopedFile() { Close(); }
  ScopedFile(const ScopedFile&) = delete;
  ScopedFile& operator=(const ScopedFile&) = delete;
  FileHandle get() const { return file_; }
  bool Valid() const { return file_ != kInvalidFile; }
  void Close() { Reset(kInvalidFile); }
  // Closes the current file and takes over another.
  void Reset(FileHandle file) {
    CloseFile(file_);
    file_ = file;
  }

 private:
  FileHandle file_;
};

}  // namespace fe::platform
