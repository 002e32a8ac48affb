// Stand-in for the Windows code pages: ICU converters, found by the names ICU
// gives Windows and IBM code pages. A code page is valid when ICU opens it.
// Unmappable characters become "?" as on Windows (ICU would use SUB); bytes
// that do not decode become U+FFFD unless the caller asks for strictness.
#include "platform/posix/icu_code_page.h"

#include <unicode/ucnv.h>

#include <cstdio>
#include <memory>

#include "errors/system_errors.h"
#include "platform/platform.h"

namespace fe::platform {

namespace {

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

// Code pages whose ICU name is not "windows-N", "ibm-N" or "cpN".
struct Named {
  uint32_t codePage;
  const char* name;
};
constexpr Named kNamed[] = {
    {20127, "US-ASCII"},    {20866, "KOI8-R"},      {21866, "KOI8-U"},      {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},  {28593, "ISO-8859-3"},  {28594, "ISO-8859-4"},  {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},  {28597, "ISO-8859-7"},  {28598, "ISO-8859-8"},  {28599, "ISO-8859-9"},
    {28603, "ISO-8859-13"}, {28605, "ISO-8859-15"}, {50220, "ISO-2022-JP"}, {51932, "EUC-JP"},
    {51949, "EUC-KR"},      {54936, "GB18030"},     {12000, "UTF-32LE"},    {12001, "UTF-32BE"},
};

Converter Open(uint32_t codePage) {
  if (codePage == 0 || codePage == kCodePageUtf7 || codePage == kCodePageUtf8) return nullptr;
  for (const Named& named : kNamed) {
    if (named.codePage == codePage) {
      UErrorCode status = U_ZERO_ERROR;
      Converter converter(ucnv_open(named.name, &status));
      return U_SUCCESS(status) ? std::move(converter) : nullptr;
    }
  }
  for (const char* pattern : {"windows-%u", "ibm-%u", "cp%u"}) {
    char name[32];
    std::snprintf(name, sizeof name, pattern, codePage);
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(name, &status));
    // "windows-N" is ambiguous in ICU's alias table only because IBM
    // tables carry the same alias; the Windows table is what it opens.
    if (U_SUCCESS(status)) return converter;
  }
  return nullptr;
}

int Finish(UErrorCode status, int32_t length, int outputSize) {
  if (status == U_BUFFER_OVERFLOW_ERROR && outputSize == 0) return length;
  if (status == U_BUFFER_OVERFLOW_ERROR) {
    SetLastErrorCode(kErrorInsufficientBuffer);
    return 0;
  }
  if (U_FAILURE(status)) {
    SetLastErrorCode(kErrorNoUnicodeTranslation);
    return 0;
  }
  return length;
}

}  // namespace

bool IsValidCodePage(uint32_t codePage) {
  return codePage == kCodePageUtf7 || codePage == kCodePageUtf8 || Open(codePage) != nullptr;
}

// Linux locales are UTF-8, so UTF-8 stands for the ANSI code page.
uint32_t AnsiCodePage() {
  return kCodePageUtf8;
}

bool IsLeadByte(uint32_t codePage, uint8_t byte) {
  const Converter converter = Open(codePage);
  if (!converter || ucnv_getMaxCharSize(converter.get()) < 2) return false;
  // A lead byte leaves the converter waiting for more.
  UErrorCode status = U_ZERO_ERROR;
  const char* source = reinterpret_cast<const char*>(&byte);
  UChar unit[4];
  UChar* target = unit;
  ucnv_toUnicode(converter.get(), &target, unit + 4, &source, source + 1, nullptr, false, &status);
  return U_SUCCESS(status) && target == unit && ucnv_toUCountPending(converter.get(), &status) > 0;
}

int IcuToWide(uint32_t codePage, bool strict, const char* text, int length, char16_t* output,
              int outputSize) {
  const Converter converter = Open(codePage);
  if (!converter) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  UErrorCode status = U_ZERO_ERROR;
  if (strict) {
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
  }
  const int32_t units = ucnv_toUChars(converter.get(), output, outputSize, text, length, &status);
  // ucnv_toUChars terminates when it can; the terminator is not counted.
  if (status == U_STRING_NOT_TERMINATED_WARNING) status = U_ZERO_ERROR;
  return Finish(status, units, outputSize);
}

int IcuFromWide(uint32_t codePage, const char16_t* text, int length, char* output, int outputSize,
                bool* usedDefault) {
  const Converter converter = Open(codePage);
  if (!converter) {
    SetLastErrorCode(kErrorInvalidParameter);
    return 0;
  }
  // First without substitution: a stop tells that a default is needed.
  UErrorCode status = U_ZERO_ERROR;
  ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
  int32_t bytes = ucnv_fromUChars(converter.get(), output, outputSize, text, length, &status);
  *usedDefault = status == U_INVALID_CHAR_FOUND || status == U_ILLEGAL_CHAR_FOUND;
  if (*usedDefault) {
    status = U_ZERO_ERROR;
    ucnv_reset(converter.get());
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_SUBSTITUTE, nullptr, nullptr,
                          nullptr, &status);
    ucnv_setSubstChars(converter.get(), "?", 1, &status);
    bytes = ucnv_fromUChars(converter.get(), output, outputSize, text, length, &status);
  }
  if (status == U_STRING_NOT_TERMINATED_WARNING) status = U_ZERO_ERROR;
  return Finish(status, bytes, outputSize);
}

}  // namespace fe::platform
