// The yEnc body coders as this processor runs them (vector kernels where it
// has them) against the byte-at-a-time loops of the format: every
// character, byte and result identical. Choice bytes: the direction, the
// starting column and a seed for the pieces; the rest is the data or the
// lines of text.
#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "codecs/yenc_body.h"
#include "fuzz_input.h"
#include "reference/yenc_reference.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

void Encode(const std::vector<uint8_t>& data, size_t column, std::mt19937& random) {
  size_t fastUsed = column, plainUsed = column;
  std::string fast;
  for (size_t at = 0; at < data.size();) {
    const size_t piece = std::min<size_t>(data.size() - at, 1 + random() % 600);
    std::vector<char> out(fe::codecs::YencEncodedRoom(piece));
    fast.append(out.data(),
                fe::codecs::EncodeYencBody(data.data() + at, piece, out.data(), &fastUsed));
    at += piece;
  }
  Check(fast == fe::reference::YencEncodeBody(data.data(), data.size(), &plainUsed));
  Check(fastUsed == plainUsed);
}

// Each line up to and with its LF, as the file decoder reads them.
void Decode(const std::vector<uint8_t>& bytes) {
  const std::string text(bytes.begin(), bytes.end());
  for (size_t at = 0; at < text.size();) {
    const size_t lf = text.find('\n', at);
    const size_t end = std::min(lf == std::string::npos ? text.size() : lf + 1, at + 4095);
    const std::string line = text.substr(at, end - at);
    std::vector<uint8_t> fast(line.size() + 64);
    size_t made = 0;
    const bool fastOk = fe::codecs::DecodeYencLine(line.data(), line.size(), fast.data(), &made);
    std::vector<uint8_t> plain;
    Check(fastOk == fe::reference::YencDecodeLine(line, &plain));
    if (fastOk) Check(made == plain.size() && std::equal(plain.begin(), plain.end(), fast.begin()));
    at = end;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t mode = input.Take();
  const size_t column = input.Take() % 128;
  std::mt19937 random(input.Take16());
  if (mode & 1) {
    Decode(input.Rest());
  } else {
    Encode(input.Rest(), column, random);
  }
  return 0;
}
