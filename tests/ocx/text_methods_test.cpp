// FilterHtml, FilterMarkdown, FilterUnicode and IsConfusable through the
// function table, with strings, byte arrays and other types; and the text
// file conversion, reachable only through the slot after Utf8ToStr.
#include <windows.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "control_fixture.h"

namespace fe::test {
namespace {

class TextMethods : public ControlTest {
 protected:
  using Method = HRESULT (STDMETHODCALLTYPE IFileEncoder::*)(VARIANT, VARIANT*);

  std::wstring Call(Method method, const VARIANT& input, HRESULT expected = S_OK) {
    Variant result;
    EXPECT_EQ((encoder_->*method)(input, result.get()), expected);
    return result->vt == VT_BSTR && result->bstrVal ? std::wstring(result->bstrVal)
                                                    : std::wstring();
  }
  std::wstring Call(Method method, const wchar_t* text) {
    return Call(method, *Variant(text).get());
  }
  std::wstring CallBytes(Method method, const std::string& bytes) {
    Variant input;
    input->vt = VT_ARRAY | VT_UI1;
    input->parray = ByteArray(std::vector<BYTE>(bytes.begin(), bytes.end()));
    return Call(method, *input.get());
  }
  bool Confusable(const VARIANT& input) {
    Variant result;
    EXPECT_EQ(encoder_->IsConfusable(input, result.get()), S_OK);
    EXPECT_EQ(result->vt, VT_BOOL);
    return result->boolVal == VARIANT_TRUE;
  }
};

TEST_F(TextMethods, FilterHtmlFromStringsAndBytes) {
  EXPECT_EQ(Call(&IFileEncoder::FilterHtml, L"<p>Hello</p><p>W\u00F6rld &euro;</p>"),
            L"Hello\r\n\r\nW\u00F6rld \u20AC");
  EXPECT_EQ(CallBytes(&IFileEncoder::FilterHtml, "<b>caf\xC3\xA9</b>"), L"caf\u00E9");
  // A result that is not UTF-8 (a stray byte copied through) is refused.
  EXPECT_EQ(CallBytes(&IFileEncoder::FilterHtml, "<b>caf\xE9</b>"), L"");
  EXPECT_EQ(Call(&IFileEncoder::FilterHtml, L""), L"");
  EXPECT_EQ(Call(&IFileEncoder::FilterHtml, *Variant(42).get()), L"42");
}

TEST_F(TextMethods, FilterMarkdownFromStringsAndBytes) {
  EXPECT_EQ(Call(&IFileEncoder::FilterMarkdown, L"## Title\n\n[site](https://example.com)"),
            L"Title\n\nsite (https://example.com)");
  EXPECT_EQ(CallBytes(&IFileEncoder::FilterMarkdown, "1) **gr\xC3\xBC\xC3\x9F**"),
            L"1. gr\u00FC\u00DF");
}

TEST_F(TextMethods, FilterUnicodeFromStringsAndBytes) {
  EXPECT_EQ(Call(&IFileEncoder::FilterUnicode, L"\u0430pple \u00E9\uFB01 \U0001D400"),
            L"apple efi A");
  EXPECT_EQ(CallBytes(&IFileEncoder::FilterUnicode, "\xEF\xBC\xA1\tb"), L"Ab");
  EXPECT_EQ(Call(&IFileEncoder::FilterUnicode, L"\U0001F600"), L"");
}

TEST_F(TextMethods, IsConfusableFromStringsAndBytes) {
  EXPECT_FALSE(Confusable(*Variant(L"plain ASCII").get()));
  EXPECT_TRUE(Confusable(*Variant(L"\uFEFFplain").get()));
  EXPECT_TRUE(Confusable(*Variant(L"p\u0430ypal").get()));
  Variant bytes;
  bytes->vt = VT_ARRAY | VT_UI1;
  bytes->parray = ByteArray({0xD0, 0xB0});
  EXPECT_TRUE(Confusable(*bytes.get()));
}

TEST_F(TextMethods, ArgumentErrors) {
  Variant text(L"x");
  EXPECT_EQ(encoder_->FilterHtml(*text.get(), nullptr), E_POINTER);
  EXPECT_EQ(encoder_->FilterMarkdown(*text.get(), nullptr), E_POINTER);
  EXPECT_EQ(encoder_->FilterUnicode(*text.get(), nullptr), E_POINTER);
  EXPECT_EQ(encoder_->IsConfusable(*text.get(), nullptr), E_POINTER);
  VARIANT missing;
  Variant::Missing(&missing);
  Call(&IFileEncoder::FilterHtml, missing, E_INVALIDARG);
}

class FileConversion : public ControlTest {
 protected:
  using Conversion = HRESULT(STDMETHODCALLTYPE*)(IFileEncoder*, VARIANT, VARIANT, VARIANT, VARIANT,
                                                 VARIANT, VARIANT*);
  // The slot after Utf8ToStr: IDispatch's seven, then the interface's own
  // methods up to Utf8ToStr, whose slot the type library gives.
  Conversion Slot() {
    ITypeInfo* info = nullptr;
    EXPECT_EQ(control_->get()->GetTypeInfo(0, LOCALE_USER_DEFAULT, &info), S_OK);
    ITypeInfo* described = info;
    HREFTYPE reference = 0;
    ITypeInfo* vtable = nullptr;
    if (info->GetRefTypeOfImplType(-1, &reference) == S_OK &&
        info->GetRefTypeInfo(reference, &vtable) == S_OK) {
      described = vtable;
    }
    TYPEATTR* attributes = nullptr;
    described->GetTypeAttr(&attributes);
    SHORT last = 0;
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      described->GetFuncDesc(i, &function);
      if (function->memid == 38) last = function->oVft;
      described->ReleaseFuncDesc(function);
    }
    described->ReleaseTypeAttr(attributes);
    if (vtable != nullptr) vtable->Release();
    info->Release();
    void** table = *reinterpret_cast<void***>(encoder_);
    return reinterpret_cast<Conversion>(table[last / sizeof(void*) + 1]);
  }

