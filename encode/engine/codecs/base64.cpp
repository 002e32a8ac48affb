// Base64: the streaming coders behind EncodeBuffer/DecodeBuffer and the
// one-shot pair used for encrypted text. The inner loops handle whole
// 3-byte / 4-character groups through a vector kernel where the processor
// has one, else through tables; every group boundary, line break and
// capacity stop falls exactly where the character-at-a-time state machine
// puts it.
#include <algorithm>
#include <array>
#include <cstring>

#include "codecs/base64_alphabet.h"
#include "codecs/base64_kernels.h"
#include "codecs/codec_internal.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"

namespace {

using fe::codecs::IsAsciiSpace;
using fe::codecs::kLineLength;

constexpr const char* kAlphabet = fe::codecs::kBase64Alphabet;
constexpr uint8_t kNotInAlphabet = 127;

enum EncoderPhase : uint32_t { kFirst = 0, kSecond, kThird, kFourth, kCarriageReturn, kLineFeed };

constexpr auto kSextetOf = fe::codecs::InverseAlphabet(kAlphabet, kNotInAlphabet);

// Two characters for every 12-bit half of a group.
constexpr auto kCharacterPairs = [] {
  std::array<std::array<char, 2>, 4096> table{};
  for (int i = 0; i < 4096; ++i)
    table[i] = {kAlphabet[i >> 6], kAlphabet[i & 63]};
  return table;
}();

// Sextet values pre-shifted to their place in a 24-bit group; a character
// outside the alphabet sets bit 24.
constexpr uint32_t kBadCharacter = 1u << 24;
constexpr auto MakeShiftedTable(int shift) {
  std::array<uint32_t, 256> table{};
  for (int c = 0; c < 256; ++c) {
    table[c] = kSextetOf[c] == kNotInAlphabet ? kBadCharacter : uint32_t{kSextetOf[c]} << shift;
  }
  return table;
}
constexpr auto kShifted18 = MakeShiftedTable(18);
constexpr auto kShifted12 = MakeShiftedTable(12);
constexpr auto kShifted6 = MakeShiftedTable(6);
constexpr auto kShifted0 = MakeShiftedTable(0);

void WriteGroup(const uint8_t* in, char* out) {
  const uint32_t group = (uint32_t{in[0]} << 16) | (uint32_t{in[1]} << 8) | in[2];
  std::memcpy(out, kCharacterPairs[group >> 12].data(), 2);
  std::memcpy(out + 2, kCharacterPairs[group & 0xFFF].data(), 2);
}

// Writes `groups` whole groups, the kernel taking what it can.
void WriteGroups(const uint8_t* in, size_t groups, size_t readable, char* out) {
  size_t done = 0;
  if (const auto* kernels = fe::codecs::ChosenBase64Kernels()) {
    done = kernels->encodeGroups(in, groups, readable, out);
  }
  for (; done < groups; ++done)
    WriteGroup(in + 3 * done, out + 4 * done);
}

// The state keeps the bytes of the last whole group written, which end at
// `in`.
void KeepLastGroup(const uint8_t* in, uint32_t* saved) {
  saved[0] = in[-3];
  saved[1] = in[-2];
  saved[2] = in[-1];
}

// Wrapped text at a line's end: whole lines, each a CR LF and 18 groups,
// by the kernel where it has a line loop, while another byte follows the
// last line and each fits. Returns how many lines it wrote.
size_t WriteLines(const uint8_t* in, size_t readable, size_t room, char* out) {
  const auto* kernels = fe::codecs::ChosenBase64Kernels();
  if (kernels == nullptr || kernels->encodeLines == nullptr || readable == 0) return 0;
  const size_t lines =
      std::min((readable - 1) / fe::codecs::kBase64LineBytes, room / fe::codecs::kBase64LineRoom);
  if (lines > 0) kernels->encodeLines(in, lines, readable, out);
  return lines;
}

// How many groups fit before the line break, or SIZE_MAX when none will
// come: without wrapping, and from a column the breaks can no longer meet
// (a state not written by this coder).
size_t GroupsBeforeBreak(bool wrap, uint32_t column) {
  if (!wrap || column > kLineLength || (kLineLength - column) % 4 != 0) return SIZE_MAX;
  return (kLineLength - column) / 4;
}

// The characters the decoder skips when no group is open.
constexpr auto kPassedBetweenGroups = [] {
  std::array<bool, 256> table{};
  for (int c = 0; c < 256; ++c)
    table[c] = kSextetOf[c] == kNotInAlphabet && c != '=';
  return table;
}();

bool PassedBetweenGroups(uint8_t c) {
  return kPassedBetweenGroups[c];
}

// The characters the decoder skips inside a group as well.
constexpr auto kPassedAnywhere = [] {
  std::array<bool, 256> table{};
  for (int c = 0; c < 256; ++c)
    table[c] = IsAsciiSpace(static_cast<uint8_t>(c));
  return table;
}();

constexpr fe::codecs::Base64Skips kSkips{kPassedBetweenGroups.data(), kPassedAnywhere.data()};

// Decodes whole clean groups from `in` while they fit, the kernel taking
// what it can.
void DecodeGroups(const uint8_t*& in, const uint8_t* end, uint8_t* output, int32_t capacity,
                  int32_t& written) {
  const auto* kernels = fe::codecs::ChosenBase64Kernels();
  if (kernels != nullptr && end - in >= 4 && capacity - written >= 3) {
    size_t groups = 0;
    in += kernels->decodeGroups(in, static_cast<size_t>(end - in),
                                static_cast<size_t>(capacity - written) / 3, &kSkips,
                                output + written, &groups);
    written += static_cast<int32_t>(3 * groups);
  }
  while (end - in >= 4 && capacity - written >= 3) {
    const uint32_t group =
        kShifted18[in[0]] | kShifted12[in[1]] | kShifted6[in[2]] | kShifted0[in[3]];
    if (group & kBadCharacter) break;
    output[written] = static_cast<uint8_t>(group >> 16);
    output[written + 1] = static_cast<uint8_t>(group >> 8);
    output[written + 2] = static_cast<uint8_t>(group);
    written += 3;
    in += 4;
  }
}

enum class Outcome { kConsumed, kStopped, kFailed };

// Decodes the characters [in, end) into output from `written` on; the
// text may go on in the next piece unless it stopped.
Outcome DecodePiece(const uint8_t* in, const uint8_t* end, uint8_t* output, int32_t capacity,
                    int32_t& written, Base64State* state) {
  uint32_t phase = state->phase;
  uint32_t* sextets = state->saved;

  while (in < end) {
    if (phase == 0) {
      // Between groups every character but '=' and the alphabet is passed
      // over, so the line breaks of wrapped text do not leave the fast loops.
      for (;;) {
        while (in < end && PassedBetweenGroups(*in))
          ++in;
        DecodeGroups(in, end, output, capacity, written);
        if (in == end || !PassedBetweenGroups(*in)) break;
      }
      if (in == end) break;
    }
    if (written >= capacity) {  // the rest is dropped without an error
      state->phase = phase;
      return Outcome::kStopped;
    }
    const uint8_t c = *in++;
    if (c == '=') {  // padding ends the text; whatever follows is ignored
      state->phase = phase;
      return Outcome::kStopped;
    }
    const uint8_t sextet = kSextetOf[c];
    if (sextet == kNotInAlphabet) {
      // A stray character between groups is tolerated, one inside a group
      // is an error: text written by earlier versions relies on both.
      if (IsAsciiSpace(c) || phase == 0) continue;
      state->phase = phase;
      return Outcome::kFailed;
    }
    switch (phase) {
      case 0:
        sextets[0] = sextet;
        phase = 1;
        break;
      case 1:
        sextets[1] = sextet;
        output[written++] = static_cast<uint8_t>((sextets[0] << 2) | (sextets[1] >> 4));
        phase = 2;
        break;
      case 2:
        sextets[2] = sextet;
        output[written++] = static_cast<uint8_t>((sextets[1] << 4) | (sextets[2] >> 2));
        phase = 3;
        break;
      default:
        output[written++] = static_cast<uint8_t>((sextets[2] << 6) | sextet);
        phase = 0;
        break;
    }
  }
  state->phase = phase;
  return Outcome::kConsumed;
}

}  // namespace

