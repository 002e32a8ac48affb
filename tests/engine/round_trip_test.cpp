// decode(encode(x)) == x over random data of every size from 0 to 5000, in
// every encoding that round-trips.
#include <gtest/gtest.h>

#include "test_support.h"

namespace fe::test {
namespace {

struct RoundTripCase {
  const char* name;
  uint32_t flags;
  size_t step;  // Z85 needs whole 4-byte groups
};

class DataRoundTrip : public testing::TestWithParam<RoundTripCase> {};

TEST_P(DataRoundTrip, RandomDataOfEverySize) {
  const RoundTripCase& c = GetParam();
  const Bytes all = RandomBytes(5000, 80);
  for (size_t size = 0; size <= 5000; size += c.step) {
    // Base85 and Z85 refuse empty input.
    const uint32_t encoding = c.flags & 0xFFFF;
    if (size == 0 && (encoding == dataEncodeBase85 || encoding == dataEncodeZ85)) continue;
    const Bytes input(all.begin(), all.begin() + static_cast<ptrdiff_t>(size));
    const std::string text = Encode(input, c.flags);
    ASSERT_NE(text, "<fail>") << size;
    int32_t result = 0;
    const Bytes back =
        Decode(text, c.flags & ~static_cast<uint32_t>(dataEncodeWrapLines), &result, size + 64);
    ASSERT_EQ(back, input) << c.name << " size " << size;
  }
}

INSTANTIATE_TEST_SUITE_P(
    Encodings, DataRoundTrip,
    testing::Values(
        RoundTripCase{"Base64", dataEncodeBase64, 1},
        RoundTripCase{"Base64Wrapped", dataEncodeBase64 | dataEncodeWrapLines, 1},
        RoundTripCase{"QuotedPrintable", dataEncodeQuoted, 1},
        RoundTripCase{"QuotedPrintableWrapped", dataEncodeQuoted | dataEncodeWrapLines, 1},
        RoundTripCase{"Url", dataEncodeURL, 1}, RoundTripCase{"Base58", dataEncodeBase58, 1},
        RoundTripCase{"Base32", dataEncodeBase32, 1},
        RoundTripCase{"Base32Wrapped", dataEncodeBase32 | dataEncodeWrapLines, 1},
        RoundTripCase{"Base85", dataEncodeBase85, 1}, RoundTripCase{"Z85", dataEncodeZ85, 4}),
    [](const testing::TestParamInfo<RoundTripCase>& info) { return info.param.name; });

TEST(DataRoundTrip, Utf8OfRandomValidText) {
  std::mt19937 random(81);
  for (int round = 0; round < 500; ++round) {
    std::u16string text;
    for (size_t k = random() % 200; k > 0; --k) {
      uint32_t cp = random() % 0x110000;
      if (cp >= 0xD800 && cp < 0xE000) cp = 'x';
      if (cp == 0) cp = 1;
      if (cp >= 0x10000) {
        text += static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10));
        text += static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF));
      } else {
        text += static_cast<char16_t>(cp);
      }
    }
    std::vector<char> encoded(text.size() * 4 + 8);
    const int32_t n = EncodeBuffer(text.data(), static_cast<int32_t>(text.size()), encoded.data(),
                                   static_cast<int32_t>(encoded.size()), dataEncodeUTF8);
    ASSERT_EQ(n == 0, text.empty());
    std::u16string back(text.size() + 1, u'\0');
    const int32_t m = DecodeBuffer(encoded.data(), back.data(), static_cast<int32_t>(back.size()),
                                   dataDecodeUTF8);
    ASSERT_EQ(m, static_cast<int32_t>(text.size()) + 1);
    back.pop_back();
    ASSERT_EQ(back, text);
  }
}

}  // namespace
}  // namespace fe::test
