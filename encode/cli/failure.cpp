#include "failure.h"

#include <cerrno>
#include <cstring>

#include "file_encoder.h"

namespace fe::cli {

namespace {

// The number users see: N for the control's codes 0x80040000 | N (what a
// script's Err.Number shows), the system number otherwise.
uint32_t ShownNumber(uint32_t code) {
  return (code & 0xFFFF0000u) == FE_CONTROL_ERROR(0) ? code & 0xFFFFu : code;
}

}  // namespace

void FailWithCode(const std::string& subject, uint32_t code) {
  char message[512];
  if (FormatErrorMessage(code, message, sizeof message) < 0) message[0] = '\0';
  // System texts may end with a full stop and a line end of their own.
  size_t length = std::strlen(message);
  while (length > 0 &&
         (message[length - 1] == '\n' || message[length - 1] == '\r' || message[length - 1] == ' '))
    --length;
  throw Failure(subject + ": " + std::string(message, length) + " (code " +
                    std::to_string(ShownNumber(code)) + ")",
                kStatusFailed);
}

void FailFromEngine(const std::string& subject, uint32_t fallback) {
  const uint32_t code = EngineGetLastError();
  FailWithCode(subject, code != 0 ? code : fallback);
}

void FailFromSystem(const std::string& subject) {
  throw Failure(subject + ": " + std::strerror(errno), kStatusFailed);
}

void FailUsage(const std::string& text) {
  throw Failure(text, kStatusUsage);
}

}  // namespace fe::cli
