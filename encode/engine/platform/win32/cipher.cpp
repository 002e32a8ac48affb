// windows.h must come first.
#include <windows.h>

#include <wincrypt.h>

#include <cstring>

#include "platform/platform.h"

namespace fe::platform {

struct CipherKey {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  HCRYPTKEY key = 0;
};

uint32_t OpenCipherKey(const uint8_t* material, size_t length, CipherKey** key) {
  *key = nullptr;
  auto* opened = new CipherKey;
  if (!::CryptAcquireContextA(&opened->provider, nullptr, nullptr, PROV_RSA_AES,
                              CRYPT_VERIFYCONTEXT)) {
    const uint32_t code = ::GetLastError();
    delete opened;
    return code;
  }
  if (!::CryptCreateHash(opened->provider, CALG_SHA_256, 0, 0, &opened->hash) ||
      !::CryptHashData(opened->hash, material, static_cast<DWORD>(length), 0) ||
      !::CryptDeriveKey(opened->provider, CALG_AES_256, opened->hash, 0, &opened->key)) {
    const uint32_t code = ::GetLastError();
    CloseCipherKey(opened);
    return code;
  }
  *key = opened;
  return 0;
}

uint32_t CipherTransform(CipherKey* key, bool encrypt, bool final, uint8_t* data, uint32_t* length,
                         uint32_t bufferSize) {
  DWORD count = *length;
  const BOOL done = encrypt ? ::CryptEncrypt(key->key, 0, final, 0, data, &count, bufferSize)
                            : ::CryptDecrypt(key->key, 0, final, 0, data, &count);
  if (!done) return ::GetLastError();
  *length = count;
  return 0;
}

uint32_t CipherTransformBlocks(CipherKey* key, bool encrypt, const uint8_t* input, uint8_t* output,
                               uint32_t length) {
  // The service works in place only.
  std::memmove(output, input, length);
  uint32_t count = length;
  return CipherTransform(key, encrypt, false, output, &count, length);
}

void CloseCipherKey(CipherKey* key) {
  if (key == nullptr) return;
  // The order the service documents for tearing down: context, key, hash.
  if (key->provider) ::CryptReleaseContext(key->provider, 0);
  if (key->key) ::CryptDestroyKey(key->key);
  if (key->hash) ::CryptDestroyHash(key->hash);
  delete key;
}

}  // namespace fe::platform
