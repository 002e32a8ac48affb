// The last-error convention: an engine operation that fails returns its
// failure value and leaves the reason in the calling thread's slot.
#pragma once

#include <cstdint>

#include "file_encoder.h"
#include "platform/platform.h"

namespace fe {

// The full 32-bit form of a control error number.
constexpr uint32_t ControlError(ErrorCodes number) {
  return FE_CONTROL_ERROR(number);
}

inline void SetLastError(uint32_t code) {
  platform::SetLastErrorCode(code);
}
inline uint32_t LastError() {
  return platform::GetLastErrorCode();
}

// Keeps the calling thread's code across clean-up work, so that what a
// caller sees is the reason of the failure and not of the clean-up.
class KeepLastError {
 public:
  KeepLastError() : code_(LastError()) {}
  ~KeepLastError() { SetLastError(code_); }
  KeepLastError(const KeepLastError&) = delete;
  KeepLastError& operator=(const KeepLastError&) = delete;

 private:
  uint32_t code_;
};

// Records code and returns -1, the failure value of the counting operations.
inline int32_t FailWith(uint32_t code) {
  SetLastError(code);
  return -1;
}

}  // namespace fe
