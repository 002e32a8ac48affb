// Whole-buffer expansion as the engine does it (libdeflate, zlib after it
// for whatever libdeflate does not finish) against zlib alone: result,
// length and every byte up to that length identical for any stream and any
// room. Choice bytes: how the room is chosen, and a size for it; the rest
// is the stream.
#include <algorithm>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"
#include "reference/inflate_reference.h"

namespace {

void Check(bool ok) {
  if (!ok) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t mode = input.Take();
  const uint16_t amount = input.Take16();
  const std::vector<uint8_t> stream = input.Rest();
  if (stream.empty()) return 0;
  const auto length = static_cast<int32_t>(stream.size());
  uint32_t room = amount;
  if (mode & 1) {
    // Near what the stream holds, so that exact fits and one byte short
    // come up: zlib's count into ample room, moved by a few bytes.
    std::vector<uint8_t> ample(1u << 16);
    uint32_t whole = static_cast<uint32_t>(ample.size());
    fe::reference::InflateInto(stream.data(), length, ample.data(), &whole);
    room = static_cast<uint32_t>(std::max<int64_t>(1, int64_t{whole} + (amount % 5) - 2));
  }
  if (room == 0) room = 1;
  std::vector<uint8_t> fast(room, 0xA5), plain(room, 0xA5);
  uint32_t fastLength = room, plainLength = room;
  const bool fastOk = InflateBuffer(stream.data(), length, fast.data(), &fastLength) != 0;
  const bool plainOk =
      fe::reference::InflateInto(stream.data(), length, plain.data(), &plainLength);
  Check(fastOk == plainOk && fastLength == plainLength);
  Check(std::equal(plain.begin(), plain.begin() + plainLength, fast.begin()));
  return 0;
}
