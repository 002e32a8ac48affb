// The chunked Base64, Base32 and quoted-printable decoders over random chunk
// splits: never a write past a chunk's capacity, and where no '=' ends a
// chunk early, the same bytes as decoding the text in one piece.
#include <cstring>
#include <memory>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

namespace {

enum class Decoder { kBase64, kBase32, kQuotedPrintable };

class ChunkedDecoder {
 public:
  explicit ChunkedDecoder(Decoder decoder) : decoder_(decoder) {}

  // Decodes one chunk into a heap block of exactly `capacity` bytes, so
  // that any write past it is caught; appends the result to out.
  int32_t Decode(const char* chunk, int32_t length, int32_t capacity, std::vector<uint8_t>& out) {
    std::unique_ptr<uint8_t[]> room(new uint8_t[static_cast<size_t>(capacity) + 1]);
    int32_t n = 0;
    switch (decoder_) {
      case Decoder::kBase64:
        n = Base64DecodeChunk(chunk, length, room.get(), capacity, &base64_);
        break;
      case Decoder::kBase32:
        n = Base32DecodeChunk(chunk, length, room.get(), capacity, &base32_);
        break;
      case Decoder::kQuotedPrintable:
        n = QpDecodeChunk(chunk, length, room.get(), capacity, &qp_);
        break;
    }
    if (n > capacity) __builtin_trap();
    if (n > 0) out.insert(out.end(), room.get(), room.get() + n);
    return n;
  }

 private:
  Decoder decoder_;
  Base64State base64_{};
  Base32State base32_{};
  QpDecodeState qp_{};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const auto decoder = static_cast<Decoder>(input.Take() % 3);
  const std::vector<uint8_t> rest = input.Rest();
  const size_t textLength = std::min<size_t>(input.Take(), rest.size());
  const std::string text(rest.begin(), rest.begin() + static_cast<ptrdiff_t>(textLength));
  fe::fuzz::FuzzInput splits(rest.data() + textLength, rest.size() - textLength);

  ChunkedDecoder inPieces(decoder);
  std::vector<uint8_t> pieces;
  bool piecesOk = true;
  for (size_t offset = 0; offset < text.size() && piecesOk;) {
    const size_t piece = std::min<size_t>(text.size() - offset, 1 + splits.Take() % 64);
    // A piece of n characters never yields more than n bytes.
    piecesOk = inPieces.Decode(text.data() + offset, static_cast<int32_t>(piece),
                               static_cast<int32_t>(piece), pieces) >= 0;
    offset += piece;
  }

  ChunkedDecoder inOne(decoder);
  std::vector<uint8_t> whole;
  const auto length = static_cast<int32_t>(text.size());
  const bool wholeOk = inOne.Decode(text.data(), length, length, whole) >= 0;

  // '=' ends a Base64 or Base32 chunk; quoted-printable carries it over.
  const bool splitInvariant =
      decoder == Decoder::kQuotedPrintable || text.find('=') == std::string::npos;
  if (splitInvariant && (piecesOk != wholeOk || (wholeOk && pieces != whole))) __builtin_trap();
  return 0;
}
