// Helpers shared by the engine tests.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "file_encoder.h"

namespace fe::test {

using Bytes = std::vector<uint8_t>;

inline Bytes RandomBytes(size_t size, uint32_t seed) {
  std::mt19937 generator(seed);
  Bytes bytes(size);
  for (auto& b : bytes)
    b = static_cast<uint8_t>(generator());
  return bytes;
}

// Puts up to three characters of `noise` at random places of `text`.
inline void Damage(std::mt19937& random, std::string& text, const std::string& noise) {
  for (int k = static_cast<int>(random() % 4); k > 0 && !text.empty(); --k)
    text[random() % text.size()] = noise[random() % noise.size()];
}

inline Bytes ToBytes(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

inline std::string ToString(const Bytes& bytes) {
  return std::string(bytes.begin(), bytes.end());
}

// Lower-case hexadecimal text of bytes.
inline std::string Hex(const uint8_t* data, size_t size) {
  static const char digits[] = "0123456789abcdef";
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    text += digits[data[i] >> 4];
    text += digits[data[i] & 15];
  }
  return text;
}

inline std::string ToString(const char* data, int32_t length) {
  return length < 0 ? std::string() : std::string(data, static_cast<size_t>(length));
}

// A buffer of `size` usable bytes followed by guard bytes that must stay
// untouched: the codecs must never write past what they are given.
class GuardedBuffer {
 public:
  static constexpr size_t kGuard = 16;
  static constexpr uint8_t kGuardByte = 0xA5;

  explicit GuardedBuffer(size_t size) : size_(size), storage_(size + kGuard, kGuardByte) {}

  char* chars() { return reinterpret_cast<char*>(storage_.data()); }
  uint8_t* bytes() { return storage_.data(); }
  int32_t size() const { return static_cast<int32_t>(size_); }
  std::string text(int32_t length) const {
    return std::string(storage_.begin(), storage_.begin() + length);
  }
  bool GuardIntact() const {
    for (size_t i = size_; i < storage_.size(); ++i) {
      if (storage_[i] != kGuardByte) return false;
    }
    return true;
  }

 private:
  size_t size_;
  Bytes storage_;
};

// EncodeBuffer into a roomy buffer; returns the text, or "<fail>" on -1.
inline std::string Encode(const Bytes& input, uint32_t flags, size_t room = 0) {
  std::vector<char> out(room ? room : input.size() * 4 + 256);
  // An empty vector has no data pointer; the engine wants one all the same.
  const void* data = input.empty() ? static_cast<const void*>("") : input.data();
  const int32_t n = EncodeBuffer(data, static_cast<int32_t>(input.size()), out.data(),
                                 static_cast<int32_t>(out.size()), flags);
  return n < 0 ? std::string("<fail>") : std::string(out.data(), static_cast<size_t>(n));
}

inline std::string Encode(const std::string& input, uint32_t flags) {
  return Encode(ToBytes(input), flags);
}

// DecodeBuffer into a roomy buffer; returns the bytes (none on failure) and
// the raw result through `result`.
inline Bytes Decode(const std::string& text, uint32_t flags, int32_t* result = nullptr,
                    size_t room = 0) {
  Bytes out(room ? room : text.size() + 64);
  const int32_t n = DecodeBuffer(text.c_str(), out.data(), static_cast<int32_t>(out.size()), flags);
  if (result) *result = n;
  if (n < 0) return {};
  out.resize(static_cast<size_t>(n));
  return out;
}

}  // namespace fe::test
