// The vector kernels the yEnc file codec runs over the bulk of its data,
// chosen once per process like the Base64 ones. Each gives exactly the
// characters or bytes of the byte-at-a-time loops in codecs/yenc_body.cpp
// and leaves to them whatever it does not handle.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

struct YencKernels {
  // Encodes the leading whole 64-byte blocks of the `length` bytes at
  // `in`, lines broken as the body coder breaks them, *lineUsed carrying
  // the characters already on the current line in and out. Writes no more
  // than the characters plus 64 bytes at `out`; returns the bytes taken
  // and sets *written to the characters made.
  size_t (*encodeBlocks)(const uint8_t* in, size_t length, char* out, size_t* lineUsed,
                         size_t* written);
  // Decodes the leading characters of a data line of `length` characters
  // (its line end included) into `out`, which has room for them and 64
  // bytes more. Stops before a NUL, before a run of two escapes and before
  // an escape without a plain character after it; never splits an escape
  // from its character. Returns the characters taken and sets *written to
  // the bytes made.
  size_t (*decodeLine)(const uint8_t* text, size_t length, uint8_t* out, size_t* written);
};

// Null when no kernel fits this processor or FE_CPU.
const YencKernels* ChosenYencKernels();

}  // namespace fe::codecs
