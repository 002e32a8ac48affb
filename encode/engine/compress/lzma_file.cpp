// LZMA-alone files: a 13-byte header (the 5 property bytes, then the
// uncompressed size as 8 little-endian bytes) and the raw LZMA stream
// without an end marker, as liblzma's LZMA_Alone format reads it.
#include <lzma.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "compress/compressed_file.h"
#include "errors/last_error.h"
#include "file_encoder.h"

namespace fe::compress {

namespace {

constexpr uint32_t kDictionarySize = 16u << 20;  // whatever the level
constexpr size_t kPropertiesSize = 5;
constexpr size_t kHeaderSize = kPropertiesSize + 8;
constexpr uint64_t kUnknownSize = UINT64_MAX;

uint32_t LzmaLevel(uint32_t level) {
  return level == 0 ? 5 : std::min<uint32_t>(level, 9);
}

// The library's results as the control's codes. Corrupt data is an
// internal failure here, where Deflate and bzip2 say invalid file type:
// callers have always seen it so.
uint32_t ErrorFor(lzma_ret result) {
  switch (result) {
    case LZMA_MEM_ERROR:
    case LZMA_MEMLIMIT_ERROR:
      return ControlError(ovErrorOutOfMemory);
    case LZMA_OPTIONS_ERROR:
    case LZMA_FORMAT_ERROR:
      return ControlError(ovErrorOperationNotSupported);
    case LZMA_PROG_ERROR:
      return ControlError(ovErrorInvalidParameter);
    default:
      return ControlError(ovErrorInternalFailure);
  }
}

// An open source and output, removed again unless the work succeeds.
class LzmaJob {
 public:
  LzmaJob(const char* source, const char* output) : source_(source), output_name_(output) {}

  // The common checks: the source must be a non-empty regular file.
  bool Open() {
    if (!CheckSource(source_)) return false;
    input_.Reset(platform::OpenFile(source_, platform::FileOpen::kRead));
    if (!input_.Valid() || !platform::IdentifyFile(input_.get(), &read_)) return false;
    size_ = read_.size;
    if (size_ == 0) return Fail(ControlError(ovErrorFileEmpty));
    target_ = std::make_unique<Output>(source_, output_name_);
    output_.Reset(target_->Create());
    return output_.Valid();
  }

  platform::FileHandle input() const { return input_.get(); }
  platform::FileHandle output() const { return output_.get(); }
  uint64_t size() const { return size_; }

  // Removes the output and records the reason.
  bool Fail(uint32_t code) {
    output_.Close();
    if (target_ != nullptr) target_->Discard();
    SetLastError(code);
    return false;
  }

  bool Succeed() {
    output_.Close();
    input_.Close();  // Windows will not replace a file that is still open
    if (!target_->Commit(read_)) return false;
    SetLastError(0);
    return true;
  }

