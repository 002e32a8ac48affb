// Base64 with AVX-512 VBMI and VBMI2: 48 bytes to 64 characters and back
// per step.
// Byte permutes place each group's bytes, a multishift cuts the four
// sextets out of every 32-bit lane and a 64-entry permute turns them into
// characters; decoding looks every character up in a 128-entry table.
// Masked loads and stores take exactly the groups asked for, so the kernel
// never touches a byte outside them.
#include <immintrin.h>

#include <algorithm>
#include <array>

#include "codecs/base64_alphabet.h"
#include "codecs/x86/kernels.h"
#include "codecs/x86/sextets_avx512.h"

namespace fe::codecs::x86 {

namespace {

constexpr size_t kStepGroups = kSextetStepGroups;  // 48 bytes, 64 characters
constexpr uint8_t kNotInAlphabet = 0x80;

constexpr Table64 kLaneNumbers = [] {
  Table64 table{};
  for (int i = 0; i < 64; ++i)
    table[i] = static_cast<uint8_t>(i);
  return table;
}();

constexpr std::array<uint8_t, 128> kSextets = [] {
  std::array<uint8_t, 128> table{};
  table.fill(kNotInAlphabet);
  for (int i = 0; i < 64; ++i)
    table[static_cast<uint8_t>(kBase64Alphabet[i])] = static_cast<uint8_t>(i);
  return table;
}();

// Where the step that ends at `end` starts: a whole step where one fits,
// reaching back over groups already done if need be (masked loads and
// stores to memory are slower on some processors than doing a few groups
// twice), else the partial step from `done`.
size_t StepStart(size_t done, size_t end) {
  return end >= kStepGroups ? end - kStepGroups : done;
}

// The Base64 characters of the 48 bytes in the low lanes.
struct Encoder : SextetEncoder {
  Encoder() : SextetEncoder(kBase64Alphabet) {}
};

// The 48 bytes at `from`, by a plain load where 64 are readable.
__m512i LoadStep(const uint8_t* from, const uint8_t* readableEnd) {
  return readableEnd - from >= 64 ? Load64(from) : _mm512_maskz_loadu_epi8(FirstBytes(48), from);
}

}  // namespace

size_t Base64EncodeGroupsAvx512(const uint8_t* in, size_t groups, size_t readable, char* out) {
  const Encoder encode;
  for (size_t done = 0; done < groups;) {
    const size_t end = std::min(groups, done + kStepGroups);
    const size_t at = StepStart(done, end);
    if (end - at == kStepGroups && 3 * at + 64 <= readable) {
      _mm512_storeu_si512(out + 4 * at, encode(Load64(in + 3 * at)));
    } else {
      const size_t count = end - done;
      const __m512i bytes = _mm512_maskz_loadu_epi8(FirstBytes(3 * count), in + 3 * done);
      _mm512_mask_storeu_epi8(out + 4 * done, FirstBytes(4 * count), encode(bytes));
    }
    done = end;
  }
  return groups;
}

void Base64EncodeLinesAvx512(const uint8_t* in, size_t lines, size_t readable, char* out) {
  // A line is a whole step and the step that ends with its last group
  // (groups 2-17), stored over the first one's last eight characters.
  const Encoder encode;
  const uint8_t* const readableEnd = in + readable;
  for (size_t line = 0; line < lines; ++line) {
    const uint8_t* from = in + kBase64LineBytes * line;
    char* to = out + kBase64LineRoom * line;
    to[0] = '\r';
    to[1] = '\n';
    _mm512_storeu_si512(to + 2, encode(LoadStep(from, readableEnd)));
    _mm512_storeu_si512(to + 10, encode(LoadStep(from + 6, readableEnd)));
  }
}

namespace {

struct Decoder {
  __m512i lowHalf = Load64(kSextets.data());
  __m512i highHalf = Load64(kSextets.data() + 64);

  // Looks up the `count` characters (up to 64) at `text`; returns a mask of
  // those outside the alphabet.
  __mmask64 Look(const uint8_t* text, size_t count, __m512i* sextets) const {
    const __mmask64 taken = FirstBytes(count);
    const __m512i characters = count == 64 ? Load64(text) : _mm512_maskz_loadu_epi8(taken, text);
    *sextets = _mm512_permutex2var_epi8(lowHalf, characters, highHalf);
    // Bytes from 0x80 up and characters outside the alphabet both show
    // bit 7 here.
    return _mm512_movepi8_mask(_mm512_or_si512(characters, *sextets)) & taken;
  }

  __m512i Bytes(__m512i sextets) const { return SextetBytes(sextets); }
};

// A whole step's 48 bytes by two plain stores.
void StoreWhole(__m512i bytes, uint8_t* to) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(to),
                      _mm512_maskz_extracti64x4_epi64(0xF, bytes, 0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 32),
                   _mm512_maskz_extracti32x4_epi32(0xF, bytes, 2));
}

// How many of the `count` characters at `text` a step may use: those
// before the first one outside the alphabet that is not skipped anywhere.
size_t Usable(const uint8_t* text, size_t count, __mmask64 outside, const bool* anywhere) {
  for (; outside != 0; outside &= outside - 1) {
    const auto at = static_cast<size_t>(__builtin_ctzll(outside));
    if (!anywhere[text[at]]) return at;
  }
  return count;
}

