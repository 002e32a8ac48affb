// What the file compressors share: checking the source, choosing the output
// (a temporary file beside the source when working in place) and finishing
// with the move over the source.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/platform.h"
#include "platform/scoped_file.h"

namespace fe::compress {

inline constexpr uint32_t kBufferSize = 8192;

// Checks that the source names a regular file: false with last error 2 for
// no name, the system's error when it cannot be examined, and 222 (bad file
// type, a system code on purpose) for a directory or device.
bool CheckSource(const char* source);

// Where the result goes: the given output, or for in-place work (no output,
// an empty one, or the source itself) a new temporary file beside the source.
class Output {
 public:
  Output(const char* source, const char* output);
  bool InPlace() const { return in_place_; }
  // Creates the output anew and remembers which file that was; on failure
  // the reserved temporary name is given up again.
  platform::FileHandle Create();
  // Removes the output after a failure: only the file this call created.
  void Discard() const;
  // In place: moves the result over the source, provided the source is
  // still the file that was read; on failure removes the result and leaves
  // the reason.
  bool Commit(const platform::FileIdentity& source) const;

 private:
  std::string source_;
  std::string path_;
  bool in_place_;
  bool created_ = false;
  platform::FileIdentity identity_;
};

using platform::ScopedFile;

// Writes all of data; false on a failed or short write.
bool WriteAll(platform::FileHandle file, const uint8_t* data, size_t size);

// The LZMA-alone compressor and expander (type 3).
bool CompressLzmaFile(const char* source, const char* output, uint32_t level);
bool ExpandLzmaFile(const char* source, const char* output);

}  // namespace fe::compress
