// The file decoders (uudecode, yEnc, quoted-printable, Base32, Base58,
// Base85) on files made of random bytes, and on valid encodings with a few
// bytes changed: no crash, no sanitizer report, and an unchanged valid
// encoding decodes back to its data.
#include <cstdio>
#include <string>
#include <vector>

#include "file_encoder.h"
#include "fuzz_files.h"
#include "fuzz_input.h"

namespace {

using fe::fuzz::ReadWholeFile;
using fe::fuzz::WriteWholeFile;

const std::string& Folder() {
  static const std::string folder = fe::fuzz::FuzzFolder("decode_file");
  return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const uint32_t kEncodings[] = {2, 3, 4, 6, 7, 8};
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t choice = input.Take();
  const uint32_t encoding = kEncodings[choice % 6];
  const bool fromValid = choice & 0x80;
  const uint8_t changes = input.Take() % 4;
  std::vector<uint16_t> positions;
  for (int i = 0; i < changes; ++i)
    positions.push_back(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  if (rest.size() > 4096) return 0;

  const std::string plain = Folder() + "/plain";
  const std::string encoded = Folder() + "/encoded";
  const std::string decoded = Folder() + "/decoded";
  std::vector<uint8_t> text = rest;
  bool valid = false;
  if (fromValid) {
    WriteWholeFile(plain, rest);
    valid = EncodeFileByType(plain.c_str(), encoded.c_str(), encoding);
    text = ReadWholeFile(encoded);
    for (uint16_t at : positions) {
      if (!text.empty()) text[at % text.size()] ^= static_cast<uint8_t>(at >> 8 | 1);
    }
  }
  WriteWholeFile(encoded, text);
  const bool done = DecodeFileByType(encoded.c_str(), decoded.c_str(), encoding);
  if (valid && positions.empty() && (!done || ReadWholeFile(decoded) != rest)) __builtin_trap();
  std::remove(plain.c_str());
  std::remove(encoded.c_str());
  std::remove(decoded.c_str());
  return 0;
}
