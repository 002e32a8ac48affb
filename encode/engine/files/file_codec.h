// Conventions shared by the file forms of the codecs: the name check, the
// way both files are opened, and closing them on every path.
#pragma once

#include <cstdint>
#include <memory>

#include "compress/compressed_file.h"
#include "platform/platform.h"

namespace fe::files {

using compress::ScopedFile;

// Null or empty names: ERROR_INVALID_PARAMETER.
bool CheckNames(const char* inputName, const char* outputName);

// The input for reading and the output created anew; false with the
// platform's open error when either fails (the input is closed again).
struct FilePair {
  ScopedFile input;
  ScopedFile output;
  bool Open(const char* inputName, const char* outputName);
};

// Reads up to size bytes; 0 at the end or on a failed read.
uint32_t ReadChunk(platform::FileHandle file, void* buffer, uint32_t size);

// The memory a buffered reader or writer works through: 1 MiB, so a file
// takes one system call per megabyte, or an 8 KiB block of its own when
// that much memory is not to be had (enough for the longest yEnc line the
// decoder reads, with its vector stores' slack).
class IoBlock {
 public:
  IoBlock();
  IoBlock(const IoBlock&) = delete;
  IoBlock& operator=(const IoBlock&) = delete;
  uint8_t* data() { return data_; }
  uint32_t size() const { return size_; }

 private:
  static constexpr uint32_t kLarge = 1u << 20;
  std::unique_ptr<uint8_t[]> large_;
  uint8_t small_[8192];
  uint8_t* data_;
  uint32_t size_;
};

// Reads a file through an IoBlock: the codecs that take small pieces (16
// or 45 bytes) get exactly the pieces plain reads would give, without a
// system call for each.
class BufferedReader {
 public:
  explicit BufferedReader(platform::FileHandle file) : file_(file) {}
  // Up to size bytes; fewer only at the end of the file (0 there, or when a
  // read fails).
  uint32_t Read(void* buffer, uint32_t size);
  // Clears the buffer, for callers that read secrets.
  void Wipe();

 private:
  platform::FileHandle file_;
  IoBlock block_;
  uint32_t at_ = 0;
  uint32_t length_ = 0;
};

// Collects output and writes it a block at a time (and on Flush). Most
// codecs never look at write errors; Failed() tells those that do.
class BufferedWriter {
 public:
  explicit BufferedWriter(platform::FileHandle file) : file_(file) {}
  ~BufferedWriter() { Flush(); }
  BufferedWriter(const BufferedWriter&) = delete;
  BufferedWriter& operator=(const BufferedWriter&) = delete;
  void Write(const void* data, uint32_t size);
  void Flush();
  // Whether a write failed or was short, with the reason as last error.
  bool Failed() const { return failed_; }
  // Drops what is still buffered.
  void Discard() { length_ = 0; }
  // Clears the buffer (after Flush or Discard), for callers that write
  // secrets.
  void Wipe();

 private:
  platform::FileHandle file_;
  IoBlock block_;
  uint32_t length_ = 0;
  bool failed_ = false;
};

// The base name of a path: after its last '\', else its last '/'.
const char* BaseName(const char* path);

}  // namespace fe::files
