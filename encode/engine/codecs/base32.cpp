// Base32 as a streaming bit accumulator with optional 72-column lines;
// whole groups go through the vector kernel or a table loop.
#include <algorithm>
#include <cstring>

#include "codecs/base32_alphabet.h"
#include "codecs/base32_kernels.h"
#include "codecs/codec_internal.h"
#include "file_encoder.h"

namespace {

using fe::codecs::IsAsciiSpace;
using fe::codecs::kBase32Alphabet;
using fe::codecs::kBase32NotInAlphabet;
using fe::codecs::kBase32ValueOf;
using fe::codecs::kLineLength;

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

  // How many whole 5-byte groups of `available` may be written as groups:
  // each needs room for its eight characters and a line break, and none
  // may cross the end of a line (72 is a multiple of 8).
  size_t GroupsThatFit(size_t available) const {
    const int64_t room = int64_t{capacity_} - count_ - 2;
    if (room < 8) return 0;
    size_t groups = std::min(available, static_cast<size_t>(room / 8));
    if (wrap_) {
      if (state_->column + 8 > kLineLength) return 0;
      groups = std::min<size_t>(groups, (kLineLength - state_->column) / 8);
    }
    return groups;
  }

  // The characters of `groups` whole 5-byte groups, and the line break
  // when the last one ends a line.
  void PutGroups(const uint8_t* in, size_t groups) {
    size_t done = 0;
    if (const auto* kernels = fe::codecs::ChosenBase32Kernels())
      done = kernels->encodeGroups(in, groups, output_ + count_);
    for (; done < groups; ++done) {
      const uint8_t* group = in + 5 * done;
      const uint64_t v = (uint64_t{group[0]} << 32) | (uint64_t{group[1]} << 24) |
                         (uint64_t{group[2]} << 16) | (uint64_t{group[3]} << 8) | group[4];
      for (int k = 0; k < 8; ++k)
        output_[count_ + 8 * done + k] = kBase32Alphabet[(v >> (35 - 5 * k)) & 31];
    }
    count_ += static_cast<int32_t>(8 * groups);
    if (wrap_ && (state_->column += static_cast<uint32_t>(8 * groups)) == kLineLength) BreakLine();
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

// Decodes whole groups of eight alphabet characters while five bytes fit,
// the kernel taking what it can; stops before the first group holding any
// other character.
size_t DecodeGroups(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out) {
  size_t done = 0;
  if (const auto* kernels = fe::codecs::ChosenBase32Kernels())
    done = kernels->decodeGroups(text, length, maxGroups, out);
  for (; done < maxGroups && length - 8 * done >= 8; ++done) {
    const uint8_t* group = text + 8 * done;
    uint64_t v = 0;
    uint8_t seen = 0;  // the marker for characters outside has the upper bits
    for (int k = 0; k < 8; ++k) {
      const uint8_t value = kBase32ValueOf[group[k]];
      seen |= value;
      v = (v << 5) | (value & 31);
    }
    if ((seen & ~31) != 0) break;
    for (int k = 0; k < 5; ++k)
      out[5 * done + k] = static_cast<uint8_t>(v >> (32 - 8 * k));
  }
  return done;
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
    // Whole groups while nothing is held; they give the characters the
    // bit accumulator would.
    if (state->bits == 0) {
      const size_t groups = out.GroupsThatFit(static_cast<size_t>(length - i) / 5);
      if (groups > 0) {
        out.PutGroups(input + i, groups);
        i += static_cast<int32_t>(5 * groups);
        continue;
      }
    }
    state->accumulator = (state->accumulator << 8) | input[i++];
    state->bits += 8;
    while (state->bits >= 5 && !out.Full()) {
      if (!out.Put(kBase32Alphabet[TakeFiveBits(state)])) return out.count();
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
      out.Put(kBase32Alphabet[TakeFiveBits(state)]);
      ++characters;
    }
    if (state->bits > 0 && !out.Full()) {
      out.Put(kBase32Alphabet[(state->accumulator << (5 - state->bits)) & 31]);
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
    if (state->bits == 0 && kBase32ValueOf[c] != kBase32NotInAlphabet) {
      const size_t groups = DecodeGroups(
          reinterpret_cast<const uint8_t*>(text) + i, static_cast<size_t>(length - i),
          capacity > count ? static_cast<size_t>(capacity - count) / 5 : 0, output + count);
      if (groups > 0) {
        i += static_cast<int32_t>(8 * groups) - 1;
        count += static_cast<int32_t>(5 * groups);
        // As after the fifth byte of a group: stale bits a caller's state
        // may carry are gone.
        state->accumulator = 0;
        continue;
      }
    }
    if (c == '=') break;
    const uint8_t value = kBase32ValueOf[c];
    if (value == kBase32NotInAlphabet) {
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
