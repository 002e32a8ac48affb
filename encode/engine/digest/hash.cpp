#include "digest/hash.h"

#include <cstring>

namespace fe::digest {

namespace {

constexpr uint32_t kMd5Start[4] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
constexpr uint32_t kSha1Start[5] = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
constexpr uint32_t kSha256Start[8] = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                      0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};

void StoreLittle(uint8_t* out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i)
    out[i] = static_cast<uint8_t>(value >> (8 * i));
}

void StoreBig(uint8_t* out, uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i)
    out[i] = static_cast<uint8_t>(value >> (8 * (bytes - 1 - i)));
}

}  // namespace

Hash::Hash(HashKind kind) : Hash(kind, FastestBlocks(kind)) {}

Hash::Hash(HashKind kind, BlockFunction blocks) : kind_(kind), blocks_(blocks), state_{} {
  switch (kind) {
    case HashKind::kMd5:
      std::memcpy(state_, kMd5Start, sizeof kMd5Start);
      break;
    case HashKind::kSha1:
      std::memcpy(state_, kSha1Start, sizeof kSha1Start);
      break;
    case HashKind::kSha256:
      std::memcpy(state_, kSha256Start, sizeof kSha256Start);
      break;
  }
}

size_t Hash::DigestSize(HashKind kind) {
  return kind == HashKind::kMd5 ? 16 : kind == HashKind::kSha1 ? 20 : 32;
}

void Hash::Update(const void* data, size_t size) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  total_ += size;
  if (pending_size_ > 0) {
    const size_t take = size < 64 - pending_size_ ? size : 64 - pending_size_;
    std::memcpy(pending_ + pending_size_, bytes, take);
    pending_size_ += take;
    bytes += take;
    size -= take;
    if (pending_size_ < 64) return;
    blocks_(state_, pending_, 1);
    pending_size_ = 0;
  }
  if (size >= 64) {
    blocks_(state_, bytes, size / 64);
    bytes += size / 64 * 64;
    size %= 64;
  }
  std::memcpy(pending_, bytes, size);
  pending_size_ = size;
}

size_t Hash::Finish(uint8_t* digest) {
  // A one bit, zeros to 56 bytes of the last block, then the bit length:
  // little-endian for MD5, big-endian for SHA.
  const uint64_t bits = total_ * 8;
  uint8_t tail[128] = {};
  const size_t padded = pending_size_ < 56 ? 64 : 128;
  std::memcpy(tail, pending_, pending_size_);
  tail[pending_size_] = 0x80;
  if (kind_ == HashKind::kMd5) {
    StoreLittle(tail + padded - 8, bits, 8);
  } else {
    StoreBig(tail + padded - 8, bits, 8);
  }
  blocks_(state_, tail, padded / 64);
  const size_t size = DigestSize(kind_);
  for (size_t word = 0; word < size / 4; ++word) {
    if (kind_ == HashKind::kMd5) {
      StoreLittle(digest + 4 * word, state_[word], 4);
    } else {
      StoreBig(digest + 4 * word, state_[word], 4);
    }
  }
  return size;
}

}  // namespace fe::digest
