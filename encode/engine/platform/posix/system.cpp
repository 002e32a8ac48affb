// Stand-ins for the clock and random calls: CLOCK_MONOTONIC milliseconds
// for GetTickCount, CLOCK_REALTIME in FILETIME units, getrandom(2) for
// RtlGenRandom.
#include <sys/random.h>

#include <cerrno>
#include <ctime>

#include "platform/platform.h"
#include "platform/posix/system_errors.h"

namespace fe::platform {

uint32_t GetTickCount() {
  timespec now{};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000 +
                               static_cast<uint64_t>(now.tv_nsec) / 1000000);
}

int64_t SystemTimeAsFileTime() {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  // 1601-01-01 lies 11644473600 seconds before 1970-01-01.
  return (int64_t{now.tv_sec} + 11644473600) * 10000000 + now.tv_nsec / 100;
}

bool RandomBytes(void* buffer, size_t size) {
  auto* bytes = static_cast<uint8_t*>(buffer);
  while (size > 0) {
    const ssize_t n = ::getrandom(bytes, size, 0);
    if (n < 0) {
      if (errno == EINTR) continue;
      SetLastErrorFromErrno();
      return false;
    }
    bytes += n;
    size -= static_cast<size_t>(n);
  }
  return true;
}

}  // namespace fe::platform
