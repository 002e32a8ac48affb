// Turning the variant arguments of IFileEncoder's methods into the strings,
// integers and byte buffers that the engine takes, and results back into
// variants. The rules are named as the methods cite them:
//   S  string argument (UTF-8 for the engine)
//   I  optional integer option
//   D  data input (string in the control's code page, or a byte array)
//   O  data output (string, or a byte array of the caller's or a new one)
//   R  the Result and Error out-arguments
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <string>

namespace fe::ocx {

// Argument failures of these rules are returned as the call result as they
// are: they never go through the error routine.
inline constexpr HRESULT kInvalidCall = static_cast<HRESULT>(0x800A0005);
inline constexpr HRESULT kOutOfMemoryError = static_cast<HRESULT>(0x800A0007);
inline constexpr HRESULT kInvalidCodePage = static_cast<HRESULT>(0x800A0141);
inline constexpr HRESULT kTypeMismatch = static_cast<HRESULT>(0x80020005);  // DISP_E_TYPEMISMATCH

// An omitted optional argument arrives empty or as the error variant.
bool IsMissing(const VARIANT& value);

// Follows a by-reference variant to the one it wraps.
const VARIANT& Dereference(const VARIANT& value);

// Rule R: the out-argument's own variant, or null when it was not given.
VARIANT* OutArgument(VARIANT* argument);
// Rule R: sets a given out-argument to the 32-bit integer `value`.
void SetOutInteger(VARIANT* argument, LONG value);
// Sets a given out-argument to a string (a by-reference string in place).
HRESULT SetOutText(VARIANT* argument, const std::wstring& text);

// UTF-16 and 8-bit text in a code page.
std::string ToMultiByte(const wchar_t* text, size_t length, UINT codePage);
std::wstring ToWide(const char* text, size_t length, UINT codePage);

// The byte array an argument holds: directly, by reference, or inside a
// by-reference variant; null for anything else.
SAFEARRAY* ByteArrayOf(const VARIANT& value);
// Whether an argument is a byte array, directly or by reference.
bool IsByteArray(const VARIANT& value);
// The string an argument holds, directly or by reference; false otherwise.
bool StringOf(const VARIANT& value, BSTR* text);
// The result variant, cleared; null when the caller gave none.
VARIANT* ClearedResult(VARIANT* Result);

// Rule S: *present is false for an omitted argument.
HRESULT GetUtf8Argument(const VARIANT& value, std::string* text, bool* present);

// Rule I: `fallback` for an omitted argument; negative 16-bit values are
// folded into their unsigned form.
HRESULT GetOptionalInteger(const VARIANT* value, DWORD fallback, DWORD* result);

// Rule D.
struct DataInput {
  const BYTE* data = nullptr;
  DWORD length = 0;
  std::string text;  // the converted string input
};
// S_FALSE: nothing to do (an empty string or a null array). An array of no
// elements is input of length 0.
HRESULT GetDataInput(const VARIANT& value, UINT codePage, DataInput* input);

// Rule O.
class DataOutput {
 public:
  HRESULT Prepare(VARIANT* argument);
  bool WantsBytes() const { return bytes_; }
  // The caller's array size (0 included) when the caller gave an array,
  // else the capacity the method chooses.
  DWORD Capacity(DWORD chosen) const { return has_array_ ? capacity_ : chosen; }
  bool HasArray() const { return has_array_; }
  HRESULT StoreBytes(const BYTE* data, DWORD length);
  HRESULT StoreText(const std::wstring& text);

 private:
  SAFEARRAY** Array() const;
  VARIANT* target_ = nullptr;
  bool bytes_ = false;
  bool has_array_ = false;
  DWORD capacity_ = 0;
};

}  // namespace fe::ocx
