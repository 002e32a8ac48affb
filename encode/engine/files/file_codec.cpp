#include "files/file_codec.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "crypt/wipe.h"
#include "errors/last_error.h"
#include "errors/system_errors.h"

namespace fe::files {

bool CheckNames(const char* inputName, const char* outputName) {
  if (inputName == nullptr || *inputName == '\0' || outputName == nullptr || *outputName == '\0') {
    SetLastError(kErrorInvalidParameter);
    return false;
  }
  return true;
}

bool FilePair::Open(const char* inputName, const char* outputName) {
  input.Reset(platform::OpenFile(inputName, platform::FileOpen::kRead));
  if (!input.Valid()) return false;
  output.Reset(platform::OpenFile(outputName, platform::FileOpen::kCreate));
  if (!output.Valid()) {
    const KeepLastError keep;
    input.Close();
    return false;
  }
  return true;
}

uint32_t ReadChunk(platform::FileHandle file, void* buffer, uint32_t size) {
  uint32_t read = 0;
  return platform::ReadFile(file, buffer, size, &read) ? read : 0;
}

IoBlock::IoBlock() : large_(new (std::nothrow) uint8_t[kLarge]) {
  data_ = large_ ? large_.get() : small_;
  size_ = large_ ? kLarge : sizeof small_;
}

uint32_t BufferedReader::Read(void* buffer, uint32_t size) {
  auto* out = static_cast<uint8_t*>(buffer);
  uint32_t done = 0;
  while (done < size) {
    if (at_ == length_) {
      length_ = ReadChunk(file_, block_.data(), block_.size());
      at_ = 0;
      if (length_ == 0) break;
    }
    const uint32_t n = std::min(size - done, length_ - at_);
    std::memcpy(out + done, block_.data() + at_, n);
    at_ += n;
    done += n;
  }
  return done;
}

void BufferedReader::Wipe() {
  crypt::Wipe(block_.data(), block_.size());
  at_ = length_ = 0;
}

void BufferedWriter::Write(const void* data, uint32_t size) {
  const auto* in = static_cast<const uint8_t*>(data);
  while (size > 0) {
    const uint32_t n = std::min(size, block_.size() - length_);
    std::memcpy(block_.data() + length_, in, n);
    length_ += n;
    in += n;
    size -= n;
    if (length_ == block_.size()) Flush();
  }
}

void BufferedWriter::Flush() {
  if (length_ > 0 && !failed_) failed_ = !compress::WriteAll(file_, block_.data(), length_);
  length_ = 0;
}

void BufferedWriter::Wipe() {
  crypt::Wipe(block_.data(), block_.size());
  length_ = 0;
}

const char* BaseName(const char* path) {
  const char* slash = std::strrchr(path, '\\');
  if (slash == nullptr) slash = std::strrchr(path, '/');
  return slash != nullptr ? slash + 1 : path;
}

}  // namespace fe::files