// Where the n-th (from 1) set bit of mask stands.
size_t NthSetBit(uint64_t mask, unsigned n) {
#ifdef __x86_64__
  return static_cast<size_t>(__builtin_ctzll(_pdep_u64(uint64_t{1} << (n - 1), mask)));
#else
  // 32-bit builds deposit one half at a time.
  const auto low = static_cast<uint32_t>(mask);
  const auto inLow = static_cast<unsigned>(__builtin_popcount(low));
  if (n <= inLow) return static_cast<size_t>(__builtin_ctz(_pdep_u32(1u << (n - 1), low)));
  return 32 + static_cast<size_t>(__builtin_ctz(
                  _pdep_u32(1u << (n - 1 - inLow), static_cast<uint32_t>(mask >> 32))));
#endif
}

// Decodes blocks of 64 characters at a fixed stride while every character
// outside the alphabet in them is one skipped anywhere and at least half
// of them are in the alphabet. Each block's sextets are squeezed together
// and appended to those carried over from the blocks before; every 64
// gathered sextets decode to 48 bytes. The stride keeps the next load from
// waiting on this block's count. Returns the characters consumed: up to the
// first sextet still carried, so the caller goes on after a whole group.
size_t SqueezedBlocks(const Decoder& decoder, const uint8_t* text, size_t length, size_t maxGroups,
                      const bool* anywhere, uint8_t* out, size_t* groups) {
  const __m512i lanes = Load64(kLaneNumbers.data());
  __m512i carried = _mm512_setzero_si512();
  size_t fill = 0;                  // sextets carried, fewer than 64
  uint64_t previous = 0, last = 0;  // the alphabet characters of the last two blocks
  size_t at = 0;
  size_t done = 0;
  while (length - at >= 64 && maxGroups - done >= kStepGroups) {
    __m512i sextets;
    const __mmask64 outside = decoder.Look(text + at, 64, &sextets);
    if (outside != 0 && Usable(text + at, 64, outside, anywhere) < 64) break;
    const uint64_t inside = ~outside;
    const auto count = static_cast<size_t>(__builtin_popcountll(inside));
    // The way back to the first carried sextet needs at most two blocks.
    if (count < 32) break;
    const __m512i squeezed = _mm512_maskz_compress_epi8(inside, sextets);
    // Lane i takes carried[i] below fill, squeezed[i - fill] from there.
    const __m512i shift = _mm512_set1_epi8(static_cast<char>(64 - fill));
    const __m512i from = _mm512_mask_add_epi8(lanes, ~FirstBytes(fill), lanes, shift);
    const __m512i joined = _mm512_permutex2var_epi8(carried, from, squeezed);
    previous = last;
    last = inside;
    at += 64;
    if (fill + count >= 64) {
      StoreWhole(decoder.Bytes(joined), out + 3 * done);
      done += kStepGroups;
      carried = Permute(_mm512_add_epi8(lanes, shift), squeezed);
      fill = fill + count - 64;
    } else {
      carried = joined;
      fill += count;
    }
  }
  if (fill > 0) {
    const auto inLast = static_cast<size_t>(__builtin_popcountll(last));
    if (fill <= inLast) {
      at = at - 64 + NthSetBit(last, static_cast<unsigned>(inLast - fill + 1));
    } else {
      const auto inPrevious = static_cast<size_t>(__builtin_popcountll(previous));
      at = at - 128 + NthSetBit(previous, static_cast<unsigned>(inPrevious - (fill - inLast) + 1));
    }
  }
  *groups = done;
  return at;
}

// One step of up to 64 characters from `at`, for what stopped the blocks:
// the white space is squeezed out and whole groups of the rest decoded, or
// what is skipped between groups passed over. False when it cannot go on.
bool SingleStep(const Decoder& decoder, const uint8_t* text, size_t length, size_t maxGroups,
                const Base64Skips* skips, uint8_t* out, size_t* at, size_t* done) {
  if (*done >= maxGroups || length - *at < 4) return false;
  const size_t count = std::min<size_t>(64, length - *at);
  const size_t wanted = maxGroups - *done;
  __m512i sextets;
  const __mmask64 outside = decoder.Look(text + *at, count, &sextets);
  const __mmask64 inside =
      ~outside & FirstBytes(Usable(text + *at, count, outside, skips->anywhere));
  const size_t taken =
      std::min<size_t>(static_cast<size_t>(__builtin_popcountll(inside)) / 4, wanted);
  if (taken == 0) {
    // Only what is skipped between groups may be passed over here.
    if (!skips->betweenGroups[text[*at]]) return false;
    while (*at < length && skips->betweenGroups[text[*at]])
      ++*at;
    return true;
  }
  const __m512i bytes = decoder.Bytes(_mm512_maskz_compress_epi8(inside, sextets));
  _mm512_mask_storeu_epi8(out + 3 * *done, FirstBytes(3 * taken), bytes);
  // On past the last character of the last group taken.
  *at += NthSetBit(inside, static_cast<unsigned>(4 * taken)) + 1;
  *done += taken;
  return true;
}

}  // namespace

size_t Base64DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups,
                                const Base64Skips* skips, uint8_t* out, size_t* groups) {
  const Decoder decoder;
  size_t at = 0;
  size_t done = 0;
  do {
    size_t blockGroups = 0;
    at += SqueezedBlocks(decoder, text + at, length - at, maxGroups - done, skips->anywhere,
                         out + 3 * done, &blockGroups);
    done += blockGroups;
  } while (SingleStep(decoder, text, length, maxGroups, skips, out, &at, &done));
  *groups = done;
  return at;
}

}  // namespace fe::codecs::x86
