// The vector kernel the quoted-printable decoder runs over text, chosen
// once per process for this processor and FE_CPU. It takes plain
// characters, '=' with two hex digits, and soft line breaks ('=', CR or
// LF, and one more character that is not '='); every other '=' and the
// last bytes before the capacity stay with the portable state machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

struct QpKernels {
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
