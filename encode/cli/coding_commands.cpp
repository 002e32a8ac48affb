// encode and decode: the data forms through EncodeBuffer/DecodeBuffer (Base64
// streamed through the chunk coders), the file forms through
// EncodeFileByType/DecodeFileByType.
#include <fcntl.h>
#include <unistd.h>
#include <CLI/CLI.hpp>

#include <cerrno>
#include <climits>
#include <cstring>
#include <memory>

#include "commands.h"
#include "encodings.h"
#include "failure.h"
#include "file_encoder.h"
#include "files.h"
#include "progress.h"

namespace fe::cli {

namespace {

constexpr size_t kBlock = 1 << 20;

struct CodingOptions {
  std::string encoding = "base64";
  std::string input = "-";
  std::string output = "-";
  std::string name;  // the name uuencode and yEnc record for standard input
  bool compress = false;
  bool wrap = false;
  bool data = false;
};

int OpenForReading(const std::string& name) {
  if (IsStandardStream(name)) return STDIN_FILENO;
  const int descriptor = open(name.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) FailFromSystem(name);
  return descriptor;
}

// Reads a file or standard input a block at a time.
class BlockReader {
 public:
  explicit BlockReader(const std::string& name)
      : label_(InputLabel(name)),
        descriptor_(OpenForReading(name)),
        bar_(label_, IsStandardStream(name) ? 0 : FileSize(name)) {}
  ~BlockReader() {
    if (descriptor_ != STDIN_FILENO) close(descriptor_);
  }
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;

  // The next block's length, 0 at the end.
  size_t Read(uint8_t* block, size_t capacity) {
    for (;;) {
      const ssize_t got = read(descriptor_, block, capacity);
      if (got >= 0) {
        done_ += static_cast<uint64_t>(got);
        bar_.Show(done_);
        return static_cast<size_t>(got);
      }
      if (errno != EINTR) FailFromSystem(label_);
    }
  }
  const std::string& label() const { return label_; }
  void Complete() { bar_.Complete(); }

