// Which links the HTML filter shows, and how. Hosts are checked so that a
// mail filtered to text never shows a local or numbered-port address, and the
// user part of an address is cut so that no password reaches the text.
#include "text/html_links.h"

#include "text/ascii.h"

namespace fe::text {

namespace {

bool IsPublicHost(std::string_view host) {
  if (host.empty() || host[0] == '-' || host[0] == '.') return false;
  bool dotted = false;
  for (size_t i = 0; i < host.size(); ++i) {
    const char c = host[i];
    if (c == '.' || c == '-') {
      if (c == '.') dotted = true;
      if (i + 1 == host.size() || host[i + 1] == '.' || host[i - 1] == '.') return false;
    } else if (!IsAlnum(static_cast<uint8_t>(c))) {
      return false;  // a port, "_" or anything else
    }
  }
  return dotted && !StartsWithIgnoringCase(host, "localhost");
}

std::optional<std::string> WebAddress(std::string_view href) {
  const size_t slashes = href.find("://");
  if (slashes == std::string_view::npos) return std::nullopt;
  const size_t start = slashes + 3;
  if (start == href.size() || href[start] == '@' || href[start] == '/') return std::nullopt;
  std::string address(href);
  size_t end = address.find('/', start);
  if (end == std::string::npos) end = address.size();
  const size_t at = address.rfind('@', end - 1);
  if (at != std::string::npos && at >= start) {
    address.erase(start, at + 1 - start);
    end -= at + 1 - start;
  }
  if (!IsPublicHost(std::string_view(address).substr(start, end - start))) return std::nullopt;
  return address;
}

std::optional<std::string> MailAddress(std::string_view rest) {
  rest = rest.substr(0, rest.find('?'));
  if (rest.empty() || rest.find('@') == std::string_view::npos) return std::nullopt;
  return std::string(rest);
}

std::optional<std::string> PhoneNumber(std::string_view rest) {
  while (!rest.empty() && rest.front() == ' ')
    rest.remove_prefix(1);
  for (char c : rest) {
    if (!IsDigit(static_cast<uint8_t>(c)) &&
        std::string_view("+-()[]").find(c) == std::string_view::npos) {
      return std::nullopt;
    }
  }
  return std::string(rest);
}

}  // namespace

std::optional<std::string> ShownLinkAddress(std::string_view href) {
  while (!href.empty() && IsSpace(static_cast<uint8_t>(href.front())))
    href.remove_prefix(1);
  if (StartsWithIgnoringCase(href, "http:") || StartsWithIgnoringCase(href, "https:")) {
    return WebAddress(href);
  }
  if (StartsWithIgnoringCase(href, "mailto:")) return MailAddress(href.substr(7));
  if (StartsWithIgnoringCase(href, "tel:")) return PhoneNumber(href.substr(4));
  return std::string(href);
}

}  // namespace fe::text
