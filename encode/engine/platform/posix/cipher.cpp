// Stand-in for CryptoAPI's AES-256 (PROV_RSA_AES, CALG_SHA_256, CALG_AES_256):
// OpenSSL's SHA-256 and raw AES-256-CBC, with the padding added and checked
// here so that each call behaves as CryptEncrypt/CryptDecrypt do: whole
// blocks out of every non-final chunk, NTE_BAD_DATA for a bad length or
// padding, ERROR_MORE_DATA when the padded block does not fit.
#include <openssl/evp.h>
#include <openssl/sha.h>

#include <cstring>

#include "platform/platform.h"

namespace fe::platform {

namespace {
constexpr uint32_t kBlock = 16;
constexpr uint32_t kBadLength = 0x80090004;       // NTE_BAD_LEN
constexpr uint32_t kMoreData = 234;               // ERROR_MORE_DATA
constexpr uint32_t kServiceFailure = 0x80090020;  // NTE_FAIL
}  // namespace

struct CipherKey {
  uint8_t key[SHA256_DIGEST_LENGTH];
  EVP_CIPHER_CTX* context = nullptr;
  int direction = -1;  // 1 encrypting, 0 decrypting, -1 not started
};

uint32_t OpenCipherKey(const uint8_t* material, size_t length, CipherKey** key) {
  auto* opened = new CipherKey;
  SHA256(material, length, opened->key);
  opened->context = EVP_CIPHER_CTX_new();
  if (opened->context == nullptr) {
    CloseCipherKey(opened);
    *key = nullptr;
    return kServiceFailure;
  }
  *key = opened;
  return 0;
}

namespace {

// Starts a message in the given direction unless one is under way.
bool StartMessage(CipherKey* key, bool encrypt) {
  if (key->direction == static_cast<int>(encrypt)) return true;
  static const uint8_t kZeroIv[kBlock] = {};
  if (EVP_CipherInit_ex(key->context, EVP_aes_256_cbc(), nullptr, key->key, kZeroIv,
                        encrypt ? 1 : 0) != 1 ||
      EVP_CIPHER_CTX_set_padding(key->context, 0) != 1) {
    return false;
  }
  key->direction = encrypt ? 1 : 0;
  return true;
}

bool Update(CipherKey* key, const uint8_t* input, uint8_t* output, uint32_t length) {
  int out = 0;
  return length == 0 ||
         (EVP_CipherUpdate(key->context, output, &out, input, static_cast<int>(length)) == 1 &&
          static_cast<uint32_t>(out) == length);
}

}  // namespace

uint32_t CipherTransformBlocks(CipherKey* key, bool encrypt, const uint8_t* input, uint8_t* output,
                               uint32_t length) {
  if (length % kBlock != 0) return encrypt ? kBadLength : kBadData;
  if (!StartMessage(key, encrypt)) return kServiceFailure;
  // OpenSSL works in place or between separate buffers, not across an overlap.
  if (input != output && input < output + length && output < input + length) {
    std::memmove(output, input, length);
    input = output;
  }
  return Update(key, input, output, length) ? 0 : kServiceFailure;
}

uint32_t CipherTransform(CipherKey* key, bool encrypt, bool final, uint8_t* data, uint32_t* length,
                         uint32_t bufferSize) {
  const uint32_t n = *length;
  if (!StartMessage(key, encrypt)) return kServiceFailure;
  uint32_t total = n;
  if (encrypt) {
    if (!final && n % kBlock != 0) return kBadLength;
    if (final) {
      total = (n / kBlock + 1) * kBlock;
      if (total > bufferSize) {
        *length = total;
        return kMoreData;
      }
      std::memset(data + n, static_cast<int>(total - n), total - n);
    }
  } else if (n % kBlock != 0) {
    return kBadData;
  }
  if (!Update(key, data, data, total)) return kServiceFailure;
  if (final) key->direction = -1;  // the next call starts a new message
  if (!encrypt && final) {
    const uint8_t pad = total > 0 ? data[total - 1] : 0;
    if (pad == 0 || pad > kBlock) return kBadData;
    for (uint32_t i = 1; i <= pad; ++i) {
      if (data[total - i] != pad) return kBadData;
    }
    total -= pad;
  }
  *length = total;
  return 0;
}

void CloseCipherKey(CipherKey* key) {
  if (key == nullptr) return;
  EVP_CIPHER_CTX_free(key->context);
  OPENSSL_cleanse(key->key, sizeof key->key);
  delete key;
}

}  // namespace fe::platform
