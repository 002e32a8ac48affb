#include <windows.h>

#include "platform/platform.h"

namespace fe::platform {

void SetLastErrorCode(uint32_t code) {
  ::SetLastError(code);
}

uint32_t GetLastErrorCode() {
  return ::GetLastError();
}

}  // namespace fe::platform
