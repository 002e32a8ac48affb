// Whole-buffer expansion of a zlib stream by zlib alone, one Z_FINISH call
// into the given room: the engine's faster path must give the same result,
// length and bytes for every stream.
#pragma once

#include <zlib.h>

#include <cstdint>

namespace fe::reference {

inline bool InflateInto(const uint8_t* input, int32_t inputLength, uint8_t* output,
                        uint32_t* length) {
  z_stream stream{};
  if (inflateInit2(&stream, 15) != Z_OK) return false;
  stream.next_in = const_cast<Bytef*>(input);
  stream.avail_in = static_cast<uInt>(inputLength);
  stream.next_out = output;
  stream.avail_out = *length;
  const int result = inflate(&stream, Z_FINISH);
  *length = static_cast<uint32_t>(stream.total_out);
  inflateEnd(&stream);
  return result == Z_STREAM_END;
}

}  // namespace fe::reference
