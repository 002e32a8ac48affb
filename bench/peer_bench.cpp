// Our in-memory codecs beside the libraries a user would pick instead, on
// the same pre-faulted 64 MiB, taking turns: the SIMD Base64 library of the
// peers folder (built into build/peers by make bench) in the same process,
// Python's binascii (timed inside Python), coreutils base64 (the whole
// command, reading the same bytes from a file in the page cache), and
// memcpy of the same size as the ceiling. Rates are of the unencoded bytes
// in both directions.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "file_encoder.h"

#ifdef FE_PEER_BASE64
#include <libbase64.h>
#endif

namespace {

using fe::bench::Compare;
using fe::bench::CompareTimed;
using fe::bench::PythonSeconds;
using fe::bench::Tool;

constexpr size_t kSize = 64u << 20;
constexpr int kRounds = 9;

int32_t Size(const std::vector<char>& buffer) {
  return static_cast<int32_t>(buffer.size());
}

}  // namespace

int main() {
  const double mb = kSize / 1e6;
  // Every buffer is written once before timing, so no round pays for first
  // touches of its pages.
  const std::vector<uint8_t> data = fe::bench::RandomBytes(kSize);
  std::vector<char> text(kSize * 2, 1), wrapped(kSize * 2, 1), theirs(kSize * 2, 1);
  std::vector<uint8_t> back(kSize + 64, 1), theirsBack(kSize + 64, 1);
  const auto* raw = data.data();
  const auto length = static_cast<int32_t>(kSize);
  std::printf("64 MiB in memory, best of %d interleaved rounds: ours, theirs, theirs/ours\n\n",
              kRounds);

  const int32_t textLength = EncodeBuffer(raw, length, text.data(), Size(text), dataEncodeBase64);
  const int32_t wrappedLength = EncodeBuffer(raw, length, wrapped.data(), Size(wrapped),
                                             dataEncodeBase64 | dataEncodeWrapLines);
  std::vector<char> copy(kSize, 1);
  const auto copyRow = [&](const char* what, const std::function<bool()>& ours) {
    Compare(
        what, mb, ours,
        [&] {
          std::memcpy(copy.data(), raw, kSize);
          return copy[kSize / 2] == static_cast<char>(raw[kSize / 2]);
        },
        "memcpy of the same 64 MiB (ceiling)", kRounds);
  };
  const auto encode = [&] {
    return EncodeBuffer(raw, length, text.data(), Size(text), dataEncodeBase64) == textLength;
  };
  const auto encodeWrapped = [&] {
    return EncodeBuffer(raw, length, wrapped.data(), Size(wrapped),
                        dataEncodeBase64 | dataEncodeWrapLines) == wrappedLength;
  };
  const auto decode = [&] {
    return DecodeBuffer(text.data(), back.data(), static_cast<int32_t>(back.size()),
                        dataDecodeBase64) == length;
  };
  // The chunk decoder, which is given the length instead of a terminator.
  const auto decodeChunk = [&] {
    Base64State state{};
    return Base64DecodeChunk(text.data(), textLength, back.data(),
                             static_cast<int32_t>(back.size()), &state) == length;
  };
  const auto decodeWrapped = [&] {
    return DecodeBuffer(wrapped.data(), back.data(), static_cast<int32_t>(back.size()),
                        dataDecodeBase64) == length;
  };
#ifdef FE_PEER_BASE64
  const auto* in = reinterpret_cast<const char*>(raw);
  const auto theirEncode = [&] {
    size_t out = 0;
    base64_encode(in, kSize, theirs.data(), &out, 0);
    return out == static_cast<size_t>(textLength);
  };
  const auto theirDecode = [&] {
    size_t out = 0;
    return base64_decode(text.data(), static_cast<size_t>(textLength),
                         reinterpret_cast<char*>(theirsBack.data()), &out, 0) == 1 &&
           out == kSize;
  };
  const std::string library = "aklomp/base64 (no line breaks)";
  Compare("Base64 encode", mb, encode, theirEncode, library, kRounds);
  Compare("Base64 decode", mb, decode, theirDecode, library, kRounds);
  Compare("Base64DecodeChunk", mb, decodeChunk, theirDecode, library, kRounds);
  Compare("Base64 encode, 72 columns", mb, encodeWrapped, theirEncode, library, kRounds);
  Compare("Base64 decode, 72 columns", mb, decodeWrapped, theirDecode, library, kRounds);
#else
  std::printf("(aklomp/base64 not built: its snapshot was not found)\n");
#endif
  copyRow("Base64 encode", encode);
  copyRow("Base64 decode", decode);

  const std::string dataFile = "/tmp/fe_peer_bench.bin", textFile = "/tmp/fe_peer_bench.txt";
  std::ofstream(dataFile, std::ios::binary).write(reinterpret_cast<const char*>(raw), kSize);
  std::ofstream(textFile, std::ios::binary).write(text.data(), textLength);
  CompareTimed(
      "Base64 encode", mb, encode,
      [&] {
        return PythonSeconds("binascii", "binascii.b2a_base64(data, newline=False)", dataFile);
      },
      "Python binascii.b2a_base64", 3);
  CompareTimed(
      "Base64 decode", mb, decode,
      [&] { return PythonSeconds("binascii", "binascii.a2b_base64(data)", textFile); },
      "Python binascii.a2b_base64", 3);
  Compare(
      "Base64 encode", mb, encode, [&] { return Tool("base64 -w0 " + dataFile + " >/dev/null"); },
      "coreutils base64 -w0 (whole command)", 3);
  Compare(
      "Base64 decode", mb, decode, [&] { return Tool("base64 -d " + textFile + " >/dev/null"); },
      "coreutils base64 -d (whole command)", 3);
  std::remove(dataFile.c_str());
  std::remove(textFile.c_str());
  return 0;
}
