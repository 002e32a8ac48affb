#include "password.h"

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>

#include "failure.h"

namespace fe::cli {

namespace {

// Reads one line from the terminal with echo turned off.
std::string AskTerminal(const char* prompt) {
  const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) {
    FailUsage("no password given and no terminal to ask: use --password-file or --password-env");
  }
  termios saved;
  const bool quiet = tcgetattr(terminal, &saved) == 0;
  if (quiet) {
    termios silent = saved;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(terminal, TCSAFLUSH, &silent);
  }
  (void)!write(terminal, prompt, std::char_traits<char>::length(prompt));
  std::string line;
  char c;
  while (read(terminal, &c, 1) == 1 && c != '\n')
    line += c;
  if (quiet) tcsetattr(terminal, TCSAFLUSH, &saved);
  (void)!write(terminal, "\n", 1);
  close(terminal);
  return line;
}

std::string FirstLine(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) FailFromSystem(name);
  std::string line;
  std::getline(file, line);
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace

std::optional<std::string> ObtainPassword(const PasswordSource& source, bool confirm) {
  const int given =
      (source.file.empty() ? 0 : 1) + (source.environment.empty() ? 0 : 1) + (source.none ? 1 : 0);
  if (given > 1) FailUsage("give only one of --password-file, --password-env and --no-password");
  if (source.none) return std::nullopt;
  if (!source.file.empty()) return FirstLine(source.file);
  if (!source.environment.empty()) {
    const char* value = std::getenv(source.environment.c_str());
    if (value == nullptr) FailUsage("the variable " + source.environment + " is not set");
    return std::string(value);
  }
  std::string password = AskTerminal("Password: ");
  if (confirm && AskTerminal("Password again: ") != password) {
    FailUsage("the two passwords differ");
  }
  return password;
}

}  // namespace fe::cli
