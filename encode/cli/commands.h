// The subcommands: each file adds its own to the application.
#pragma once

#include <cstdint>

namespace CLI {
class App;
}

namespace fe::cli {

void AddCodingCommands(CLI::App& app);      // encode, decode
void AddFileCommands(CLI::App& app);        // compress, expand, encrypt, decrypt, convert
void AddCheckCommands(CLI::App& app);       // compare, digest
void AddIdentifierCommands(CLI::App& app);  // token, uuid
void AddTextFilterCommands(CLI::App& app);  // filter-html, filter-markdown, filter-unicode

// An option bit of the engine when its flag was given, else 0.
constexpr uint32_t BitIf(bool given, uint32_t bit) {
  return given ? bit : 0u;
}

}  // namespace fe::cli
