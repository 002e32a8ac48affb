#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "test_support.h"

namespace fe::test {
namespace {

struct Code {
  const char* name;
  int number;
  const char* text;
};

const std::vector<Code>& AllCodes() {
  static const std::vector<Code> codes = {
#define FE_ERROR_MESSAGE(number, text)
#define FE_ERROR_CODE(name, number, text) {#name, name, text},
#include "file_encoder_errors.inc"
#undef FE_ERROR_CODE
#undef FE_ERROR_MESSAGE
  };
  return codes;
}

std::string MessageOf(uint32_t code) {
  char text[128];
  const int32_t n = FormatErrorMessage(code, text, sizeof text);
  return n < 0 ? "<fail>" : std::string(text, static_cast<size_t>(n));
}

TEST(ErrorCodes, EnumerationHasAllConstantsInAscendingOrder) {
  const auto& codes = AllCodes();
  EXPECT_EQ(codes.size(), 409u);
  EXPECT_EQ(codes.front().number, 10001);
  EXPECT_EQ(codes.back().number, 12553);
  for (size_t i = 1; i < codes.size(); ++i)
    EXPECT_LT(codes[i - 1].number, codes[i].number);
  EXPECT_EQ(ovErrorInvalidParameter, 10014);
  EXPECT_EQ(ovErrorStorageallocation, 12266);
  EXPECT_EQ(ovErrorIvalidX509Certificate, 12468);
}

TEST(ErrorCodes, FullCodeCarriesTheControlFacility) {
  EXPECT_EQ(FE_CONTROL_ERROR(ovErrorInvalidParameter), 0x8004271Eu);
}

TEST(ErrorCodes, PublishedTextsAreExact) {
  const std::vector<std::pair<uint32_t, const char*>> expected = {
      {0x80042715, "The specified file type is invalid or not a regular file"},
      {0x80042718, "The specified file name contains invalid characters or is too long"},
      {0x8004271A, "Unable to read data from the specified file"},
      {0x8004271B, "Unable to write data to the specified file"},
      {0x8004271C, "Out of memory"},
      {0x8004271E, "Invalid argument passed to function"},
      {0x80042721, "The specified file does not contain any data"},
      {0x80042723, "End of file"},
      {0x80042727, "The specified buffer is too small"},
      {0x80042762, "An unexpected internal error has occurred"},
      {0x80042FA9, "The specified operation is not supported"},
      {0x80042FFE, "The specified file type could not be determined"},
      {0x8004303E, "The specified file checksums do not match"},
      {0x800430CF, "The specified message digest type is invalid"},
      {0x80042F49, "Unable to decrypt data stream"},
      {0x80042F4A, "Unable to encrypt data stream"},
  };
  for (const auto& [code, text] : expected)
    EXPECT_EQ(MessageOf(code), text);
}

TEST(ErrorCodes, EveryConstantHasAOneLineText) {
  for (const Code& code : AllCodes()) {
    const std::string text = MessageOf(FE_CONTROL_ERROR(code.number));
    EXPECT_EQ(text, code.text) << code.name;
    EXPECT_LT(text.size(), 128u);
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
    EXPECT_NE(text.back(), '.') << code.name;
  }
}

TEST(ErrorCodes, TenThousandReadsNoError) {
  EXPECT_EQ(MessageOf(0x80042710), "No error");
}

TEST(ErrorCodes, GapInTheEnumerationIsUndefined) {
  EXPECT_EQ(MessageOf(0x80042729), "Undefined control error (0x80042729)");
}

TEST(ErrorCodes, UnknownPlatformCodeIsUndefined) {
  EXPECT_EQ(MessageOf(0x0000FFFF), "Undefined control error (0x0000FFFF)");
}

TEST(ErrorCodes, PlatformCodesHaveSystemTexts) {
  // The wording is the platform's: only check that there is one.
  for (uint32_t code : {2u, 3u, 5u, 13u, 14u, 87u, 122u, 1113u}) {
    const std::string text = MessageOf(code);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find("Undefined control error"), std::string::npos) << code;
    EXPECT_NE(text.back(), '\n');
    EXPECT_NE(text.back(), ' ');
  }
}

TEST(ErrorCodes, MessageIsCutToTheCallersBuffer) {
  char text[8];
  EXPECT_EQ(FormatErrorMessage(0x8004271E, text, sizeof text), 7);
  EXPECT_STREQ(text, "Invalid");
  EXPECT_EQ(FormatErrorMessage(0x8004271E, nullptr, 8), -1);
  EXPECT_EQ(FormatErrorMessage(0x8004271E, text, 0), -1);
}

TEST(LastError, SetAndGetOnTheCallingThread) {
  EngineSetLastError(0x8004271E);
  EXPECT_EQ(EngineGetLastError(), 0x8004271Eu);
  EngineSetLastError(0);
  EXPECT_EQ(EngineGetLastError(), 0u);
}

TEST(LastError, EachThreadHasItsOwnSlot) {
  EngineSetLastError(87);
  uint32_t seen = 1;
  std::thread([&] {
    seen = EngineGetLastError();
    EngineSetLastError(122);
  }).join();
  EXPECT_EQ(seen, 0u);
  // Joining may itself touch this thread's slot on Windows; what matters is
  // that the other thread's code did not land here.
  EXPECT_NE(EngineGetLastError(), 122u);
}

}  // namespace
}  // namespace fe::test
