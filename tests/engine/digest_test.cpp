// MD5, SHA-1 and SHA-256: the published test vectors, every kernel against
// the portable block functions, and the file-digest routines' text.
#include <gtest/gtest.h>

#include <string>

#include "digest/hash.h"
#include "temp_folder.h"
#include "test_support.h"

namespace fe::test {
namespace {

using digest::Hash;
using digest::HashKind;

std::string HexOf(HashKind kind, const std::string& message, digest::BlockFunction blocks) {
  Hash hash(kind, blocks);
  hash.Update(message.data(), message.size());
  uint8_t out[Hash::kMaxDigestSize];
  return Hex(out, hash.Finish(out));
}

std::string HexOf(HashKind kind, const std::string& message) {
  return HexOf(kind, message, digest::FastestBlocks(kind));
}

TEST(Md5, Rfc1321TestSuite) {
  EXPECT_EQ(HexOf(HashKind::kMd5, ""), "d41d8cd98f00b204e9800998ecf8427e");
  EXPECT_EQ(HexOf(HashKind::kMd5, "a"), "0cc175b9c0f1b6a831c399e269772661");
  EXPECT_EQ(HexOf(HashKind::kMd5, "abc"), "900150983cd24fb0d6963f7d28e17f72");
  EXPECT_EQ(HexOf(HashKind::kMd5, "message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
  EXPECT_EQ(HexOf(HashKind::kMd5, "abcdefghijklmnopqrstuvwxyz"),
            "c3fcd3d76192e4007dfb496cca67e13b");
  EXPECT_EQ(HexOf(HashKind::kMd5, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
            "d174ab98d277d9f5a5611c2c9f419d9f");
  std::string digits;
  for (int i = 0; i < 8; ++i)
    digits += "1234567890";
  EXPECT_EQ(HexOf(HashKind::kMd5, digits), "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(Sha1, Fips180Examples) {
  EXPECT_EQ(HexOf(HashKind::kSha1, "abc"), "a9993e364706816aba3e25717850c26c9cd0d89d");
  EXPECT_EQ(HexOf(HashKind::kSha1, "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "84983e441c3bd26ebaae4aa1f95129e5e54670f1");
  EXPECT_EQ(HexOf(HashKind::kSha1, std::string(1000000, 'a')),
            "34aa973cd4c4daa4f61eeb2bdbad27316534016f");
  EXPECT_EQ(HexOf(HashKind::kSha1, ""), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
}

TEST(Sha256, Fips180Examples) {
  EXPECT_EQ(HexOf(HashKind::kSha256, "abc"),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(HexOf(HashKind::kSha256, "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
            "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
  EXPECT_EQ(HexOf(HashKind::kSha256, std::string(1000000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  EXPECT_EQ(HexOf(HashKind::kSha256, ""),
            "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
}

// The kernel this processor runs (the SHA extensions where present) gives
// the portable block functions' digests at every length around the block
// and padding boundaries, and for many blocks at once.
TEST(Hash, FastestKernelMatchesThePortableBlocksAtEveryLength) {
  const struct {
    HashKind kind;
    digest::BlockFunction portable;
  } kinds[] = {{HashKind::kMd5, digest::Md5Blocks},
               {HashKind::kSha1, digest::Sha1Blocks},
               {HashKind::kSha256, digest::Sha256Blocks}};
  const Bytes data = RandomBytes(5000, 3);
  for (const auto& kind : kinds) {
    for (size_t size = 0; size <= 1000; ++size) {
      const std::string message(data.begin(), data.begin() + static_cast<ptrdiff_t>(size));
      ASSERT_EQ(HexOf(kind.kind, message), HexOf(kind.kind, message, kind.portable)) << size;
    }
    const std::string whole(data.begin(), data.end());
    EXPECT_EQ(HexOf(kind.kind, whole), HexOf(kind.kind, whole, kind.portable));
  }
}

TEST(Hash, PiecesGiveTheDigestOfTheWhole) {
  const Bytes data = RandomBytes(3000, 4);
  for (HashKind kind : {HashKind::kMd5, HashKind::kSha1, HashKind::kSha256}) {
    const std::string whole = HexOf(kind, std::string(data.begin(), data.end()));
    for (size_t piece : {1u, 3u, 63u, 64u, 65u, 1000u}) {
      Hash hash(kind);
      for (size_t at = 0; at < data.size(); at += piece)
        hash.Update(data.data() + at, std::min(piece, data.size() - at));
      uint8_t out[Hash::kMaxDigestSize];
      EXPECT_EQ(Hex(out, hash.Finish(out)), whole) << piece;
    }
  }
}

TEST(FileDigest, UppercaseTextOfEachLength) {
  TempFolder folder;
  const std::string path = folder.Write("abc", ToBytes("abc"));
  char out[65];
  EXPECT_EQ(GetFileDigestMD5(path.c_str(), out), 32);
  EXPECT_STREQ(out, "900150983CD24FB0D6963F7D28E17F72");
  EXPECT_EQ(GetFileDigestSHA1(path.c_str(), out), 40);
  EXPECT_STREQ(out, "A9993E364706816ABA3E25717850C26C9CD0D89D");
  EXPECT_EQ(GetFileDigestSHA256(path.c_str(), out), 64);
  EXPECT_STREQ(out, "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD");
}

TEST(FileDigest, ReadsFilesOfManyChunks) {
  TempFolder folder;
  const Bytes data = RandomBytes(3 * 8192 + 17, 5);
  const std::string path = folder.Write("many", data);
  const std::string text(data.begin(), data.end());
  char out[65];
  ASSERT_EQ(GetFileDigestSHA256(path.c_str(), out), 64);
  std::string expected = HexOf(HashKind::kSha256, text);
  for (char& c : expected)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  EXPECT_EQ(std::string(out), expected);
}

TEST(FileDigest, MissingFileOrArgumentsFail) {
  TempFolder folder;
  char out[65];
  EngineSetLastError(0);
  EXPECT_EQ(GetFileDigestMD5(folder.Path("missing").c_str(), out), 0);
  EXPECT_EQ(EngineGetLastError(), 2u);
  EXPECT_EQ(GetFileDigestSHA1(nullptr, out), 0);
  EXPECT_EQ(GetFileDigestSHA256(folder.Write("x", ToBytes("x")).c_str(), nullptr), 0);
  EXPECT_EQ(GetFileDigestSHA256(folder.Folder().c_str(), out), 0);  // a directory
}

}  // namespace
}  // namespace fe::test
