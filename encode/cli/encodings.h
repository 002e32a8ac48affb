// The encodings the tool names, with the engine's numbers for their data
// form (EncodeBuffer/DecodeBuffer) and their file form (EncodeFileByType/
// DecodeFileByType).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace fe::cli {

struct Encoding {
  const char* name;
  int data;    // data encoding number, -1 when there is no data form
  int file;    // file encoding number, -1 when there is no file form
  bool wraps;  // the data form can break lines (--wrap)
  bool utf16;  // the data form encodes UTF-16 code units
};

const Encoding& FindEncoding(const std::string& name);
// Every name and alias the tool accepts.
std::vector<std::string> EncodingNames();

// Room that the data form's encoder needs for `length` units (bytes, or
// code units for UTF-16 rows), terminator included.
int64_t EncodedSizeBound(const Encoding& encoding, int64_t length, bool wrap);
// Room that the data form's decoder needs for a text of `length`
// characters, in bytes.
int64_t DecodedSizeBound(const Encoding& encoding, int64_t length);

}  // namespace fe::cli
