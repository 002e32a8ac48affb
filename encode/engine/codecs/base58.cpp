// Base58: the whole input as one big number, leading zero bytes as '1'.
// The radix conversion is GMP's low-level one (mpn_set_str/mpn_get_str),
// which divides and conquers with fast multiplication, so a megabyte takes
// a fraction of a second instead of the minutes a digit-by-digit loop
// needs; the digits are the same.
#include <gmp.h>

#include <cstdint>
#include <cstring>

#include "codecs/codec_internal.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

constexpr char kAlphabet[] = "123456789ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz";
constexpr uint8_t kNotInAlphabet = 0xFF;
constexpr int kRadix = 58;

constexpr auto kValueOf = fe::codecs::InverseAlphabet(kAlphabet, kNotInAlphabet);

// GMP ends the process when its own scratch allocations fail. Its
// conversions need a few times the number's size; asking for that much
// first turns exhausted memory into ERROR_OUTOFMEMORY in all but a race.
bool ScratchAvailable(size_t limbs) {
  const fe::platform::ZeroedBlock<mp_limb_t> probe(4 * limbs + 64);
  return probe.data() != nullptr;
}

// Drops high zero limbs; mpn_get_str wants the top limb nonzero.
mp_size_t Normalized(const mp_limb_t* limbs, mp_size_t size) {
  while (size > 0 && limbs[size - 1] == 0)
    --size;
  return size;
}

// Limbs enough for `count` digits of `radix` (6 bits rounded up for 58).
// Counted in 64 bits: on 32-bit Windows the bit count of a large input
// does not fit in size_t.
uint64_t LimbsFor(size_t count, int radix) {
  return uint64_t{count} * (radix == 256 ? 8 : 6) / GMP_NUMB_BITS + 2;
}

// A count of items as size_t, or 0 (an allocation that fails) when the
// bytes they take would not fit in this process's address space.
size_t Fitting(uint64_t count, size_t itemSize) {
  return count > SIZE_MAX / itemSize ? 0 : static_cast<size_t>(count);
}

// Digits (values 0 to radix-1, most significant first) of a nonzero number
// given as digits in another radix, without leading zero digits. `to` must
// hold DigitRoom digits. Returns the count, or -1 when memory runs out.
int64_t ConvertRadix(const uint8_t* from, size_t count, int fromRadix, uint8_t* to, int toRadix) {
  // Four times over for the scratch check, so that fits too.
  const size_t limbCount = Fitting(LimbsFor(count, fromRadix), 4 * sizeof(mp_limb_t));
  if (limbCount == 0) return -1;
  fe::platform::ZeroedBlock<mp_limb_t> limbs(limbCount);
  if (limbs.data() == nullptr || !ScratchAvailable(limbCount)) return -1;
  const mp_size_t size =
      Normalized(limbs.data(), mpn_set_str(limbs.data(), from, count, fromRadix));
  if (size == 0) return 0;
  const size_t written = mpn_get_str(to, toRadix, limbs.data(), size);
  size_t lead = 0;
  while (lead < written && to[lead] == 0)
    ++lead;
  std::memmove(to, to + lead, written - lead);
  return static_cast<int64_t>(written - lead);
}

// Room mpn_get_str needs for `count` digits of `fromRadix` in `toRadix`:
// every limb's worth of digits plus one.
// 0 when that is more than this process can address.
size_t DigitRoom(size_t count, int fromRadix, int toRadix) {
  const uint64_t bits = LimbsFor(count, fromRadix) * GMP_NUMB_BITS;
  // 58 needs 5.858 bits a digit, 256 exactly 8.
  return Fitting((toRadix == 256 ? bits / 8 : bits * 1000 / 5857) + 2, 1);
}

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

  const auto significant = static_cast<size_t>(length - zeros);
  const size_t room = DigitRoom(significant, 256, kRadix);
  fe::platform::ZeroedBlock<uint8_t> block(room);
  uint8_t* const digits = block.data();
  if (room == 0 || digits == nullptr) return fe::FailWith(fe::kErrorOutOfMemory);
  const int64_t count =
      significant == 0 ? 0 : ConvertRadix(input + zeros, significant, 256, digits, kRadix);
  if (count < 0) return fe::FailWith(fe::kErrorOutOfMemory);
  if (zeros + count + 1 > capacity) return fe::FailWith(fe::kErrorInsufficientBuffer);
  std::memset(output, '1', static_cast<size_t>(zeros));
  char* out = output + zeros;
  for (int64_t i = 0; i < count; ++i)
    out[i] = kAlphabet[digits[i]];
  out[count] = '\0';
  return static_cast<int32_t>(zeros + count);
}

int32_t Base58Decode(const char* text, uint8_t* output, int32_t capacity) {
  if (text == nullptr || text[0] == '\0') return 0;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  const size_t length = std::strlen(text);
  size_t ones = 0;
  while (ones < length && in[ones] == '1')
    ++ones;

  const size_t significant = length - ones;
  fe::platform::ZeroedBlock<uint8_t> values(significant + 1);
  const size_t room = DigitRoom(significant, kRadix, 256);
  fe::platform::ZeroedBlock<uint8_t> block(room);
  uint8_t* const bytes = block.data();
  if (values.data() == nullptr || room == 0 || bytes == nullptr) {
    return fe::FailWith(fe::kErrorOutOfMemory);
  }
  for (size_t i = 0; i < significant; ++i) {
    const uint8_t value = kValueOf[in[ones + i]];
    if (value == kNotInAlphabet) return fe::FailWith(fe::kErrorInvalidData);
    values.data()[i] = value;
  }
  const int64_t count =
      significant == 0 ? 0 : ConvertRadix(values.data(), significant, kRadix, bytes, 256);
  if (count < 0) return fe::FailWith(fe::kErrorOutOfMemory);
  if (ones + static_cast<size_t>(count) > static_cast<size_t>(capacity < 0 ? 0 : capacity)) {
    return fe::FailWith(fe::kErrorInsufficientBuffer);
  }
  if (output == nullptr) return fe::FailWith(fe::kErrorInvalidParameter);
  std::memset(output, 0, ones);
  std::memcpy(output + ones, bytes, static_cast<size_t>(count));
  return static_cast<int32_t>(ones + static_cast<size_t>(count));
}

}  // extern "C"
