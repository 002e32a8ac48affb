// The Linux stand-in for the system error numbers: errno mapped to Win32.
#pragma once

#include <cstdint>

#include "platform/platform.h"

namespace fe::platform {

uint32_t Win32ErrorFromErrno(int error);
// Sets the last error from the current errno.
void SetLastErrorFromErrno();

}  // namespace fe::platform
