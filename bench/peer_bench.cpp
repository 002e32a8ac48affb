// Our in-memory codecs beside the libraries a user would pick instead, on
// the same pre-faulted 64 MiB, taking turns: the SIMD Base64 library of the
// peers folder (built into build/peers by make bench) in the same process,
// Python's binascii (timed inside Python), coreutils base64 (the whole
// command, reading the same bytes from a file in the page cache), and
// memcpy of the same size as the ceiling; InflateBuffer beside libdeflate
// and ISA-L on a level-9 zlib stream; yEnc beside python3-sabyenc, both
// over 1 MiB pieces (an article's size) with the CRC-32. Rates are of the
// unencoded bytes in both directions.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_support.h"
#include "codecs/yenc_body.h"
#include "digest/crc32.h"
#include "file_encoder.h"

#ifdef FE_PEER_BASE64
#include <libbase64.h>
#endif
#ifdef FE_PEER_INFLATE
#include <isa-l/igzip_lib.h>
#include <libdeflate.h>
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

constexpr size_t kArticle = 1u << 20;

// The data lines of every 1 MiB piece, each piece's text in `text` at
// `starts`; the CRC of each piece goes into `crcs`.
void EncodeArticles(const std::vector<uint8_t>& data, std::vector<char>* text,
                    std::vector<size_t>* starts, std::vector<uint32_t>* crcs) {
  size_t at = 0;
  starts->clear();
  for (size_t piece = 0; piece < data.size(); piece += kArticle) {
    starts->push_back(at);
    crcs->push_back(~fe::digest::Crc32Update(0xFFFFFFFF, data.data() + piece, kArticle));
    size_t used = 0;
    at += fe::codecs::EncodeYencBody(data.data() + piece, kArticle, text->data() + at, &used);
    if (used > 0) {
      (*text)[at++] = '\r';
      (*text)[at++] = '\n';
    }
  }
  starts->push_back(at);
}

// Decodes each piece's lines and checks its length and CRC.
bool DecodeArticles(const std::vector<char>& text, const std::vector<size_t>& starts,
                    const std::vector<uint32_t>& crcs, std::vector<uint8_t>* out) {
  for (size_t piece = 0; piece + 1 < starts.size(); ++piece) {
    size_t made = 0;
    for (size_t at = starts[piece]; at < starts[piece + 1];) {
      const auto* lf =
          static_cast<const char*>(std::memchr(text.data() + at, '\n', starts[piece + 1] - at));
      const size_t length = static_cast<size_t>(lf - (text.data() + at)) + 1;
      size_t written = 0;
      if (!fe::codecs::DecodeYencLine(text.data() + at, length, out->data() + made, &written))
        return false;
      made += written;
      at += length;
    }
    if (made != kArticle || ~fe::digest::Crc32Update(0xFFFFFFFF, out->data(), made) != crcs[piece])
      return false;
  }
  return true;
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

  std::vector<char> articles(fe::codecs::YencEncodedRoom(kSize), 1);
  std::vector<size_t> starts;
  std::vector<uint32_t> crcs;
  const auto yencEncode = [&] {
    crcs.clear();
    EncodeArticles(data, &articles, &starts, &crcs);
    return starts.back() > kSize;
  };
  yencEncode();
  const auto yencDecode = [&] { return DecodeArticles(articles, starts, crcs, &back); };
  // sabyenc returns fresh objects; freed at once, each piece's output
  // reuses the memory of the one before, as ours does.
  const std::string pieces =
      "pieces = [data[i:i + 1048576] for i in range(0, len(data), 1048576)]; "
      "sabyenc3.encode(pieces[0])";
  const std::string articlesOf =
      pieces +
      "; arts = [(lambda e: b'=ybegin line=128 size=1048576 name=x\\r\\n' + e[0] + "
      "b'\\r\\n=yend size=1048576 crc32=%08x\\r\\n' % e[1])(sabyenc3.encode(p)) "
      "for p in pieces]; sabyenc3.decode_usenet_chunks([arts[0]])";
  CompareTimed(
      "yEnc encode, 1 MiB pieces", mb, yencEncode,
      [&] {
        return PythonSeconds("sabyenc3", "[sabyenc3.encode(p) and None for p in pieces]", dataFile,
                             pieces);
      },
      "python3-sabyenc encode, timed inside Python", 3);
  CompareTimed(
      "yEnc decode, 1 MiB pieces", mb, yencDecode,
      [&] {
        return PythonSeconds("sabyenc3",
                             "[sabyenc3.decode_usenet_chunks([a]) and None for a in arts]",
                             dataFile, articlesOf);
      },
      "python3-sabyenc decode_usenet_chunks, timed inside Python", 3);
#ifdef FE_PEER_INFLATE
  // Text-like data: random letters from a small alphabet, runs of words.
  std::vector<uint8_t> plain(kSize);
  for (size_t i = 0; i < kSize; ++i)
    plain[i] = static_cast<uint8_t>((i / 7) % 3 == 0 ? "the file "[i % 9] : 'a' + raw[i] % 16);
  uint32_t packedLength = kSize + kSize / 8;
  std::vector<uint8_t> packed(packedLength, 1), expanded(kSize, 1);
  DeflateBuffer(plain.data(), length, packed.data(), &packedLength);
  const auto inflateOurs = [&] {
    uint32_t room = kSize;
    return InflateBuffer(packed.data(), static_cast<int32_t>(packedLength), expanded.data(),
                         &room) != 0 &&
           room == kSize;
  };
  const auto inflateLibdeflate = [&] {
    libdeflate_decompressor* d = libdeflate_alloc_decompressor();
    size_t out = 0;
    const bool ok = libdeflate_zlib_decompress(d, packed.data(), packedLength, expanded.data(),
                                               kSize, &out) == LIBDEFLATE_SUCCESS;
    libdeflate_free_decompressor(d);
    return ok && out == kSize;
  };
  const auto inflateIsal = [&] {
    inflate_state state;
    isal_inflate_init(&state);
    state.crc_flag = ISAL_ZLIB;
    state.next_in = packed.data();
    state.avail_in = packedLength;
    state.next_out = expanded.data();
    state.avail_out = kSize;
    return isal_inflate(&state) == ISAL_DECOMP_OK && state.block_state == ISAL_BLOCK_FINISH &&
           state.total_out == kSize;
  };
  Compare("inflate, level 9 zlib", mb, inflateOurs, inflateLibdeflate, "libdeflate", kRounds);
  Compare("inflate, level 9 zlib", mb, inflateOurs, inflateIsal, "ISA-L igzip", kRounds);
#else
  std::printf("(libdeflate or ISA-L headers not found: inflate rows left out)\n");
#endif

  std::remove(dataFile.c_str());
  std::remove(textFile.c_str());
  return 0;
}
