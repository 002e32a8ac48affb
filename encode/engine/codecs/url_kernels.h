// The vector kernels of URL encoding and decoding, chosen once per process
// for this processor and FE_CPU. They take the bulk far from the end of
// the buffer, where no byte can fail for room; '+' and everything after
// it stay with the portable decoder.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

// The most characters a 16-byte encoding step writes (16 escapes), and one
// more: the portable encoder wants room for the terminator after an
// escape.
inline constexpr size_t kUrlEncodeStepRoom = 16 * 3 + 1;
// The most bytes a decoding step writes.
inline constexpr size_t kUrlDecodeStepRoom = 64;

struct UrlKernels {
  // Encodes the `length` bytes from `in`, 16 at a time while 16 are left
  // and `room` holds kUrlEncodeStepRoom characters before each step.
  // Returns the bytes consumed and sets *written to the characters written.
  size_t (*encodeBytes)(const uint8_t* in, size_t length, size_t room, char* out, size_t* written);
  // Decodes the `length` characters of `text` (plain characters and '%'
  // with two hex digits) 64 at a time while `room` holds
  // kUrlDecodeStepRoom bytes before each step; stops before the first '+'
  // and before a '%' whose digits it has not loaded. Returns the
  // characters consumed and sets *written to the bytes written.
  size_t (*decodeText)(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                       size_t* written);
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const UrlKernels* ChosenUrlKernels();

}  // namespace fe::codecs
