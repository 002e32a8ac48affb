// The data methods with caller-supplied byte arrays: the array's element
// count is the capacity, zero included, and nothing is ever written past it.
#include <memory>
#include <string>
#include <vector>

#include "control_fixture.h"

namespace fe::test {
namespace {

constexpr BYTE kGuard = 0xA5;
constexpr size_t kGuardSize = 64;

// A one-dimensional byte array of `elements` whose data lies at the start of
// a larger block: the bytes after it must stay kGuard.
class GuardedArray {
 public:
  explicit GuardedArray(ULONG elements) : block_(elements + kGuardSize, kGuard) {
    ::SafeArrayAllocDescriptor(1, &array_);
    array_->cbElements = 1;
    array_->fFeatures = FADF_STATIC | FADF_FIXEDSIZE;
    array_->rgsabound[0].cElements = elements;
    array_->rgsabound[0].lLbound = 0;
    array_->pvData = block_.data();
    elements_ = elements;
  }
  ~GuardedArray() { ::SafeArrayDestroyDescriptor(array_); }
  GuardedArray(const GuardedArray&) = delete;
  GuardedArray& operator=(const GuardedArray&) = delete;

  SAFEARRAY** slot() { return &array_; }
  bool GuardIntact() const {
    for (size_t i = elements_; i < block_.size(); ++i) {
      if (block_[i] != kGuard) return false;
    }
    return true;
  }

 private:
  std::vector<BYTE> block_;
  SAFEARRAY* array_ = nullptr;
  ULONG elements_ = 0;
};

class DataArrays : public ControlTest {
 protected:
  // Calls a data method with the input as a byte array and the output as
  // the caller's array (by reference, as VB6 passes `b()`).
  HRESULT Run(const wchar_t* method, const std::vector<BYTE>& input, GuardedArray& output,
              LONG* result) {
    Variant in;
    in->vt = VT_ARRAY | VT_UI1;
    in->parray = ByteArray(input);
    VARIANT out;
    ::VariantInit(&out);
    out.vt = VT_BYREF | VT_ARRAY | VT_UI1;
    out.pparray = output.slot();
    Variant outcome;
    VARIANT resultRef = ByReference(outcome.get());
    std::vector<VARIANT*> arguments = {in.get(), &out};
    VARIANT password;
    Variant::Missing(&password);
    if (IsCipher(method)) arguments.push_back(&password);
    arguments.push_back(&resultRef);
    const HRESULT hr = control_->Method(method, arguments);
    *result = outcome->vt == VT_I4 ? outcome->lVal : -999;
    return hr;
  }

  static bool IsCipher(const wchar_t* method) {
    return method[1] == L'n' || method[1] == L'e';  // EncryptData, DecryptData
  }

  // What each method is given: input that needs a larger output than the
  // small arrays offer.
  std::vector<BYTE> InputFor(const wchar_t* method) {
    std::vector<BYTE> plain(300);
    for (size_t i = 0; i < plain.size(); ++i)
      plain[i] = static_cast<BYTE>(i * 7 + 1);
    if (std::wstring(method).find(L"Expand") == 0) return Produced(L"CompressData", plain);
    if (std::wstring(method) == L"DecryptData") return Produced(L"EncryptData", plain);
    return plain;
  }

