// Base85 in the Ascii85 manner: '!' + digit, 'z' for an all-zero group, no
// delimiters.
#include <algorithm>
#include <cstring>

#include "codecs/base85_kernels.h"
#include "codecs/codec_internal.h"
#include "codecs/radix85.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"

namespace {

using namespace fe::codecs;

constexpr uint8_t kFirstDigit = '!';
constexpr uint8_t kLastDigit = 'u';
constexpr uint32_t kPadDigit = 84;  // 'u'

void PutDigits(uint32_t value, int count, char* out) {
  uint8_t digits[5];
  SplitBase85(value, digits);
  for (int k = 0; k < count; ++k)
    out[k] = static_cast<char>(digits[k] + kFirstDigit);
}

}  // namespace

namespace fe::codecs {

int32_t Base85Decoder::Feed(const char* text, size_t length, uint8_t* out, int64_t capacity) {
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  int64_t count = 0;
  const auto* kernels = ChosenBase85Kernels();
  for (size_t i = 0; i < length && !full; ++i) {
    const uint8_t c = in[i];
    // Whole groups of digits at once from a group's start, while they fit.
    if (kernels != nullptr && digits == 0 && c >= kFirstDigit && c <= kLastDigit) {
      const size_t groups = kernels->decodeGroups(
          in + i, length - i, capacity > count ? static_cast<size_t>(capacity - count) / 4 : 0,
          out + count);
      if (groups > 0) {
        i += 5 * groups - 1;
        count += static_cast<int64_t>(4 * groups);
        continue;
      }
    }
    if (c == 'z') {
      if (digits != 0) return fe::FailWith(fe::kErrorInvalidData);
      if (count + 4 > capacity) {
        full = true;
        break;
      }
      std::memset(out + count, 0, 4);
      count += 4;
      continue;
    }
    if (c < kFirstDigit || c > kLastDigit) continue;  // white space and line breaks included
    value = value * 85 + (c - kFirstDigit);           // wraps on overlong groups, as always
    if (++digits == 5) {
      if (count + 4 > capacity) {
        full = true;
        break;
      }
      WriteBigEndian32(value, out + count);
      count += 4;
      value = 0;
      digits = 0;
    }
  }
  return static_cast<int32_t>(count);
}

int32_t Base85Decoder::Finish(uint8_t* out, int64_t capacity) {
  if (digits < 2 || digits - 1 > capacity) return 0;
  uint32_t padded = value;
  for (int k = digits; k < 5; ++k)
    padded = padded * 85 + kPadDigit;
  uint8_t group[4];
  WriteBigEndian32(padded, group);
  std::memcpy(out, group, static_cast<size_t>(digits - 1));
  const int32_t written = digits - 1;
  value = 0;
  digits = 0;
  return written;
}

}  // namespace fe::codecs

extern "C" {

int32_t Base85Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  if (output == nullptr || capacity < 1) return fe::FailWith(fe::kErrorInvalidParameter);
  output[0] = '\0';
  // Unlike the other codecs an empty input is an error here.
  if (input == nullptr || length < 1) return fe::FailWith(fe::kErrorInvalidParameter);
  int64_t count = 0;
  int32_t i = 0;
  // The groups that fit whatever their values (five characters each) go
  // to the kernel at once.
  if (const auto* kernels = ChosenBase85Kernels(); kernels != nullptr) {
    const int32_t groups = std::min(length / 4, capacity / 5);
    count = static_cast<int64_t>(kernels->encodeGroups(input, static_cast<size_t>(groups), output));
    i = 4 * groups;
  }
  // Groups that no longer fit are left out without an error as long as the
  // terminator still fits: callers size the buffer from the input.
  for (; length - i >= 4 && count + 5 <= capacity; i += 4) {
    const uint32_t value = ReadBigEndian32(input + i);
    if (value == 0) {
      output[count++] = 'z';
    } else {
      PutDigits(value, 5, output + count);
      count += 5;
    }
  }
  const int32_t rest = length - i;
  if (rest > 0 && rest < 4 && count + 5 <= capacity) {
    uint8_t group[4] = {0, 0, 0, 0};
    std::memcpy(group, input + i, static_cast<size_t>(rest));
    PutDigits(ReadBigEndian32(group), rest + 1, output + count);
    count += rest + 1;
  }
  if (count >= capacity) return fe::FailWith(fe::kErrorInsufficientBuffer);
  output[count] = '\0';
  return static_cast<int32_t>(count);
}

int32_t Base85Decode(const char* text, int32_t length, uint8_t* output, int32_t capacity) {
  if (output == nullptr || capacity < 1 || text == nullptr) {
    return fe::FailWith(fe::kErrorInvalidParameter);
  }
  const int64_t total = length == -1 ? static_cast<int64_t>(std::strlen(text)) : length;
  if (total < 1) return fe::FailWith(fe::kErrorInvalidParameter);
  Base85Decoder decoder;
  const int32_t count = decoder.Feed(text, static_cast<size_t>(total), output, capacity);
  if (count < 0 || decoder.full) return count;
  return count + decoder.Finish(output + count, capacity - count);
}

}  // extern "C"
