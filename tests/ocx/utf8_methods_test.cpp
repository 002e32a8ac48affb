// IsValidUtf8, StrToUtf8 and Utf8ToStr through the function table: byte
// arrays in every wrapping, the HRESULTs of bad arguments, and LastError
// left alone.
#include <string>
#include <vector>

#include "control_fixture.h"

namespace fe::test {
namespace {

class Utf8Methods : public ControlTest {
 protected:
  HRESULT Validate(const std::vector<BYTE>& bytes, VARIANT_BOOL* verdict) {
    Variant input, result;
    input->vt = VT_ARRAY | VT_UI1;
    input->parray = ByteArray(bytes);
    const HRESULT hr = encoder_->IsValidUtf8(*input.get(), result.get());
    EXPECT_EQ(result->vt, VT_BOOL);
    *verdict = result->boolVal;
    return hr;
  }
  bool Valid(const std::vector<BYTE>& bytes) {
    VARIANT_BOOL verdict = VARIANT_FALSE;
    EXPECT_EQ(Validate(bytes, &verdict), S_OK);
    return verdict == VARIANT_TRUE;
  }
};

TEST_F(Utf8Methods, IsValidUtf8Verdicts) {
  EXPECT_TRUE(Valid({0xC3, 0xA9}));
  EXPECT_FALSE(Valid({0xC0, 0xAF}));
  EXPECT_FALSE(Valid({0xED, 0xA0, 0x80}));
  EXPECT_FALSE(Valid({0xF4, 0x90, 0x80, 0x80}));
  EXPECT_FALSE(Valid({0xE2, 0x82}));
  EXPECT_TRUE(Valid({0x41, 0x00, 0xFF}));
  EXPECT_TRUE(Valid({0xEF, 0xBB, 0xBF}));
  EXPECT_FALSE(Valid({}));
}

TEST_F(Utf8Methods, IsValidUtf8Arguments) {
  Variant result, text(L"abc");
  VARIANT missing;
  Variant::Missing(&missing);
  EXPECT_EQ(encoder_->IsValidUtf8(*text.get(), nullptr), E_POINTER);
  EXPECT_EQ(encoder_->IsValidUtf8(missing, result.get()), E_INVALIDARG);
  EXPECT_EQ(encoder_->IsValidUtf8(*text.get(), result.get()), E_INVALIDARG);
  // A by-reference variant holding the array is fine.
  Variant inner;
  inner->vt = VT_ARRAY | VT_UI1;
  inner->parray = ByteArray({0xC3, 0xA9});
  VARIANT byRef = ByReference(inner.get());
  ASSERT_EQ(encoder_->IsValidUtf8(byRef, result.get()), S_OK);
  EXPECT_EQ(result->boolVal, VARIANT_TRUE);
  // Two dimensions: false and 0x800A0005.
  Variant square;
  SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
  square->vt = VT_ARRAY | VT_UI1;
  square->parray = ::SafeArrayCreate(VT_UI1, 2, bounds);
  EXPECT_EQ(encoder_->IsValidUtf8(*square.get(), result.get()), static_cast<HRESULT>(0x800A0005));
  EXPECT_EQ(result->vt, VT_BOOL);
  EXPECT_EQ(result->boolVal, VARIANT_FALSE);
}

TEST_F(Utf8Methods, StrToUtf8) {
  Variant text(L"\u00e9"), result;
  ASSERT_EQ(encoder_->StrToUtf8(*text.get(), result.get()), S_OK);
  ASSERT_EQ(result->vt, VT_ARRAY | VT_UI1);
  ASSERT_EQ(result->parray->rgsabound[0].cElements, 2u);
  EXPECT_EQ(static_cast<BYTE*>(result->parray->pvData)[0], 0xC3);
  EXPECT_EQ(static_cast<BYTE*>(result->parray->pvData)[1], 0xA9);
  Variant empty(L"");
  ASSERT_EQ(encoder_->StrToUtf8(*empty.get(), result.get()), S_OK);
  ASSERT_EQ(result->vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(result->parray->rgsabound[0].cElements, 0u);
  const wchar_t lone[] = {L'a', 0xD800, 0};
  Variant surrogate(lone);
  EXPECT_EQ(encoder_->StrToUtf8(*surrogate.get(), result.get()), static_cast<HRESULT>(0x80070459));
  Variant number(LONG{5});
  EXPECT_EQ(encoder_->StrToUtf8(*number.get(), result.get()), E_INVALIDARG);
}

TEST_F(Utf8Methods, Utf8ToStr) {
  Variant result;
  Variant bytesAsText(L"\u00c3\u00a9");
  ASSERT_EQ(encoder_->Utf8ToStr(*bytesAsText.get(), result.get()), S_OK);
  ASSERT_EQ(result->vt, VT_BSTR);
  EXPECT_EQ(std::wstring(result->bstrVal), L"\u00e9");
  Variant wide(L"\u0100");
  EXPECT_EQ(encoder_->Utf8ToStr(*wide.get(), result.get()), static_cast<HRESULT>(0x80020005));
  Variant invalid(L"\u00ff");
  EXPECT_EQ(encoder_->Utf8ToStr(*invalid.get(), result.get()), static_cast<HRESULT>(0x80070459));
  Variant array;
  array->vt = VT_ARRAY | VT_UI1;
  array->parray = ByteArray({0xE2, 0x82, 0xAC});
  ASSERT_EQ(encoder_->Utf8ToStr(*array.get(), result.get()), S_OK);
  EXPECT_EQ(std::wstring(result->bstrVal), L"\u20ac");
  Variant number(LONG{5});
  EXPECT_EQ(encoder_->Utf8ToStr(*number.get(), result.get()), static_cast<HRESULT>(0x80020005));
}

TEST_F(Utf8Methods, LastErrorIsLeftAlone) {
  ASSERT_EQ(encoder_->put_LastError(10014), S_OK);
  Variant invalid(L"\u00ff"), result;
  encoder_->Utf8ToStr(*invalid.get(), result.get());
  EXPECT_EQ(GetLong(L"LastError"), 10014);
}

}  // namespace
}  // namespace fe::test
