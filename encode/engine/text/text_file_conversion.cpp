// ConvertTextFile: a text file from one code page to another, through a
// temporary file that takes the output's place only after the whole file
// converted. Line endings can be rewritten on the way.
#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"
#include "files/finished_file.h"
#include "platform/scoped_file.h"
#include "text/ascii.h"
#include "text/code_points.h"

namespace fe::text {

namespace {

constexpr uint32_t kCodePageUtf16 = 1200;
constexpr uint32_t kCodePageUtf16BigEndian = 1201;
constexpr uint32_t kCodePageAnsi = 0;
constexpr uint32_t kCodePageThreadAnsi = 3;
constexpr uint32_t kChunkSize = 4096;
constexpr uint32_t kDetectionSample = 4096;

constexpr uint32_t kErrorWriteFault = 29;
constexpr uint32_t kErrorNotEnoughMemory = 8;
constexpr uint32_t kErrorFileInvalid = 1006;
constexpr uint32_t kErrorInternal = 1359;
constexpr uint32_t kErrorFileReadOnly = 6009;

constexpr uint32_t kDetect = 0x1;
constexpr uint32_t kNormalize = 0x2;
constexpr uint32_t kPreserve = 0x4;
constexpr uint32_t kUtf8Bom = 0x8;
constexpr uint32_t kNoBom = 0x10;
constexpr uint32_t kStrict = 0x20;
constexpr uint32_t kValidate = 0x100;
constexpr uint32_t kLineEndLf = 0x2000;
constexpr uint32_t kLineEndCr = 0x4000;
constexpr uint32_t kLineEndModes = 0x1000 | kLineEndLf | kLineEndCr;

constexpr uint32_t kPreservedAttributes = platform::kAttributeReadOnly |
                                          platform::kAttributeHidden | platform::kAttributeSystem |
                                          platform::kAttributeArchive | platform::kAttributeNormal;

enum class LineEnds { kCrLf, kLf, kCr };

bool Fail(uint32_t code) {
  SetLastError(code);
  return false;
}

bool IsUtf16(uint32_t codePage) {
  return codePage == kCodePageUtf16 || codePage == kCodePageUtf16BigEndian;
}

// Leading white space skipped, environment variables expanded (the name as
// given when that fails); empty when there is no name.
std::string FileName(const char* given) {
  if (given == nullptr) return {};
  while (IsSpace(static_cast<uint8_t>(*given)))
    ++given;
  std::string name(given);
  if (name.find('%') != std::string::npos) {
    std::string expanded;
    if (platform::ExpandEnvironment(name.c_str(), &expanded) != 0) name = expanded;
  }
  return name;
}

// The code page a byte-order mark names, and the mark's length.
uint32_t CodePageOfMark(const uint8_t* bytes, size_t size, size_t* markLength) {
  if (size >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF) {
    *markLength = 3;
    return platform::kCodePageUtf8;
  }
  if (size >= 3 && bytes[0] == '+' && bytes[1] == '/' && bytes[2] == 'v') {
    *markLength = 3;
    return platform::kCodePageUtf7;
  }
  if (size >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
    *markLength = 2;
    return kCodePageUtf16;
  }
  if (size >= 2 && bytes[0] == 0xFE && bytes[1] == 0xFF) {
    *markLength = 2;
    return kCodePageUtf16BigEndian;
  }
  return 0;
}

bool IsStrictUtf8(const uint8_t* bytes, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  for (size_t at = 0; at < size;) {
    // A zero byte is ASCII here.
    if (bytes[at] == 0) {
      ++at;
    } else if (NextCodePoint(text, at) == kNoCodePoint) {
      return false;
    }
  }
  return true;
}

// The encoding of a sample: a mark, strict UTF-8, or UTF-16 told by where
// the zero bytes of ASCII characters stand; 0 when nothing is clear.
uint32_t DetectEncoding(const uint8_t* sample, size_t size) {
  size_t markLength = 0;
  if (const uint32_t marked = CodePageOfMark(sample, size, &markLength)) return marked;
  if (IsStrictUtf8(sample, size)) return platform::kCodePageUtf8;
  if (size < 4 || size % 2 != 0) return 0;
  int pairs = 0;
  int zerosEven = 0;
  int zerosOdd = 0;
  for (size_t i = 0; i < size; i += 2) {
    const uint8_t a = sample[i];
    const uint8_t b = sample[i + 1];
    if (a == 0 && IsPrint(b)) {
      ++pairs;
      ++zerosEven;
    } else if (b == 0 && IsPrint(a)) {
      ++pairs;
      ++zerosOdd;
    }
  }
  if (pairs < 5 || zerosOdd == zerosEven) return 0;
  return zerosOdd > zerosEven ? kCodePageUtf16 : kCodePageUtf16BigEndian;
}

void SwapBytes(std::u16string& text) {
  for (char16_t& unit : text)
    unit = static_cast<char16_t>((unit << 8) | (unit >> 8));
}

struct Job {
  uint32_t source;
  uint32_t destination;
  uint32_t options;
};

LineEnds LineEndsOf(uint32_t options) {
  if (options & kLineEndLf) return LineEnds::kLf;
  if (options & kLineEndCr) return LineEnds::kCr;
  return LineEnds::kCrLf;
}

class Converter {
 public:
  Converter(const Job& job, platform::FileHandle input, platform::FileHandle output)
      : job_(job), lineEnds_(LineEndsOf(job.options)), input_(input), output_(output) {
    if (!IsUtf16(job.source) && job.source != platform::kCodePageUtf8) {
      for (int b = 0x80; b < 256; ++b)
        leadBytes_[b] = platform::IsLeadByte(job.source, static_cast<uint8_t>(b));
    }
  }

