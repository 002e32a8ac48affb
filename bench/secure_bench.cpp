// Throughput of file encryption and of the three file digests on one large
// file (1 GiB unless FE_BENCH_SECURE_MB says otherwise), beside openssl and
// coreutils doing the same work on the same file. Ours and theirs take
// turns over three rounds; the best of each side is reported with the ratio.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "file_encoder.h"

namespace {

using fe::bench::SecondsOf;
using fe::bench::Tool;

constexpr int kRounds = 3;

void Row(const char* what, double megabytes, const std::function<bool()>& ours,
         const std::string& tool) {
  double mine = 1e9, theirs = 1e9;
  bool ok = true, theirsOk = true;
  for (int round = 0; round < kRounds; ++round) {
    bool done = false;
    mine = std::min(mine, SecondsOf(ours, &done));
    ok &= done;
    theirs = std::min(theirs, SecondsOf([&] { return Tool(tool); }, &done));
    theirsOk &= done;
  }
  // The key's shell expansion is long and says nothing: shown as "...".
  std::string shown = tool;
  const size_t key = shown.find(" -K "), input = shown.find(" -in ");
  if (key != std::string::npos && input != std::string::npos) {
    shown.replace(key, input - key, " ...");
  }
  std::printf("%-22s %8.1f MB/s%s  %8.1f MB/s%s  ratio %.2f  %s\n", what, megabytes / mine,
              ok ? "" : " (FAILED)", megabytes / theirs, theirsOk ? "" : " (FAILED)", theirs / mine,
              shown.c_str());
  std::fflush(stdout);
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
              megabytes, kRounds);
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
  Tool("rm -rf " + folder);
  return 0;
}
