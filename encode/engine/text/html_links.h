// The address the HTML filter shows for a link.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fe::text {

// Checks an "href" value: web addresses need a plausible public host and
// lose any user name and password; "mailto:" and "tel:" give the bare
// address or number; anything else comes back unchanged. Nothing when the
// link is refused.
std::optional<std::string> ShownLinkAddress(std::string_view href);

}  // namespace fe::text
