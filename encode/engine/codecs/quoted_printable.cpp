// Quoted-printable: the data encoder and the chunked decoder.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "codecs/codec_internal.h"
#include "codecs/hex_digits.h"
#include "codecs/qp_escapes.h"
#include "codecs/qp_kernels.h"
#include "file_encoder.h"

namespace {

using namespace fe::codecs;

enum DecodePhase : uint32_t { kText = 0, kAfterEquals, kAfterFirstDigit, kAfterLineEnd };

// Runs of text up to this long are scanned eight bytes at a time here,
// longer ones by memchr.
constexpr size_t kShortRun = 16;

// The length of the run before the first '=' among the `room` bytes at
// `in`, or kShortRun when there is none among the first kShortRun. The
// lowest byte of a word is the first in memory.
static_assert(std::endian::native == std::endian::little);
size_t ShortRun(const uint8_t* in, size_t room) {
  constexpr uint64_t kOnes = 0x0101010101010101, kHighs = 0x8080808080808080;
  size_t run = 0;
  for (; run + 8 <= std::min(room, kShortRun); run += 8) {
    uint64_t word;
    std::memcpy(&word, in + run, 8);
    const uint64_t x = word ^ (kOnes * '=');
    // The lowest flagged byte is the first '=' (higher flags may be false).
    const uint64_t flags = (x - kOnes) & ~x & kHighs;
    if (flags != 0) return run + static_cast<size_t>(std::countr_zero(flags)) / 8;
  }
  for (; run < std::min(room, kShortRun); ++run) {
    if (in[run] == '=') return run;
  }
  return run;
}

}  // namespace

namespace fe::codecs {

int32_t QpEncodeInto(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                     bool wrap, int64_t bufferSize) {
  if (int64_t{capacity} < int64_t{length} + length / 3) return -1;
  if (length < 1) return 0;
  if (input == nullptr || output == nullptr) return -1;
  // The capacity is checked for the first character of each item only, so an
  // escape may run past it; bufferSize is where the memory really ends.
  int64_t remaining = capacity;
  int64_t count = 0;
  int column = 0;
  const auto* kernels = ChosenQpKernels();
  for (int32_t i = 0; i < length && remaining >= 1; ++i) {
    // Whole steps of 16 bytes by the kernel while the widest step fits.
    if (kernels != nullptr && remaining >= int64_t{kQpEncodeStepRoom} && length - i >= 16) {
      auto lineColumn = static_cast<uint32_t>(column);
      size_t written = 0;
      i += static_cast<int32_t>(kernels->encodeBytes(input + i, static_cast<size_t>(length - i),
                                                     wrap, static_cast<size_t>(remaining),
                                                     output + count, &lineColumn, &written));
      count += static_cast<int64_t>(written);
      remaining -= static_cast<int64_t>(written);
      column = static_cast<int>(lineColumn);
      if (i == length || remaining < 1) break;
    }
    if (wrap && column > kLineLength) {
      if (count + 3 > bufferSize) return -1;
      std::memcpy(output + count, "=\r\n", 3);
      count += 3;
      remaining -= 3;
      column = 0;
    }
    const uint8_t c = input[i];
    // The encoder treats its input as binary: CR and LF are escaped like any
    // control byte, and a blank is escaped only before a CR.
    const bool blankBeforeCr = (c == ' ' || c == '\t') && i + 1 < length && input[i + 1] == '\r';
    const int width = kQpWrittenAsIs[c] && !blankBeforeCr ? 1 : 3;
    if (count + width > bufferSize) return -1;
    if (width == 1) {
      output[count] = static_cast<char>(c);
    } else {
      output[count] = '=';
      PutHexByte(c, output + count + 1);
    }
    count += width;
    column += width;
    remaining -= width;
  }
  return static_cast<int32_t>(count);
}

size_t QpEncodePieces(const uint8_t* input, size_t length, char* out) {
  size_t at = 0, made = 0;
  if (const auto* kernels = ChosenQpKernels()) {
    made = kernels->encodePieces(input, length / kQpFilePiece, out);
    at = length - length % kQpFilePiece;
  }
  // A piece needs at most 3 characters a byte, so it always fits whole.
  constexpr int32_t kPieceRoom = 3 * kQpFilePiece;
  for (; at < length; at += kQpFilePiece) {
    const auto piece = static_cast<int32_t>(std::min(length - at, kQpFilePiece));
    made += static_cast<size_t>(
        QpEncodeInto(input + at, piece, out + made, kPieceRoom, true, kPieceRoom));
  }
  return made;
}

}  // namespace fe::codecs

