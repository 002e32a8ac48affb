// Pieces shared between the codecs and the EncodeBuffer/DecodeBuffer dispatch.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fe::codecs {

inline constexpr int kLineLength = 72;  // wrapped Base64, Base32 and quoted-printable

// Maps each character of an alphabet to its index and every other byte to
// `absent`.
constexpr std::array<uint8_t, 256> InverseAlphabet(std::string_view alphabet, uint8_t absent) {
  std::array<uint8_t, 256> table{};
  table.fill(absent);
  for (size_t i = 0; i < alphabet.size(); ++i) {
    table[static_cast<uint8_t>(alphabet[i])] = static_cast<uint8_t>(i);
  }
  return table;
}

// White space as the C library classifies it: space, TAB, LF, VT, FF, CR.
constexpr bool IsAsciiSpace(uint8_t c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The codecs whose published contract lets them write past `capacity`
// (quoted-printable escapes, URL terminators) take the real size of the
// buffer as well; where the next write would cross it they fail with -1
// instead. The dispatch passes the caller's outputSize here.
int32_t QpEncodeInto(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                     bool wrap, int64_t bufferSize);
// The quoted-printable file form encodes its input in pieces of this many
// bytes, each as an input of its own: a blank that ends a piece stays as it
// is whatever follows, and no piece reaches a soft line break.
inline constexpr size_t kQpFilePiece = 16;
// Encodes `length` bytes in such pieces (the last may be shorter) into
// `out`, which holds 3 * length characters; returns the characters written.
size_t QpEncodePieces(const uint8_t* input, size_t length, char* out);
int32_t UrlEncodeInto(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                      int64_t bufferSize);
// The terminator is written only when it fits in bufferSize.
int32_t UrlDecodeInto(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                      int64_t bufferSize);

// Base64 of NUL-terminated text (up to INT32_MAX characters), what
// Base64DecodeChunk gives for the whole text at once. The text is measured
// kBase64TextPiece characters at a time, just ahead of the decoder, so that
// the decoder reads it from the first-level cache (larger pieces fall out
// of it and cost a fifth of the speed).
inline constexpr size_t kBase64TextPiece = 4 * 1024;
int32_t Base64DecodeText(const char* text, uint8_t* output, int32_t capacity);

// The Base85 decoder's state, so that a text can arrive in pieces.
struct Base85Decoder {
  uint32_t value = 0;
  int digits = 0;
  bool full = false;  // a group no longer fitted: decoding has stopped

  // Decodes whole groups of text into out; -1 with ERROR_INVALID_DATA for a
  // 'z' inside a group. Stops (and sets full) when four bytes no longer fit.
  int32_t Feed(const char* text, size_t length, uint8_t* out, int64_t capacity);
  // The last partial group: 2 to 4 digits give 1 to 3 bytes, when they fit.
  int32_t Finish(uint8_t* out, int64_t capacity);
};

}  // namespace fe::codecs
