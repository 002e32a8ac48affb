// A progress bar on standard error for long operations.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>

namespace fe::cli {

enum class ProgressMode { kAuto, kAlways, kNever };

// kAuto draws only when standard error is a terminal and an operation has
// run for a moment; kAlways draws every update (the tests use it).
void SetProgressMode(ProgressMode mode);

class ProgressBar {
 public:
  ProgressBar(std::string label, uint64_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  // `done` bytes of the total; redrawn at most ten times a second.
  void Show(uint64_t done);
  // The whole total done: a drawn bar is completed and its line ended.
  void Complete();
  bool enabled() const { return enabled_; }

 private:
  void Draw(uint64_t done);

  std::string label_;
  uint64_t total_;
  bool enabled_;
  bool drawn_ = false;
  bool waitFirst_;
  std::chrono::steady_clock::time_point started_;
  std::chrono::steady_clock::time_point lastDrawn_;
};

// Follows an engine operation that reads a file by name: a thread finds the
// descriptor the engine opened on that file and shows its read position,
// since the engine reports nothing until it returns.
class ReadPositionProgress {
 public:
  ReadPositionProgress(const std::string& path, const std::string& label);
  ~ReadPositionProgress();
  ReadPositionProgress(const ReadPositionProgress&) = delete;
  ReadPositionProgress& operator=(const ReadPositionProgress&) = delete;

  // The operation succeeded: stop following and complete the bar.
  void Complete();

 private:
  void Follow(uint64_t device, uint64_t inode);
  void Stop();

  ProgressBar bar_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool stopping_ = false;
  std::thread follower_;
};

}  // namespace fe::cli
