// filter-html, filter-markdown and filter-unicode over UTF-8 text.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "commands.h"
#include "failure.h"
#include "file_encoder.h"
#include "files.h"

namespace fe::cli {

namespace {

struct FilterOptions {
  std::string input = "-";
  std::string output = "-";
  bool confusable = false;
};

using TextFilter = int32_t (*)(const char*, int32_t, char*, int32_t);

// Asks the filter for the result's length, then runs it into a buffer of
// that size and its terminator.
std::string RunFilter(TextFilter filter, const std::vector<uint8_t>& input,
                      const std::string& label) {
  if (input.size() > INT32_MAX) FailWithCode(label, kCodeNotEnoughMemory);
  const auto* text = reinterpret_cast<const char*>(input.data());
  const auto length = static_cast<int32_t>(input.size());
  EngineSetLastError(0);
  const int32_t needed = filter(text, length, nullptr, 0);
  if (needed < 0 || EngineGetLastError() != 0) FailFromEngine(label, kCodeInvalidData);
  std::string result(static_cast<size_t>(needed) + 1, '\0');
  EngineSetLastError(0);
  const int32_t written = filter(text, length, result.data(), needed + 1);
  if (written < 0 || EngineGetLastError() != 0) FailFromEngine(label, kCodeInvalidData);
  result.resize(static_cast<size_t>(needed));
  return result;
}

void AddFilterCommand(CLI::App& app, const char* name, const char* description, TextFilter filter,
                      bool unicode) {
  auto options = std::make_shared<FilterOptions>();
  CLI::App* command = app.add_subcommand(name, description);
  command->add_option("input", options->input, "UTF-8 text to read; - for standard input")
      ->capture_default_str();
  command->add_option("-o,--output", options->output, "file to write; - for standard output")
      ->capture_default_str();
  if (unicode) {
    command->add_flag("--is-confusable", options->confusable,
                      "print true when the text holds a character used to spoof text, "
                      "else false");
  }
  command->callback([options, filter] {
    const std::vector<uint8_t> input = ReadWhole(options->input);
    const std::string label = InputLabel(options->input);
    if (options->confusable) {
      const bool found = IsConfusableText(reinterpret_cast<const char*>(input.data()),
                                          static_cast<int32_t>(input.size())) != 0;
      const std::string answer = found ? "true\n" : "false\n";
      WriteResult(options->output, answer.data(), answer.size());
      return;
    }
    // An empty text filters to an empty text.
    const std::string result = input.empty() ? std::string() : RunFilter(filter, input, label);
    WriteResult(options->output, result.data(), result.size());
  });
}

}  // namespace

void AddTextFilterCommands(CLI::App& app) {
  AddFilterCommand(app, "filter-html", "HTML to plain text with CR LF line ends", FilterHtmlText,
                   false);
  AddFilterCommand(app, "filter-markdown", "Markdown to plain text with LF line ends",
                   FilterMarkdownText, false);
  AddFilterCommand(app, "filter-unicode",
                   "A plain ASCII skeleton of a text: look-alikes replaced, invisible and "
                   "decorative characters removed",
                   FilterUnicodeText, true);
}

}  // namespace fe::cli
