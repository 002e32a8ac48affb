// Stand-in for FormatMessage(from module | from system): the control's own
// texts come from the same list that builds the Windows message table; the
// system texts are written here for the Win32 numbers the engine can leave.
// Their wording is ours, not Windows': callers must not compare it.
#include <algorithm>
#include <array>
#include <cstring>

#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"

namespace fe::platform {

namespace {

struct MessageEntry {
  uint32_t code;
  const char* text;
};

constexpr MessageEntry kControlMessages[] = {
#define FE_ERROR_MESSAGE(number, text) {FE_CONTROL_ERROR(number), text},
#define FE_ERROR_CODE(name, number, text) {FE_CONTROL_ERROR(number), text},
#include "file_encoder_errors.inc"
#undef FE_ERROR_CODE
#undef FE_ERROR_MESSAGE
};

constexpr MessageEntry kSystemMessages[] = {
    {kErrorFileNotFound, "File not found"},
    {kErrorPathNotFound, "Path not found"},
    {4, "Too many open files"},
    {kErrorAccessDenied, "Access denied"},
    {6, "Invalid handle"},
    {8, "Not enough memory for the command"},
    {kErrorInvalidData, "Invalid data"},
    {kErrorOutOfMemory, "Not enough memory for the operation"},
    {17, "Cannot move the file to another device"},
    {29, "Write fault on the device"},
    {30, "Read fault on the device"},
    {32, "The file is in use by another process"},
    {38, "End of file reached"},
    {80, "The file already exists"},
    {kErrorInvalidParameter, "Invalid parameter"},
    {112, "Not enough space on the disk"},
    {kErrorInsufficientBuffer, "The buffer is too small for the data"},
    {123, "Invalid file name, directory name or volume label syntax"},
    {145, "Directory not empty"},
    {183, "The file or directory already exists"},
    {206, "File name or extension too long"},
    {222, "File type blocked"},
    {232, "No data: the pipe is closing"},
    {267, "Invalid directory name"},
    {kErrorInvalidFlags, "Invalid flags"},
    {1006, "The open file is no longer valid"},
    {kErrorNoUnicodeTranslation, "No mapping for the Unicode character in the code page"},
    {1359, "Internal error"},
    {4306, "The medium is empty"},
    {6009, "The file is read only"},
};

constexpr bool IsSorted(const MessageEntry* first, const MessageEntry* last) {
  return std::is_sorted(
      first, last, [](const MessageEntry& a, const MessageEntry& b) { return a.code < b.code; });
}
static_assert(IsSorted(std::begin(kControlMessages), std::end(kControlMessages)));
static_assert(IsSorted(std::begin(kSystemMessages), std::end(kSystemMessages)));

const char* FindText(const MessageEntry* first, const MessageEntry* last, uint32_t code) {
  const MessageEntry* found = std::lower_bound(
      first, last, code, [](const MessageEntry& e, uint32_t c) { return e.code < c; });
  return found != last && found->code == code ? found->text : nullptr;
}

}  // namespace

int FormatMessageText(uint32_t code, char* buffer, int size) {
  const char* text = FindText(std::begin(kControlMessages), std::end(kControlMessages), code);
  if (text == nullptr)
    text = FindText(std::begin(kSystemMessages), std::end(kSystemMessages), code);
  if (text == nullptr || size < 1) return 0;
  const size_t length = std::strlen(text);
  if (length >= static_cast<size_t>(size)) return 0;
  std::memcpy(buffer, text, length + 1);
  return static_cast<int>(length);
}

}  // namespace fe::platform
