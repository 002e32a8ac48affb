#include "progress.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <fstream>

#include "files.h"

namespace fe::cli {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kQuietStart = std::chrono::milliseconds(300);
constexpr auto kRedrawEvery = std::chrono::milliseconds(100);
constexpr int kBarWidth = 30;

ProgressMode mode = ProgressMode::kAuto;

// The read position of descriptor `fd` of this process, from /proc.
bool ReadPosition(const std::string& fd, uint64_t& position) {
  std::ifstream info("/proc/self/fdinfo/" + fd);
  std::string key;
  while (info >> key) {
    if (key == "pos:") return static_cast<bool>(info >> position);
  }
  return false;
}

bool IsOpenOn(const std::string& fd, uint64_t device, uint64_t inode) {
  struct stat status;
  return stat(("/proc/self/fd/" + fd).c_str(), &status) == 0 && status.st_dev == device &&
         status.st_ino == inode;
}

// A descriptor of this process open on the file, or an empty string.
std::string FindDescriptor(uint64_t device, uint64_t inode) {
  DIR* listing = opendir("/proc/self/fd");
  if (listing == nullptr) return {};
  std::string found;
  while (const dirent* entry = readdir(listing)) {
    if (entry->d_name[0] == '.') continue;
    if (IsOpenOn(entry->d_name, device, inode)) {
      found = entry->d_name;
      break;
    }
  }
  closedir(listing);
  return found;
}

}  // namespace

void SetProgressMode(ProgressMode chosen) {
  mode = chosen;
}

ProgressBar::ProgressBar(std::string label, uint64_t total)
    : label_(std::move(label)),
      total_(total),
      enabled_(mode == ProgressMode::kAlways ||
               (mode == ProgressMode::kAuto && isatty(STDERR_FILENO))),
      waitFirst_(mode != ProgressMode::kAlways),
      started_(Clock::now()) {}

ProgressBar::~ProgressBar() {
  // Failed: end the line so that the message starts on its own.
  if (drawn_) (void)!write(STDERR_FILENO, "\n", 1);
}

void ProgressBar::Show(uint64_t done) {
  if (!enabled_) return;
  const auto now = Clock::now();
  if (waitFirst_ && now - started_ < kQuietStart) return;
  if (drawn_ && now - lastDrawn_ < kRedrawEvery) return;
  lastDrawn_ = now;
  Draw(done);
}

void ProgressBar::Complete() {
  if (!drawn_ && (!enabled_ || waitFirst_)) return;
  Draw(total_);
  (void)!write(STDERR_FILENO, "\n", 1);
  drawn_ = false;
  enabled_ = false;
}

void ProgressBar::Draw(uint64_t done) {
  if (done > total_) done = total_;
  const int percent = total_ == 0 ? 100 : static_cast<int>(done * 100 / total_);
  const int filled = percent * kBarWidth / 100;
  char bar[kBarWidth + 1];
  std::memset(bar, '#', static_cast<size_t>(filled));
  std::memset(bar + filled, '.', static_cast<size_t>(kBarWidth - filled));
  bar[kBarWidth] = '\0';
  char line[512];
  const int length = std::snprintf(
      line, sizeof line, "\r%s [%s] %3d%% %.1f/%.1f MiB", label_.c_str(), bar, percent,
      static_cast<double>(done) / 1048576.0, static_cast<double>(total_) / 1048576.0);
  if (length > 0) {
    (void)!write(STDERR_FILENO, line, std::min(static_cast<size_t>(length), sizeof line - 1));
  }
  drawn_ = true;
}

ReadPositionProgress::ReadPositionProgress(const std::string& path, const std::string& label)
    : bar_(label, FileSize(path)) {
  struct stat status;
  if (!bar_.enabled() || stat(path.c_str(), &status) != 0) return;
  follower_ = std::thread(&ReadPositionProgress::Follow, this, status.st_dev, status.st_ino);
}

ReadPositionProgress::~ReadPositionProgress() {
  Stop();
}

void ReadPositionProgress::Follow(uint64_t device, uint64_t inode) {
  std::unique_lock lock(mutex_);
  std::string fd;
  while (!wake_.wait_for(lock, kRedrawEvery, [this] { return stopping_; })) {
    // The engine may close the file and open it again: check each time.
    if (fd.empty() || !IsOpenOn(fd, device, inode)) fd = FindDescriptor(device, inode);
    uint64_t position = 0;
    if (!fd.empty() && ReadPosition(fd, position)) bar_.Show(position);
  }
}

void ReadPositionProgress::Stop() {
  if (!follower_.joinable()) return;
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  wake_.notify_one();
  follower_.join();
}

void ReadPositionProgress::Complete() {
  Stop();
  bar_.Complete();
}

}  // namespace fe::cli
