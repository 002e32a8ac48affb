// SHA-1 (FIPS 180-4, 6.1): eighty rounds over big-endian words, the
// schedule kept in a sixteen-word ring.
#include "digest/hash.h"
#include "digest/word_bits.h"

namespace fe::digest {

void Sha1Blocks(uint32_t* state, const uint8_t* blocks, size_t count) {
  for (; count > 0; --count, blocks += 64) {
    uint32_t w[16];
    for (int i = 0; i < 16; ++i)
      w[i] = LoadBig(blocks + 4 * i);
    uint32_t a = state[0], b = state[1], c = state[2], d = state[3], e = state[4];
    for (int t = 0; t < 80; ++t) {
      if (t >= 16) {
        w[t % 16] = RotateLeft(w[(t - 3) % 16] ^ w[(t - 8) % 16] ^ w[(t - 14) % 16] ^ w[t % 16], 1);
      }
      uint32_t f, k;
      if (t < 20) {
        f = (b & c) | (~b & d);
        k = 0x5a827999;
      } else if (t < 40) {
        f = b ^ c ^ d;
        k = 0x6ed9eba1;
      } else if (t < 60) {
        f = (b & c) | (b & d) | (c & d);
        k = 0x8f1bbcdc;
      } else {
        f = b ^ c ^ d;
        k = 0xca62c1d6;
      }
      const uint32_t next = RotateLeft(a, 5) + f + e + k + w[t % 16];
      e = d;
      d = c;
      c = RotateLeft(b, 30);
      b = a;
      a = next;
    }
    state[0] += a;
    state[1] += b;
    state[2] += c;
    state[3] += d;
    state[4] += e;
  }
}

}  // namespace fe::digest
