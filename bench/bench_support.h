// Test data, timing, tool calls and the ours-beside-a-peer row shared by the
// benchmarks.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace fe::bench {

// The same random bytes for every benchmark and every run.
inline std::vector<uint8_t> RandomBytes(size_t size) {
  std::mt19937_64 generator(42);
  std::vector<uint8_t> bytes(size);
  for (auto& b : bytes)
    b = static_cast<uint8_t>(generator());
  return bytes;
}

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
// prints the best MB/s of both and the ratio (above 1: we are faster). The
// peer reports its own seconds (negative when it failed), so that a tool
// can leave its start-up out.
inline void CompareTimed(const char* what, double megabytes, const std::function<bool()>& ours,
                         const std::function<double()>& peerSeconds, const std::string& shown,
                         int rounds = 3) {
  double mine = 1e9, theirs = 1e9;
  bool ok = true, theirsOk = true;
  for (int round = 0; round < rounds; ++round) {
    bool done = false;
    mine = std::min(mine, SecondsOf(ours, &done));
    ok &= done;
    const double seconds = peerSeconds();
    theirsOk &= seconds >= 0;
    if (seconds >= 0) theirs = std::min(theirs, seconds);
  }
  std::printf("%-26s %9.1f MB/s%s  %9.1f MB/s%s  ratio %.2f  %s\n", what, megabytes / mine,
              ok ? "" : " (FAILED)", megabytes / theirs, theirsOk ? "" : " (FAILED)", theirs / mine,
              shown.c_str());
  std::fflush(stdout);
}

// The same with the peer timed here.
inline void Compare(const char* what, double megabytes, const std::function<bool()>& ours,
                    const std::function<bool()>& peer, const std::string& shown, int rounds = 3) {
  CompareTimed(
      what, megabytes, ours,
      [&] {
        bool done = false;
        const double seconds = SecondsOf(peer, &done);
        return done ? seconds : -1.0;
      },
      shown, rounds);
}

// Seconds a Python statement took on the bytes of `path` (bound to `data`),
// timed inside Python so that its start-up and the `setup` statements are
// left out; -1 on failure.
inline double PythonSeconds(const std::string& module, const std::string& statement,
                            const std::string& path, const std::string& setup = "None") {
  const std::string command = "/usr/bin/python3 -c \"import time, " + module + "; data = open('" +
                              path + "', 'rb').read(); " + setup + "; t = time.perf_counter(); " +
                              statement + "; print(time.perf_counter() - t)\"";
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return -1;
  double seconds = -1;
  if (std::fscanf(pipe, "%lf", &seconds) != 1) seconds = -1;
  return pclose(pipe) == 0 ? seconds : -1;
}

}  // namespace fe::bench
