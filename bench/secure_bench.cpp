// Throughput of file encryption and of the three file digests on one large
// file (1 GiB unless FE_BENCH_SECURE_MB says otherwise), beside openssl and
// coreutils doing the same work on the same file, and the buffer ciphers
// beside OpenSSL in the same process. Ours and theirs take
// turns over three rounds; the best of each side is reported with the ratio.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <openssl/evp.h>

#include "bench_support.h"
#include "file_encoder.h"

namespace {

using fe::bench::Compare;
using fe::bench::Tool;

// Ours against a command line doing the same work.
void Row(const char* what, double megabytes, const std::function<bool()>& ours,
         const std::string& tool) {
  // The key's shell expansion is long and says nothing: shown as "...".
  std::string shown = tool;
  const size_t key = shown.find(" -K "), input = shown.find(" -in ");
  if (key != std::string::npos && input != std::string::npos) {
    shown.replace(key, input - key, " ...");
  }
  Compare(
      what, megabytes, ours, [&] { return Tool(tool); }, shown);
}

// EncryptBuffer and DecryptBuffer against OpenSSL's AES-256-CBC called
// directly on the same 64 MiB, what "openssl speed -evp aes-256-cbc"
// measures.
void BufferRows() {
  constexpr uint32_t kSize = 64u << 20;
  std::vector<uint8_t> plain(kSize, 0x5A), cipher(kSize + 16), back(kSize + 16), theirs(kSize + 16);
  const double mb = kSize / 1e6;
  uint8_t key[32] = {}, iv[16] = {};
  EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
  const auto evp = [&](bool encrypt) {
    int out = 0;
    return EVP_CipherInit_ex(context, EVP_aes_256_cbc(), nullptr, key, iv, encrypt) == 1 &&
           EVP_CIPHER_CTX_set_padding(context, 0) == 1 &&
           EVP_CipherUpdate(context, theirs.data(), &out, encrypt ? plain.data() : cipher.data(),
                            static_cast<int>(kSize)) == 1;
  };
  uint32_t length = 0;
  Compare(
      "EncryptBuffer", mb,
      [&] {
        length = static_cast<uint32_t>(cipher.size());
        return EncryptBuffer("bench", plain.data(), kSize, cipher.data(), &length) != 0;
      },
      [&] { return evp(true); }, "OpenSSL EVP aes-256-cbc encrypt, in process");
  Compare(
      "DecryptBuffer", mb,
      [&] {
        uint32_t room = static_cast<uint32_t>(back.size());
        return DecryptBuffer("bench", cipher.data(), length, back.data(), &room) != 0;
      },
      [&] { return evp(false); }, "OpenSSL EVP aes-256-cbc decrypt, in process");
  EVP_CIPHER_CTX_free(context);
}

}  // namespace

int main() {
  const char* sizeText = std::getenv("FE_BENCH_SECURE_MB");
  const size_t megabytes = sizeText ? std::strtoul(sizeText, nullptr, 10) : 1024;
  const std::string folder = "/tmp/fe_secure_bench";
  Tool("mkdir -p " + folder);
  const std::string source = folder + "/source.bin";
  const std::string cipher = folder + "/cipher.bin";
  const std::string back = folder + "/back.bin";
  {
    std::mt19937_64 random(1);
    std::vector<uint64_t> piece((1 << 20) / 8);
    std::ofstream file(source, std::ios::binary);
    for (size_t m = 0; m < megabytes; ++m) {
      for (uint64_t& word : piece)
        word = random();
      file.write(reinterpret_cast<const char*>(piece.data()), 1 << 20);
    }
  }
  const double mb = static_cast<double>(megabytes) * 1.048576;
  std::printf("%zu MiB file, best of %d interleaved rounds: ours, theirs, theirs/ours\n\n",
              megabytes, 3);
  // The key the engine derives from the password "bench".
  const std::string key =
      "$(/usr/bin/python3 -c \"import hashlib;print(hashlib.sha256("
      "b'{fd91a26c-3e37-4b0c-bbc2-cb031bf7130a}bench').hexdigest())\")";
  const std::string enc =
      "openssl enc -aes-256-cbc -K " + key + " -iv " + std::string(32, '0') + " -in ";
  Row(
      "EncryptFile", mb,
      [&] { return EncryptFileData("bench", source.c_str(), cipher.c_str()) != 0; },
      enc + source + " -out " + folder + "/t.enc");
  Row(
      "DecryptFile", mb,
      [&] { return DecryptFileData("bench", cipher.c_str(), back.c_str()) != 0; },
      enc + cipher + " -d -out " + folder + "/t.dec");
  char digest[65];
  Row(
      "digest MD5", mb, [&] { return GetFileDigestMD5(source.c_str(), digest) == 32; },
      "md5sum " + source + " >/dev/null");
  Row(
      "digest SHA-1", mb, [&] { return GetFileDigestSHA1(source.c_str(), digest) == 40; },
      "sha1sum " + source + " >/dev/null");
  Row(
      "digest SHA-256", mb, [&] { return GetFileDigestSHA256(source.c_str(), digest) == 64; },
      "sha256sum " + source + " >/dev/null");
  Row(
      "digest MD5", mb, [&] { return GetFileDigestMD5(source.c_str(), digest) == 32; },
      "openssl dgst -md5 " + source + " >/dev/null");
  Row(
      "digest SHA-1", mb, [&] { return GetFileDigestSHA1(source.c_str(), digest) == 40; },
      "openssl dgst -sha1 " + source + " >/dev/null");
  Row(
      "digest SHA-256", mb, [&] { return GetFileDigestSHA256(source.c_str(), digest) == 64; },
      "openssl dgst -sha256 " + source + " >/dev/null");
  BufferRows();
  Tool("rm -rf " + folder);
  return 0;
}
