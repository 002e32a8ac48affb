// Utf8Validate: Björn Höhrmann's UTF-8 automaton (the first published form,
// 16 classes) over the bytes before the first zero byte, after an optional
// byte-order mark. Overlong forms, surrogates, code points above U+10FFFF,
// stray continuation bytes and truncated sequences end in the reject state.
// A vector kernel, where the processor has one, vouches for the clean bulk
// first; the automaton judges whatever it leaves.
#include <cstring>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "text/utf8_kernels.h"

namespace {

constexpr uint32_t kNothingToCheck = 4306;  // ERROR_EMPTY
constexpr uint8_t kAccept = 0;
constexpr uint8_t kReject = 1;
constexpr uint64_t kHighBits = 0x8080808080808080ull;

// The class of each byte value.
constexpr uint8_t kClass[256] = {
    // 00-7F
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,
    // 80-8F, 90-9F
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9,
    // A0-BF
    7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7,
    // C0-C1, C2-DF
    8, 8, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2,
    // E0, E1-EC, ED, EE-EF, F0, F1-F3, F4, F5-FF
    10, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 3, 4, 3, 3, 11, 6, 6, 6, 5, 8, 8, 8, 8, 8, 8, 8, 8, 8, 8,
    8};

// Next state = kTransition[state * 16 + class]; classes 12 to 15 never
// occur and reject.
constexpr uint8_t kTransition[9 * 16] = {
    0, 1, 2, 3, 5, 8, 7, 1, 1, 1, 4, 6, 1, 1, 1, 1,  // 0: accept
    1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 1: reject
    1, 0, 1, 1, 1, 1, 1, 0, 1, 0, 1, 1, 1, 1, 1, 1,  // 2: one continuation byte to come
    1, 2, 1, 1, 1, 1, 1, 2, 1, 2, 1, 1, 1, 1, 1, 1,  // 3: two to come
    1, 1, 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, 1, 1, 1, 1,  // 4: after E0 (A0-BF only)
    1, 2, 1, 1, 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, 1, 1,  // 5: after ED (80-9F only)
    1, 1, 1, 1, 1, 1, 1, 3, 1, 3, 1, 1, 1, 1, 1, 1,  // 6: after F0 (90-BF only)
    1, 3, 1, 1, 1, 1, 1, 3, 1, 3, 1, 1, 1, 1, 1, 1,  // 7: after F1-F3
    1, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,  // 8: after F4 (80-8F only)
};

}  // namespace

extern "C" int Utf8Validate(const uint8_t* bytes, int32_t count) {
  if (bytes == nullptr) {
    fe::SetLastError(fe::kErrorInvalidParameter);
    return 0;
  }
  // Judged only up to the first zero byte, on purpose: callers pass
  // NUL-terminated buffers with a count that may run past the text.
  const auto* text = reinterpret_cast<const char*>(bytes);
  const size_t length = count >= 0 ? strnlen(text, static_cast<size_t>(count)) : std::strlen(text);
  if (length == 0) {
    fe::SetLastError(kNothingToCheck);
    return 0;
  }
  size_t at = 0;
  if (length >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF) at = 3;
  static const fe::text::Utf8PrefixKernel kernel = fe::text::ChosenUtf8PrefixKernel();
  if (kernel != nullptr) at += kernel(bytes + at, length - at);
  uint8_t state = kAccept;
  while (at < length && state != kReject) {
    // Between sequences, eight bytes of ASCII at a time: they keep state 0.
    if (state == kAccept) {
      uint64_t word;
      while (at + 8 <= length && (std::memcpy(&word, bytes + at, 8), (word & kHighBits) == 0))
        at += 8;
      if (at == length) break;
    }
    state = kTransition[state * 16 + kClass[bytes[at++]]];
  }
  const bool valid = state == kAccept;
  fe::SetLastError(valid ? 0 : fe::kErrorInvalidData);
  return valid ? 1 : 0;
}
