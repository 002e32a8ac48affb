// UTF-8 and UTF-7 conversions of the Linux code-page stand-in. Each returns
// false when the input cannot be converted under the given strictness; the
// writer records an output overflow.
#pragma once

#include <string_view>

#include "platform/posix/bounded_writer.h"

namespace fe::platform {

bool Utf16ToUtf8(std::u16string_view text, bool failOnInvalid, BoundedWriter<char>& out);
bool Utf8ToUtf16(std::string_view text, bool failOnInvalid, BoundedWriter<char16_t>& out);

void Utf16ToUtf7(std::u16string_view text, BoundedWriter<char>& out);
void Utf7ToUtf16(std::string_view text, BoundedWriter<char16_t>& out);

}  // namespace fe::platform
