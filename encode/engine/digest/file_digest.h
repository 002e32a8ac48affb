// The digest of a whole file as uppercase hexadecimal text.
#pragma once

#include <cstdint>

#include "digest/hash.h"

namespace fe::digest {

// Writes at most 64 digits and a NUL into output; returns the number of
// digits, 0 on failure with the reason as last error.
int32_t DigestFile(HashKind kind, const char* path, char* output);

}  // namespace fe::digest
