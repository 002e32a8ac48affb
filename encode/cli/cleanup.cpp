#include "cleanup.h"

#include <limits.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>

namespace fe::cli {

namespace {

// Plain storage the signal handler can read: a slot holds a path once its
// state is kReady.
constexpr int kSlots = 16;
enum State : int { kFree, kFilling, kReady };
char paths[kSlots][PATH_MAX];
std::atomic<int> states[kSlots];

void RemoveAndReraise(int signal) {
  for (int i = 0; i < kSlots; ++i) {
    if (states[i].load() == kReady) unlink(paths[i]);
  }
  for (int i = 0; i < kSlots; ++i) {  // folders once their files are gone
    if (states[i].load() == kReady) rmdir(paths[i]);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

}  // namespace

void RemoveTemporariesOnSignals() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
    std::signal(signal, RemoveAndReraise);
}

int RememberTemporary(const std::string& path) {
  if (path.size() >= PATH_MAX) return -1;
  for (int i = 0; i < kSlots; ++i) {
    int expected = kFree;
    if (states[i].compare_exchange_strong(expected, kFilling)) {
      std::memcpy(paths[i], path.c_str(), path.size() + 1);
      states[i].store(kReady);
      return i;
    }
  }
  return -1;  // more at once than the tool ever makes: left to the caller's cleanup
}

void ForgetTemporary(int slot) {
  if (slot >= 0) states[slot].store(kFree);
}

}  // namespace fe::cli