 private:
  std::string label_;
  int descriptor_;
  ProgressBar bar_;
  uint64_t done_ = 0;
};

void CheckForm(const Encoding& encoding, const CodingOptions& options, bool fileForm) {
  if (options.data && encoding.data < 0) {
    FailUsage(std::string(encoding.name) + " has only a file form");
  }
  if (options.wrap && (fileForm || !encoding.wraps)) {
    FailUsage("--wrap applies to the data forms of base64, base32 and quoted-printable");
  }
  if (!options.name.empty() && !fileForm) {
    FailUsage("--name applies to the file forms (uuencode, yenc)");
  }
}

bool UsesFileForm(const Encoding& encoding, const CodingOptions& options) {
  return encoding.file >= 0 && !(options.data && encoding.data >= 0);
}

void RunFileForm(const Encoding& encoding, const CodingOptions& options, bool encode) {
  InputFile input(options.input, options.name.empty() ? "stdin" : options.name);
  PendingOutput output(options.output);
  const uint32_t flags =
      static_cast<uint32_t>(encoding.file) | BitIf(options.compress, fileEncodeCompressed);
  ReadPositionProgress progress(input.path(), input.label());
  EngineSetLastError(0);
  const int succeeded = encode
                            ? EncodeFileByType(input.path().c_str(), output.path().c_str(), flags)
                            : DecodeFileByType(input.path().c_str(), output.path().c_str(), flags);
  if (!succeeded) FailFromEngine(input.label(), kCodeInvalidData);
  progress.Complete();
  output.Commit();
}

// Base64 without compression goes through the chunk coders a block at a
// time: the same text as EncodeBuffer in memory bounded by the block.
void StreamBase64Encode(const CodingOptions& options) {
  BlockReader reader(options.input);
  PendingOutput output(options.output);
  std::vector<uint8_t> block(kBlock);
  std::vector<char> text(2 * kBlock + 64);
  Base64State state{};
  const int wrap = options.wrap ? 1 : 0;
  while (const size_t got = reader.Read(block.data(), block.size())) {
    EngineSetLastError(0);
    const int32_t written = Base64EncodeChunk(block.data(), static_cast<int32_t>(got), text.data(),
                                              static_cast<int32_t>(text.size()), &state, wrap);
    if (written < 0) FailFromEngine(reader.label(), kCodeInvalidParameter);
    output.Write(text.data(), static_cast<size_t>(written));
  }
  EngineSetLastError(0);
  const int32_t tail = Base64EncodeFinish(&state, text.data(), wrap);
  if (tail < 0) FailFromEngine(reader.label(), kCodeInvalidParameter);
  output.Write(text.data(), static_cast<size_t>(tail));
  output.Commit();
  reader.Complete();
}

// DecodeBuffer reads the text up to its terminator and stops at the first
// "=": the stream ends at the first zero byte or "=" alike.
void StreamBase64Decode(const CodingOptions& options) {
  BlockReader reader(options.input);
  PendingOutput output(options.output);
  std::vector<uint8_t> block(kBlock);
  std::vector<uint8_t> bytes(kBlock);
  Base64State state{};
  bool ended = false;
  while (!ended) {
    size_t got = reader.Read(block.data(), block.size());
    if (got == 0) break;
    for (size_t i = 0; i < got; ++i) {
      if (block[i] == '\0' || block[i] == '=') {
        got = i;
        ended = true;
        break;
      }
    }
    EngineSetLastError(0);
    const int32_t written =
        Base64DecodeChunk(reinterpret_cast<const char*>(block.data()), static_cast<int32_t>(got),
                          bytes.data(), static_cast<int32_t>(bytes.size()), &state);
    if (written < 0) FailFromEngine(reader.label(), kCodeInvalidData);
    output.Write(bytes.data(), static_cast<size_t>(written));
  }
  output.Commit();
  reader.Complete();
}

int32_t CheckedSize(int64_t size, const std::string& label) {
  if (size > INT32_MAX) FailWithCode(label, kCodeNotEnoughMemory);
  return static_cast<int32_t>(size);
}

void EncodeInMemory(const Encoding& encoding, const CodingOptions& options) {
  const std::vector<uint8_t> input = ReadWhole(options.input);
  const std::string label = InputLabel(options.input);
  // The UTF-16 rows read their input as little-endian code units.
  if (encoding.utf16 && input.size() % 2 != 0) FailWithCode(label, kCodeInvalidData);
  const int32_t length =
      CheckedSize(static_cast<int64_t>(encoding.utf16 ? input.size() / 2 : input.size()), label);
  const int32_t size = CheckedSize(EncodedSizeBound(encoding, length, options.wrap), label);
  std::vector<char> text(static_cast<size_t>(size));
  const uint32_t flags = static_cast<uint32_t>(encoding.data) |
                         BitIf(options.compress, fileEncodeCompressed) |
                         BitIf(options.wrap, dataEncodeWrapLines);
  static const uint8_t kNothing = 0;
  EngineSetLastError(0);
  const int32_t written =
      EncodeBuffer(input.empty() ? &kNothing : input.data(), length, text.data(), size, flags);
  if (written < 0) FailFromEngine(label, kCodeInvalidParameter);
  WriteResult(options.output, text.data(), static_cast<size_t>(written));
}

void DecodeInMemory(const Encoding& encoding, const CodingOptions& options) {
  std::vector<uint8_t> text = ReadWhole(options.input);
  const std::string label = InputLabel(options.input);
  text.push_back('\0');
  const auto* characters = reinterpret_cast<const char*>(text.data());
  int32_t size = CheckedSize(DecodedSizeBound(encoding, static_cast<int64_t>(text.size())), label);
  std::vector<uint8_t> bytes(static_cast<size_t>(size));
  const uint32_t flags = static_cast<uint32_t>(encoding.data);
  if (options.compress) {
    // The expanded size is not known before the text is decoded once.
    const int32_t decoded = DecodeBuffer(characters, bytes.data(), size, flags);
    uint32_t expanded = 0;
    if (decoded > 0 && InflateBuffer(bytes.data(), decoded, nullptr, &expanded) &&
        expanded > static_cast<uint32_t>(size)) {
      size = CheckedSize(expanded, label);
      bytes.resize(expanded);
    }
  }
  EngineSetLastError(0);
  int32_t count = DecodeBuffer(characters, bytes.data(), size,
                               flags | BitIf(options.compress, fileDecodeCompressed));
  // The UTF-16 rows count the terminator of a converted text, so 0 is
  // their failure.
  if (count < 0 || (encoding.utf16 && count == 0)) FailFromEngine(label, kCodeInvalidData);
  size_t length = static_cast<size_t>(count);
  if (encoding.utf16 && !options.compress) {
    // The UTF-16 rows convert and count the text's terminator too.
    if (count > 0 && bytes[2 * static_cast<size_t>(count) - 2] == 0 &&
        bytes[2 * static_cast<size_t>(count) - 1] == 0) {
      --count;
    }
    length = 2 * static_cast<size_t>(count);
  }
  WriteResult(options.output, bytes.data(), length);
}

void Run(const CodingOptions& options, bool encode) {
  const Encoding& encoding = FindEncoding(options.encoding);
  const bool fileForm = UsesFileForm(encoding, options);
  CheckForm(encoding, options, fileForm);
  if (fileForm) {
    RunFileForm(encoding, options, encode);
  } else if (encoding.data == dataEncodeBase64 && !options.compress) {
    encode ? StreamBase64Encode(options) : StreamBase64Decode(options);
  } else {
    encode ? EncodeInMemory(encoding, options) : DecodeInMemory(encoding, options);
  }
}

void AddCodingCommand(CLI::App& app, const char* name, const char* description, bool encode) {
  auto options = std::make_shared<CodingOptions>();
  CLI::App* command = app.add_subcommand(name, description);
  command->add_option("input", options->input, "file to read; - for standard input")
      ->capture_default_str();
  command->add_option("-o,--output", options->output, "file to write; - for standard output")
      ->capture_default_str();
  std::string encodings;
  for (const std::string& known : EncodingNames())
    encodings += (encodings.empty() ? "" : ", ") + known;
  command->add_option("-e,--encoding", options->encoding, "one of " + encodings)
      ->capture_default_str();
  command->add_flag("-c,--compress", options->compress,
                    encode ? "compress with Deflate before encoding"
                           : "expand the decoded bytes as a zlib stream");
  if (encode) {
    command->add_flag("-w,--wrap", options->wrap,
                      "break the data forms of base64 and base32 into 72-column CR LF lines, "
                      "quoted-printable into 76-column lines");
  }
  command->add_flag("-d,--data", options->data,
                    "use the data form (EncodeBuffer) of quoted-printable, base58, base32 or "
                    "base85 instead of the file form");
  command->add_option("--name", options->name,
                      "the file name recorded for standard input by uuencode and yenc");
  command->callback([options, encode] { Run(*options, encode); });
}

}  // namespace

void AddCodingCommands(CLI::App& app) {
  AddCodingCommand(app, "encode", "Encode data or a file as text", true);
  AddCodingCommand(app, "decode", "Decode text back into data or a file", false);
}

}  // namespace fe::cli
