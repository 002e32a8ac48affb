// How a subcommand fails: one exception type carrying the line printed on
// standard error and the exit status.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace fe::cli {

// Exit statuses: 1 an operation failed (or files differ), 2 the tool was
// called wrongly.
constexpr int kStatusFailed = 1;
constexpr int kStatusUsage = 2;

class Failure : public std::runtime_error {
 public:
  Failure(const std::string& text, int status) : std::runtime_error(text), status_(status) {}
  int status() const { return status_; }

 private:
  int status_;
};

// "<subject>: <engine message> (code N)" for the calling thread's last
// error; `fallback` stands in when the engine left none.
[[noreturn]] void FailFromEngine(const std::string& subject, uint32_t fallback);
// "<subject>: <message> (code N)" for a code the tool chose itself.
[[noreturn]] void FailWithCode(const std::string& subject, uint32_t code);
// "<subject>: <strerror(errno)>" for the tool's own reads and writes.
[[noreturn]] void FailFromSystem(const std::string& subject);
[[noreturn]] void FailUsage(const std::string& text);

// Engine codes the tool reports when the engine itself left none.
constexpr uint32_t kCodeInvalidData = 13;
constexpr uint32_t kCodeInvalidParameter = 87;
constexpr uint32_t kCodeNotEnoughMemory = 8;

}  // namespace fe::cli