  std::wstring Folder() {
    wchar_t path[MAX_PATH];
    ::GetTempPathW(MAX_PATH, path);
    return path;
  }
  static void Write(const std::wstring& path, const std::string& bytes) {
    std::ofstream(path.c_str(), std::ios::binary) << bytes;
  }
  static std::string Read(const std::wstring& path) {
    std::ifstream file(path.c_str(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }
};

TEST_F(FileConversion, DetectsTheSourceAndWritesTheDestination) {
  const std::wstring in = Folder() + L"fe_convert_in.txt";
  const std::wstring out = Folder() + L"fe_convert_out.txt";
  Write(in, std::string("\xFF\xFE"
                        "h\0\xE9\0",
                        6));
  Variant input(in.c_str()), output(out.c_str()), error;
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  // Source 0 detects; the destination defaults to UTF-8.
  ASSERT_EQ(Slot()(encoder_, *input.get(), missing, *output.get(), missing, missing, &errorRef),
            S_OK);
  EXPECT_EQ(Read(out), "h\xC3\xA9");
  // Explicit code pages: UTF-8 to Windows-1252.
  Write(in, "caf\xC3\xA9");
  ASSERT_EQ(Slot()(encoder_, *input.get(), *Variant(65001).get(), *output.get(),
                   *Variant(1252).get(), missing, &errorRef),
            S_OK);
  EXPECT_EQ(Read(out), "caf\xE9");
  // Options in the fifth argument: LF line ends.
  Write(in, "a\r\nb\r\n");
  ASSERT_EQ(Slot()(encoder_, *input.get(), *Variant(65001).get(), *output.get(),
                   *Variant(65001).get(), *Variant(0x2000).get(), &errorRef),
            S_OK);
  EXPECT_EQ(Read(out), "a\nb\n");
  ::DeleteFileW(in.c_str());
  ::DeleteFileW(out.c_str());
}

TEST_F(FileConversion, InvalidCodePagesAndMissingFiles) {
  const std::wstring out = Folder() + L"fe_convert_none.txt";
  Variant input((Folder() + L"fe_no_such_file.txt").c_str()), output(out.c_str()), error;
  VARIANT missing;
  Variant::Missing(&missing);
  VARIANT errorRef = ByReference(error.get());
  EXPECT_EQ(Slot()(encoder_, *input.get(), *Variant(77777).get(), *output.get(), missing, missing,
                   &errorRef),
            static_cast<HRESULT>(0x800A0141));
  EXPECT_EQ(Slot()(encoder_, *input.get(), missing, *output.get(), *Variant(77777).get(), missing,
                   &errorRef),
            static_cast<HRESULT>(0x800A0141));
  // A missing input goes through Error and the error path.
  Slot()(encoder_, *input.get(), missing, *output.get(), missing, missing, &errorRef);
  EXPECT_EQ(error->lVal, 2);
  EXPECT_EQ(GetLong(L"LastError"), 2);
}

}  // namespace
}  // namespace fe::test
