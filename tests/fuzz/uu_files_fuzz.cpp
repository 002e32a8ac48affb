// UudecodeFile as this processor runs it (vector kernels where it has
// them) against the character-at-a-time reference, on uuencoded files
// whose body lines the input chooses: the same bytes in the file, and the
// same result, for whole blocks and for blocks cut off before their end.
// The first choice byte's bit 0 cuts the block off; the rest is split into
// lines at LF.
#include <string>
#include <vector>

#include "file_encoder.h"
#include "fuzz_files.h"
#include "fuzz_input.h"
#include "reference/uu_reference.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const bool ended = (input.Take() & 1) == 0;
  const std::vector<uint8_t> rest = input.Rest();
  // Lines as the reference reads them: no NUL or CR inside (they have line
  // rules of their own), shorter than the reader's 1024-byte window, and
  // none of length 0, which would end the block early.
  std::vector<std::string> lines;
  std::string line;
  for (size_t at = 0; at <= rest.size(); ++at) {
    if (at == rest.size() || rest[at] == '\n') {
      if (line.empty() || ((static_cast<uint8_t>(line[0]) - 32) & 63) == 0) line.insert(0, "!");
      lines.push_back(line.substr(0, 1000));
      line.clear();
      continue;
    }
    const char c = static_cast<char>(rest[at]);
    line += c == '\0' || c == '\r' ? 'A' : c;
  }
  std::string text = "begin 644 x\n";
  for (const std::string& body : lines)
    text += body + "\n";
  if (ended) text += "`\nend\n";

  static const std::string folder = fe::fuzz::FuzzFolder("uu_files");
  const std::string source = folder + "/in.uu", output = folder + "/out.bin";
  fe::fuzz::WriteWholeFile(source, std::vector<uint8_t>(text.begin(), text.end()));
  const fe::reference::UudecodedBody body = fe::reference::UudecodeBody(lines);
  if (UudecodeFile(source.c_str(), output.c_str()) != (ended ? 1 : 0)) __builtin_trap();
  const size_t kept = ended ? body.bytes.size() : body.handedOn;
  if (fe::fuzz::ReadWholeFile(output) !=
      std::vector<uint8_t>(body.bytes.begin(), body.bytes.begin() + static_cast<long>(kept))) {
    __builtin_trap();
  }
  return 0;
}
