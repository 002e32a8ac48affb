// CFileEncoder: the file methods, with State and the OnProgress event
// around the engine call.
#include <windows.h>

#include "control.h"
#include "file_encoder.h"
#include "marshalling.h"

namespace fe::ocx {

namespace {

constexpr DISPID kOnProgress = 2;
constexpr DWORD kDeflate = 1;

// The low 32 bits of the input's size, learnt by opening it once.
bool ProbeSize(const std::string& name, DWORD* size) {
  const std::wstring wide = ToWide(name.c_str(), name.size(), CP_UTF8);
  const HANDLE file = ::CreateFileW(wide.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  *size = ::GetFileSize(file, nullptr);
  ::CloseHandle(file);
  return true;
}

}  // namespace

void CFileEncoder::RaiseProgress(const std::string& fileName, DWORD size, DWORD processed,
                                 SHORT percent) {
  const BSTR name = ::SysAllocString(ToWide(fileName.c_str(), fileName.size(), CP_UTF8).c_str());
  // Arguments go last first, as the dispatch convention has them.
  VARIANT arguments[4];
  for (VARIANT& argument : arguments)
    ::VariantInit(&argument);
  arguments[0].vt = VT_I2;
  arguments[0].iVal = percent;
  arguments[1].vt = VT_I4;
  arguments[1].lVal = static_cast<LONG>(processed);
  arguments[2].vt = VT_I4;
  arguments[2].lVal = static_cast<LONG>(size);
  arguments[3].vt = VT_BSTR;
  arguments[3].bstrVal = name;
  DISPPARAMS params = {arguments, nullptr, 4, 0};
  for (IDispatch* sink : events_.Snapshot()) {
    // A sink's failure or result is not the control's business.
    sink->Invoke(kOnProgress, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &params, nullptr,
                 nullptr, nullptr);
    sink->Release();
  }
  ::SysFreeString(name);
}

HRESULT CFileEncoder::RunFileOperation(const VARIANT& InputFile, const VARIANT& OutputFile,
                                       VARIANT* Error, bool progress,
                                       const std::function<int(const char*, const char*)>& run) {
  SetOutInteger(Error, 0);
  std::string input, output;
  bool inputGiven = false, outputGiven = false;
  HRESULT hr = GetUtf8Argument(InputFile, &input, &inputGiven);
  if (FAILED(hr)) return hr;
  hr = GetUtf8Argument(OutputFile, &output, &outputGiven);
  if (FAILED(hr)) return hr;
  const char* inputName = inputGiven ? input.c_str() : nullptr;
  const char* outputName = outputGiven ? output.c_str() : nullptr;
  DWORD size = 0;
  DWORD error = 0;
  if (progress && !ProbeSize(input, &size)) {
    error = ::GetLastError();
  } else {
    state_ = fileEncoderActive;
    if (progress) RaiseProgress(input, size, 0, 0);
    const bool done = run(inputName, outputName) != 0;
    // The reason is taken at once: event sinks may overwrite the slot.
    error = done ? 0 : ::GetLastError();
    if (progress) RaiseProgress(input, size, size, 100);
    state_ = fileEncoderIdle;
    if (done) return S_OK;
  }
  SetOutInteger(Error, static_cast<LONG>(error & 0xFFFF));
  ::SetLastError(error);
  return ReportError(error);
}

HRESULT CFileEncoder::CodeFile(bool encode, const VARIANT& InputFile, const VARIANT& OutputFile,
                               const VARIANT& Encoding, VARIANT* Error) {
  SetOutInteger(Error, 0);
  // An omitted encoding is the Encoding property's.
  DWORD flags = 0;
  const HRESULT hr = GetOptionalInteger(&Encoding, encoding_, &flags);
  if (FAILED(hr)) return hr;
  const auto run = encode ? EncodeFileByType : DecodeFileByType;
  return RunFileOperation(
      InputFile, OutputFile, Error, true,
      [run, flags](const char* in, const char* out) { return run(in, out, flags); });
}

STDMETHODIMP CFileEncoder::EncodeFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Encoding,
                                      VARIANT* Error) {
  return CodeFile(true, InputFile, OutputFile, Encoding, Error);
}

STDMETHODIMP CFileEncoder::DecodeFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Encoding,
                                      VARIANT* Error) {
  return CodeFile(false, InputFile, OutputFile, Encoding, Error);
}

