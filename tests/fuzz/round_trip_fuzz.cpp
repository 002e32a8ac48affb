// decode(encode(x)) == x for every encoding that round-trips, wrapped and
// not, and the encoders never write outside a buffer sized for them.
#include <cstring>
#include <vector>

#include "file_encoder.h"
#include "fuzz_input.h"

namespace {

bool RoundTrips(const std::vector<uint8_t>& bytes, uint32_t flags) {
  const uint32_t encoding = flags & 0xFFFF;
  if (bytes.empty() && (encoding == dataEncodeBase85 || encoding == dataEncodeZ85)) return true;
  if (encoding == dataEncodeZ85 && bytes.size() % 4 != 0) return true;
  std::vector<char> text(bytes.size() * 4 + 64);
  const int32_t n = EncodeBuffer(bytes.empty() ? "" : static_cast<const void*>(bytes.data()),
                                 static_cast<int32_t>(bytes.size()), text.data(),
                                 static_cast<int32_t>(text.size()), flags);
  if (n < 0 || std::strlen(text.data()) != static_cast<size_t>(n)) return false;
  std::vector<uint8_t> back(bytes.size() + 8);
  const int32_t m = DecodeBuffer(text.data(), back.data(), static_cast<int32_t>(back.size()),
                                 flags & ~static_cast<uint32_t>(dataEncodeWrapLines));
  back.resize(bytes.size());
  return m == static_cast<int32_t>(bytes.size()) && back == bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fe::fuzz::FuzzInput input(data, size);
  const uint8_t choice = input.Take();
  const std::vector<uint8_t> bytes = input.Rest();
  if (bytes.size() > 2048) return 0;  // Base58 is quadratic
  static constexpr uint32_t kEncodings[] = {dataEncodeBase64, dataEncodeQuoted, dataEncodeURL,
                                            dataEncodeBase58, dataEncodeBase32, dataEncodeBase85,
                                            dataEncodeZ85};
  const uint32_t encoding = kEncodings[choice % 7];
  const uint32_t wrap = choice & 0x80 ? dataEncodeWrapLines : 0;
  if (!RoundTrips(bytes, encoding | wrap)) __builtin_trap();
  return 0;
}
