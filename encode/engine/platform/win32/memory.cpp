#include <windows.h>

#include "platform/platform.h"

namespace fe::platform {

void* AllocateZeroed(size_t size) {
  return ::LocalAlloc(LPTR, size);
}

void Release(void* block) {
  if (block != nullptr) ::LocalFree(block);
}

}  // namespace fe::platform
