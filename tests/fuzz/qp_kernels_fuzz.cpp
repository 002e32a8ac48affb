// Quoted-printable as this processor runs it (vector kernels where it has
// them) against the one-at-a-time encoder and phases. Decoding: every
// count, output byte and state field identical over chunk splits and
// capacities the input chooses. Encoding: the same characters, count and
// failure at a capacity and wrapping the input chooses, and nothing written
// after the last character; and the file form's 16-byte pieces against
// each piece encoded alone. Choice bytes: the mode (bit 0 encodes, bit 1
// wraps) and a seed; the rest is the text or the data.
#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "chunk_differential.h"
#include "codecs/codec_internal.h"
#include "file_encoder.h"
#include "fuzz_input.h"
#include "reference/qp_reference.h"

namespace {

void Decode(const std::vector<uint8_t>& bytes, std::mt19937& random) {
  const std::string copy(bytes.begin(), bytes.end());
  const char* text = copy.c_str();
  fe::fuzz::CompareInPieces<uint8_t, QpDecodeState>(
      static_cast<int32_t>(bytes.size()), random,
      [&](int32_t piece) {
        return random() % 3 == 0 ? static_cast<int32_t>(random() % (piece + 2u)) : piece + 1;
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return QpDecodeChunk(text + at, piece, out, capacity, state);
      },
      [&](int32_t at, int32_t piece, uint8_t* out, int32_t capacity, QpDecodeState* state) {
        return fe::reference::QpDecodeChunk(text + at, piece, out, capacity, state);
      },
      [](const QpDecodeState& a, const QpDecodeState& b) {
        return a.phase == b.phase && a.high == b.high && a.low == b.low;
      });
}

void Encode(const std::vector<uint8_t>& data, bool wrap, std::mt19937& random) {
  const auto length = static_cast<int32_t>(data.size());
  const int32_t capacity = length + length / 3 + static_cast<int32_t>(random() % (2u * length + 8));
  std::vector<char> out(static_cast<size_t>(capacity) + 2 + 8, '#');
  const int32_t count = QpEncode(data.data(), length, out.data(), capacity, wrap);
  std::string plain;
  fe::fuzz::Check(count == fe::reference::QpEncode(data.data(), length, capacity, wrap,
                                                   int64_t{capacity} + 2, &plain));
  if (count < 0) return;
  fe::fuzz::Check(std::string(out.data(), static_cast<size_t>(count)) == plain);
  for (size_t k = static_cast<size_t>(count); k < out.size(); ++k)
    fe::fuzz::Check(out[k] == '#');
}

void EncodePieces(const std::vector<uint8_t>& data) {
  std::vector<char> out(3 * data.size() + 8, '#');
  const size_t made = fe::codecs::QpEncodePieces(data.data(), data.size(), out.data());
  std::string plain;
  for (size_t at = 0; at < data.size(); at += 16) {
    const auto n = static_cast<int32_t>(std::min<size_t>(16, data.size() - at));
    std::string piece;
    fe::fuzz::Check(fe::reference::QpEncode(data.data() + at, n, 48, true, 50, &piece) >= 0);
    plain += piece;
  }
  fe::fuzz::Check(std::string(out.data(), made) == plain);
  for (size_t k = made; k < out.size(); ++k)
    fe::fuzz::Check(out[k] == '#');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t mode = input.Take();
  std::mt19937 random(input.Take16());
  const std::vector<uint8_t> rest = input.Rest();
  if (mode & 1) {
    Encode(rest, (mode & 2) != 0, random);
    EncodePieces(rest);
  } else {
    Decode(rest, random);
  }
  return 0;
}
