// CreateTokenText: random bytes of a power-of-two strength as Base58,
// Base64, Base32 or Base85 text.
#include <cstring>

#include "crypt/wipe.h"
#include "errors/last_error.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

constexpr int32_t kCapacity = 1024;

// 0 means 128; then 64 to 4096 bits, rounded up to a power of two.
uint32_t Strength(int32_t bitLength) {
  if (bitLength == 0) return 128;
  if (bitLength < 64) return 64;
  if (bitLength > 4096) return 4096;
  uint32_t bits = 64;
  while (bits < static_cast<uint32_t>(bitLength))
    bits *= 2;
  return bits;
}

// The text length the encoding is expected to need, terminator included.
uint32_t ExpectedLength(int32_t encoding, uint32_t bits) {
  const uint32_t bytes = bits / 8;
  switch (encoding) {
    case dataEncodeBase64:
      return (bytes + 2) / 3 * 4 + 1;
    case dataEncodeBase32:
      return (bits + 4) / 5 + 1;
    default:
      return (bits + 5) / 6 + 1;
  }
}

}  // namespace

extern "C" int32_t CreateTokenText(int32_t bitLength, int32_t encodingType, char* output) {
  if (output == nullptr) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return 0;
  }
  *output = '\0';
  const int32_t encoding = encodingType == 0 ? dataEncodeBase58 : encodingType;
  if (encoding != dataEncodeBase64 && encoding != dataEncodeBase58 &&
      encoding != dataEncodeBase32 && encoding != dataEncodeBase85) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return 0;
  }
  const uint32_t bits = Strength(bitLength);
  // The limits above keep every token within the buffer; the check stays
  // as a guard.
  const uint32_t expected = ExpectedLength(encoding, bits);
  if (expected == 0 || expected > kCapacity + 1) {
    fe::SetLastError(fe::ControlError(ovErrorBufferTooSmall));
    return 0;
  }
  uint8_t random[512];
  const uint32_t bytes = bits / 8;
  if (!fe::platform::RandomBytes(random, bytes)) {
    fe::SetLastError(fe::ControlError(ovErrorInternalFailure));
    return 0;
  }
  int32_t length = EncodeBuffer(random, static_cast<int32_t>(bytes), output, kCapacity,
                                static_cast<uint32_t>(encoding));
  fe::crypt::Wipe(random, sizeof random);
  if (length < 1) {
    *output = '\0';
    return 0;
  }
  if (encoding == dataEncodeBase64 || encoding == dataEncodeBase32) {
    while (length > 0 && output[length - 1] == '=')
      --length;
  }
  output[length] = '\0';
  if (encoding == dataEncodeBase32) {
    for (int32_t i = 0; i < length; ++i) {
      if (output[i] >= 'A' && output[i] <= 'Z') output[i] = static_cast<char>(output[i] + 32);
    }
  }
  return length;
}
