// CFileEncoder: the properties and the lazy conversions of the text slots.

#include <new>

#include "codecs/data_dispatch.h"
#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"
#include "module.h"
#include "version_text.h"

namespace fe::ocx {

namespace {

constexpr HRESULT kDesignMode = static_cast<HRESULT>(0x800A018A);
constexpr HRESULT kInvalidPropertyValue = static_cast<HRESULT>(0x800A017C);
constexpr USHORT kHighestTextEncoding = 5;  // Base58 and above only through methods
constexpr USHORT kHighestEncoding = 9;

// A new BSTR holding a copy of text, embedded NULs included.
HRESULT CopyOut(const std::wstring& text, BSTR* value) {
  if (value == nullptr) return E_POINTER;
  *value = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
  return *value == nullptr ? E_OUTOFMEMORY : S_OK;
}

// Stores a copy of value in slot and empties its partner.
HRESULT StorePair(BSTR value, std::wstring& slot, std::wstring& partner) {
  try {
    slot.assign(value == nullptr ? L"" : value, value == nullptr ? 0 : ::SysStringLen(value));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  partner.clear();
  return S_OK;
}

std::wstring Utf8ToWide(const char* text) {
  return ToWide(text, strlen(text), CP_UTF8);
}

std::string WideToUtf8(const std::wstring& text) {
  // Text and passwords reach the cipher as C strings, up to an embedded NUL.
  return ToMultiByte(text.c_str(), wcslen(text.c_str()), CP_UTF8);
}

}  // namespace

#define FE_GUARD_READ(value)                  \
  do {                                        \
    if ((value) == nullptr) return E_POINTER; \
    if (!InUserMode()) return kDesignMode;    \
  } while (false)

STDMETHODIMP CFileEncoder::put_Enabled(VARIANT_BOOL value) {
  enabled_ = value != VARIANT_FALSE;
  dirty_ = true;
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_Enabled(VARIANT_BOOL* value) {
  if (value == nullptr) return E_POINTER;
  *value = enabled_ ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_Encoding(LONG* value) {
  FE_GUARD_READ(value);
  *value = encoding_;
  return S_OK;
}

STDMETHODIMP CFileEncoder::put_Encoding(LONG value) {
  if (static_cast<ULONG>(value) > kHighestEncoding) return kInvalidPropertyValue;
  encoding_ = static_cast<USHORT>(value & 0xFFFF);
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_CodePage(LONG* value) {
  FE_GUARD_READ(value);
  *value = static_cast<LONG>(code_page_);
  return S_OK;
}

STDMETHODIMP CFileEncoder::put_CodePage(LONG value) {
  // 0 is the ANSI code page and always there; no other check is made.
  if (value != 0 && !::IsValidCodePage(static_cast<UINT>(value))) return kInvalidPropertyValue;
  code_page_ = static_cast<UINT>(value);
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_Password(BSTR* value) {
  FE_GUARD_READ(value);
  return CopyOut(password_, value);
}

STDMETHODIMP CFileEncoder::put_Password(BSTR value) {
  try {
    password_.assign(value == nullptr ? L"" : value, value == nullptr ? 0 : ::SysStringLen(value));
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  }
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_State(LONG* value) {
  FE_GUARD_READ(value);
  *value = state_;
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_ThrowError(VARIANT_BOOL* value) {
  FE_GUARD_READ(value);
  *value = throw_error_ ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP CFileEncoder::put_ThrowError(VARIANT_BOOL value) {
  throw_error_ = value != VARIANT_FALSE;
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_LastError(LONG* value) {
  FE_GUARD_READ(value);
  *value = static_cast<LONG>(last_error_ & 0xFFFF);
  return S_OK;
}

STDMETHODIMP CFileEncoder::put_LastError(LONG value) {
  const auto code = static_cast<DWORD>(value);
  // A bare error number N is stored in its full form 0x80040000 | N; zero
  // and full codes are kept as they are. No range check is made.
  last_error_ = code != 0 && code < 0x10000 ? FE_CONTROL_ERROR(code) : code;
  ::SetLastError(last_error_);
  return S_OK;
}

STDMETHODIMP CFileEncoder::get_LastErrorString(BSTR* value) {
  FE_GUARD_READ(value);
  if (last_error_ == 0) return CopyOut(std::wstring(), value);
  char text[128];
  FormatErrorMessage(last_error_, text, sizeof text);
  // The message table is read as UTF-8, whatever CodePage says.
  return CopyOut(Utf8ToWide(text), value);
}

STDMETHODIMP CFileEncoder::get_Version(BSTR* value) {
  FE_GUARD_READ(value);
  // Cached once built; a module without a version resource is asked again.
  if (version_text_.empty()) version_text_ = FileVersionText(ModulePath());
  return CopyOut(version_text_, value);
}

STDMETHODIMP CFileEncoder::put_DecodedText(BSTR value) {
  return StorePair(value, decoded_text_, encoded_text_);
}

STDMETHODIMP CFileEncoder::put_EncodedText(BSTR value) {
  return StorePair(value, encoded_text_, decoded_text_);
}

STDMETHODIMP CFileEncoder::put_DecryptedText(BSTR value) {
  return StorePair(value, decrypted_text_, encrypted_text_);
}

STDMETHODIMP CFileEncoder::put_EncryptedText(BSTR value) {
  return StorePair(value, encrypted_text_, decrypted_text_);
}

STDMETHODIMP CFileEncoder::get_EncodedText(BSTR* value) {
  FE_GUARD_READ(value);
  return ConvertTextSlot(true, value);
}

STDMETHODIMP CFileEncoder::get_DecodedText(BSTR* value) {
  FE_GUARD_READ(value);
  return ConvertTextSlot(false, value);
}

STDMETHODIMP CFileEncoder::get_EncryptedText(BSTR* value) {
  FE_GUARD_READ(value);
  return CipherTextSlot(true, value);
}

STDMETHODIMP CFileEncoder::get_DecryptedText(BSTR* value) {
  FE_GUARD_READ(value);
  return CipherTextSlot(false, value);
}

HRESULT CFileEncoder::ConvertTextSlot(bool encode, BSTR* value) {
  std::wstring& target = encode ? encoded_text_ : decoded_text_;
  const std::wstring& source = encode ? decoded_text_ : encoded_text_;
  if (!target.empty()) return CopyOut(target, value);
  if (encoding_ > kHighestTextEncoding) return kInvalidPropertyValue;
  const size_t length = source.size();
  const bool unicode = encoding_ == dataEncodeUTF7 || encoding_ == dataEncodeUTF8;
  if (encode) {
    const size_t room = 3 * length + 1025;
    ScratchBlock<char> text(heap_, room);
    if (!text) return kOutOfMemoryError;
    int32_t count;
    if (unicode) {
      count = EncodeBuffer(source.c_str(), static_cast<int32_t>(length), text.get(),
                           static_cast<int32_t>(3 * length + 1024), encoding_);
    } else {
      ScratchBlock<char> bytes(heap_, 4 * length + 4);
      if (!bytes) return kOutOfMemoryError;
      const int converted =
          ::WideCharToMultiByte(code_page_, 0, source.c_str(), static_cast<int>(length + 1),
                                bytes.get(), static_cast<int>(4 * length + 4), nullptr, nullptr);
      // Kept exactly as earlier versions called it: the length in UTF-16
      // units and the converted byte count as the output size. Base64 text
      // never comes out of this, and longer conversions are cut; steps
      // that go past that size still land in the buffer owned here.
      count = codecs::EncodeBufferWithin(bytes.get(), static_cast<int32_t>(length), text.get(),
                                         converted, static_cast<int64_t>(room), encoding_);
    }
    if (count > 0) target = ToWide(text.get(), static_cast<size_t>(count), CP_THREAD_ACP);
    return CopyOut(target, value);
  }
  ScratchBlock<char> bytes(heap_, 4 * (length + 1));
  if (!bytes) return kOutOfMemoryError;
  ::WideCharToMultiByte(code_page_, 0, source.c_str(), static_cast<int>(length + 1), bytes.get(),
                        static_cast<int>(4 * (length + 1)), nullptr, nullptr);
  if (unicode) {
    ScratchBlock<wchar_t> text(heap_, 2 * (length + 1024) + 2);
    if (!text) return kOutOfMemoryError;
    const int32_t count =
        DecodeBuffer(bytes.get(), text.get(), static_cast<int32_t>(2 * (length + 1024)), encoding_);
    if (count > 0) target.assign(text.get());
  } else {
    ScratchBlock<char> data(heap_, length + 1025);
    if (!data) return kOutOfMemoryError;
    const int32_t count =
        codecs::DecodeBufferWithin(bytes.get(), data.get(), static_cast<int32_t>(length + 1024),
                                   static_cast<int64_t>(length + 1025), encoding_);
    // Decoded bytes are read in the thread's ANSI code page, not in
    // CodePage: the asymmetry with encoding is what callers have relied on.
    if (count > 0) target = ToWide(data.get(), strlen(data.get()), CP_THREAD_ACP);
  }
  return CopyOut(target, value);
}

HRESULT CFileEncoder::CipherTextSlot(bool encrypt, BSTR* value) {
  std::wstring& target = encrypt ? encrypted_text_ : decrypted_text_;
  std::wstring& source = encrypt ? decrypted_text_ : encrypted_text_;
  // One-shot: a second read, or a read after writing this slot, forgets
  // both texts.
  if (!target.empty() || source.empty()) {
    target.clear();
    source.clear();
    return CopyOut(std::wstring(), value);
  }
  const std::string input = WideToUtf8(source);
  const std::string password = WideToUtf8(password_);
  const size_t n = input.size();
  bool done;
  if (encrypt) {
    const size_t m = (4 * n / 3 + 3) & ~size_t{3};
    ScratchBlock<char> output(heap_, m + 1025);
    if (!output) return E_OUTOFMEMORY;
    done = EncryptText(password.c_str(), input.c_str(), 0, output.get(),
                       static_cast<int32_t>(m + 1024)) > 0;
    target = done ? Utf8ToWide(output.get()) : std::wstring();
  } else {
    ScratchBlock<char> output(heap_, n + 1);
    if (!output) return E_OUTOFMEMORY;
    // The decryption leaves its verdict in the last error only.
    ::SetLastError(0);
    DecryptText(password.c_str(), input.c_str(), output.get(), static_cast<int32_t>(n));
    done = ::GetLastError() == 0;
    target = done ? Utf8ToWide(output.get()) : std::wstring();
  }
  // A cipher failure is recorded raw: no error information, no ThrowError.
  if (!done) last_error_ = ::GetLastError();
  return CopyOut(target, value);
}

}  // namespace fe::ocx
