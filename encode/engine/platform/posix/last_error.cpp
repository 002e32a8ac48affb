// Stand-in for SetLastError/GetLastError: a 32-bit slot per thread.
#include "platform/platform.h"

namespace fe::platform {

namespace {
thread_local uint32_t last_error_code = 0;
}

void SetLastErrorCode(uint32_t code) {
  last_error_code = code;
}

uint32_t GetLastErrorCode() {
  return last_error_code;
}

}  // namespace fe::platform
