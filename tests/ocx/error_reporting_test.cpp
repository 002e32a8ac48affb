#include "control_fixture.h"

namespace fe::test {
namespace {

class ErrorReporting : public ControlTest {};

TEST_F(ErrorReporting, ErrorInformationNamesTheControl) {
  Variant plain(L"a secret message"), cipher, length, right(L"right"), wrong(L"wrong");
  VARIANT cipherRef = ByReference(cipher.get()), lengthRef = ByReference(length.get());
  ASSERT_EQ(encoder_->EncryptData(*plain, &cipherRef, *right, &lengthRef), S_OK);
  Variant output;
  VARIANT outputRef = ByReference(output.get());
  ::SetErrorInfo(0, nullptr);
  ASSERT_EQ(encoder_->DecryptData(*cipher, &outputRef, *wrong, &lengthRef), S_OK);
  IErrorInfo* info = nullptr;
  ASSERT_EQ(::GetErrorInfo(0, &info), S_OK);
  ASSERT_NE(info, nullptr);
  BSTR source = nullptr, description = nullptr;
  GUID guid;
  info->GetSource(&source);
  info->GetDescription(&description);
  info->GetGUID(&guid);
  EXPECT_STREQ(source, L"Orvane.FileEncoder.12");
  EXPECT_GT(::SysStringLen(description), 0u);
  EXPECT_TRUE(IsEqualGUID(guid, IID_IFileEncoder));
  ::SysFreeString(source);
  ::SysFreeString(description);
  info->Release();
}

TEST_F(ErrorReporting, PlatformCodeWithThrowErrorIsASuccessCode) {
  ASSERT_EQ(encoder_->put_ThrowError(VARIANT_TRUE), S_OK);
  Variant plain(L"a secret message"), cipher, length, right(L"right"), wrong(L"wrong");
  VARIANT cipherRef = ByReference(cipher.get()), lengthRef = ByReference(length.get());
  ASSERT_EQ(encoder_->EncryptData(*plain, &cipherRef, *right, &lengthRef), S_OK);
  Variant output;
  VARIANT outputRef = ByReference(output.get());
  // 13 comes back as the call's result: positive, so not a failure.
  EXPECT_EQ(encoder_->DecryptData(*cipher, &outputRef, *wrong, &lengthRef), 13);
  LONG last = 0;
  ASSERT_EQ(encoder_->get_LastError(&last), S_OK);
  EXPECT_EQ(last, 13);
}

TEST_F(ErrorReporting, ControlCodeWithThrowErrorFailsInTheControlFacility) {
  ASSERT_EQ(encoder_->put_ThrowError(VARIANT_TRUE), S_OK);
  // Expansion records no code of its own: the thread's last error, here a
  // control code, is what gets reported.
  std::vector<BYTE> junk = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
  Variant input, output, result;
  input->vt = VT_ARRAY | VT_UI1;
  input->parray = ByteArray(junk);
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  ::SetLastError(0x8004271E);
  EXPECT_EQ(encoder_->ExpandData(*input, &outputRef, &resultRef), static_cast<HRESULT>(0x800A271E));
  EXPECT_EQ(result->lVal, -1);
  LONG last = 0;
  encoder_->get_LastError(&last);
  EXPECT_EQ(last, 10014);
  ASSERT_EQ(encoder_->put_ThrowError(VARIANT_FALSE), S_OK);
  ::SetLastError(0x8004271E);
  EXPECT_EQ(encoder_->ExpandData(*input, &outputRef, &resultRef), S_OK);
}

TEST_F(ErrorReporting, FailureWithoutAnyCodeReportsNothing) {
  std::vector<BYTE> junk = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
  Variant input, output, result;
  input->vt = VT_ARRAY | VT_UI1;
  input->parray = ByteArray(junk);
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  encoder_->put_LastError(0);
  ::SetLastError(0);
  EXPECT_EQ(encoder_->ExpandData(*input, &outputRef, &resultRef), S_OK);
  EXPECT_EQ(result->lVal, -1);
  LONG last = -1;
  encoder_->get_LastError(&last);
  EXPECT_EQ(last, 0);
}

TEST_F(ErrorReporting, ScriptsSeeControlCodesAsErrorNumbers) {
  // An invalid property value reaches a late-bound caller as 0x800A017C.
  Variant value(12);
  EXPECT_EQ(control_->Put(L"Encoding", value.get()), static_cast<HRESULT>(0x800A017C));
}

TEST_F(ErrorReporting, LastErrorPutWidensSmallNumbers) {
  ASSERT_EQ(encoder_->put_LastError(10014), S_OK);
  EXPECT_EQ(::GetLastError(), 0x8004271Eu);
  ASSERT_EQ(encoder_->put_LastError(static_cast<LONG>(0x80070057)), S_OK);
  LONG last = 0;
  encoder_->get_LastError(&last);
  EXPECT_EQ(last, 0x57);
  BSTR text = nullptr;
  ASSERT_EQ(encoder_->put_LastError(87), S_OK);
  ASSERT_EQ(encoder_->get_LastErrorString(&text), S_OK);
  EXPECT_STREQ(text, L"Undefined control error (0x80040057)");
  ::SysFreeString(text);
}

}  // namespace
}  // namespace fe::test
