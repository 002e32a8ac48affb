// Timing, tool calls and the ours-beside-a-peer row shared by the
// benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

namespace fe::bench {

// Seconds the work took; *ok tells whether it succeeded.
inline double SecondsOf(const std::function<bool()>& work, bool* ok) {
  const auto start = std::chrono::steady_clock::now();
  *ok = work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Runs a shell command; true when it exits with 0.
inline bool Tool(const std::string& command) {
  return std::system(command.c_str()) == 0;
}

// Ours against a peer doing the same work, taking turns over `rounds`;
// prints the best MB/s of both and the ratio (above 1: we are faster).
inline void Compare(const char* what, double megabytes, const std::function<bool()>& ours,
                    const std::function<bool()>& peer, const std::string& shown, int rounds = 3) {
  double mine = 1e9, theirs = 1e9;
  bool ok = true, theirsOk = true;
  for (int round = 0; round < rounds; ++round) {
    bool done = false;
    mine = std::min(mine, SecondsOf(ours, &done));
    ok &= done;
    theirs = std::min(theirs, SecondsOf(peer, &done));
    theirsOk &= done;
  }
  std::printf("%-26s %9.1f MB/s%s  %9.1f MB/s%s  ratio %.2f  %s\n", what, megabytes / mine,
              ok ? "" : " (FAILED)", megabytes / theirs, theirsOk ? "" : " (FAILED)", theirs / mine,
              shown.c_str());
  std::fflush(stdout);
}

}  // namespace fe::bench
