// What the type library tells object browsers and late-bound callers, and
// the method that only the function table reaches.
#include "control_fixture.h"

namespace fe::test {
namespace {

class TypeLibrary : public ControlTest {
 protected:
  ITypeInfo* InterfaceInfo() {
    ITypeInfo* info = nullptr;
    EXPECT_EQ(control_->get()->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
    return info;
  }
};

TEST_F(TypeLibrary, MethodsAndPropertiesHaveTheirDispatchIds) {
  const std::pair<const wchar_t*, DISPID> expected[] = {
      {L"Enabled", -514},    {L"About", -552},        {L"DecodedText", 1},
      {L"DecryptedText", 2}, {L"EncodedText", 3},     {L"Encoding", 4},
      {L"EncryptedText", 5}, {L"LastError", 6},       {L"LastErrorString", 7},
      {L"Password", 8},      {L"State", 9},           {L"ThrowError", 10},
      {L"Version", 11},      {L"CompressBuffer", 12}, {L"CompressData", 13},
      {L"CompressFile", 14}, {L"DecodeFile", 15},     {L"DecryptData", 16},
      {L"DecryptFile", 17},  {L"EncodeFile", 18},     {L"EncryptData", 19},
      {L"EncryptFile", 20},  {L"ExpandBuffer", 21},   {L"ExpandData", 22},
      {L"ExpandFile", 23},   {L"Initialize", 24},     {L"Reset", 25},
      {L"Uninitialize", 26}, {L"CompareFile", 27},    {L"CodePage", 28},
      {L"CreateToken", 29},  {L"CreateUuid7", 30},    {L"CreateUuid8", 31},
      {L"FilterHtml", 32},   {L"FilterMarkdown", 33}, {L"FilterUnicode", 34},
      {L"IsConfusable", 35}, {L"IsValidUtf8", 36},    {L"StrToUtf8", 37},
      {L"Utf8ToStr", 38}};
  for (const auto& [name, id] : expected)
    EXPECT_EQ(control_->IdOf(name), id) << name;
}

TEST_F(TypeLibrary, ArgumentNamesAreThoseOfTheInterface) {
  LPOLESTR names[] = {const_cast<LPOLESTR>(L"CompressFile"),
                      const_cast<LPOLESTR>(L"CompressionLevel"), const_cast<LPOLESTR>(L"Error")};
  DISPID ids[3] = {};
  ASSERT_EQ(control_->get()->GetIDsOfNames(IID_NULL, names, 3, LOCALE_USER_DEFAULT, ids), S_OK);
  EXPECT_EQ(ids[0], 14);
  EXPECT_EQ(ids[1], 3);
  EXPECT_EQ(ids[2], 4);
}

TEST_F(TypeLibrary, ConversionMethodIsNotListed) {
  EXPECT_EQ(control_->IdOf(L"ConvertFile"), DISPID_UNKNOWN);
}

TEST_F(TypeLibrary, ConversionMethodFollowsUtf8ToStrInTheFunctionTable) {
  ITypeInfo* info = InterfaceInfo();
  ASSERT_NE(info, nullptr);
  // The dual interface's own description gives each function's table slot.
  ITypeInfo* vtable = nullptr;
  HREFTYPE reference = 0;
  if (info->GetRefTypeOfImplType(-1, &reference) == S_OK) {
    info->GetRefTypeInfo(reference, &vtable);
  }
  ITypeInfo* described = vtable != nullptr ? vtable : info;
  TYPEATTR* attributes = nullptr;
  ASSERT_EQ(described->GetTypeAttr(&attributes), S_OK);
  SHORT lastSlot = -1;
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    FUNCDESC* function = nullptr;
    described->GetFuncDesc(i, &function);
    if (function->memid == 38) lastSlot = function->oVft;
    EXPECT_LE(function->oVft, attributes->cbSizeVft);
    described->ReleaseFuncDesc(function);
  }
  EXPECT_EQ(static_cast<size_t>(attributes->cbSizeVft), lastSlot + sizeof(void*));
  described->ReleaseTypeAttr(attributes);
  if (vtable != nullptr) vtable->Release();
  info->Release();

  // The next slot is the conversion method: it is there to be called.
  using Conversion = HRESULT(STDMETHODCALLTYPE*)(IFileEncoder*, VARIANT, VARIANT, VARIANT, VARIANT,
                                                 VARIANT, VARIANT*);
  void** table = *reinterpret_cast<void***>(encoder_);
  auto convert = reinterpret_cast<Conversion>(table[lastSlot / sizeof(void*) + 1]);
  VARIANT missing;
  Variant::Missing(&missing);
  Variant error;
  VARIANT errorRef = ByReference(error.get());
  // Without file names the conversion refuses the call with 87 in Error.
  convert(encoder_, missing, missing, missing, missing, missing, &errorRef);
  EXPECT_EQ(error->vt, VT_I4);
  EXPECT_EQ(error->lVal, 87);
}

}  // namespace
}  // namespace fe::test
