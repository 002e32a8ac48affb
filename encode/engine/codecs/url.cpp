// URL percent-encoding and decoding.
#include <cstring>

#include "codecs/codec_internal.h"
#include "codecs/hex_digits.h"
#include "codecs/url_escapes.h"
#include "codecs/url_kernels.h"
#include "file_encoder.h"

namespace {

using namespace fe::codecs;

// Length -1 stands for the string length; other negative lengths are invalid.
int64_t ResolveLength(const char* text, int32_t length) {
  return length == -1 ? static_cast<int64_t>(std::strlen(text)) : length;
}

}  // namespace

namespace fe::codecs {

int32_t UrlEncodeInto(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                      int64_t bufferSize) {
  if (input == nullptr || output == nullptr || capacity < 1) return -1;
  const int64_t total = ResolveLength(reinterpret_cast<const char*>(input), length);
  if (total < 0) return -1;
  int64_t count = 0;
  int64_t i = 0;
  // The bulk far from the capacity, where no byte can fail for room.
  if (const auto* kernels = ChosenUrlKernels(); kernels != nullptr) {
    size_t written = 0;
    i = static_cast<int64_t>(kernels->encodeBytes(input, static_cast<size_t>(total),
                                                  static_cast<size_t>(capacity), output, &written));
    count = static_cast<int64_t>(written);
  }
  for (; i < total; ++i) {
    if (count >= capacity) return -1;
    const uint8_t c = input[i];
    if (kUrlWrittenAsIs[c]) {
      output[count++] = static_cast<char>(c);
    } else {
      // Three characters and the terminator must fit: never a cut escape.
      if (capacity - count < 4) return -1;
      output[count] = '%';
      PutHexByte(c, output + count + 1);
      count += 3;
    }
  }
  if (count >= bufferSize) return -1;
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

int32_t UrlDecodeInto(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                      int64_t bufferSize) {
  if (text == nullptr || output == nullptr || capacity < 1) return -1;
  int64_t left = ResolveLength(text, length);
  if (left < 0) return -1;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  int64_t count = 0;
  const auto* kernels = ChosenUrlKernels();
  while (left > 0) {
    // Plain text and escapes at once, up to a '+' or near the capacity.
    if (kernels != nullptr) {
      size_t written = 0;
      const size_t taken =
          kernels->decodeText(in, static_cast<size_t>(left), static_cast<size_t>(capacity - count),
                              output + count, &written);
      in += taken;
      left -= static_cast<int64_t>(taken);
      count += static_cast<int64_t>(written);
      if (left == 0) break;
    }
    if (count >= capacity) return -1;
    const uint8_t c = *in;
    if (c == '%' && left > 2 && kHexValue[in[1]] != kNotHex && kHexValue[in[2]] != kNotHex) {
      output[count++] = static_cast<uint8_t>((kHexValue[in[1]] << 4) | kHexValue[in[2]]);
      in += 3;
      left -= 3;
    } else if (c == '+') {
      // A '+' becomes a space without moving past it, so it and everything
      // after it read as spaces: existing callers depend on this.
      for (; left > 0; --left) {
        if (count >= capacity) return -1;
        output[count++] = ' ';
      }
    } else {
      output[count++] = c;
      ++in;
      --left;
    }
  }
  if (count < bufferSize) output[count] = '\0';
  return static_cast<int32_t>(count);
}

}  // namespace fe::codecs

extern "C" {

int32_t UrlEncode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  return UrlEncodeInto(input, length, output, capacity, int64_t{capacity} + 1);
}

int32_t UrlDecode(const char* text, int32_t length, uint8_t* output, int32_t capacity) {
  return UrlDecodeInto(text, length, output, capacity, int64_t{capacity} + 1);
}

}  // extern "C"
