// Character references of the HTML filter: "&name;" and "&#number;".
#pragma once

#include <string>
#include <string_view>

namespace fe::text {

// The replacement of a reference given without "&" and ";" as UTF-8 bytes
// in `bytes`; false when the reference is refused or unknown.
bool DecodeHtmlReference(std::string_view reference, std::string* bytes);

}  // namespace fe::text
