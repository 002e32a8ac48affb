#include "crypt/key_string.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "identifiers.h"

namespace fe::crypt {

namespace {

struct Identifier {
  uint32_t data1;
  uint16_t data2;
  uint16_t data3;
  uint8_t data4[8];
};

constexpr uint32_t HexValue(char c) {
  return static_cast<uint32_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
}

// The identifier's fields from its UUID text "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx".
constexpr Identifier ParseIdentifier(const char* text) {
  auto field = [text](int at, int digits) {
    uint32_t value = 0;
    for (int i = 0; i < digits; ++i)
      value = value << 4 | HexValue(text[at + i]);
    return value;
  };
  Identifier id{
      field(0, 8), static_cast<uint16_t>(field(9, 4)), static_cast<uint16_t>(field(14, 4)), {}};
  for (int i = 0; i < 8; ++i) {
    id.data4[i] = static_cast<uint8_t>(field(i < 2 ? 19 + 2 * i : 24 + 2 * (i - 2), 2));
  }
  return id;
}

constexpr Identifier kKeyIdentifier = ParseIdentifier(FE_UUID_KEY_IDENTIFIER);

}  // namespace

size_t BuildKeyString(const char* password, char* buffer) {
  const Identifier& id = kKeyIdentifier;
  std::snprintf(buffer, kKeyStringSize,
                "{%08lx-%04hx-%04hx-%02hhx%02hhx-%02hhx%02hhx%02hhx%02hhx%02hhx%02hhx}",
                static_cast<unsigned long>(id.data1), id.data2, id.data3, id.data4[0], id.data4[1],
                id.data4[2], id.data4[3], id.data4[4], id.data4[5], id.data4[6], id.data4[7]);
  size_t length = kIdentifierLength;
  if (password != nullptr) {
    const size_t copied = strnlen(password, kPasswordRoom);
    std::memcpy(buffer + length, password, copied);
    length += copied;
  }
  buffer[length] = '\0';
  return length;
}

}  // namespace fe::crypt
