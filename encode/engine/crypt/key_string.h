// The key material every cipher key is hashed from.
#pragma once

#include <cstddef>

namespace fe::crypt {

inline constexpr size_t kKeyStringSize = 256;
inline constexpr size_t kIdentifierLength = 38;
// Room after the identifier: longer passwords are cut to this many
// characters, so their keys stay what earlier versions made of them.
inline constexpr size_t kPasswordRoom = 215;

// Writes the key identifier as "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}",
// then the password's first 215 characters, into buffer (kKeyStringSize
// bytes); returns the length to hash, without the terminator.
size_t BuildKeyString(const char* password, char* buffer);

}  // namespace fe::crypt
