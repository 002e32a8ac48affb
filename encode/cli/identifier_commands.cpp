// token and uuid: random identifiers.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <map>
#include <memory>

#include "commands.h"
#include "failure.h"
#include "file_encoder.h"

namespace fe::cli {

namespace {

void AddTokenCommand(CLI::App& app) {
  struct Options {
    int32_t bits = 128;
    std::string encoding = "base58";
    int count = 1;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("token", "Print random tokens");
  command
      ->add_option("-b,--bits", options->bits,
                   "strength in bits, rounded up to a power of two from 64 to 4096")
      ->check(CLI::Range(1, 4096))
      ->capture_default_str();
  command
      ->add_option("-e,--encoding", options->encoding,
                   "base58, base64 or base32 (both without padding; base32 in lowercase), "
                   "or base85")
      ->check(CLI::IsMember({"base58", "base64", "base32", "base85"}))
      ->capture_default_str();
  command->add_option("-n,--count", options->count, "how many tokens")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command->callback([options] {
    const std::map<std::string, int32_t> types = {{"base58", dataEncodeBase58},
                                                  {"base64", dataEncodeBase64},
                                                  {"base32", dataEncodeBase32},
                                                  {"base85", dataEncodeBase85}};
    for (int i = 0; i < options->count; ++i) {
      char token[1100];
      EngineSetLastError(0);
      if (CreateTokenText(options->bits, types.at(options->encoding), token) == 0) {
        FailFromEngine("token", kCodeInvalidParameter);
      }
      std::printf("%s\n", token);
    }
  });
}

void AddUuidCommand(CLI::App& app) {
  struct Options {
    int version = 7;
    int64_t custom = 0;
    int count = 1;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("uuid", "Print version 7 or version 8 UUIDs");
  command
      ->add_option("-v,--version", options->version,
                   "7: time-ordered; 8: random, with --custom as its first 32 bits")
      ->check(CLI::IsMember({7, 8}))
      ->capture_default_str();
  command
      ->add_option("--custom", options->custom,
                   "version 8: the first 32 bits (0 to 4294967295; 0 means random)")
      ->check(CLI::Range(int64_t{0}, int64_t{0xFFFFFFFF}));
  command->add_option("-n,--count", options->count, "how many UUIDs")
      ->check(CLI::Range(1, 1000000))
      ->capture_default_str();
  command->callback([options] {
    if (options->custom != 0 && options->version != 8) FailUsage("--custom needs --version 8");
    for (int i = 0; i < options->count; ++i) {
      EncoderUuid record;
      EngineSetLastError(0);
      const int made =
          options->version == 7
              ? CreateUuid7Record(&record)
              : CreateUuid8Record(&record,
                                  static_cast<int32_t>(static_cast<uint32_t>(options->custom)));
      if (!made) FailFromEngine("uuid", kCodeInvalidParameter);
      char text[40];
      FormatUuid(&record, text);
      std::printf("%s\n", text);
    }
  });
}

}  // namespace

void AddIdentifierCommands(CLI::App& app) {
  AddTokenCommand(app);
  AddUuidCommand(app);
}

}  // namespace fe::cli
