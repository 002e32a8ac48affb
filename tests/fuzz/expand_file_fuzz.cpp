// File expansion of any bytes with every method and with detection: no
// crash, no spin on truncated streams, and no output left after a failure.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "file_encoder.h"
#include "fuzz_files.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint32_t type = input.Take() % 4;
  std::vector<uint8_t> bytes = input.Rest();
  // An LZMA header may ask for a dictionary of up to 4 GiB, which the
  // expander allocates as asked; untouched that costs nothing natively, but
  // the sanitizer maps shadow memory for all of it and the run crawls. Keep
  // LZMA dictionaries below 16 MiB so the fuzzer spends its time in parsing.
  if ((type == 0 || type == 3) && bytes.size() > 4) bytes[4] = 0;
  static const std::string folder = fe::fuzz::FuzzFolder("expand");
  const std::string source = folder + "/source";
  const std::string output = folder + "/output";
  fe::fuzz::WriteWholeFile(source, bytes);
  const bool expanded = ExpandFileByType(source.c_str(), output.c_str(), type);
  if (!expanded && access(output.c_str(), F_OK) == 0) __builtin_trap();
  std::remove(output.c_str());
  std::remove(source.c_str());
  return 0;
}
