// Conventions shared by the file forms of the codecs: the name check, the
// way both files are opened, and closing them on every path.
#pragma once

#include <cstdint>

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
// Writes without checking: these codecs have never reported write errors.
void WriteUnchecked(platform::FileHandle file, const void* data, uint32_t size);

// The base name of a path: after its last '\', else its last '/'.
const char* BaseName(const char* path);

}  // namespace fe::files