  // What `method` makes of `plain` in a roomy array.
  std::vector<BYTE> Produced(const wchar_t* method, const std::vector<BYTE>& plain) {
    GuardedArray out(1024);
    LONG n = 0;
    EXPECT_EQ(Run(method, plain, out, &n), S_OK);
    const BYTE* data = static_cast<const BYTE*>((*out.slot())->pvData);
    return std::vector<BYTE>(data, data + n);
  }
};

const wchar_t* const kMethods[] = {L"CompressData", L"CompressBuffer", L"ExpandData",
                                   L"ExpandBuffer", L"EncryptData",    L"DecryptData"};

TEST_F(DataArrays, ArraysOfZeroOneAndTooFewElementsAreNeverOverrun) {
  for (const wchar_t* method : kMethods) {
    const std::vector<BYTE> input = InputFor(method);
    for (ULONG elements : {0u, 1u, 16u}) {
      GuardedArray output(elements);
      LONG result = 0;
      EXPECT_EQ(Run(method, input, output, &result), S_OK) << method << " " << elements;
      EXPECT_TRUE(output.GuardIntact()) << method << " " << elements;
      // Compression and expansion report -1; the ciphers leave 0.
      EXPECT_EQ(result, IsCipher(method) ? 0 : -1) << method << " " << elements;
      EXPECT_NE(GetLong(L"LastError"), 0) << method << " " << elements;
    }
  }
}

TEST_F(DataArrays, ArrayThatFitsGetsTheResultAndKeepsItsSize) {
  const std::vector<BYTE> plain = {'a', 'b', 'c'};
  GuardedArray output(64);
  LONG result = 0;
  ASSERT_EQ(Run(L"EncryptData", plain, output, &result), S_OK);
  EXPECT_EQ(result, 16);
  EXPECT_EQ((*output.slot())->rgsabound[0].cElements, 64u);
  EXPECT_TRUE(output.GuardIntact());
}

TEST_F(DataArrays, InputArrayOfNoElementsReachesTheEngine) {
  GuardedArray output(64);
  LONG result = 7;
  // Compressing nothing is the engine's failure, not an early success.
  EXPECT_EQ(Run(L"CompressData", {}, output, &result), S_OK);
  EXPECT_EQ(result, -1);
  EXPECT_NE(GetLong(L"LastError"), 0);
  // Encrypting nothing succeeds with nothing.
  GuardedArray cipher(64);
  EXPECT_EQ(Run(L"EncryptData", {}, cipher, &result), S_OK);
  EXPECT_EQ(result, 0);
  // Expanding nothing succeeds at once.
  GuardedArray expanded(64);
  EXPECT_EQ(Run(L"ExpandData", {}, expanded, &result), S_OK);
  EXPECT_EQ(result, 0);
  EXPECT_TRUE(output.GuardIntact() && cipher.GuardIntact() && expanded.GuardIntact());
}

TEST_F(DataArrays, CipherTextStringsAreUtf8WhateverTheCodePage) {
  // A cipher text with a '+', which UTF-7 would write as "+-".
  Variant plain(L"abc"), cipher, result, password;
  for (int i = 0; i < 200; ++i) {
    ::VariantClear(password.get());
    password->vt = VT_BSTR;
    password->bstrVal = ::SysAllocString((L"pw" + std::to_wstring(i)).c_str());
    ::VariantClear(cipher.get());
    VARIANT cipherRef = ByReference(cipher.get()), resultRef = ByReference(result.get());
    ASSERT_EQ(
        control_->Method(L"EncryptData", {plain.get(), &cipherRef, password.get(), &resultRef}),
        S_OK);
    ASSERT_EQ(cipher->vt, VT_BSTR);
    if (wcschr(cipher->bstrVal, L'+') != nullptr) break;
  }
  ASSERT_NE(wcschr(cipher->bstrVal, L'+'), nullptr);
  Variant utf7(65000);
  ASSERT_EQ(control_->Put(L"CodePage", utf7.get()), S_OK);
  Variant back, backResult;
  VARIANT backRef = ByReference(back.get()), backResultRef = ByReference(backResult.get());
  ASSERT_EQ(
      control_->Method(L"DecryptData", {cipher.get(), &backRef, password.get(), &backResultRef}),
      S_OK);
  EXPECT_EQ(GetLong(L"LastError"), 0);
  ASSERT_EQ(back->vt, VT_BSTR);
  EXPECT_STREQ(back->bstrVal, L"abc");
}

}  // namespace
}  // namespace fe::test
