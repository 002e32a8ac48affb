#include "errors/last_error.h"

extern "C" {

uint32_t EngineGetLastError(void) {
  return fe::LastError();
}

void EngineSetLastError(uint32_t code) {
  fe::SetLastError(code);
}

}  // extern "C"
