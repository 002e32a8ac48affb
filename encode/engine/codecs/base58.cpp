// Base58: the whole input as one big number, leading zero bytes as '1'.
// The conversion runs on wide limbs (base 58^5 one way, 2^32 the other)
// rather than byte by byte; the digits are the same, the loops 5 to 20
// times shorter. It stays quadratic in the input length.
#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "codecs/codec_internal.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

constexpr char kAlphabet[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
constexpr uint8_t kNotInAlphabet = 0xFF;
constexpr uint32_t kLimbBase = 58u * 58u * 58u * 58u * 58u;  // five digits a limb
constexpr int kDigitsPerLimb = 5;

constexpr auto kValueOf = fe::codecs::InverseAlphabet(kAlphabet, kNotInAlphabet);

}  // namespace

extern "C" {

int32_t Base58Encode(const uint8_t* input, int32_t length, char* output, int32_t capacity) {
  if (input == nullptr || length < 0 || output == nullptr) {
    return fe::FailWith(fe::kErrorInvalidParameter);
  }
  if (length == 0) {
    if (capacity >= 1) output[0] = '\0';
    return 0;
  }
  int32_t zeros = 0;
  while (zeros < length && input[zeros] == 0)
    ++zeros;

  // Little-endian limbs of five base-58 digits; the input is taken in
  // big-endian 32-bit words, the first word holding the odd bytes.
  const size_t maxDigits = static_cast<size_t>(length - zeros) * 138 / 100 + 1;
  fe::platform::ZeroedBlock<uint32_t> block(maxDigits / kDigitsPerLimb + 2);
  uint32_t* const limbs = block.data();
  if (limbs == nullptr) return fe::FailWith(fe::kErrorOutOfMemory);
  size_t used = 0;
  int32_t i = zeros;
  while (i < length) {
    const int take = i == zeros && (length - zeros) % 4 != 0 ? (length - zeros) % 4 : 4;
    uint64_t carry = 0;
    for (int k = 0; k < take; ++k)
      carry = (carry << 8) | input[i + k];
    i += take;
    const uint64_t scale = uint64_t{1} << (8 * take);
    for (size_t j = 0; j < used; ++j) {
      const uint64_t x = limbs[j] * scale + carry;
      limbs[j] = static_cast<uint32_t>(x % kLimbBase);
      carry = x / kLimbBase;
    }
    while (carry != 0) {
      limbs[used++] = static_cast<uint32_t>(carry % kLimbBase);
      carry /= kLimbBase;
    }
  }
  // Digits, least significant first, without the top limb's leading zeros.
  int64_t digits = static_cast<int64_t>(used) * kDigitsPerLimb;
  if (used > 0) {
    for (uint32_t top = limbs[used - 1]; top < kLimbBase / 58 && digits > 1; top *= 58) {
      --digits;
    }
  }
  if (zeros + digits + 1 > capacity) return fe::FailWith(fe::kErrorInsufficientBuffer);
  std::memset(output, '1', static_cast<size_t>(zeros));
  char* out = output + zeros + digits;
  *out = '\0';
  for (size_t j = 0; j < used; ++j) {
    uint32_t limb = limbs[j];
    for (int d = 0; d < kDigitsPerLimb && out > output + zeros; ++d) {
      *--out = kAlphabet[limb % 58];
      limb /= 58;
    }
  }
  return static_cast<int32_t>(zeros + digits);
}

int32_t Base58Decode(const char* text, uint8_t* output, int32_t capacity) {
  if (text == nullptr || text[0] == '\0') return 0;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  const size_t length = std::strlen(text);
  size_t ones = 0;
  while (ones < length && in[ones] == '1')
    ++ones;

  const size_t maxBytes = (length - ones) * 733 / 1000 + 1;
  fe::platform::ZeroedBlock<uint32_t> block(maxBytes / 4 + 2);
  uint32_t* const limbs = block.data();
  if (limbs == nullptr) return fe::FailWith(fe::kErrorOutOfMemory);
  size_t used = 0;
  size_t i = ones;
  while (i < length) {
    const int take = static_cast<int>(std::min<size_t>(kDigitsPerLimb, length - i));
    uint64_t carry = 0;
    uint64_t scale = 1;
    for (int k = 0; k < take; ++k) {
      const uint8_t value = kValueOf[in[i + k]];
      if (value == kNotInAlphabet) return fe::FailWith(fe::kErrorInvalidData);
      carry = carry * 58 + value;
      scale *= 58;
    }
    i += take;
    for (size_t j = 0; j < used; ++j) {
      const uint64_t x = limbs[j] * scale + carry;
      limbs[j] = static_cast<uint32_t>(x);
      carry = x >> 32;
    }
    while (carry != 0) {
      limbs[used++] = static_cast<uint32_t>(carry);
      carry >>= 32;
    }
  }
  size_t bytes = used * 4;
  if (used > 0) {
    for (uint32_t top = limbs[used - 1]; (top >> 24) == 0 && bytes > 0; top <<= 8)
      --bytes;
  }
  if (ones + bytes > static_cast<size_t>(capacity < 0 ? 0 : capacity)) {
    return fe::FailWith(fe::kErrorInsufficientBuffer);
  }
  if (output == nullptr) return fe::FailWith(fe::kErrorInvalidParameter);
  std::memset(output, 0, ones);
  uint8_t* out = output + ones + bytes;
  for (size_t j = 0; j < used && out > output + ones; ++j) {
    for (int k = 0; k < 4 && out > output + ones; ++k)
      *--out = static_cast<uint8_t>(limbs[j] >> (8 * k));
  }
  return static_cast<int32_t>(ones + bytes);
}

}  // extern "C"
