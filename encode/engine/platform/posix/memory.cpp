// Stand-in for LocalAlloc(LPTR)/LocalFree: the C heap, zero-filled.
#include <cstdlib>

#include "platform/platform.h"

namespace fe::platform {

void* AllocateZeroed(size_t size) {
  return std::calloc(size == 0 ? 1 : size, 1);
}

void Release(void* block) {
  std::free(block);
}

}  // namespace fe::platform
