// EncodeBuffer and DecodeBuffer for callers that own more memory than the
// output size they pass: the steps check outputSize as they always have,
// while bufferSize (at least outputSize) bounds every write. A step that
// would cross bufferSize fails with -1 and writes nothing past it.
#pragma once

#include <cstdint>

namespace fe::codecs {

int32_t EncodeBufferWithin(const void* input, int32_t inputLength, char* output, int32_t outputSize,
                           int64_t bufferSize, uint32_t flags);
int32_t DecodeBufferWithin(const char* text, void* output, int32_t outputSize, int64_t bufferSize,
                           uint32_t flags);

}  // namespace fe::codecs