extern "C" {

int32_t QpEncode(const uint8_t* input, int32_t length, char* output, int32_t capacity, int wrap) {
  return QpEncodeInto(input, length, output, capacity, wrap != 0, int64_t{capacity} + 2);
}

int32_t QpDecodeChunk(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                      QpDecodeState* state) {
  if (text == nullptr || state == nullptr || (output == nullptr && capacity > 0)) return -1;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  const uint8_t* const end = in + (length > 0 ? length : 0);
  int32_t count = 0;
  const auto* kernels = fe::codecs::ChosenQpKernels();
  while (in < end && count < capacity) {
    if (state->phase == kText && kernels != nullptr) {
      size_t written = 0, lastEscape = 0;
      const size_t used = kernels->decodeText(in, static_cast<size_t>(end - in),
                                              static_cast<size_t>(capacity - count), output + count,
                                              &written, &lastEscape);
      if (lastEscape != SIZE_MAX) {
        state->high = kHexValue[in[lastEscape + 1]];
        state->low = kHexValue[in[lastEscape + 2]];
      }
      in += used;
      count += static_cast<int32_t>(written);
      if (in == end) break;
    }
    if (state->phase == kText) {
      // Copy the run up to the next '=' in one go; the first bytes are
      // looked at directly, as runs between escapes are mostly short.
      const size_t room = static_cast<size_t>(std::min<int64_t>(end - in, capacity - count));
      size_t run = ShortRun(in, room);
      if (run == kShortRun) {
        const void* equals = std::memchr(in + run, '=', room - run);
        run = equals ? static_cast<size_t>(static_cast<const uint8_t*>(equals) - in) : room;
      }
      std::memcpy(output + count, in, run);
      count += static_cast<int32_t>(run);
      in += run;
      if (run == room) continue;
      // An '=' within the room, so one more byte fits. The usual escape,
      // '=' and two hex digits, is taken at once.
      if (end - in >= 3 && kHexValue[in[1]] != kNotHex && kHexValue[in[2]] != kNotHex) {
        state->high = kHexValue[in[1]];
        state->low = kHexValue[in[2]];
        output[count++] = static_cast<uint8_t>((state->high << 4) | state->low);
        in += 3;
        continue;
      }
      state->phase = kAfterEquals;
      ++in;
      continue;
    }
    const uint8_t c = *in++;
    switch (state->phase) {
      case kAfterEquals:
        if (c == '\r' || c == '\n') {
          state->phase = kAfterLineEnd;
        } else if (kHexValue[c] == kNotHex) {
          state->phase = kText;
          return -1;
        } else {
          state->high = kHexValue[c];
          state->phase = kAfterFirstDigit;
        }
        break;
      case kAfterFirstDigit:
        if (IsAsciiSpace(c)) break;  // "=4 1" reads as "=41"
        state->phase = kText;
        if (kHexValue[c] == kNotHex) return -1;
        state->low = kHexValue[c];
        output[count++] = static_cast<uint8_t>((state->high << 4) | state->low);
        break;
      default:
        // One character after a soft line break is dropped whatever it is:
        // the LF of "=" CR LF, or the first character of the next line after
        // a bare "=" LF. Text written by earlier versions depends on this.
        state->phase = kText;
        break;
    }
  }
  return count;
}

}  // extern "C"
