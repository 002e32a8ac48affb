// Timing and tool calls shared by the file benchmarks.
#pragma once

#include <chrono>
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

}  // namespace fe::bench
