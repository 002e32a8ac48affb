// CreateToken, CreateUuid7 and CreateUuid8 through the function table:
// what scripts cannot pass (no Result at all, 16-bit integers).
#include <string>

#include "control_fixture.h"

namespace fe::test {
namespace {

using Identifiers = ControlTest;

TEST_F(Identifiers, NoResultIsAPointerError) {
  VARIANT missing;
  Variant::Missing(&missing);
  EXPECT_EQ(encoder_->CreateUuid7(nullptr), E_POINTER);
  EXPECT_EQ(encoder_->CreateUuid8(missing, nullptr), E_POINTER);
  EXPECT_EQ(encoder_->CreateToken(missing, missing, nullptr), E_POINTER);
  EXPECT_EQ(encoder_->CreateUuid7(&missing), E_POINTER);  // an omitted out-argument
}

TEST_F(Identifiers, Uuid8TakesCustomValuesAsSigned32Bits) {
  Variant result;
  Variant minusOne;
  minusOne->vt = VT_I2;
  minusOne->iVal = -1;
  ASSERT_EQ(encoder_->CreateUuid8(*minusOne.get(), result.get()), S_OK);
  ASSERT_EQ(result->vt, VT_BSTR);
  EXPECT_EQ(std::wstring(result->bstrVal).substr(0, 9), L"ffffffff-");
  Variant custom(LONG{0x12345678});
  ASSERT_EQ(encoder_->CreateUuid8(*custom.get(), result.get()), S_OK);
  EXPECT_EQ(std::wstring(result->bstrVal).substr(0, 9), L"12345678-");
  EXPECT_EQ(result->bstrVal[14], L'8');
  Variant text(L"not a number");
  EXPECT_EQ(encoder_->CreateUuid8(*text.get(), result.get()), DISP_E_TYPEMISMATCH);
}

TEST_F(Identifiers, TokenIntoAByReferenceString) {
  BSTR text = ::SysAllocString(L"old");
  VARIANT byRef;
  ::VariantInit(&byRef);
  byRef.vt = VT_BYREF | VT_BSTR;
  byRef.pbstrVal = &text;
  Variant bits(LONG{256}), encoding(LONG{1});
  ASSERT_EQ(encoder_->CreateToken(*bits.get(), *encoding.get(), &byRef), S_OK);
  EXPECT_EQ(::SysStringLen(text), 43u);
  ::SysFreeString(text);
}

TEST_F(Identifiers, RefusedEncodingReportsTheControlError) {
  Variant bits(LONG{0}), encoding(LONG{3}), result;
  ASSERT_EQ(encoder_->CreateToken(*bits.get(), *encoding.get(), result.get()), S_OK);
  EXPECT_EQ(GetLong(L"LastError"), 10014);
  ASSERT_EQ(encoder_->put_ThrowError(VARIANT_TRUE), S_OK);
  EXPECT_EQ(encoder_->CreateToken(*bits.get(), *encoding.get(), result.get()),
            static_cast<HRESULT>(0x800A0000 | 10014));
}

}  // namespace
}  // namespace fe::test
