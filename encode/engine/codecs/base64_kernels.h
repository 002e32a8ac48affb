// The vector kernels the Base64 coders run over the bulk of their input,
// chosen once per process for this processor and FE_CPU. A kernel only
// takes whole groups that the table loops would turn into the same bytes;
// line breaks, capacity stops, padding and every byte outside the alphabet
// stay with the portable state machines.
#pragma once

#include <cstddef>
#include <cstdint>

#include "codecs/codec_internal.h"

namespace fe::codecs {

// The characters outside the alphabet that decoding passes over: those it
// skips between groups, and those it skips anywhere, inside a group too
// (the white space that wrapped text breaks its lines with).
struct Base64Skips {
  const bool* betweenGroups;
  const bool* anywhere;
};

// A wrapped line as the line loop writes it: the CR LF that ends the line
// before, then the characters of its bytes.
inline constexpr size_t kBase64LineBytes = kLineLength / 4 * 3;
inline constexpr size_t kBase64LineRoom = 2 + kLineLength;

struct Base64Kernels {
  // Writes four characters for each of the first `groups` 3-byte groups of
  // `in`, reading no byte at or past in + readable (readable >= 3 * groups).
  // Returns how many leading groups it wrote; the caller writes the rest.
  size_t (*encodeGroups)(const uint8_t* in, size_t groups, size_t readable, char* out);
  // Wrapped text from a line's end on: writes `lines` times a CR LF and a
  // whole line (kBase64LineBytes) of `in`, reading no byte at or past
  // in + readable. Null where the kernel has none; the groups path serves.
  void (*encodeLines)(const uint8_t* in, size_t lines, size_t readable, char* out);
  // Decodes whole groups of alphabet characters from the `length`
  // characters of `text` into `out`, at most `maxGroups` of them, and may
  // pass over the characters `skips` names where the decoder would. Stops
  // after a whole group, at the first character it does not handle or
  // earlier; returns how many characters it consumed and sets *groups to
  // the groups it wrote (three bytes each).
  size_t (*decodeGroups)(const uint8_t* text, size_t length, size_t maxGroups,
                         const Base64Skips* skips, uint8_t* out, size_t* groups);
};

// Null when no kernel fits this processor or FE_CPU=scalar.
const Base64Kernels* ChosenBase64Kernels();

}  // namespace fe::codecs
