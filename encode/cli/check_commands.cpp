// compare and digest: CompareFiles and the file digests.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "commands.h"
#include "failure.h"
#include "file_encoder.h"
#include "files.h"
#include "progress.h"

namespace fe::cli {

namespace {

void AddCompareCommand(CLI::App& app) {
  struct Options {
    std::string first, second, digest;
    bool contents = false, created = false, modified = false, md5 = false, sha1 = false,
         sha256 = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "compare", "Compare two files, or a file with a digest; exit status 0 when they match");
  command->add_option("file1", options->first, "the file to check")->required();
  command->add_option("file2", options->second, "the file to compare it with");
  command->add_option("--digest", options->digest,
                      "hexadecimal MD5, SHA-1 or SHA-256 digest the first file must have");
  command->add_flag("--contents", options->contents, "compare the contents byte for byte");
  command->add_flag("--created", options->created, "compare the creation times");
  command->add_flag("--modified", options->modified, "compare the last-write times");
  command->add_flag("--md5", options->md5, "the digest is MD5");
  command->add_flag("--sha1", options->sha1, "the digest is SHA-1");
  command->add_flag("--sha256", options->sha256, "the digest is SHA-256");
  command->footer(
      "Without options two files are compared by size and contents; with --digest alone the "
      "digest's length chooses the hash, and a second file is compared by size only.");
  command->callback([options] {
    const uint32_t flags =
        BitIf(options->contents, fileCompareContents) |
        BitIf(options->created, fileCompareCreated) |
        BitIf(options->modified, fileCompareModified) | BitIf(options->md5, fileCompareMD5) |
        BitIf(options->sha1, fileCompareSHA1) | BitIf(options->sha256, fileCompareSHA256);
    ReadPositionProgress progress(options->first, options->first);
    EngineSetLastError(0);
    if (!CompareFiles(options->first.c_str(),
                      options->second.empty() ? nullptr : options->second.c_str(), flags,
                      options->digest.empty() ? nullptr : options->digest.c_str())) {
      FailFromEngine(options->first, kCodeInvalidData);
    }
    progress.Complete();
  });
}

void AddDigestCommand(CLI::App& app) {
  struct Options {
    std::vector<std::string> files{"-"};
    std::string type = "sha256";
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "digest", "Print the MD5, SHA-1 or SHA-256 digest of files as \"DIGEST  NAME\" lines");
  command->add_option("files", options->files, "files to hash; - for standard input")
      ->capture_default_str();
  command->add_option("-t,--type", options->type, "md5, sha1 or sha256")
      ->check(CLI::IsMember({"md5", "sha1", "sha256"}))
      ->capture_default_str();
  command->callback([options] {
    auto* digest = options->type == "md5"    ? GetFileDigestMD5
                   : options->type == "sha1" ? GetFileDigestSHA1
                                             : GetFileDigestSHA256;
    // Like the other digest tools: every file is tried, and any failure
    // fails the command once the rest are printed.
    bool failed = false;
    for (const std::string& name : options->files) {
      try {
        InputFile input(name);
        ReadPositionProgress progress(input.path(), input.label());
        char text[72];
        EngineSetLastError(0);
        if (digest(input.path().c_str(), text) == 0)
          FailFromEngine(input.label(), kCodeInvalidData);
        progress.Complete();
        std::printf("%s  %s\n", text, name.c_str());
        std::fflush(stdout);
      } catch (const Failure& failure) {
        std::fprintf(stderr, "fileencoder: %s\n", failure.what());
        failed = true;
      }
    }
    if (failed) throw Failure("", kStatusFailed);  // each one is reported above
  });
}

}  // namespace

void AddCheckCommands(CLI::App& app) {
  AddCompareCommand(app);
  AddDigestCommand(app);
}

}  // namespace fe::cli
