// FilterUnicodeWide / FilterUnicodeText and IsConfusableWide /
// IsConfusableText: a plain skeleton of a text, and whether it holds
// characters used to spoof one.
#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "platform/platform.h"
#include "text/code_points.h"
#include "text/unicode_classes.h"
#include "text/wide_front_end.h"

namespace fe::text {

namespace {

// Drops what cannot be decoded and what is not allowed; vertical tab and
// form feed read as a blank.
template <typename In, typename Out>
Out KeepAllowed(In text) {
  Out kept;
  kept.reserve(text.size());
  size_t at = 0;
  while (at < text.size()) {
    uint32_t c = NextCodePoint(text, at);
    if (c == kNoCodePoint || !IsAllowedCodePoint(c)) continue;
    if (c == 0x0B || c == 0x0C) c = ' ';
    AppendCodePoint(kept, c);
  }
  return kept;
}

// Compatibility decomposition by the platform; its size query may be an
// estimate, so a short buffer is grown and the call repeated.
bool Decompose(std::u16string& text) {
  int size = platform::NormalizeKd(text.data(), static_cast<int>(text.size()), nullptr, 0);
  while (size > 0) {
    std::u16string decomposed(static_cast<size_t>(size), u'\0');
    const int written =
        platform::NormalizeKd(text.data(), static_cast<int>(text.size()), decomposed.data(), size);
    if (written > 0) {
      decomposed.resize(static_cast<size_t>(written));
      text.swap(decomposed);
      return true;
    }
    if (LastError() != kErrorInsufficientBuffer) return false;
    size = std::max(-written, size * 2);
  }
  return false;
}

// Steps after the first pass: decomposition, look-alikes, marks, pictographs,
// and the white space at both ends.
bool Skeleton(std::u16string& text) {
  if (text.empty()) return true;
  if (!Decompose(text)) return false;
  std::u16string mapped;
  mapped.reserve(text.size());
  for (size_t at = 0; at < text.size();) {
    const uint32_t c = NextCodePoint(std::u16string_view(text), at);
    if (c != kNoCodePoint) AppendCodePoint(mapped, MapConfusable(c));
  }
  std::erase_if(mapped, [](char16_t unit) { return IsCombiningMark(unit); });
  text.clear();
  for (size_t at = 0; at < mapped.size();) {
    const uint32_t c = NextCodePoint(std::u16string_view(mapped), at);
    if (c != kNoCodePoint && !IsPictograph(c)) AppendCodePoint(text, c);
  }
  const auto first = std::find_if_not(text.begin(), text.end(), IsTrimSpace);
  const auto last = std::find_if_not(text.rbegin(), text.rend(), IsTrimSpace).base();
  text = first < last ? std::u16string(first, last) : std::u16string();
  return true;
}

// The result goes out only when it fits with its terminator; a null output
// or a capacity of 0 asks for its length.
template <typename Unit>
int32_t Deliver(std::basic_string_view<Unit> result, Unit* output, int32_t capacity) {
  const auto length = static_cast<int32_t>(result.size());
  if (output == nullptr || capacity == 0) return length;
  if (length >= capacity) return 0;
  std::copy(result.begin(), result.end(), output);
  output[length] = 0;
  return length;
}

template <typename In>
bool HoldsConfusable(In text) {
  size_t at = 0;
  while (at < text.size()) {
    const uint32_t c = NextCodePoint(text, at);
    if (c == kNoCodePoint || c < 0x80) continue;
    if (IsCombiningMark(c) || IsSpoofingCharacter(c) || MapConfusable(c) != c) return true;
  }
  return false;
}

}  // namespace

}  // namespace fe::text

extern "C" int32_t FilterUnicodeWide(const char16_t* input, char16_t* output,
                                     int32_t outputCapacity) {
  using namespace fe;
  SetLastError(0);
  if (input == nullptr || outputCapacity < 0) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  try {
    auto text =
        text::KeepAllowed<std::u16string_view, std::u16string>({input, text::WideLength(input)});
    if (!text::Skeleton(text)) return 0;
    return text::Deliver(std::u16string_view(text), output, outputCapacity);
  } catch (const std::bad_alloc&) {
    SetLastError(kErrorOutOfMemory);
    return 0;
  }
}

extern "C" int32_t FilterUnicodeText(const char* input, int32_t inputLength, char* output,
                                     int32_t outputCapacity) {
  using namespace fe;
  SetLastError(0);
  if (input == nullptr || outputCapacity < 0) {
    SetLastError(kErrorInvalidParameter);
    return 0;
  }
  const size_t length = text::TextLength(input, inputLength);
  try {
    // The first pass runs on the UTF-8 text; what it keeps is well-formed.
    const auto kept = text::KeepAllowed<std::string_view, std::string>({input, length});
    auto wide = text::ConvertCodePoints<std::u16string>(std::string_view(kept));
    if (!text::Skeleton(wide)) return 0;
    const auto result = text::ConvertCodePoints<std::string>(std::u16string_view(wide));
    return text::Deliver(std::string_view(result), output, outputCapacity);
  } catch (const std::bad_alloc&) {
    SetLastError(kErrorOutOfMemory);
    return 0;
  }
}

extern "C" int IsConfusableWide(const char16_t* input) {
  if (input == nullptr) return 0;
  return fe::text::HoldsConfusable(std::u16string_view(input, fe::text::WideLength(input))) ? 1 : 0;
}

extern "C" int IsConfusableText(const char* input, int32_t inputLength) {
  if (input == nullptr) return 0;
  const size_t length = fe::text::TextLength(input, inputLength);
  return fe::text::HoldsConfusable(std::string_view(input, length)) ? 1 : 0;
}