namespace fe::codecs {

int32_t Base64DecodeText(const char* text, uint8_t* output, int32_t capacity) {
  Base64State state{};
  int32_t written = 0;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  for (size_t left = INT32_MAX;;) {
    const size_t length =
        strnlen(reinterpret_cast<const char*>(in), std::min(kBase64TextPiece, left));
    switch (DecodePiece(in, in + length, output, capacity, written, &state)) {
      case Outcome::kFailed:
        return -1;
      case Outcome::kStopped:
        return written;
      case Outcome::kConsumed:
        break;
    }
    if (length < kBase64TextPiece || length == left) return written;
    in += length;
    left -= length;
  }
}

}  // namespace fe::codecs

extern "C" {

int32_t Base64EncodeChunk(const uint8_t* input, int32_t length, char* output, int32_t capacity,
                          Base64State* state, int wrap) {
  // The bound leaves out padding and line breaks on purpose: the capacity
  // stop below and the caller's check for the finisher catch the rest.
  if (int64_t{capacity} < int64_t{length} + length / 3) return -1;
  if (length < 1) return 0;
  if (input == nullptr || output == nullptr || state == nullptr) return -1;

  const uint8_t* in = input;
  const uint8_t* const end = input + length;
  int32_t written = 0;
  uint32_t phase = state->phase;
  uint32_t column = state->column;
  uint32_t* saved = state->saved;

  while (written < capacity) {
    // Whole groups, as long as another byte follows each one: the chunk must
    // stop right after taking its last byte, leaving that group's last
    // character to the finisher.
    if (phase == kFirst) {
      while (end - in > 3) {
        const bool lineBreak = wrap && column == kLineLength;
        if (capacity - written < (lineBreak ? 6 : 4)) break;
        if (lineBreak) {
          const size_t lines =
              WriteLines(in, static_cast<size_t>(end - in), static_cast<size_t>(capacity - written),
                         output + written);
          if (lines > 0) {  // each ends a line again
            in += fe::codecs::kBase64LineBytes * lines;
            written += static_cast<int32_t>(fe::codecs::kBase64LineRoom * lines);
            KeepLastGroup(in, saved);
            continue;
          }
          output[written++] = '\r';
          output[written++] = '\n';
          column = 0;
        }
        const size_t groups = std::min({static_cast<size_t>(end - in - 1) / 3,
                                        static_cast<size_t>(capacity - written) / 4,
                                        GroupsBeforeBreak(wrap, column)});
        WriteGroups(in, groups, static_cast<size_t>(end - in), output + written);
        in += 3 * groups;
        KeepLastGroup(in, saved);
        written += static_cast<int32_t>(4 * groups);
        column += static_cast<uint32_t>(4 * groups);
      }
      if (written >= capacity) break;
    }

    if (wrap && column == kLineLength) phase = kCarriageReturn;
    switch (phase) {
      case kFirst:
        saved[0] = *in++;
        output[written++] = kAlphabet[saved[0] >> 2];
        phase = kSecond;
        ++column;
        break;
      case kSecond:
        saved[1] = *in++;
        output[written++] = kAlphabet[((saved[0] & 3) << 4) | (saved[1] >> 4)];
        phase = kThird;
        ++column;
        break;
      case kThird:
        saved[2] = *in++;
        output[written++] = kAlphabet[((saved[1] & 15) << 2) | (saved[2] >> 6)];
        phase = kFourth;
        ++column;
        break;
      case kFourth:
        output[written++] = kAlphabet[saved[2] & 63];
        phase = kFirst;
        ++column;
        break;
      case kCarriageReturn:
        output[written++] = '\r';
        column = 0;
        phase = kLineFeed;
        break;
      default:
        output[written++] = '\n';
        phase = kFirst;
        break;
    }
    if (in == end) break;
  }
  state->phase = phase;
  state->column = column;
  return written;
}

int32_t Base64EncodeFinish(Base64State* state, char* output, int wrap) {
  if (state == nullptr || output == nullptr) return -1;
  const uint32_t* saved = state->saved;
  int32_t n = 0;
  switch (state->phase) {
    case kSecond:
      output[n++] = kAlphabet[(saved[0] & 3) << 4];
      output[n++] = '=';
      output[n++] = '=';
      break;
    case kThird:
      output[n++] = kAlphabet[(saved[1] & 15) << 2];
      output[n++] = '=';
      break;
    case kFourth:
      output[n++] = kAlphabet[saved[2] & 63];
      break;
    default:
      break;
  }
  // Wrapped text always ends with a line break, even after an empty remainder.
  if (wrap) {
    output[n++] = '\r';
    output[n++] = '\n';
  }
  return n;
}

int32_t Base64DecodeChunk(const char* text, int32_t length, uint8_t* output, int32_t capacity,
                          Base64State* state) {
  if (text == nullptr || state == nullptr || (output == nullptr && capacity > 0)) return -1;
  const auto* in = reinterpret_cast<const uint8_t*>(text);
  int32_t written = 0;
  const Outcome outcome =
      DecodePiece(in, in + (length > 0 ? length : 0), output, capacity, written, state);
  return outcome == Outcome::kFailed ? -1 : written;
}

int32_t Base64Encode(const uint8_t* input, int32_t length, char* output, int32_t outputSize) {
  if (input == nullptr || length < 0) return fe::FailWith(fe::kErrorInvalidParameter);
  const int64_t required = ((int64_t{4} * length / 3 + 3) & ~int64_t{3}) + 4;
  if (output == nullptr || outputSize < required) {
    return fe::FailWith(fe::kErrorInsufficientBuffer);
  }
  // The size check above leaves room for the padded last group and the NUL.
  Base64State state{};
  const int32_t count = Base64EncodeChunk(input, length, output, outputSize, &state, 0);
  const int32_t tail = Base64EncodeFinish(&state, output + count, 0);
  output[count + tail] = '\0';
  return count + tail;
}

int32_t Base64Decode(const char* text, uint8_t* output, int32_t outputSize) {
  if (text == nullptr) return 0;
  const size_t length = std::strlen(text);
  if (length == 0) return 0;
  if (output == nullptr || length > INT32_MAX) return -1;
  if (int64_t{outputSize} < int64_t{2} * static_cast<int64_t>(length) / 3) return -1;
  Base64State state{};
  return Base64DecodeChunk(text, static_cast<int32_t>(length), output, outputSize, &state);
}

}  // extern "C"
