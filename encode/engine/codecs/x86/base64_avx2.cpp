// Base64 with AVX2: 24 bytes to 32 characters and back per step, in the
// way published by Muła and Lemire (bytes spread into 32-bit lanes, sextets
// cut out by multiplications, characters found by a small offset table;
// validity checked by two nibble-indexed bit tables). Every table below is
// derived from the alphabet at compile time and checked against it.
#include <immintrin.h>

#include <algorithm>
#include <array>

#include "codecs/base64_alphabet.h"
#include "codecs/x86/base64_decode_runs.h"
#include "codecs/x86/kernels.h"

namespace fe::codecs::x86 {

namespace {

using Table16 = std::array<int8_t, 16>;

constexpr int Sextet(int c) {
  for (int i = 0; i < 64; ++i) {
    if (static_cast<uint8_t>(kBase64Alphabet[i]) == c) return i;
  }
  return -1;
}

// ---- Encoding: sextet -> character as sextet + offset[Reduced(sextet)].
// Reduced maps 0-25 to 13, 26-51 to 0 and 52-63 to 1-12, which is what
// the saturating subtraction and comparison below compute.
constexpr int Reduced(int sextet) {
  return sextet < 26 ? 13 : sextet <= 51 ? 0 : sextet - 51;
}

constexpr Table16 kCharacterOffsets = [] {
  Table16 table{};
  for (int v = 0; v < 64; ++v)
    table[Reduced(v)] = static_cast<int8_t>(kBase64Alphabet[v] - v);
  return table;
}();

constexpr bool OffsetsGiveTheAlphabet() {
  for (int v = 0; v < 64; ++v) {
    if (v + kCharacterOffsets[Reduced(v)] != kBase64Alphabet[v]) return false;
  }
  return true;
}
static_assert(OffsetsGiveTheAlphabet());

// ---- Decoding validity: a character is bad when the bit of its high
// nibble's class is set in the entry of its low nibble. Classes: 2, 3, the
// letter rows 4/6 and 5/7 (identical layouts), and everything else.
constexpr uint8_t ClassBit(int high) {
  switch (high) {
    case 2:
      return 0x01;
    case 3:
      return 0x02;
    case 4:
    case 6:
      return 0x04;
    case 5:
    case 7:
      return 0x08;
    default:
      return 0x10;
  }
}

constexpr Table16 kClassBits = [] {
  Table16 table{};
  for (int high = 0; high < 16; ++high)
    table[high] = static_cast<int8_t>(ClassBit(high));
  return table;
}();

constexpr Table16 kBadClasses = [] {
  Table16 table{};
  for (int c = 0; c < 256; ++c) {
    if (Sextet(c) < 0) table[c & 15] = static_cast<int8_t>(table[c & 15] | ClassBit(c >> 4));
  }
  return table;
}();

constexpr bool ClassesSeparateTheAlphabet() {
  for (int c = 0; c < 256; ++c) {
    const bool bad = (kBadClasses[c & 15] & ClassBit(c >> 4)) != 0;
    if (bad != (Sextet(c) < 0)) return false;
  }
  return true;
}
static_assert(ClassesSeparateTheAlphabet());

// ---- Decoding values: sextet = c + shift[high nibble], except '/', which
// shares its nibble with '+' and takes entry 1 (high nibble minus one).
constexpr int ShiftIndex(int c) {
  return c == '/' ? (c >> 4) - 1 : c >> 4;
}

constexpr Table16 kValueShifts = [] {
  Table16 table{};
  for (int c = 0; c < 128; ++c) {
    if (Sextet(c) >= 0) table[ShiftIndex(c)] = static_cast<int8_t>(Sextet(c) - c);
  }
  return table;
}();

constexpr bool ShiftsGiveTheValues() {
  for (int c = 0; c < 128; ++c) {
    if (Sextet(c) >= 0 && c + kValueShifts[ShiftIndex(c)] != Sextet(c)) return false;
  }
  return true;
}
static_assert(ShiftsGiveTheValues());
static_assert(ShiftIndex('/') != ShiftIndex('+') && kValueShifts[ShiftIndex('/')] != 0);

__m256i Broadcast(const Table16& table) {
  return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(&table)));
}

constexpr size_t kEncodeGroups = 8;  // 24 bytes in, 32 characters out
constexpr size_t kEncodeReads = 28;  // each 16-byte half is loaded whole

