// The data lines of a yEnc block: each byte raised by 42, the critical
// results escaped, lines of 128 characters (129 when the last is an escape
// pair) closed with CR LF.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::codecs {

constexpr size_t kYencLineLength = 128;

// NUL, TAB, LF, CR, '.' and '=' are escaped wherever they stand.
constexpr bool IsYencCritical(uint8_t c) {
  return c == 0 || (c <= 61 && ((0x2000400000002600ull >> c) & 1));
}

// The characters EncodeYencBody may write for `length` bytes: every byte
// escaped, a CR LF after each 64 of them, and the 64 bytes the vector
// stores run past the end.
constexpr size_t YencEncodedRoom(size_t length) {
  return 2 * length + 2 * (length / 64 + 1) + 64;
}

// Encodes `length` bytes onto the current line, which already holds
// *lineUsed characters (updated); a line is closed after the byte that
// brings it to 128 characters or more. Returns the characters written to
// `out`, which has YencEncodedRoom(length) bytes.
size_t EncodeYencBody(const uint8_t* in, size_t length, char* out, size_t* lineUsed);

// Decodes a data line of `length` characters up to its first NUL: CR and
// LF are passed over, '=' takes the next character less 64, and every
// byte is the character less 42. `out` has room for `length` + 64 bytes.
// False when an escape has no character after it on the line (the line's
// end, a NUL, CR or LF follows it).
bool DecodeYencLine(const char* line, size_t length, uint8_t* out, size_t* written);

}  // namespace fe::codecs
