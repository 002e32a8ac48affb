// The message digests of RFC 1321 (MD5) and FIPS 180-4 (SHA-1, SHA-256),
// fed in pieces of any size. All three work on 64-byte blocks; each kind
// only brings its block function, initial state and byte order.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::digest {

enum class HashKind { kMd5, kSha1, kSha256 };

// Processes `count` whole 64-byte blocks into the state words.
using BlockFunction = void (*)(uint32_t* state, const uint8_t* blocks, size_t count);

void Md5Blocks(uint32_t* state, const uint8_t* blocks, size_t count);
void Sha1Blocks(uint32_t* state, const uint8_t* blocks, size_t count);
void Sha256Blocks(uint32_t* state, const uint8_t* blocks, size_t count);

// The block function this processor runs fastest; the portable one when
// FE_CPU=scalar is set in the environment.
BlockFunction FastestBlocks(HashKind kind);

class Hash {
 public:
  static constexpr size_t kMaxDigestSize = 32;

  explicit Hash(HashKind kind);
  // The same, with the block function given (tests compare kernels).
  Hash(HashKind kind, BlockFunction blocks);

  void Update(const void* data, size_t size);
  // Writes the digest (16, 20 or 32 bytes) and returns its size.
  size_t Finish(uint8_t* digest);

  static size_t DigestSize(HashKind kind);

 private:
  HashKind kind_;
  BlockFunction blocks_;
  uint32_t state_[8];
  uint8_t pending_[64];
  size_t pending_size_ = 0;
  uint64_t total_ = 0;
};

}  // namespace fe::digest
