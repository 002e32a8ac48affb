#include "control_fixture.h"

namespace fe::test {
namespace {

class Marshalling : public ControlTest {};

std::vector<BYTE> Text(const char* text) {
  return std::vector<BYTE>(text, text + strlen(text));
}

TEST_F(Marshalling, TwoDimensionalInputArrayIsAnInvalidCall) {
  Variant input;
  input->vt = VT_ARRAY | VT_UI1;
  input->parray = TwoDimensionalByteArray();
  Variant output, result;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}),
            static_cast<HRESULT>(0x800A0005));
}

TEST_F(Marshalling, TwoDimensionalOutputArrayIsAnInvalidArgument) {
  Variant input(L"some text some text some text");
  Variant output, result;
  output->vt = VT_ARRAY | VT_UI1;
  output->parray = TwoDimensionalByteArray();
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), E_INVALIDARG);
}

TEST_F(Marshalling, MissingOutputIsAnInvalidArgument) {
  Variant input(L"some text some text some text");
  VARIANT missing;
  Variant::Missing(&missing);
  Variant result;
  VARIANT resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &missing, &resultRef}), E_INVALIDARG);
}

TEST_F(Marshalling, OmittedInputIsAnInvalidArgument) {
  VARIANT missing;
  Variant::Missing(&missing);
  Variant output, result;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {&missing, &outputRef, &resultRef}), E_INVALIDARG);
}

TEST_F(Marshalling, NumberOutputIsAnInvalidArgument) {
  Variant input(L"some text some text some text");
  Variant output(5), result;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), E_INVALIDARG);
}

TEST_F(Marshalling, NullByteArrayOutputGetsANewArray) {
  Variant input(L"array array array array array array");
  Variant output, result;
  output->vt = VT_ARRAY | VT_UI1;
  output->parray = nullptr;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  ASSERT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), S_OK);
  ASSERT_EQ(result->vt, VT_I4);
  const std::vector<BYTE> stream = BytesOf(output->parray);
  ASSERT_EQ(stream.size(), static_cast<size_t>(result->lVal));
  EXPECT_EQ(stream[0], 0x78);
  EXPECT_EQ(stream[1], 0xDA);

  // The raw stream (not printable) is expanded directly.
  Variant packed, text, length;
  packed->vt = VT_ARRAY | VT_UI1;
  packed->parray = ByteArray(stream);
  VARIANT textRef = ByReference(text.get()), lengthRef = ByReference(length.get());
  ASSERT_EQ(control_->Method(L"ExpandData", {packed.get(), &textRef, &lengthRef}), S_OK);
  EXPECT_EQ(text->vt, VT_BSTR);
  EXPECT_STREQ(text->bstrVal, L"array array array array array array");
}

TEST_F(Marshalling, CallersArrayKeepsItsSize) {
  Variant input(L"keep keep keep keep keep keep keep keep");
  Variant output, result;
  output->vt = VT_ARRAY | VT_UI1;
  output->parray = ByteArray(std::vector<BYTE>(200, 0xEE));
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  ASSERT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), S_OK);
  const std::vector<BYTE> bytes = BytesOf(output->parray);
  ASSERT_EQ(bytes.size(), 200u);
  EXPECT_EQ(bytes[0], 0x78);
  EXPECT_EQ(bytes[static_cast<size_t>(result->lVal)], 0xEE);
}

