// The text filters' inputs and outputs: the length of an 8-bit input, and
// UTF-16 in and out around a filter that works on UTF-8.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fe::text {

// The length of an 8-bit filter input: -1 runs to the terminator, other
// negative lengths count as empty.
inline size_t TextLength(const char* input, int32_t inputLength) {
  if (inputLength == -1) return std::char_traits<char>::length(input);
  return inputLength < 0 ? 0 : static_cast<size_t>(inputLength);
}

// The length of a terminated UTF-16 text.
size_t WideLength(const char16_t* text);

// `length` UTF-16 units as UTF-8 (an unpaired surrogate becomes U+FFFD).
// False with 14 as last error when memory runs out.
bool WideToUtf8(const char16_t* text, size_t length, std::string* utf8);

// UTF-8 bytes as UTF-16 into output, terminated; with a null output or a
// capacity of 0 only counts. Returns the units without the terminator; 0
// with 122 as last error when they do not fit.
int32_t Utf8ToWideOutput(std::string_view utf8, char16_t* output, int32_t capacity);

}  // namespace fe::text
