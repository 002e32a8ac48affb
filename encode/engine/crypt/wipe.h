// Clears memory that held key material, plain text or random bytes, in a
// way the compiler cannot drop.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fe::crypt {

inline void Wipe(void* memory, size_t size) {
  auto* p = static_cast<volatile uint8_t*>(memory);
  while (size-- > 0)
    *p++ = 0;
}

}  // namespace fe::crypt
