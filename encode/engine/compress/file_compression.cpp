// Compressing and expanding whole files with Deflate (a zlib stream) or
// bzip2, streamed through 8 KiB buffers; LZMA files have their own coder.
#include <bzlib.h>
#include <zlib.h>

#include <algorithm>
#include <memory>

#include "compress/compressed_file.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"

namespace fe::compress {

namespace {

enum CompressionType : uint32_t { kDetect = 0, kDeflate = 1, kBzip2 = 2, kLzma = 3 };
enum class Direction { kCompress, kExpand };
enum class Step { kMore, kEnd, kError };

// One library stream, compressing or expanding.
class StreamCoder {
 public:
  virtual ~StreamCoder() = default;
  // One library call: consumes from `in`, produces into `out`.
  virtual Step Run(const uint8_t* in, uint32_t inSize, uint32_t* consumed, uint8_t* out,
                   uint32_t outSize, uint32_t* produced, bool finish) = 0;
};

class ZlibCoder final : public StreamCoder {
 public:
  ZlibCoder(Direction direction, int level) : compress_(direction == Direction::kCompress) {
    started_ = (compress_ ? deflateInit2(&stream_, level, Z_DEFLATED, 15, 8, Z_DEFAULT_STRATEGY)
                          : inflateInit2(&stream_, 15)) == Z_OK;
  }
  ~ZlibCoder() override {
    if (!started_) return;
    if (compress_) {
      deflateEnd(&stream_);
    } else {
      inflateEnd(&stream_);
    }
  }
  Step Run(const uint8_t* in, uint32_t inSize, uint32_t* consumed, uint8_t* out, uint32_t outSize,
           uint32_t* produced, bool finish) override {
    if (!started_) return Step::kError;
    stream_.next_in = const_cast<Bytef*>(in);
    stream_.avail_in = inSize;
    stream_.next_out = out;
    stream_.avail_out = outSize;
    const int flush = finish ? Z_FINISH : Z_NO_FLUSH;
    const int result = compress_ ? deflate(&stream_, flush) : inflate(&stream_, flush);
    *consumed = inSize - stream_.avail_in;
    *produced = outSize - stream_.avail_out;
    if (result == Z_STREAM_END) return Step::kEnd;
    // A stream asking for a preset dictionary cannot go on either.
    return result < 0 || result == Z_NEED_DICT ? Step::kError : Step::kMore;
  }

 private:
  z_stream stream_{};
  bool compress_;
  bool started_;
};

class Bzip2Coder final : public StreamCoder {
 public:
  Bzip2Coder(Direction direction, int blockSize) : compress_(direction == Direction::kCompress) {
    started_ = (compress_ ? BZ2_bzCompressInit(&stream_, blockSize, 0, 0)
                          : BZ2_bzDecompressInit(&stream_, 0, 0)) == BZ_OK;
  }
  ~Bzip2Coder() override {
    if (!started_) return;
    if (compress_) {
      BZ2_bzCompressEnd(&stream_);
    } else {
      BZ2_bzDecompressEnd(&stream_);
    }
  }
  Step Run(const uint8_t* in, uint32_t inSize, uint32_t* consumed, uint8_t* out, uint32_t outSize,
           uint32_t* produced, bool finish) override {
    if (!started_) return Step::kError;
    stream_.next_in = reinterpret_cast<char*>(const_cast<uint8_t*>(in));
    stream_.avail_in = inSize;
    stream_.next_out = reinterpret_cast<char*>(out);
    stream_.avail_out = outSize;
    const int result = compress_ ? BZ2_bzCompress(&stream_, finish ? BZ_FINISH : BZ_RUN)
                                 : BZ2_bzDecompress(&stream_);
    *consumed = inSize - stream_.avail_in;
    *produced = outSize - stream_.avail_out;
    if (result == BZ_STREAM_END) return Step::kEnd;
    return result < 0 ? Step::kError : Step::kMore;
  }

