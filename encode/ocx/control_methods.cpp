// CFileEncoder: housekeeping and the in-memory data methods.

#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"

namespace fe::ocx {

namespace {

// Base64 text of cipher bytes carries no padding, as the text properties
// write it.
std::wstring CipherBytesToText(const BYTE* data, DWORD length, ScratchHeap& heap, HRESULT* hr) {
  ScratchBlock<char> text(heap, 4 * static_cast<size_t>(length) / 3 + 8);
  if (!text) {
    *hr = kOutOfMemoryError;
    return {};
  }
  int32_t count = Base64Encode(data, static_cast<int32_t>(length), text.get(),
                               static_cast<int32_t>(4 * static_cast<size_t>(length) / 3 + 8));
  while (count > 1 && text.get()[count - 1] == '=')
    --count;
  *hr = S_OK;
  return ToWide(text.get(), static_cast<size_t>(count > 0 ? count : 0), CP_UTF8);
}

bool AllPrintable(const BYTE* data, DWORD length) {
  for (DWORD i = 0; i < length; ++i) {
    if (data[i] < 0x20 || data[i] > 0x7E) return false;
  }
  return true;
}

}  // namespace

STDMETHODIMP CFileEncoder::Initialize(VARIANT Parameter, VARIANT* Error) {
  SetOutInteger(Error, 0);
  // The argument is accepted as text and otherwise not interpreted.
  std::string ignored;
  bool present = false;
  const HRESULT hr = GetUtf8Argument(Parameter, &ignored, &present);
  if (FAILED(hr)) return hr;
  if (initialized_) return S_OK;
  if (!InUserMode()) {
    SetOutInteger(Error, 5);
    return throw_error_ ? kInvalidCall : S_OK;
  }
  initialized_ = true;
  return S_OK;
}

STDMETHODIMP CFileEncoder::Reset() {
  if (initialized_) ResetState();
  return S_OK;
}

STDMETHODIMP CFileEncoder::Uninitialize() {
  Reset();
  initialized_ = false;
  return S_OK;
}

void CFileEncoder::ResetState() {
  // CodePage, ThrowError and the version text deliberately survive.
  heap_.Destroy();
  encoding_ = 1;
  decoded_text_.clear();
  decrypted_text_.clear();
  encoded_text_.clear();
  encrypted_text_.clear();
  password_.clear();
  last_error_ = 0;
  state_ = 0;
}

STDMETHODIMP CFileEncoder::CompressBuffer(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) {
  return CompressData(InputData, OutputData, Result);
}

STDMETHODIMP CFileEncoder::ExpandBuffer(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) {
  return ExpandData(InputData, OutputData, Result);
}

STDMETHODIMP CFileEncoder::CompressData(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) {
  SetOutInteger(Result, 0);
  DataInput input;
  HRESULT hr = GetDataInput(InputData, code_page_, &input);
  if (hr != S_OK) return FAILED(hr) ? hr : S_OK;
  DataOutput output;
  hr = output.Prepare(OutputData);
  if (FAILED(hr)) return hr;
  // Four times the input: one- and two-byte inputs do not fit the shortest
  // zlib stream and fail, as they always have.
  DWORD capacity = output.Capacity(4 * input.length);
  ScratchBlock<BYTE> compressed(heap_, capacity + 1);
  if (!compressed) return kOutOfMemoryError;
  if (!DeflateBuffer(input.data, static_cast<int32_t>(input.length), compressed.get(),
                     reinterpret_cast<uint32_t*>(&capacity))) {
    SetOutInteger(Result, -1);
    return ReportError(0);
  }
  if (output.WantsBytes()) {
    SetOutInteger(Result, static_cast<LONG>(capacity));
    return output.StoreBytes(compressed.get(), capacity);
  }
  ScratchBlock<char> text(heap_, 4 * static_cast<size_t>(capacity));
  if (!text) return kOutOfMemoryError;
  const int32_t length = EncodeBuffer(compressed.get(), static_cast<int32_t>(capacity), text.get(),
                                      static_cast<int32_t>(4 * capacity), dataEncodeBase64);
  if (length < 0) return E_FAIL;
  SetOutInteger(Result, length);
  return output.StoreText(ToWide(text.get(), static_cast<size_t>(length), code_page_));
}

STDMETHODIMP CFileEncoder::ExpandData(VARIANT InputData, VARIANT* OutputData, VARIANT* Result) {
  SetOutInteger(Result, 0);
  DataInput input;
  HRESULT hr = GetDataInput(InputData, code_page_, &input);
  if (hr != S_OK) return FAILED(hr) ? hr : S_OK;
  DataOutput output;
  hr = output.Prepare(OutputData);
  if (FAILED(hr)) return hr;
  // Printable input is taken for Base64 text first, whatever the variant's
  // kind, and used as it stands when it does not decode.
  const BYTE* data = input.data;
  DWORD length = input.length;
  ScratchBlock<BYTE> decoded(heap_, input.length + 1);
  if (!decoded) return kOutOfMemoryError;
  if (AllPrintable(input.data, input.length)) {
    ScratchBlock<char> text(heap_, input.length + 1);
    if (!text) return kOutOfMemoryError;
    memcpy(text.get(), input.data, input.length);
    const int32_t count = DecodeBuffer(text.get(), decoded.get(),
                                       static_cast<int32_t>(input.length + 1), dataDecodeBase64);
    if (count >= 0) {
      data = decoded.get();
      length = static_cast<DWORD>(count);
    }
  }
  if (length == 0) return S_OK;
  DWORD capacity = output.Capacity(0);
  if (!output.HasArray()) {
    // Half as much again as the measured size, as earlier versions allowed.
    uint32_t measured = 0;
    if (!InflateBuffer(data, static_cast<int32_t>(length), nullptr, &measured)) {
      SetOutInteger(Result, -1);
      return ReportError(0);
    }
    capacity = measured + measured / 2;
  }
  ScratchBlock<BYTE> expanded(heap_, capacity + 1);
  if (!expanded) return kOutOfMemoryError;
  if (!InflateBuffer(data, static_cast<int32_t>(length), expanded.get(),
                     reinterpret_cast<uint32_t*>(&capacity))) {
    SetOutInteger(Result, -1);
    return ReportError(0);
  }
  SetOutInteger(Result, static_cast<LONG>(capacity));
  if (output.WantsBytes()) return output.StoreBytes(expanded.get(), capacity);
  return output.StoreText(
      ToWide(reinterpret_cast<const char*>(expanded.get()), capacity, code_page_));
}

STDMETHODIMP CFileEncoder::EncryptData(VARIANT InputData, VARIANT* OutputData, VARIANT Password,
                                       VARIANT* Result) {
  return CipherData(true, InputData, OutputData, Password, Result);
}

STDMETHODIMP CFileEncoder::DecryptData(VARIANT InputData, VARIANT* OutputData, VARIANT Password,
                                       VARIANT* Result) {
  return CipherData(false, InputData, OutputData, Password, Result);
}

HRESULT CFileEncoder::CipherData(bool encrypt, const VARIANT& InputData, VARIANT* OutputData,
                                 const VARIANT& Password, VARIANT* Result) {
  SetOutInteger(Result, 0);
  // Cipher text given as a string is UTF-8 whatever CodePage says.
  DataInput input;
  HRESULT hr = GetDataInput(InputData, encrypt ? code_page_ : CP_UTF8, &input);
  if (hr != S_OK) return FAILED(hr) ? hr : S_OK;
  DataOutput output;
  hr = output.Prepare(OutputData);
  if (FAILED(hr)) return hr;
  std::string password;
  bool present = false;
  hr = GetUtf8Argument(Password, &password, &present);
  if (FAILED(hr)) return hr;
  if (!present) password = ToMultiByte(password_.c_str(), wcslen(password_.c_str()), CP_UTF8);
  // Cipher text given as a string is the Base64 text that EncryptData and
  // EncryptedText write.
  const BYTE* data = input.data;
  DWORD length = input.length;
  ScratchBlock<BYTE> decoded(heap_, input.length + 1);
  if (!decoded) return kOutOfMemoryError;
  if (!encrypt && !input.text.empty()) {
    const int32_t count = DecodeBuffer(input.text.c_str(), decoded.get(),
                                       static_cast<int32_t>(input.length + 1), dataDecodeBase64);
    if (count > 0) {
      data = decoded.get();
      length = static_cast<DWORD>(count);
    }
  }
  DWORD capacity = output.Capacity(length + (encrypt ? 16 : 0));
  ScratchBlock<BYTE> result(heap_, capacity + 1);
  if (!result) return kOutOfMemoryError;
  const auto run = encrypt ? EncryptBuffer : DecryptBuffer;
  if (!run(password.c_str(), data, length, result.get(), reinterpret_cast<uint32_t*>(&capacity))) {
    return ReportError(0);
  }
  if (output.WantsBytes()) {
    SetOutInteger(Result, static_cast<LONG>(capacity));
    return output.StoreBytes(result.get(), capacity);
  }
  std::wstring text;
  if (encrypt) {
    text = CipherBytesToText(result.get(), capacity, heap_, &hr);
    if (FAILED(hr)) return hr;
  } else {
    text = ToWide(reinterpret_cast<const char*>(result.get()), capacity, code_page_);
  }
  SetOutInteger(Result, static_cast<LONG>(text.size()));
  return output.StoreText(text);
}

}  // namespace fe::ocx
