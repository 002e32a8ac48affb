// Splits a fuzzer's bytes into the small choices a target needs and the
// payload it feeds to the engine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fe::fuzz {

class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  // One byte of choice, 0 once the input is used up.
  uint8_t Take() {
    if (offset_ >= size_) return 0;
    return data_[offset_++];
  }

  uint16_t Take16() { return static_cast<uint16_t>(Take() | (Take() << 8)); }

  std::vector<uint8_t> Rest() const {
    return std::vector<uint8_t>(data_ + std::min(offset_, size_), data_ + size_);
  }

  // The rest as a NUL-terminated text (stopping at an embedded NUL).
  std::string RestAsText() const {
    std::string text(reinterpret_cast<const char*>(data_) + std::min(offset_, size_),
                     size_ - std::min(offset_, size_));
    return std::string(text.c_str());
  }

 private:
  const uint8_t* data_;
  size_t size_;
  size_t offset_ = 0;
};

}  // namespace fe::fuzz