 private:
  const char* source_;
  const char* output_name_;
  ScopedFile input_;
  ScopedFile output_;
  platform::FileIdentity read_;
  uint64_t size_ = 0;
  std::unique_ptr<Output> target_;
};

// Streams the job's input through the coder into its output. Returns the
// control code of a failure, 0 on success.
uint32_t Pump(lzma_stream& stream, LzmaJob& job) {
  uint8_t input[kBufferSize];
  uint8_t output[kBufferSize];
  lzma_action action = LZMA_RUN;
  for (;;) {
    if (stream.avail_in == 0 && action == LZMA_RUN) {
      uint32_t read = 0;
      if (!platform::ReadFile(job.input(), input, kBufferSize, &read)) {
        return ControlError(ovErrorFileReadFailed);
      }
      stream.next_in = input;
      stream.avail_in = read;
      if (read == 0) action = LZMA_FINISH;
    }
    stream.next_out = output;
    stream.avail_out = kBufferSize;
    const lzma_ret result = lzma_code(&stream, action);
    if (!WriteAll(job.output(), output, kBufferSize - stream.avail_out)) {
      return ControlError(ovErrorFileWriteFailed);
    }
    if (result == LZMA_STREAM_END) return 0;
    if (result != LZMA_OK) return ErrorFor(result);
  }
}

}  // namespace

bool CompressLzmaFile(const char* source, const char* output, uint32_t level) {
  LzmaJob job(source, output);
  if (!job.Open()) return false;
  lzma_options_lzma options;
  if (lzma_lzma_preset(&options, LzmaLevel(level))) {
    return job.Fail(ControlError(ovErrorInvalidParameter));
  }
  options.dict_size = kDictionarySize;
  options.ext_flags = 0;  // no end marker: the size is in the header
  uint8_t header[kHeaderSize];
  lzma_filter properties{LZMA_FILTER_LZMA1, &options};
  if (lzma_properties_encode(&properties, header) != LZMA_OK) {
    return job.Fail(ControlError(ovErrorInternalFailure));
  }
  for (int i = 0; i < 8; ++i)
    header[kPropertiesSize + i] = static_cast<uint8_t>(job.size() >> (8 * i));
  if (!WriteAll(job.output(), header, kHeaderSize)) {
    return job.Fail(ControlError(ovErrorFileWriteFailed));
  }
  lzma_filter filters[] = {{LZMA_FILTER_LZMA1EXT, &options}, {LZMA_VLI_UNKNOWN, nullptr}};
  lzma_stream stream = LZMA_STREAM_INIT;
  lzma_ret result = lzma_raw_encoder(&stream, filters);
  const uint32_t error = result == LZMA_OK ? Pump(stream, job) : ErrorFor(result);
  lzma_end(&stream);
  return error == 0 ? job.Succeed() : job.Fail(error);
}

bool ExpandLzmaFile(const char* source, const char* output) {
  LzmaJob job(source, output);
  if (!job.Open()) return false;
  uint8_t header[kHeaderSize];
  size_t have = 0;
  while (have < kHeaderSize) {
    uint32_t read = 0;
    if (!platform::ReadFile(job.input(), header + have, static_cast<uint32_t>(kHeaderSize - have),
                            &read)) {
      return job.Fail(ControlError(ovErrorFileReadFailed));
    }
    if (read == 0) return job.Fail(ControlError(ovErrorEndOfFile));
    have += read;
  }
  lzma_filter filters[] = {{LZMA_FILTER_LZMA1, nullptr}, {LZMA_VLI_UNKNOWN, nullptr}};
  if (lzma_properties_decode(&filters[0], nullptr, header, kPropertiesSize) != LZMA_OK) {
    return job.Fail(ControlError(ovErrorOperationNotSupported));
  }
  auto* options = static_cast<lzma_options_lzma*>(filters[0].options);
  uint64_t size = 0;
  for (int i = 7; i >= 0; --i)
    size = size << 8 | header[kPropertiesSize + i];
  // A known size ends the stream there (an end marker right at it is
  // accepted too); an unknown size needs the end marker.
  filters[0].id = LZMA_FILTER_LZMA1EXT;
  options->ext_flags = LZMA_LZMA1EXT_ALLOW_EOPM;
  // The window never needs to be larger than what the stream produces: a
  // header claiming a huge dictionary for a small file costs no more memory
  // than the file. The bytes decoded are the same either way.
  if (size != kUnknownSize && size < options->dict_size) {
    options->dict_size = static_cast<uint32_t>(std::max<uint64_t>(size, LZMA_DICT_SIZE_MIN));
  }
  lzma_set_ext_size(*options, size == kUnknownSize ? UINT64_MAX : size);
  lzma_stream stream = LZMA_STREAM_INIT;
  const lzma_ret result = lzma_raw_decoder(&stream, filters);
  std::free(options);
  const uint32_t error = result == LZMA_OK ? Pump(stream, job) : ErrorFor(result);
  lzma_end(&stream);
  return error == 0 ? job.Succeed() : job.Fail(error);
}

}  // namespace fe::compress
