// MB/s of the text filters on a few MB of real text, and of Utf8Validate on
// ASCII, mixed and CJK text.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "file_encoder.h"

namespace {

constexpr size_t kTextSize = 4 << 20;

// Documentation files of one kind from /usr/share/doc, concatenated to a few
// MB (repeated when there are too few).
std::string RealText(const std::string& extension, const std::string& fallback) {
  std::string text;
  std::error_code error;
  for (auto it = std::filesystem::recursive_directory_iterator("/usr/share/doc", error);
       !error && it != std::filesystem::recursive_directory_iterator() && text.size() < kTextSize;
       it.increment(error)) {
    if (it->path().extension() != extension) continue;
    std::ifstream file(it->path(), std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    text += content.str();
  }
  if (text.empty()) text = fallback;
  const std::string unit = text;
  while (text.size() < kTextSize)
    text += unit;
  return text;
}

const std::string& Html() {
  static const std::string text =
      RealText(".html", "<p>Plain <b>text</b> &amp; a <a href='https://x.org/'>link</a></p>\n");
  return text;
}

const std::string& Markdown() {
  static const std::string text = RealText(
      ".md", "# Title\n\nSome *emphasis*, `code` and [a link](https://example.com).\n\n- item\n");
  return text;
}

std::string Repeat(const std::string& unit) {
  std::string text;
  while (text.size() < kTextSize)
    text += unit;
  return text;
}

void FilterHtml(benchmark::State& state) {
  const std::string& html = Html();
  std::vector<char> out(html.size() + 256);
  for (auto _ : state) {
    benchmark::DoNotOptimize(FilterHtmlText(html.data(), static_cast<int32_t>(html.size()),
                                            out.data(), static_cast<int32_t>(out.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * html.size()));
}

void FilterMarkdown(benchmark::State& state) {
  const std::string& markdown = Markdown();
  std::vector<char> out(markdown.size() * 2 + 256);
  for (auto _ : state) {
    benchmark::DoNotOptimize(FilterMarkdownText(markdown.data(),
                                                static_cast<int32_t>(markdown.size()), out.data(),
                                                static_cast<int32_t>(out.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * markdown.size()));
}

void FilterUnicode(benchmark::State& state) {
  static const std::string text = Repeat(
      "Stra\xC3\x9F"
      "e \xD0\xB0pple \xEF\xAC\x81le caf\xC3\xA9 text. ");
  std::vector<char> out(text.size() * 3 + 256);
  for (auto _ : state) {
    benchmark::DoNotOptimize(FilterUnicodeText(text.data(), static_cast<int32_t>(text.size()),
                                               out.data(), static_cast<int32_t>(out.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void Validate(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(Utf8Validate(reinterpret_cast<const uint8_t*>(text.data()),
                                          static_cast<int32_t>(text.size())));
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}

void ValidateAscii(benchmark::State& state) {
  static const std::string text = Repeat("The quick brown fox jumps over the lazy dog. ");
  Validate(state, text);
}

void ValidateMixed(benchmark::State& state) {
  static const std::string text = Repeat(
      "Gr\xC3\xBC\xC3\x9F"
      "e aus K\xC3\xB6ln, 10 \xE2\x82\xAC, \xF0\x9F\x98\x80 ok. ");
  Validate(state, text);
}

void ValidateCjk(benchmark::State& state) {
  static const std::string text =
      Repeat("\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE6\x96\x87\xE7\xAB\xA0");
  Validate(state, text);
}

BENCHMARK(FilterHtml);
BENCHMARK(FilterMarkdown);
BENCHMARK(FilterUnicode);
BENCHMARK(ValidateAscii);
BENCHMARK(ValidateMixed);
BENCHMARK(ValidateCjk);

}  // namespace

BENCHMARK_MAIN();
