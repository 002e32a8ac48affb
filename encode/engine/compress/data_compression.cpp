// In-memory compression: one zlib stream (RFC 1950 wrapper) at level 9.
// Neither operation records an error code: a failure leaves the last error
// as it stood, and the caller reports that.
#include <libdeflate.h>
#include <zlib.h>

#include "file_encoder.h"

namespace {

constexpr int kLevel = 9;
constexpr int kWindowBits = 15;
constexpr int kMemoryLevel = 8;
// Measuring runs the stream into this small scratch area over and over.
constexpr uInt kScratchSize = 32;

enum class Direction { kCompress, kExpand };

// Runs one whole stream over the input, into output or, when output is
// null, only counting what it would write.
bool RunStream(Direction direction, const uint8_t* input, int32_t inputLength, uint8_t* output,
               uint32_t* length) {
  if (input == nullptr || inputLength <= 0 || length == nullptr ||
      (output != nullptr && *length == 0)) {
    return false;
  }
  const bool compressing = direction == Direction::kCompress;
  const uint32_t capacity = *length;
  *length = 0;
  z_stream stream{};
  const int init = compressing ? deflateInit2(&stream, kLevel, Z_DEFLATED, kWindowBits,
                                              kMemoryLevel, Z_DEFAULT_STRATEGY)
                               : inflateInit2(&stream, kWindowBits);
  if (init != Z_OK) return false;
  auto step = [&](int flush) {
    return compressing ? deflate(&stream, flush) : inflate(&stream, flush);
  };
  stream.next_in = const_cast<Bytef*>(input);
  stream.avail_in = static_cast<uInt>(inputLength);
  int result;
  if (output != nullptr) {
    stream.next_out = output;
    stream.avail_out = capacity;
    result = step(Z_FINISH);
  } else {
    // Expansion asks for Z_FINISH only once the input is used up, so that a
    // truncated stream ends in an error instead of a loop; a stream asking
    // for a preset dictionary (Z_NEED_DICT) ends it too.
    Bytef scratch[kScratchSize];
    int flush = compressing ? Z_FINISH : Z_NO_FLUSH;
    do {
      stream.next_out = scratch;
      stream.avail_out = kScratchSize;
      result = step(flush);
      if (!compressing) flush = stream.avail_in > 0 ? Z_NO_FLUSH : Z_FINISH;
    } while (result == Z_OK);
  }
  *length = static_cast<uint32_t>(stream.total_out);
  if (compressing) {
    deflateEnd(&stream);
  } else {
    inflateEnd(&stream);
  }
  return result == Z_STREAM_END;
}

// Expands a whole stream into a buffer of known capacity with libdeflate,
// several times faster than zlib; true only when it succeeded. Whatever it
// does not finish (bad data, too little room) is run through zlib after
// all, so that every failure keeps zlib's result and length.
bool ExpandWhole(const uint8_t* input, int32_t inputLength, uint8_t* output, uint32_t* length) {
  libdeflate_decompressor* const decompressor = libdeflate_alloc_decompressor();
  if (decompressor == nullptr) return false;
  size_t consumed = 0, produced = 0;
  // Bytes after the stream's end are left alone, as zlib leaves them.
  const libdeflate_result result = libdeflate_zlib_decompress_ex(
      decompressor, input, static_cast<size_t>(inputLength), output, *length, &consumed, &produced);
  libdeflate_free_decompressor(decompressor);
  if (result != LIBDEFLATE_SUCCESS) return false;
  *length = static_cast<uint32_t>(produced);
  return true;
}

}  // namespace

extern "C" {

int DeflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output, uint32_t* length) {
  return RunStream(Direction::kCompress, input, inputLength, output, length);
}

int InflateBuffer(const uint8_t* input, int32_t inputLength, uint8_t* output, uint32_t* length) {
  if (input != nullptr && inputLength > 0 && output != nullptr && length != nullptr &&
      *length > 0 && ExpandWhole(input, inputLength, output, length)) {
    return 1;
  }
  return RunStream(Direction::kExpand, input, inputLength, output, length);
}

}  // extern "C"
