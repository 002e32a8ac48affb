// Vector kernels of the codecs. Only the dispatch unit names them, after
// cpuid; their contracts are those of codecs/base32_kernels.h,
// codecs/base85_kernels.h,
// codecs/base64_kernels.h, codecs/qp_kernels.h, codecs/url_kernels.h,
// codecs/uu_kernels.h and codecs/yenc_kernels.h.
#pragma once

#include <cstddef>
#include <cstdint>

#include "codecs/base32_kernels.h"
#include "codecs/base64_kernels.h"
#include "codecs/base85_kernels.h"
#include "codecs/qp_kernels.h"
#include "codecs/url_kernels.h"
#include "codecs/uu_kernels.h"
#include "codecs/yenc_kernels.h"

namespace fe::codecs::x86 {

size_t Base85DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);
size_t Base85EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out);
size_t Z85DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);
void Z85EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out);

size_t Base64EncodeGroupsAvx2(const uint8_t* in, size_t groups, size_t readable, char* out);
size_t Base64DecodeGroupsAvx2(const uint8_t* text, size_t length, size_t maxGroups,
                              const Base64Skips* skips, uint8_t* out, size_t* groups);

size_t Base64EncodeGroupsAvx512(const uint8_t* in, size_t groups, size_t readable, char* out);
void Base64EncodeLinesAvx512(const uint8_t* in, size_t lines, size_t readable, char* out);
size_t Base64DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups,
                                const Base64Skips* skips, uint8_t* out, size_t* groups);

size_t Base32EncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out);
size_t Base32DecodeGroupsAvx512(const uint8_t* text, size_t length, size_t maxGroups, uint8_t* out);

size_t QpEncodeBytesAvx512(const uint8_t* in, size_t length, bool wrap, size_t room, char* out,
                           uint32_t* column, size_t* written);
size_t QpEncodePiecesAvx512(const uint8_t* in, size_t pieces, char* out);
size_t QpDecodeTextAvx512(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                          size_t* written, size_t* lastEscape);

size_t UrlEncodeBytesAvx512(const uint8_t* in, size_t length, size_t room, char* out,
                            size_t* written);
size_t UrlDecodeTextAvx512(const uint8_t* text, size_t length, size_t room, uint8_t* out,
                           size_t* written);

void UuEncodeGroupsAvx512(const uint8_t* in, size_t groups, char* out);
void UuDecodeGroupsAvx512(const uint8_t* text, size_t groups, uint8_t* out);

size_t YencEncodeBlocksAvx512(const uint8_t* in, size_t length, char* out, size_t* lineUsed,
                              size_t* written);
size_t YencDecodeLineAvx512(const uint8_t* text, size_t length, uint8_t* out, size_t* written);

}  // namespace fe::codecs::x86
