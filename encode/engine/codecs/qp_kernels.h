// The vector kernels of quoted-printable, chosen once per process for this
// processor and FE_CPU. The encoder's take whole 16-byte steps, far from
// the end of the buffer, or whole pieces of the file form. The decoder's
// takes plain characters, '=' with two hex digits, and soft line breaks
// ('=', CR or LF, and one more character that is not '='); every other '='
// and the last bytes before the capacity stay with the portable state
// machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

// The most characters a 16-byte encoding step writes: 16 escapes and a
// soft line break.
inline constexpr size_t kQpEncodeStepRoom = 16 * 3 + 3;

struct QpKernels {
  // Encodes the `length` bytes left of the input from `in`, 16 at a time
  // while 16 are left and `room` holds kQpEncodeStepRoom characters before
  // each step; with `wrap` it breaks lines with "=" CR LF before a byte
  // that finds *column past 72, and it keeps *column.
  // Returns the bytes consumed and sets *written to the characters written.
  size_t (*encodeBytes)(const uint8_t* in, size_t length, bool wrap, size_t room, char* out,
                        uint32_t* column, size_t* written);
  // Encodes `pieces` whole file-form pieces from `in` into `out`, which
  // holds 3 * kQpFilePiece characters a piece; returns the characters
  // written.
  size_t (*encodePieces)(const uint8_t* in, size_t pieces, char* out);
  // Decodes from the start of the `length` characters of `text` (the
  // decoder between escapes) into `out`, in steps whose bytes all fit in
  // fewer than `room` (so that the decoder would read every character of
  // the step); stops before the first '=' it does not take. Returns the
  // characters consumed, sets *written to the bytes written and *lastEscape
  // to the offset of the last '=' with hex digits it decoded (SIZE_MAX for
  // none).
  size_t (*decodeText)(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                       size_t* written, size_t* lastEscape);
};

// Null when no kernel fits this processor or FE_CPU is below AVX-512.
const QpKernels* ChosenQpKernels();

}  // namespace fe::codecs
