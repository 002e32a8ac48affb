// Where encrypt and decrypt take their password from: never the command
// line itself, which other users can read from the process list.
#pragma once

#include <optional>
#include <string>

namespace fe::cli {

struct PasswordSource {
  std::string file;         // --password-file: its first line
  std::string environment;  // --password-env: the variable's value
  bool none = false;        // --no-password: the key from the identifier alone
};

// The password, or nothing for --no-password. Without a source the
// terminal is asked, without echo (twice when `confirm` is set).
std::optional<std::string> ObtainPassword(const PasswordSource& source, bool confirm);

}  // namespace fe::cli
