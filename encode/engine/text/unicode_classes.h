// The character classes and look-alike mapping of the Unicode filter.
#pragma once

#include <cstdint>

namespace fe::text {

// Kept by the filter's first pass: not a control, private-use, non-character,
// bidirectional override or byte-order mark (TAB is removed too).
bool IsAllowedCodePoint(uint32_t c);
// Accents and other combining marks taken off after decomposition.
bool IsCombiningMark(uint32_t c);
// Emoji and other pictographs, variation selectors and the zero-width joiner.
bool IsPictograph(uint32_t c);
// White space trimmed from both ends of the result.
bool IsTrimSpace(char16_t unit);
// Invisible, look-alike and formatting characters used to spoof text.
bool IsSpoofingCharacter(uint32_t c);
// The ASCII look-alike of c (U+212B gives U+00C5), else c itself.
uint32_t MapConfusable(uint32_t c);

}  // namespace fe::text
