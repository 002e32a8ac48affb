// fileencoder: the engine's operations on the command line, through its
// public C interface only.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <map>

#include "cleanup.h"
#include "commands.h"
#include "failure.h"
#include "files.h"
#include "progress.h"

#ifndef FE_VERSION
#error "FE_VERSION must name the project version"
#endif

int main(int argc, char** argv) {
  using namespace fe::cli;
  RememberCreationMask();
  RemoveTemporariesOnSignals();

  CLI::App app{"Encode, decode, compress, encrypt, compare and filter files and data.",
               "fileencoder"};
  app.set_version_flag("-V,--version", "fileencoder " FE_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  app.footer("Run \"fileencoder <command> --help\" for the options of a command.");
  app.add_option_function<std::string>(
         "--progress",
         [](const std::string& chosen) {
           const std::map<std::string, ProgressMode> modes = {{"auto", ProgressMode::kAuto},
                                                              {"always", ProgressMode::kAlways},
                                                              {"never", ProgressMode::kNever}};
           SetProgressMode(modes.at(chosen));
         },
         "progress bar on standard error for long file operations: auto (when it is a "
         "terminal, the default), always or never")
      ->check(CLI::IsMember({"auto", "always", "never"}));

  AddCodingCommands(app);
  AddFileCommands(app);
  AddCheckCommands(app);
  AddIdentifierCommands(app);
  AddTextFilterCommands(app);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int status = app.exit(error);
    return status == 0 ? 0 : kStatusUsage;
  } catch (const Failure& failure) {
    if (failure.what()[0] != '\0') std::fprintf(stderr, "fileencoder: %s\n", failure.what());
    return failure.status();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "fileencoder: %s\n", error.what());
    return kStatusFailed;
  }
  return 0;
}
