// In-memory compression: one zlib stream (RFC 1950 wrapper) at level 9.
// Neither operation records an error code: a failure leaves the last error
// as it stood, and the caller reports that.
#include <zlib.h>

#include <cstring>

#include "file_encoder.h"

namespace {

constexpr int kLevel = 9;
constexpr int kWindowBits = 15;
constexpr int kMemoryLevel = 8;
// Measuring runs the stream into this small scratch area over and over.
constexpr uInt kScratchSize = 32;

bool ValidArguments(const uint8_t* input, int32_t inputLength, const uint8_t* output,
                    const uint32_t* length) {
  return input != nullptr && inputLength > 0 && length != nullptr &&
         (output == nullptr || *length > 0);
}

}  // namespace

extern "C" {

int DeflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output, uint32_t* length) {
  if (!ValidArguments(input, inputLength, output, length)) return 0;
  const uint32_t capacity = *length;
  *length = 0;
  z_stream stream{};
  if (deflateInit2(&stream, kLevel, Z_DEFLATED, kWindowBits, kMemoryLevel, Z_DEFAULT_STRATEGY) !=
      Z_OK) {
    return 0;
  }
  stream.next_in = const_cast<Bytef*>(input);
  stream.avail_in = static_cast<uInt>(inputLength);
  int result;
  if (output != nullptr) {
    stream.next_out = output;
    stream.avail_out = capacity;
    result = deflate(&stream, Z_FINISH);
  } else {
    Bytef scratch[kScratchSize];
    do {
      stream.next_out = scratch;
      stream.avail_out = kScratchSize;
      result = deflate(&stream, Z_FINISH);
    } while (result == Z_OK);
  }
  *length = static_cast<uint32_t>(stream.total_out);
  deflateEnd(&stream);
  return result == Z_STREAM_END;
}

int InflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output, uint32_t* length) {
  if (!ValidArguments(input, inputLength, output, length)) return 0;
  const uint32_t capacity = *length;
  *length = 0;
  z_stream stream{};
  if (inflateInit2(&stream, kWindowBits) != Z_OK) return 0;
  stream.next_in = const_cast<Bytef*>(input);
  stream.avail_in = static_cast<uInt>(inputLength);
  int result;
  if (output != nullptr) {
    stream.next_out = output;
    stream.avail_out = capacity;
    result = inflate(&stream, Z_FINISH);
  } else {
    // Z_FINISH only once the input is used up, so that a truncated stream
    // ends in an error instead of a loop; a stream asking for a preset
    // dictionary (Z_NEED_DICT) ends it too.
    Bytef scratch[kScratchSize];
    int flush = Z_NO_FLUSH;
    do {
      stream.next_out = scratch;
      stream.avail_out = kScratchSize;
      result = inflate(&stream, flush);
      flush = stream.avail_in > 0 ? Z_NO_FLUSH : Z_FINISH;
    } while (result == Z_OK);
  }
  *length = static_cast<uint32_t>(stream.total_out);
  inflateEnd(&stream);
  return result == Z_STREAM_END;
}

}  // extern "C"