// Encodes the eight groups at `in` (reading 28 bytes) into 32 characters.
void EncodeStep(const uint8_t* in, char* out, __m256i offsets) {
  const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
  const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 12));
  const __m256i bytes = _mm256_inserti128_si256(_mm256_castsi128_si256(low), high, 1);
  // Each 32-bit lane takes one group as bytes b1 b0 b2 b1, so that every
  // sextet sits inside one 16-bit half.
  const __m256i spread = _mm256_shuffle_epi8(
      bytes, _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 1, 0, 2, 1, 4, 3,
                              5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
  // Sextets 0 and 2 by a high multiply (shift right), 1 and 3 by a low one.
  const __m256i first = _mm256_mulhi_epu16(_mm256_and_si256(spread, _mm256_set1_epi32(0x0FC0FC00)),
                                           _mm256_set1_epi32(0x04000040));
  const __m256i second = _mm256_mullo_epi16(_mm256_and_si256(spread, _mm256_set1_epi32(0x003F03F0)),
                                            _mm256_set1_epi32(0x01000010));
  const __m256i sextets = _mm256_or_si256(first, second);
  __m256i reduced = _mm256_subs_epu8(sextets, _mm256_set1_epi8(51));
  const __m256i letters = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), sextets);
  reduced = _mm256_or_si256(reduced, _mm256_and_si256(letters, _mm256_set1_epi8(13)));
  const __m256i characters = _mm256_add_epi8(sextets, _mm256_shuffle_epi8(offsets, reduced));
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), characters);
}

constexpr size_t kDecodeGroups = 8;  // 32 characters in, 24 bytes out

struct DecodeTables {
  __m256i badClasses = Broadcast(kBadClasses);
  __m256i classBits = Broadcast(kClassBits);
  __m256i valueShifts = Broadcast(kValueShifts);
};

// A mask with one bit per character of the 32 at `text` that is outside
// the alphabet; when it is zero, the step's 24 bytes are in `bytes`.
uint32_t DecodeStep(const uint8_t* text, const DecodeTables& tables, __m256i* bytes) {
  const __m256i characters = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(text));
  const __m256i nibble = _mm256_set1_epi8(0x0F);
  const __m256i high = _mm256_and_si256(_mm256_srli_epi32(characters, 4), nibble);
  const __m256i low = _mm256_and_si256(characters, nibble);
  const __m256i bad = _mm256_and_si256(_mm256_shuffle_epi8(tables.badClasses, low),
                                       _mm256_shuffle_epi8(tables.classBits, high));
  const auto clean =
      static_cast<uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(bad, _mm256_setzero_si256())));
  if (clean != 0xFFFFFFFFu) return ~clean;
  const __m256i slash = _mm256_cmpeq_epi8(characters, _mm256_set1_epi8('/'));
  const __m256i sextets = _mm256_add_epi8(
      characters, _mm256_shuffle_epi8(tables.valueShifts, _mm256_add_epi8(high, slash)));
  // Pairs of sextets to 12 bits, pairs of those to 24 bits per lane.
  const __m256i pairs = _mm256_maddubs_epi16(sextets, _mm256_set1_epi32(0x01400140));
  const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
  const __m256i ordered = _mm256_shuffle_epi8(
      groups, _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, 2, 1, 0, 6,
                               5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
  *bytes = _mm256_permutevar8x32_epi32(ordered, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  return 0;
}

void StoreStep(__m256i bytes, uint8_t* out) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm256_castsi256_si128(bytes));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 16), _mm256_extracti128_si256(bytes, 1));
}

}  // namespace

size_t Base64EncodeGroupsAvx2(const uint8_t* in, size_t groups, size_t readable, char* out) {
  if (groups < kEncodeGroups) return 0;
  const __m256i offsets = Broadcast(kCharacterOffsets);
  size_t done = 0;
  while (done < groups) {
    // The last step overlaps the one before, writing the same characters.
    const size_t at = std::min(done, groups - kEncodeGroups);
    if (3 * at + kEncodeReads > readable) break;
    EncodeStep(in + 3 * at, out + 4 * at, offsets);
    done = at + kEncodeGroups;
  }
  return done;
}

namespace {

size_t CleanGroups(const uint8_t* text, size_t groups, uint8_t* out) {
  if (groups < kDecodeGroups) return 0;
  const DecodeTables tables;
  size_t done = 0;
  __m256i bytes = _mm256_setzero_si256();
  while (done < groups) {
    const size_t at = std::min(done, groups - kDecodeGroups);
    const uint32_t bad = DecodeStep(text + 4 * at, tables, &bytes);
    if (bad != 0) {
      // The groups before the first bad character are clean: end on them
      // with one more step over groups already checked.
      const size_t clean = at + static_cast<size_t>(__builtin_ctz(bad)) / 4;
      if (clean <= done || clean < kDecodeGroups) break;
      DecodeStep(text + 4 * (clean - kDecodeGroups), tables, &bytes);
      StoreStep(bytes, out + 3 * (clean - kDecodeGroups));
      return clean;
    }
    StoreStep(bytes, out + 3 * at);
    done = at + kDecodeGroups;
  }
  return done;
}

}  // namespace

size_t Base64DecodeGroupsAvx2(const uint8_t* text, size_t length, size_t maxGroups,
                              const Base64Skips* skips, uint8_t* out, size_t* groups) {
  return DecodeRuns(text, length, maxGroups, skips->betweenGroups, out, groups, CleanGroups);
}

}  // namespace fe::codecs::x86
