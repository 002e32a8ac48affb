// compress, expand, encrypt, decrypt and convert: engine operations from one
// file to another, in place, or between standard input and output through
// temporary files.
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>
#include <map>
#include <memory>
#include <optional>

#include "commands.h"
#include "failure.h"
#include "file_encoder.h"
#include "files.h"
#include "password.h"
#include "progress.h"

namespace fe::cli {

namespace {

struct FileOptions {
  std::string input = "-";
  std::string output = "-";
  bool inPlace = false;
};

void AddFileArguments(CLI::App& command, FileOptions& options) {
  command.add_option("input", options.input, "file to read; - for standard input")
      ->capture_default_str();
  command.add_option("-o,--output", options.output, "file to write; - for standard output")
      ->capture_default_str();
  command.add_flag("-i,--in-place", options.inPlace,
                   "replace the input file with the result, only once the result is whole");
}

// Runs `operation(input path, output path or null for in place)` with a
// progress bar that follows the input, then delivers standard output.
template <typename Operation>
void RunFileOperation(const FileOptions& options, const std::string& stagedName,
                      Operation operation) {
  if (options.inPlace) {
    if (IsStandardStream(options.input)) FailUsage("--in-place needs an input file");
    if (options.output != "-") FailUsage("give either --in-place or --output");
  }
  InputFile input(options.input, stagedName);
  std::optional<PendingOutput> output;
  if (!options.inPlace) output.emplace(options.output);
  ReadPositionProgress progress(input.path(), input.label());
  EngineSetLastError(0);
  if (!operation(input.path().c_str(), output ? output->path().c_str() : nullptr)) {
    FailFromEngine(input.label(), kCodeInvalidData);
  }
  progress.Complete();
  if (output) output->Commit();
}

uint32_t CompressionType(const std::string& name, bool detect) {
  std::map<std::string, uint32_t> types = {{"deflate", fileCompressionDeflate},
                                           {"zlib", fileCompressionDeflate},
                                           {"bzip2", fileCompressionBzip2},
                                           {"lzma", fileCompressionLzma}};
  if (detect) types["auto"] = fileCompressionUnknown;
  const auto found = types.find(name);
  if (found == types.end()) FailUsage("unknown compression type \"" + name + "\"");
  return found->second;
}

void AddCompressionCommands(CLI::App& app) {
  struct Options : FileOptions {
    std::string type;
    uint32_t level = 0;
  };
  auto compress = std::make_shared<Options>();
  compress->type = "deflate";
  CLI::App* command = app.add_subcommand("compress", "Compress a file (Deflate, bzip2 or LZMA)");
  AddFileArguments(*command, *compress);
  command->add_option("-t,--type", compress->type, "deflate (a zlib stream), bzip2 or lzma")
      ->capture_default_str();
  command->add_option("-l,--level", compress->level, "1 (fastest) to 9 (smallest); 0 the default")
      ->check(CLI::Range(0, 9))
      ->capture_default_str();
  command->callback([compress] {
    const uint32_t type = CompressionType(compress->type, false);
    RunFileOperation(*compress, "stdin", [&](const char* input, const char* output) {
      return CompressFileByType(input, output, type, compress->level);
    });
  });

  auto expand = std::make_shared<Options>();
  expand->type = "auto";
  command = app.add_subcommand("expand", "Expand a compressed file");
  AddFileArguments(*command, *expand);
  command
      ->add_option("-t,--type", expand->type,
                   "auto (from the first two bytes), deflate, bzip2 or lzma")
      ->capture_default_str();
  command->callback([expand] {
    const uint32_t type = CompressionType(expand->type, true);
    RunFileOperation(*expand, "stdin", [&](const char* input, const char* output) {
      return ExpandFileByType(input, output, type);
    });
  });
}

void AddCipherCommand(CLI::App& app, const char* name, const char* description, bool encrypt) {
  struct Options : FileOptions {
    PasswordSource password;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(name, description);
  AddFileArguments(*command, *options);
  command->add_option("--password-file", options->password.file,
                      "read the password from the first line of this file");
  command->add_option("--password-env", options->password.environment,
                      "read the password from this environment variable");
  command->add_flag("--no-password", options->password.none, "use the key made without a password");
  command->footer(
      "Without a password option the password is asked on the terminal, without echo. "
      "AES-256-CBC, zero IV, PKCS#7 padding; the key is SHA-256 of the product's key "
      "identifier text followed by the password (at most 215 characters), with no salt and "
      "no integrity check.");
  command->callback([options, encrypt] {
    const std::optional<std::string> password = ObtainPassword(options->password, encrypt);
    const char* key = password ? password->c_str() : nullptr;
    RunFileOperation(*options, "stdin", [&](const char* input, const char* output) {
      // In place: the engine takes the input as its own output.
      if (output == nullptr) output = input;
      return encrypt ? EncryptFileData(key, input, output) : DecryptFileData(key, input, output);
    });
  });
}

// A code page by number or by one of the usual names.
uint32_t CodePage(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  static const std::map<std::string, uint32_t> kNames = {
      {"utf-8", 65001},   {"utf8", 65001},      {"utf-7", 65000},   {"utf7", 65000},
      {"utf-16le", 1200}, {"utf-16", 1200},     {"utf-16be", 1201}, {"ansi", 0},
      {"latin1", 28591},  {"iso-8859-1", 28591}};
  if (const auto found = kNames.find(name); found != kNames.end()) return found->second;
  for (const char* prefix : {"windows-", "cp"}) {
    if (name.rfind(prefix, 0) == 0) name.erase(0, std::char_traits<char>::length(prefix));
  }
  if (name.empty() || name.find_first_not_of("0123456789") != std::string::npos ||
      name.size() > 5) {
    FailUsage("unknown code page \"" + name + "\"");
  }
  return static_cast<uint32_t>(std::stoul(name));
}

void AddConvertCommand(CLI::App& app) {
  struct Options : FileOptions {
    std::string from = "ansi";
    std::string to = "utf-8";
    std::string lineEnds;
    bool detect = false, preserve = false, bom = false, noBom = false, strict = false,
         validate = false;
  };
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("convert", "Re-encode a text file from one code page to another");
  AddFileArguments(*command, *options);
  command
      ->add_option("-f,--from", options->from,
                   "source code page: a number, cpNNN, windows-NNN, utf-8, utf-7, utf-16le, "
                   "utf-16be, latin1 or ansi")
      ->capture_default_str();
  command->add_option("-t,--to", options->to, "destination code page, named the same way")
      ->capture_default_str();
  command->add_flag("--detect", options->detect,
                    "detect the source from a byte-order mark, then from the content");
  command->add_option("--line-ends", options->lineEnds, "rewrite line ends: crlf, lf or cr")
      ->check(CLI::IsMember({"crlf", "lf", "cr"}));
  command->add_flag("--preserve", options->preserve, "keep the input's times and attributes");
  command->add_flag("--bom", options->bom, "write a byte-order mark before UTF-8 output");
  command->add_flag("--no-bom", options->noBom, "write no byte-order mark before UTF-16 output");
  command->add_flag("--strict", options->strict,
                    "refuse invalid or unmappable characters and failed detection");
  command->add_flag("--validate", options->validate,
                    "only check that the file converts; nothing is written");
  command->callback([options] {
    const uint32_t from = CodePage(options->from);
    const uint32_t to = CodePage(options->to);
    uint32_t flags =
        BitIf(options->detect, fileConvertUnicode) | BitIf(options->preserve, fileConvertPreserve) |
        BitIf(options->bom, fileConvertUtf8Bom) | BitIf(options->noBom, fileConvertNoBom) |
        BitIf(options->strict, fileConvertStrict) | BitIf(options->validate, fileCOnvertValidate);
    if (options->lineEnds == "crlf") flags |= FE_CONVERT_LINE_END_CRLF;
    if (options->lineEnds == "lf") flags |= FE_CONVERT_LINE_END_LF;
    if (options->lineEnds == "cr") flags |= FE_CONVERT_LINE_END_CR;
    if (options->validate) {
      InputFile input(options->input);
      EngineSetLastError(0);
      if (!ConvertTextFile(input.path().c_str(), from, input.path().c_str(), to, flags)) {
        FailFromEngine(input.label(), kCodeInvalidData);
      }
      return;
    }
    RunFileOperation(*options, "stdin", [&](const char* input, const char* output) {
      return ConvertTextFile(input, from, output == nullptr ? input : output, to, flags);
    });
  });
}

}  // namespace

void AddFileCommands(CLI::App& app) {
  AddCompressionCommands(app);
  AddCipherCommand(app, "encrypt", "Encrypt a file with a password (AES-256)", true);
  AddCipherCommand(app, "decrypt", "Decrypt a file encrypted with a password", false);
  AddConvertCommand(app);
}

}  // namespace fe::cli
