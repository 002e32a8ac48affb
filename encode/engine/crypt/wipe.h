// Clears memory that held key material, plain text or random bytes, in a
// way the compiler cannot drop: a plain memset followed by a barrier that
// makes the cleared bytes look used, so the clearing runs at memset speed.
#pragma once

#include <cstddef>
#include <cstring>

namespace fe::crypt {

inline void Wipe(void* memory, size_t size) {
  std::memset(memory, 0, size);
  __asm__ __volatile__("" : : "r"(memory) : "memory");
}

}  // namespace fe::crypt