TEST_F(Marshalling, PrintableByteArrayIsTriedAsBase64First) {
  // Compress to text, then hand the text over as a byte array.
  Variant input(L"base64 base64 base64 base64 base64 base64");
  Variant packed, result;
  VARIANT packedRef = ByReference(packed.get()), resultRef = ByReference(result.get());
  ASSERT_EQ(control_->Method(L"CompressData", {input.get(), &packedRef, &resultRef}), S_OK);
  ASSERT_EQ(packed->vt, VT_BSTR);
  std::vector<BYTE> text;
  for (const wchar_t* c = packed->bstrVal; *c; ++c)
    text.push_back(static_cast<BYTE>(*c));
  Variant array, output, length;
  array->vt = VT_ARRAY | VT_UI1;
  array->parray = ByteArray(text);
  VARIANT outputRef = ByReference(output.get()), lengthRef = ByReference(length.get());
  ASSERT_EQ(control_->Method(L"ExpandData", {array.get(), &outputRef, &lengthRef}), S_OK);
  EXPECT_STREQ(output->bstrVal, L"base64 base64 base64 base64 base64 base64");
}

TEST_F(Marshalling, EmptyInputLeavesTheOutputAlone) {
  Variant input(L"");
  Variant output(L"untouched"), result(7);
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), S_OK);
  EXPECT_EQ(result->lVal, 0);
  EXPECT_STREQ(output->bstrVal, L"untouched");
}

TEST_F(Marshalling, ByReferenceStringOutputIsReplaced) {
  Variant input(L"byref byref byref byref byref byref");
  BSTR text = ::SysAllocString(L"old");
  VARIANT output;
  output.vt = VT_BYREF | VT_BSTR;
  output.pbstrVal = &text;
  Variant result;
  VARIANT resultRef = ByReference(result.get());
  ASSERT_EQ(control_->Method(L"CompressData", {input.get(), &output, &resultRef}), S_OK);
  EXPECT_EQ(wcsncmp(text, L"eN", 2), 0);
  EXPECT_EQ(static_cast<LONG>(::SysStringLen(text)), result->lVal);
  ::SysFreeString(text);
}

TEST_F(Marshalling, CompressBufferMatchesCompressData) {
  for (const wchar_t* text : {L"alias alias alias alias alias", L"x", L"0123456789abcdef"}) {
    Variant input(text), a, b, ra, rb;
    VARIANT aRef = ByReference(a.get()), bRef = ByReference(b.get());
    VARIANT raRef = ByReference(ra.get()), rbRef = ByReference(rb.get());
    control_->Method(L"CompressData", {input.get(), &aRef, &raRef});
    control_->Method(L"CompressBuffer", {input.get(), &bRef, &rbRef});
    EXPECT_EQ(ra->lVal, rb->lVal);
    EXPECT_EQ(a->vt, b->vt);
    if (a->vt == VT_BSTR) EXPECT_STREQ(a->bstrVal, b->bstrVal);
  }
}

TEST_F(Marshalling, NumberInputIsNotData) {
  Variant input(42), output, result;
  VARIANT outputRef = ByReference(output.get()), resultRef = ByReference(result.get());
  EXPECT_EQ(control_->Method(L"CompressData", {input.get(), &outputRef, &resultRef}), E_INVALIDARG);
}

TEST_F(Marshalling, EncryptDataRoundTripsByteArrays) {
  Variant input, cipher, result, password(L"pw");
  input->vt = VT_ARRAY | VT_UI1;
  input->parray = ByteArray(Text("byte array plain text"));
  cipher->vt = VT_ARRAY | VT_UI1;
  cipher->parray = nullptr;
  VARIANT cipherRef = ByReference(cipher.get()), resultRef = ByReference(result.get());
  ASSERT_EQ(control_->Method(L"EncryptData", {input.get(), &cipherRef, password.get(), &resultRef}),
            S_OK);
  EXPECT_EQ(result->lVal, 32);
  Variant plain, length;
  plain->vt = VT_ARRAY | VT_UI1;
  plain->parray = nullptr;
  VARIANT plainRef = ByReference(plain.get()), lengthRef = ByReference(length.get());
  ASSERT_EQ(control_->Method(L"DecryptData", {cipher.get(), &plainRef, password.get(), &lengthRef}),
            S_OK);
  EXPECT_EQ(BytesOf(plain->parray), Text("byte array plain text"));
}

}  // namespace
}  // namespace fe::test
