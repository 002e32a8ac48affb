// EncodeBuffer / DecodeBuffer: one entry point for the ten data encodings,
// with optional compression on the way.
//
// A few codec steps, followed to the letter, write their terminator or the
// tail of an escape just past outputSize. Each entry point therefore takes
// the size the steps check (outputSize) apart from the memory that really
// bounds every write (bufferSize): the control owns larger buffers than the
// sizes it passes and gets the literal result; the public functions pass
// one value for both, and there such a step fails with -1 instead of
// writing past the buffer.
#include "codecs/data_dispatch.h"

#include <cstring>

#include "codecs/codec_internal.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace {

using namespace fe::codecs;

constexpr uint32_t kEncodingMask = 0xFFFF;
constexpr uint32_t kHighestEncoding = dataEncodeZ85;
// What the finishers may still need after a chunk coder stopped, and the
// scratch area they write into.
constexpr int32_t kFinisherReserve = 5;
constexpr int32_t kFinisherScratch = 128;

// The chunk coders of Base64 and Base32 leave their last group to a
// finisher: run the chunk with room for a terminator, require five bytes
// after it, then append the finisher's text.
template <typename State, typename Chunk, typename Finish>
int32_t EncodeWithFinisher(const uint8_t* input, int32_t length, char* output, int32_t outputSize,
                           int64_t bufferSize, bool wrap, Chunk chunk, Finish finish) {
  State state{};
  const int32_t count = chunk(input, length, output, outputSize - 1, &state, wrap);
  if (count < 0) return -1;
  output[count] = '\0';
  if (outputSize - count < kFinisherReserve) return -1;
  char tail[kFinisherScratch];
  const int32_t tailLength = finish(&state, tail, wrap);
  if (tailLength < 0 || int64_t{count} + tailLength + 1 > bufferSize) return -1;
  std::memcpy(output + count, tail, static_cast<size_t>(tailLength));
  output[count + tailLength] = '\0';
  return count + tailLength;
}

int32_t EncodeBase64(const uint8_t* input, int32_t length, char* output, int32_t outputSize,
                     int64_t bufferSize, bool wrap) {
  return EncodeWithFinisher<Base64State>(input, length, output, outputSize, bufferSize, wrap,
                                         Base64EncodeChunk, Base64EncodeFinish);
}

int32_t EncodeBase32(const uint8_t* input, int32_t length, char* output, int32_t outputSize,
                     int64_t bufferSize, bool wrap) {
  return EncodeWithFinisher<Base32State>(
      input, length, output, outputSize, bufferSize, wrap, Base32EncodeChunk,
      [](Base32State* state, char* tail, int wrapLines) {
        return Base32EncodeFinish(state, tail, kFinisherScratch, wrapLines);
      });
}

// UTF-16 to UTF-7 or UTF-8. A failed conversion writes nothing, so the NUL
// lands at the start and the result is 0; a conversion that fills the whole
// buffer gets no terminator and counts the whole buffer.
int32_t EncodeUnicode(uint32_t codePage, const void* input, int32_t length, char* output,
                      int32_t outputSize) {
  const int converted = fe::platform::WideToMultiByte(
      codePage, 0, static_cast<const char16_t*>(input), length, output, outputSize);
  if (converted < outputSize) output[converted] = '\0';
  return static_cast<int32_t>(strnlen(output, static_cast<size_t>(outputSize)));
}

int32_t Encode(uint32_t encoding, const uint8_t* input, int32_t length, char* output,
               int32_t outputSize, int64_t bufferSize, bool wrap) {
  switch (encoding) {
    case dataEncodeDefault:
    case dataEncodeBase64:
      return EncodeBase64(input, length, output, outputSize, bufferSize, wrap);
    case dataEncodeQuoted: {
      // The escape's tail and the NUL after it may pass outputSize - 1.
      const int32_t count =
          QpEncodeInto(input, length, output, outputSize - 1, wrap, bufferSize - 1);
      if (count >= 0) output[count] = '\0';
      return count;
    }
    case dataEncodeURL:
      return UrlEncodeInto(input, length, output, outputSize, bufferSize);
    case dataEncodeUTF7:
      return EncodeUnicode(fe::platform::kCodePageUtf7, input, length, output, outputSize);
    case dataEncodeUTF8:
      return EncodeUnicode(fe::platform::kCodePageUtf8, input, length, output, outputSize);
    case dataEncodeBase58:
      return Base58Encode(input, length, output, outputSize);
    case dataEncodeBase32:
      return EncodeBase32(input, length, output, outputSize, bufferSize, wrap);
    case dataEncodeBase85:
      return Base85Encode(input, length, output, outputSize);
    default:
      return Z85Encode(input, length, output, outputSize);
  }
}

int32_t DecodeUnicode(uint32_t codePage, uint32_t conversionFlags, const char* text, void* output,
                      int32_t outputSize) {
  const size_t length = std::strlen(text);
  if (length >= INT32_MAX) return -1;
  // The terminating NUL is converted and counted.
  return fe::platform::MultiByteToWide(codePage, conversionFlags, text,
                                       static_cast<int>(length) + 1, static_cast<char16_t*>(output),
                                       outputSize);
}