 private:
  bz_stream stream_{};
  bool compress_;
  bool started_;
};

// The level table: 0 is each method's default, 9 and above its maximum.
int DeflateLevel(uint32_t level) {
  return level == 0 ? Z_DEFAULT_COMPRESSION : static_cast<int>(std::min<uint32_t>(level, 9));
}
int Bzip2BlockSize(uint32_t level) {
  return level == 0 ? 9 : static_cast<int>(std::min<uint32_t>(level, 9));
}

std::unique_ptr<StreamCoder> MakeCoder(uint32_t type, Direction direction, uint32_t level) {
  if (type == kDeflate) return std::make_unique<ZlibCoder>(direction, DeflateLevel(level));
  if (type == kBzip2) return std::make_unique<Bzip2Coder>(direction, Bzip2BlockSize(level));
  return nullptr;
}

// The method of a compressed file from its first two bytes; only the
// headers this engine writes are known.
uint32_t DetectType(const uint8_t bytes[2]) {
  if (bytes[0] == 0x5D && bytes[1] == 0x00) return kLzma;
  if (bytes[0] == 0x78 &&
      (bytes[1] == 0x01 || bytes[1] == 0x5E || bytes[1] == 0x9C || bytes[1] == 0xDA)) {
    return kDeflate;
  }
  if (bytes[0] == 'B' && bytes[1] == 'Z') return kBzip2;
  return kDetect;
}

// Runs the whole source through the coder into the output. The failure's
// reason is worked out but deliberately not recorded: callers have always
// seen whatever the file operations left as the last error here.
bool Pump(StreamCoder& coder, platform::FileHandle source, platform::FileHandle output) {
  uint8_t input[kBufferSize];
  uint8_t result[kBufferSize];
  uint32_t inputLeft = 0;
  uint32_t inputAt = 0;
  bool ended = false;
  for (;;) {
    if (inputLeft == 0 && !ended) {
      if (!platform::ReadFile(source, input, kBufferSize, &inputLeft)) return false;
      inputAt = 0;
      ended = inputLeft == 0;
    }
    uint32_t consumed = 0;
    uint32_t produced = 0;
    const Step step =
        coder.Run(input + inputAt, inputLeft, &consumed, result, kBufferSize, &produced, ended);
    inputAt += consumed;
    inputLeft -= consumed;
    if (!WriteAll(output, result, produced)) return false;
    if (step == Step::kEnd) return true;
    // A truncated stream makes no progress once the input has ended.
    if (step == Step::kError || (ended && consumed == 0 && produced == 0)) return false;
  }
}

// Opens the output and pumps; on failure the output is removed.
bool Transform(const char* source, ScopedFile& input, const char* output, uint32_t type,
               Direction direction, uint32_t level) {
  platform::FileIdentity read;
  if (!platform::IdentifyFile(input.get(), &read)) return false;
  Output target(source, output);
  ScopedFile out(target.Create());
  if (!out.Valid()) return false;
  // Unknown types are refused only now, once both files are open.
  const std::unique_ptr<StreamCoder> coder = MakeCoder(type, direction, level);
  const bool done = coder != nullptr && Pump(*coder, input.get(), out.get());
  out.Close();
  // Windows will not replace a file that is still open.
  input.Close();
  if (!done) {
    target.Discard();
    return false;
  }
  return target.Commit(read);
}

}  // namespace

}  // namespace fe::compress

extern "C" {

int CompressFileByType(const char* source, const char* output, uint32_t type, uint32_t level) {
  using namespace fe::compress;
  if (source == nullptr || *source == '\0') {
    fe::SetLastError(fe::kErrorFileNotFound);
    return 0;
  }
  if (type == kDetect) {
    fe::SetLastError(fe::ControlError(ovErrorInvalidParameter));
    return 0;
  }
  if (type == kLzma) return CompressLzmaFile(source, output, level);
  if (!CheckSource(source)) return 0;
  ScopedFile input(fe::platform::OpenFile(source, fe::platform::FileOpen::kRead));
  if (!input.Valid()) return 0;
  return Transform(source, input, output, type, Direction::kCompress, level);
}

int ExpandFileByType(const char* source, const char* output, uint32_t type) {
  using namespace fe::compress;
  if (type == kLzma) return ExpandLzmaFile(source, output);
  if (!CheckSource(source)) return 0;
  ScopedFile input(fe::platform::OpenFile(source, fe::platform::FileOpen::kRead));
  if (!input.Valid()) return 0;
  if (type == kDetect) {
    uint8_t header[2];
    uint32_t read = 0;
    if (!fe::platform::ReadFile(input.get(), header, 2, &read) || read < 2) {
      input.Close();
      fe::SetLastError(fe::ControlError(ovErrorInvalidFileType));
      return 0;
    }
    type = DetectType(header);
    if (type == kDetect) {
      fe::SetLastError(fe::ControlError(ovErrorUnknownFileType));
      return 0;
    }
    if (type == kLzma) {
      input.Close();
      return ExpandLzmaFile(source, output);
    }
    if (!fe::platform::SeekFile(input.get(), 0)) return 0;
  }
  return Transform(source, input, output, type, Direction::kExpand, 0);
}

}  // extern "C"
