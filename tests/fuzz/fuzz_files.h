// A folder of the fuzzer's own for the file targets, and whole-file reads
// and writes through stdio (independent of the engine's file layer).
#pragma once

#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace fe::fuzz {

// Made once per process under /tmp; `tag` names the target.
inline std::string FuzzFolder(const char* tag) {
  std::string pattern = std::string("/tmp/fe_") + tag + "_fuzz_XXXXXX";
  return std::string(mkdtemp(pattern.data()));
}

inline void WriteWholeFile(const std::string& name, const std::vector<uint8_t>& bytes) {
  FILE* file = std::fopen(name.c_str(), "wb");
  if (file == nullptr) return;
  std::fwrite(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
}

inline std::vector<uint8_t> ReadWholeFile(const std::string& name) {
  std::vector<uint8_t> bytes;
  FILE* file = std::fopen(name.c_str(), "rb");
  if (file == nullptr) return bytes;
  for (int c; (c = std::fgetc(file)) != EOF;)
    bytes.push_back(static_cast<uint8_t>(c));
  std::fclose(file);
  return bytes;
}

}  // namespace fe::fuzz