int32_t Decode(uint32_t encoding, const char* text, void* output, int32_t outputSize,
               int64_t bufferSize) {
  auto* bytes = static_cast<uint8_t*>(output);
  switch (encoding) {
    case dataDecodeDefault:
    case dataDecodeBase64:
      return fe::codecs::Base64DecodeText(text, bytes, outputSize);
    case dataDecodeQuoted: {
      QpDecodeState state{};
      return QpDecodeChunk(text, static_cast<int32_t>(strnlen(text, INT32_MAX)), bytes, outputSize,
                           &state);
    }
    case dataDecodeURL:
      return UrlDecodeInto(text, -1, bytes, outputSize, bufferSize);
    case dataDecodeUTF7:
      return DecodeUnicode(fe::platform::kCodePageUtf7, 0, text, output, outputSize);
    case dataDecodeUTF8:
      return DecodeUnicode(fe::platform::kCodePageUtf8, fe::platform::kFailOnInvalidChars, text,
                           output, outputSize);
    case dataDecodeBase58:
      return Base58Decode(text, bytes, outputSize);
    case dataDecodeBase32: {
      Base32State state{};
      return Base32DecodeChunk(text, static_cast<int32_t>(strnlen(text, INT32_MAX)), bytes,
                               outputSize, &state);
    }
    case dataDecodeBase85:
      return Base85Decode(text, -1, bytes, outputSize);
    default:
      return Z85Decode(text, bytes, outputSize);
  }
}

}  // namespace

namespace fe::codecs {

int32_t EncodeBufferWithin(const void* input, int32_t inputLength, char* output, int32_t outputSize,
                           int64_t bufferSize, uint32_t flags) {
  if (input == nullptr || output == nullptr || inputLength < 0 || outputSize < 1 ||
      bufferSize < outputSize) {
    return -1;
  }
  const uint32_t encoding = flags & kEncodingMask;
  if (encoding > kHighestEncoding) return -1;
  const bool wrap = (flags & dataEncodeWrapLines) != 0;
  if ((flags & fileEncodeCompressed) == 0 || inputLength == 0) {
    return Encode(encoding, static_cast<const uint8_t*>(input), inputLength, output, outputSize,
                  bufferSize, wrap);
  }
  // The compressed form is used only when it is strictly shorter; nothing in
  // the output says which was taken. The block is twice the capacity because
  // the UTF-16 rows read the bytes as code units.
  fe::platform::ZeroedBlock<uint8_t> work(size_t{2} * static_cast<uint32_t>(outputSize));
  if (work.data() == nullptr) return -1;
  uint32_t compressedLength = static_cast<uint32_t>(outputSize);
  if (DeflateBuffer(static_cast<const uint8_t*>(input), inputLength, work.data(),
                    &compressedLength) &&
      compressedLength < static_cast<uint32_t>(inputLength)) {
    return Encode(encoding, work.data(), static_cast<int32_t>(compressedLength), output, outputSize,
                  bufferSize, wrap);
  }
  return Encode(encoding, static_cast<const uint8_t*>(input), inputLength, output, outputSize,
                bufferSize, wrap);
}

int32_t DecodeBufferWithin(const char* text, void* output, int32_t outputSize, int64_t bufferSize,
                           uint32_t flags) {
  const uint32_t encoding = flags & kEncodingMask;
  if (text == nullptr || output == nullptr || outputSize < 1 || bufferSize < outputSize ||
      encoding > kHighestEncoding) {
    return -1;
  }
  const int32_t count = Decode(encoding, text, output, outputSize, bufferSize);
  if (count < 1 || (flags & fileDecodeCompressed) == 0) return count;
  // Decoding with the flag always expands, even text whose data did not
  // shrink and so was encoded uncompressed: such text fails here and must
  // be decoded without the flag. Callers have long relied on this.
  fe::platform::ZeroedBlock<uint8_t> work(static_cast<uint32_t>(count));
  if (work.data() == nullptr) return -1;
  std::memcpy(work.data(), output, static_cast<size_t>(count));
  uint32_t expandedLength = static_cast<uint32_t>(outputSize);
  if (!InflateBuffer(work.data(), count, static_cast<uint8_t*>(output), &expandedLength)) {
    return -1;
  }
  return static_cast<int32_t>(expandedLength);
}

}  // namespace fe::codecs

extern "C" {

int32_t EncodeBuffer(const void* input, int32_t inputLength, char* output, int32_t outputSize,
                     uint32_t flags) {
  return fe::codecs::EncodeBufferWithin(input, inputLength, output, outputSize, outputSize, flags);
}

int32_t DecodeBuffer(const char* text, void* output, int32_t outputSize, uint32_t flags) {
  return fe::codecs::DecodeBufferWithin(text, output, outputSize, outputSize, flags);
}

}  // extern "C"