  bool Run();

 private:
  bool Write(const void* bytes, size_t size) {
    uint32_t written = 0;
    if (!platform::WriteFile(output_, bytes, static_cast<uint32_t>(size), &written) ||
        written != size) {
      return Fail(kErrorWriteFault);
    }
    return true;
  }
  bool WriteMark();
  bool Decode(const char* bytes, size_t size, std::u16string* text);
  void RewriteLineEnds(std::u16string& text) const;
  bool WriteText(std::u16string& text);

  // 1 when the chunk ends in the lead byte of a double-byte character. The
  // bytes are walked from the start: a trail byte can look like a lead.
  size_t CutDoubleByteCharacter(const char* bytes, size_t size) const {
    size_t at = 0;
    while (at < size)
      at += leadBytes_[static_cast<uint8_t>(bytes[at])] ? 2 : 1;
    return at > size ? 1 : 0;
  }

  Job job_;
  LineEnds lineEnds_;
  std::array<bool, 256> leadBytes_{};
  platform::FileHandle input_;
  platform::FileHandle output_;
};

bool Converter::WriteMark() {
  if (job_.options & kNoBom) return true;
  if (job_.destination == kCodePageUtf16) return Write("\xFF\xFE", 2);
  if (job_.destination == kCodePageUtf16BigEndian) return Write("\xFE\xFF", 2);
  if (job_.destination == platform::kCodePageUtf8 && (job_.options & kUtf8Bom))
    return Write("\xEF\xBB\xBF", 3);
  return true;
}

bool Converter::Decode(const char* bytes, size_t size, std::u16string* text) {
  text->clear();
  if (size == 0) return true;
  const uint32_t flags = (job_.options & kStrict) ? platform::kFailOnInvalidChars : 0;
  const int length =
      platform::MultiByteToWide(job_.source, flags, bytes, static_cast<int>(size), nullptr, 0);
  if (length <= 0) return false;
  text->resize(static_cast<size_t>(length));
  const int converted = platform::MultiByteToWide(job_.source, flags, bytes, static_cast<int>(size),
                                                  text->data(), length);
  return converted == length || Fail(kErrorInternal);
}

// Every CR goes; LF becomes the mode's line end. In CR mode an LF that ends
// the chunk is dropped, so the file's last line break vanishes; files
// converted by earlier versions look so.
void Converter::RewriteLineEnds(std::u16string& text) const {
  std::u16string rewritten;
  rewritten.reserve(text.size() + text.size() / 8);
  for (size_t i = 0; i < text.size(); ++i) {
    const char16_t unit = text[i];
    if (unit == u'\r') continue;
    if (unit != u'\n') {
      rewritten += unit;
    } else if (lineEnds_ == LineEnds::kCrLf) {
      rewritten += u"\r\n";
    } else if (lineEnds_ == LineEnds::kLf) {
      rewritten += u'\n';
    } else if (i + 1 < text.size()) {
      rewritten += u'\r';
    }
  }
  text.swap(rewritten);
}

bool Converter::WriteText(std::u16string& text) {
  if (text.empty()) return true;
  if (job_.destination == kCodePageUtf16) return Write(text.data(), text.size() * 2);
  if (job_.destination == kCodePageUtf16BigEndian) {
    SwapBytes(text);
    return Write(text.data(), text.size() * 2);
  }
  bool usedDefault = false;
  const int size = platform::WideToCodePage(
      job_.destination, text.data(), static_cast<int>(text.size()), nullptr, 0, &usedDefault);
  if (size <= 0) return false;
  std::string bytes(static_cast<size_t>(size), '\0');
  platform::WideToCodePage(job_.destination, text.data(), static_cast<int>(text.size()),
                           bytes.data(), size, &usedDefault);
  if (usedDefault && (job_.options & kStrict)) return Fail(kErrorNoUnicodeTranslation);
  return Write(bytes.data(), bytes.size());
}

bool Converter::Run() {
  if (!WriteMark()) return false;
  const bool normalize = (job_.options & kNormalize) != 0;
  std::vector<char> chunk(kChunkSize + 4);
  size_t held = 0;  // bytes of an incomplete character carried to the next chunk
  std::u16string text;
  while (true) {
    uint32_t read = 0;
    if (!platform::ReadFile(input_, chunk.data() + held, kChunkSize, &read)) return false;
    if (read == 0) break;
    size_t size = held + read;
    held = 0;
    if (IsUtf16(job_.source)) {
      if (size % 2 != 0) return Fail(kErrorNoUnicodeTranslation);
      text.assign(reinterpret_cast<const char16_t*>(chunk.data()), size / 2);
      if (job_.source == kCodePageUtf16BigEndian) SwapBytes(text);
    } else {
      if (job_.source == platform::kCodePageUtf8) {
        // Back to the start of a sequence that the chunk cuts.
        size_t start = size;
        while (start > 0 && size - start < 3 &&
               (static_cast<uint8_t>(chunk[start - 1]) & 0xC0) == 0x80)
          --start;
        if (start > 0) {
          const auto lead = static_cast<uint8_t>(chunk[start - 1]);
          const size_t needed = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
          if (lead >= 0xC2 && lead <= 0xF4 && size - (start - 1) < needed)
            held = size - (start - 1);
        }
      } else {
        held = CutDoubleByteCharacter(chunk.data(), size);
      }
      size -= held;
      if (!Decode(chunk.data(), size, &text)) return false;
    }
    if (normalize) RewriteLineEnds(text);
    if (!WriteText(text)) return false;
    std::memmove(chunk.data(), chunk.data() + size, held);
  }
  return held == 0 || Fail(kErrorNoUnicodeTranslation);
}

// Same code page and no options: the bytes as they are.
bool CopyBytes(platform::FileHandle input, platform::FileHandle output) {
  std::vector<char> chunk(kChunkSize);
  uint32_t read = 0;
  while (platform::ReadFile(input, chunk.data(), kChunkSize, &read)) {
    if (read == 0) return true;
    uint32_t written = 0;
    if (!platform::WriteFile(output, chunk.data(), read, &written) || written != read) {
      return Fail(kErrorWriteFault);
    }
  }
  return false;
}

// Where the output stood before the run, so that the result replaces only
// that file or takes a name that is still free.
struct Target {
  bool exists = false;
  platform::FileIdentity identity;
};

bool CheckOutput(const char* name, Target* target) {
  const uint32_t attributes = platform::FileAttributes(name);
  if (attributes == platform::kNoAttributes) return true;
  if (attributes & (platform::kAttributeDirectory | platform::kAttributeSystem |
                    platform::kAttributeDevice | platform::kAttributeOffline)) {
    return Fail(kErrorFileInvalid);
  }
  if (attributes & platform::kAttributeReadOnly) return Fail(kErrorFileReadOnly);
  target->exists = platform::IdentifyPath(name, &target->identity);
  return true;
}

// The source encoding from the first bytes: a byte-order mark (skipped)
// or the content with option 1; without it a UTF-8 or UTF-16 source is only
// checked, which fails with Strict when the content says otherwise. Leaves
// the input at the first byte to convert.
bool ResolveSource(platform::FileHandle input, uint32_t options, uint32_t* source) {
  uint8_t sample[kDetectionSample];
  uint32_t sampled = 0;
  if (!platform::ReadFile(input, sample, sizeof sample, &sampled)) return false;
  const bool detect = (options & kDetect) != 0;
  size_t markLength = 0;
  const uint32_t marked = detect ? CodePageOfMark(sample, sampled, &markLength) : 0;
  if (marked != 0) {
    *source = marked;
  } else if (detect || *source == platform::kCodePageUtf8 || IsUtf16(*source)) {
    const uint32_t detected = DetectEncoding(sample, sampled);
    if ((options & kStrict) && (detected == 0 || (!detect && detected != *source))) {
      return Fail(kErrorNoUnicodeTranslation);
    }
    if (detect && detected != 0) *source = detected;
  }
  return platform::SeekFile(input, static_cast<int64_t>(markLength));
}

// A UTF-8 mark needs a UTF-8 destination and no NoBom; NoBom alone only
// means something for UTF-8 and UTF-16.
bool MarkOptionsFit(uint32_t destination, uint32_t options) {
  if (options & kUtf8Bom) return destination == platform::kCodePageUtf8 && !(options & kNoBom);
  return !(options & kNoBom) || destination == platform::kCodePageUtf8 || IsUtf16(destination);
}

bool ConvertFile(const char* inputGiven, uint32_t source, const char* outputGiven,
                 uint32_t destination, uint32_t options) {
  if (options & kLineEndModes) options |= kNormalize;
  const bool validating = (options & kValidate) != 0;
  const std::string inputName = FileName(inputGiven);
  if (inputName.empty()) return Fail(kErrorInvalidParameter);
  const std::string outputName = validating ? std::string() : FileName(outputGiven);
  if (!validating && outputName.empty()) return Fail(kErrorInvalidParameter);
  for (uint32_t* codePage : {&source, &destination}) {
    if (*codePage == kCodePageAnsi || *codePage == kCodePageThreadAnsi)
      *codePage = platform::AnsiCodePage();
    if (!IsUtf16(*codePage) && !platform::IsValidCodePage(*codePage))
      return Fail(kErrorInvalidParameter);
  }
  const uint32_t inputAttributes = platform::FileAttributes(inputName.c_str());
  if (inputAttributes == platform::kNoAttributes) return false;
  if (inputAttributes &
      (platform::kAttributeDirectory | platform::kAttributeDevice | platform::kAttributeOffline)) {
    return Fail(kErrorFileInvalid);
  }
  Target target;
  if (!validating && !CheckOutput(outputName.c_str(), &target)) return false;
  const bool copyOnly = source == destination && options == 0;
  if (source == destination && validating) {
    SetLastError(0);
    return true;
  }
  for (uint32_t codePage : {source, destination}) {
    if (codePage == 42 || codePage == 1 || codePage == 2) return Fail(kErrorInvalidParameter);
  }

  platform::ScopedFile input(platform::OpenFile(inputName.c_str(), platform::FileOpen::kRead));
  if (!input.Valid()) return false;
  int64_t created = 0;
  int64_t modified = 0;
  if ((options & kPreserve) && !platform::GetFileTimes(input.get(), &created, &modified))
    return false;
  uint64_t size = 0;
  if (!platform::GetFileSize(input.get(), &size)) return false;
  if (size == 0 && validating) {
    SetLastError(0);
    return true;
  }

  if (size > 0 && !copyOnly && !ResolveSource(input.get(), options, &source)) return false;
  if (!MarkOptionsFit(destination, options)) return Fail(kErrorInvalidParameter);

  std::string folder;
  if (platform::TempPath(&folder) == 0) folder.assign(1, '.');
  std::string temporary;
  if (!platform::CreateUniqueTempFile(folder.c_str(), "tmp", &temporary)) return false;
  if (temporary.empty()) return Fail(kErrorInternal);
  platform::ScopedFile output(platform::OpenFile(temporary.c_str(), platform::FileOpen::kCreate));
  platform::FileIdentity createdFile;
  if (!output.Valid() || !platform::IdentifyFile(output.get(), &createdFile)) {
    const KeepLastError keep;
    platform::RemoveFile(temporary.c_str());
    return false;
  }
  bool converted = true;
  if (size > 0) {
    converted = copyOnly
                    ? CopyBytes(input.get(), output.get())
                    : Converter({source, destination, options}, input.get(), output.get()).Run();
  }
  if (converted && (options & kPreserve))
    converted = platform::SetFileTimes(output.get(), created, modified);
  input.Close();
  output.Close();
  if (validating) {
    const KeepLastError keep;
    platform::RemoveCreatedFile(temporary.c_str(), createdFile);
    return converted;
  }
  // A failed conversion leaves its temporary file where it is, as it
  // always has; the output is untouched.
  if (!converted) return false;
  if (!files::PlaceFinishedFile(temporary.c_str(), createdFile, outputName.c_str(),
                                target.exists ? &target.identity : nullptr)) {
    return false;
  }
  if (options & kPreserve) {
    const uint32_t kept = inputAttributes & kPreservedAttributes;
    platform::SetFileAttributeBits(outputName.c_str(),
                                   kept != 0 ? kept : platform::kAttributeNormal);
  }
  SetLastError(0);
  return true;
}

}  // namespace

}  // namespace fe::text

extern "C" int ConvertTextFile(const char* inputName, uint32_t sourceCodePage,
                               const char* outputName, uint32_t destinationCodePage,
                               uint32_t options) {
  try {
    return fe::text::ConvertFile(inputName, sourceCodePage, outputName, destinationCodePage,
                                 options)
               ? 1
               : 0;
  } catch (const std::bad_alloc&) {
    fe::SetLastError(fe::text::kErrorNotEnoughMemory);
    return 0;
  }
}
