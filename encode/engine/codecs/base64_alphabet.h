// The Base64 alphabet, shared by the portable coders and their vector
// kernels.
#pragma once

namespace fe::codecs {

inline constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace fe::codecs
