// Throughput of EncodeBuffer and DecodeBuffer for every encoding on 1 MiB of
// random bytes (UTF-16 text for UTF-7 and UTF-8), and Base64 on 64 MiB.
// Rates are of the unencoded data in both directions. Also the CRC-32 of
// yEnc beside zlib's crc32 on the same 1 MiB.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "digest/crc32.h"
#include "file_encoder.h"

namespace {

constexpr size_t kMiB = 1 << 20;

// UTF-16 text of `bytes` bytes: mostly ASCII words with some accented and
// CJK characters, as real text has.
std::u16string SampleText(size_t bytes) {
  std::mt19937 generator(7);
  std::u16string text;
  while (text.size() * 2 < bytes) {
    const uint32_t r = generator() % 100;
    text += r < 80   ? static_cast<char16_t>('a' + r % 26)
            : r < 90 ? u' '
            : r < 96 ? u'\u00e9'
                     : u'\u65e5';
  }
  return text;
}

struct Input {
  std::vector<uint8_t> data;
  int32_t length;  // bytes, or UTF-16 units for UTF-7 and UTF-8
};

Input MakeInput(uint32_t encoding, size_t size) {
  if (encoding == dataEncodeUTF7 || encoding == dataEncodeUTF8) {
    const std::u16string text = SampleText(size);
    const auto* raw = reinterpret_cast<const uint8_t*>(text.data());
    return {std::vector<uint8_t>(raw, raw + text.size() * 2), static_cast<int32_t>(text.size())};
  }
  return {fe::bench::RandomBytes(size), static_cast<int32_t>(size)};
}

void EncodeBench(benchmark::State& state, uint32_t encoding, size_t size) {
  const Input input = MakeInput(encoding, size);
  std::vector<char> out(size * 4 + 1024);
  for (auto _ : state) {
    const int32_t n = EncodeBuffer(input.data.data(), input.length, out.data(),
                                   static_cast<int32_t>(out.size()), encoding);
    if (n < 0) state.SkipWithError("EncodeBuffer failed");
    benchmark::DoNotOptimize(n);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
}

void DecodeBench(benchmark::State& state, uint32_t encoding, size_t size) {
  const Input input = MakeInput(encoding, size);
  std::vector<char> text(size * 4 + 1024);
  if (EncodeBuffer(input.data.data(), input.length, text.data(), static_cast<int32_t>(text.size()),
                   encoding) < 0) {
    state.SkipWithError("EncodeBuffer failed");
    return;
  }
  std::vector<uint8_t> out(size + 1024);
  const bool unicode = encoding == dataEncodeUTF7 || encoding == dataEncodeUTF8;
  const auto capacity = static_cast<int32_t>(unicode ? out.size() / 2 : out.size());
  for (auto _ : state) {
    const int32_t n = DecodeBuffer(text.data(), out.data(), capacity, encoding);
    if (n < 0) state.SkipWithError("DecodeBuffer failed");
    benchmark::DoNotOptimize(n);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * size));
}

void RegisterAll() {
  static const std::pair<const char*, uint32_t> kEncodings[] = {
      {"Base64", dataEncodeBase64}, {"QuotedPrintable", dataEncodeQuoted},
      {"Url", dataEncodeURL},       {"Utf7", dataEncodeUTF7},
      {"Utf8", dataEncodeUTF8},     {"Base58", dataEncodeBase58},
      {"Base32", dataEncodeBase32}, {"Base85", dataEncodeBase85},
      {"Z85", dataEncodeZ85}};
  for (const auto& [name, encoding] : kEncodings) {
    auto* e = benchmark::RegisterBenchmark((std::string("Encode/") + name + "/1MiB").c_str(),
                                           EncodeBench, encoding, kMiB);
    auto* d = benchmark::RegisterBenchmark((std::string("Decode/") + name + "/1MiB").c_str(),
                                           DecodeBench, encoding, kMiB);
    for (auto* b : {e, d})
      b->Unit(benchmark::kMillisecond);
  }
  benchmark::RegisterBenchmark("Encode/Base64/64MiB", EncodeBench, uint32_t{dataEncodeBase64},
                               64 * kMiB)
      ->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("Decode/Base64/64MiB", DecodeBench, uint32_t{dataEncodeBase64},
                               64 * kMiB)
      ->Unit(benchmark::kMillisecond);
}

void Crc32Ours(benchmark::State& state) {
  static const std::vector<uint8_t> data = fe::bench::RandomBytes(kMiB);
  for (auto _ : state)
    benchmark::DoNotOptimize(fe::digest::Crc32Update(0xFFFFFFFF, data.data(), data.size()));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}

void Crc32Zlib(benchmark::State& state) {
  static const std::vector<uint8_t> data = fe::bench::RandomBytes(kMiB);
  for (auto _ : state)
    benchmark::DoNotOptimize(crc32(0, data.data(), static_cast<uInt>(data.size())));
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * data.size()));
}

BENCHMARK(Crc32Ours);
BENCHMARK(Crc32Zlib);

}  // namespace

int main(int argc, char** argv) {
  RegisterAll();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
