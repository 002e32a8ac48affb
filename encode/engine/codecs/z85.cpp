// Z85: whole 4-byte groups to five characters, no shorthand.
#include <algorithm>
#include <cstring>

#include "codecs/base85_kernels.h"
#include "codecs/radix85.h"
#include "codecs/z85_alphabet.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"

namespace {

using namespace fe::codecs;

}  // namespace

extern "C" {

int32_t Z85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  if (output == nullptr || capacity < 1) return fe::FailWith(fe::kErrorInvalidParameter);
  output[0] = '\0';
  if (input == nullptr || length < 1) return fe::FailWith(fe::kErrorInvalidParameter);
  if (length % 4 != 0) return -1;  // no code of its own: callers check the length
  int64_t count = 0;
  int32_t i = 0;
  if (const auto* kernels = ChosenBase85Kernels(); kernels != nullptr) {
    const int32_t groups = std::min(length / 4, capacity / 5);
    kernels->encodeZ85Groups(input, static_cast<size_t>(groups), output);
    count = 5 * int64_t{groups};
    i = 4 * groups;
  }
  for (; i < length && count + 5 <= capacity; i += 4) {
    uint8_t digits[5];
    SplitBase85(ReadBigEndian32(input + i), digits);
    for (int k = 0; k < 5; ++k)
      output[count + k] = kZ85Alphabet[digits[k]];
    count += 5;
  }
  if (count >= capacity) return -1;
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

int32_t Z85Decode(const char* text, uint8_t* output, int32_t capacity) {
  const size_t length = text == nullptr ? 0 : std::strlen(text);
  if (length == 0 || length % 5 != 0 || output == nullptr || capacity < 1) {
    return fe::FailWith(fe::kErrorInvalidParameter);
  }
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  int64_t count = 0;
  size_t i = 0;
  // Whole groups up to the first character outside the alphabet at once;
  // the loop below then reports that one.
  if (const auto* kernels = ChosenBase85Kernels(); kernels != nullptr) {
    const size_t groups =
        kernels->decodeZ85Groups(in, length, static_cast<size_t>(capacity) / 4, output);
    count = static_cast<int64_t>(4 * groups);
    i = 5 * groups;
  }
  for (; i < length && count + 4 <= capacity; i += 5) {
    uint32_t value = 0;
    for (int k = 0; k < 5; ++k) {
      const uint8_t digit = kZ85ValueOf[in[i + k]];
      if (digit == kZ85NotInAlphabet) return -1;
      value = value * 85 + digit;
    }
    WriteBigEndian32(value, output + count);
    count += 4;
  }
  return static_cast<int32_t>(count);
}

}  // extern "C"
