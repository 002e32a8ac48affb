// Base32 as a streaming bit accumulator with optional 72-column lines.
#include <array>
#include <cstring>

#include "codecs/codec_internal.h"
#include "file_encoder.h"

namespace {

using fe::codecs::IsAsciiSpace;
using fe::codecs::kLineLength;

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567";
constexpr uint8_t kNotInAlphabet = 0xFF;

// Decoding accepts the letters in either case.
constexpr auto kValueOf = [] {
  auto table = fe::codecs::InverseAlphabet(kAlphabet, kNotInAlphabet);
  for (int c = 'a'; c <= 'z'; ++c)
    table[c] = table[c - 'a' + 'A'];
  return table;
}();

// Writes characters and the line breaks that wrapping calls for.
class LineWriter {
 public:
  LineWriter(char* output, int32_t capacity, Base32State* state, bool wrap)
      : output_(output), capacity_(capacity), state_(state), wrap_(wrap) {}

  int32_t count() const { return count_; }
  bool Full() const { return count_ >= capacity_; }
  bool Fits(int32_t n) const { return int64_t{count_} + n <= capacity_; }

  // Writes c; returns false when the line break that follows it did not fit.
  bool Put(char c) {
    output_[count_++] = c;
    if (wrap_ && ++state_->column == kLineLength) return BreakLine();
    return true;
  }

  // Eight characters of a whole 5-byte group at once.
  void PutGroup(const uint8_t* in) {
    const uint64_t v = (uint64_t{in[0]} << 32) | (uint64_t{in[1]} << 24) | (uint64_t{in[2]} << 16) |
                       (uint64_t{in[3]} << 8) | in[4];
    for (int k = 0; k < 8; ++k)
      output_[count_ + k] = kAlphabet[(v >> (35 - 5 * k)) & 31];
    count_ += 8;
    if (wrap_ && (state_->column += 8) == kLineLength) BreakLine();
  }

  bool BreakLine() {
    if (!Fits(2)) return false;
    output_[count_++] = '\r';
    output_[count_++] = '\n';
    state_->column = 0;
    return true;
  }

 private:
  char* output_;
  int32_t capacity_;
  Base32State* state_;
  bool wrap_;
  int32_t count_ = 0;
};

// Takes the top 5 of the held bits as the next character's value.
uint32_t TakeFiveBits(Base32State* state) {
  state->bits -= 5;
  const auto value = static_cast<uint32_t>((state->accumulator >> state->bits) & 31);
  state->accumulator &= (uint64_t{1} << state->bits) - 1;
  return value;
}

}  // namespace

extern "C" {

int32_t Base32EncodeChunk(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                          Base32State* state, int wrap) {
  if (state == nullptr || output == nullptr || (input == nullptr && length > 0)) return -1;
  LineWriter out(output, capacity, state, wrap != 0);
  if (wrap && state->column == kLineLength) {
    if (capacity < 2) return 0;
    out.BreakLine();
  }
  int32_t i = 0;
  while (i < length && !out.Full()) {
    // Whole groups while nothing is held and a group with its line break
    // fits; a group never straddles a line as 72 is a multiple of 8.
    if (state->bits == 0 && length - i >= 5 && out.Fits(10) &&
        (!wrap || state->column + 8 <= kLineLength)) {
      out.PutGroup(input + i);
      i += 5;
      continue;
    }
    state->accumulator = (state->accumulator << 8) | input[i++];
    state->bits += 8;
    while (state->bits >= 5 && !out.Full()) {
      if (!out.Put(kAlphabet[TakeFiveBits(state)])) return out.count();
    }
  }
  return out.count();
}

int32_t Base32EncodeFinish(Base32State* state, char* output, int32_t capacity, int wrap) {
  if (state == nullptr || output == nullptr) return -1;
  LineWriter out(output, capacity, state, wrap != 0);
  if (state->bits > 0) {
    int32_t characters = 0;
    // Normally fewer than 5 bits are left; a chunk cut short by its capacity
    // may leave more, which come out as whole characters first.
    while (state->bits >= 5 && !out.Full()) {
      out.Put(kAlphabet[TakeFiveBits(state)]);
      ++characters;
    }
    if (state->bits > 0 && !out.Full()) {
      out.Put(kAlphabet[(state->accumulator << (5 - state->bits)) & 31]);
      state->bits = 0;
      state->accumulator = 0;
      ++characters;
    }
    // Padding to a multiple of 8 characters of this finisher alone: a partial
    // last group always gets seven '='. Files and tokens written by earlier
    // versions have exactly this form.
    while (characters % 8 != 0 && !out.Full()) {
      out.Put('=');
      ++characters;
    }
  }
  if (wrap && state->column > 0) out.BreakLine();
  return out.count();
}

int32_t Base32DecodeChunk(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                          Base32State* state) {
  if (text == nullptr || state == nullptr || (output == nullptr && capacity > 0)) return -1;
  int32_t count = 0;
  for (int32_t i = 0; i < length; ++i) {
    const auto c = static_cast<uint8_t>(text[i]);
    if (c == '=') break;
    const uint8_t value = kValueOf[c];
    if (value == kNotInAlphabet) {
      if (IsAsciiSpace(c) || state->bits == 0) continue;
      return -1;
    }
    state->accumulator = (state->accumulator << 5) | value;
    state->bits += 5;
    if (state->bits >= 8) {
      if (count >= capacity) break;
      state->bits -= 8;
      output[count++] = static_cast<uint8_t>(state->accumulator >> state->bits);
      state->accumulator &= (uint64_t{1} << state->bits) - 1;
    }
  }
  return count;
}

}  // extern "C"