STDMETHODIMP CFileEncoder::CompressFile(VARIANT InputFile, VARIANT OutputFile,
                                        VARIANT CompressionType, VARIANT CompressionLevel,
                                        VARIANT* Error) {
  SetOutInteger(Error, 0);
  DWORD type = 0, level = 0;
  HRESULT hr = GetOptionalInteger(&CompressionType, kDeflate, &type);
  if (FAILED(hr)) return hr;
  hr = GetOptionalInteger(&CompressionLevel, 0, &level);
  if (FAILED(hr)) return hr;
  return RunFileOperation(InputFile, OutputFile, Error, true,
                          [type, level](const char* in, const char* out) {
                            return CompressFileByType(in, out, type, level);
                          });
}

STDMETHODIMP CFileEncoder::ExpandFile(VARIANT InputFile, VARIANT OutputFile,
                                      VARIANT CompressionType, VARIANT* Error) {
  SetOutInteger(Error, 0);
  // Omitted means Deflate: detection only when 0 is passed explicitly.
  DWORD type = 0;
  const HRESULT hr = GetOptionalInteger(&CompressionType, kDeflate, &type);
  if (FAILED(hr)) return hr;
  return RunFileOperation(
      InputFile, OutputFile, Error, true,
      [type](const char* in, const char* out) { return ExpandFileByType(in, out, type); });
}

HRESULT CFileEncoder::CipherFile(bool encrypt, const VARIANT& InputFile, const VARIANT& OutputFile,
                                 const VARIANT& Password, VARIANT* Error) {
  SetOutInteger(Error, 0);
  std::string password;
  bool present = false;
  const HRESULT hr = GetUtf8Argument(Password, &password, &present);
  if (FAILED(hr)) return hr;
  // An omitted password is the Password property's.
  if (!present) password = ToMultiByte(password_.c_str(), password_.size(), CP_UTF8);
  const auto run = encrypt ? EncryptFileData : DecryptFileData;
  return RunFileOperation(
      InputFile, OutputFile, Error, false,
      [run, &password](const char* in, const char* out) { return run(password.c_str(), in, out); });
}

STDMETHODIMP CFileEncoder::EncryptFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Password,
                                       VARIANT* Error) {
  return CipherFile(true, InputFile, OutputFile, Password, Error);
}

STDMETHODIMP CFileEncoder::DecryptFile(VARIANT InputFile, VARIANT OutputFile, VARIANT Password,
                                       VARIANT* Error) {
  return CipherFile(false, InputFile, OutputFile, Password, Error);
}

STDMETHODIMP CFileEncoder::CompareFile(VARIANT File1, VARIANT File2, VARIANT Options,
                                       VARIANT Digest, VARIANT* Error) {
  SetOutInteger(Error, 0);
  std::string first, second, digest;
  bool firstGiven = false, secondGiven = false, digestGiven = false;
  HRESULT hr = GetUtf8Argument(File1, &first, &firstGiven);
  if (FAILED(hr)) return hr;
  hr = GetUtf8Argument(File2, &second, &secondGiven);
  if (FAILED(hr)) return hr;
  DWORD options = 0;
  hr = GetOptionalInteger(&Options, 0, &options);
  if (FAILED(hr)) return hr;
  hr = GetUtf8Argument(Digest, &digest, &digestGiven);
  if (FAILED(hr)) return hr;
  if (CompareFiles(firstGiven ? first.c_str() : nullptr, secondGiven ? second.c_str() : nullptr,
                   options, digestGiven ? digest.c_str() : nullptr)) {
    return S_OK;
  }
  // Error carries the first check that failed.
  const DWORD error = ::GetLastError();
  SetOutInteger(Error, static_cast<LONG>(error & 0xFFFF));
  return ReportError(error);
}

}  // namespace fe::ocx
