// CompareFiles: two files by size, time stamps and contents, and the first
// against a message digest, in a fixed order of checks whose first failure
// names the result.
#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string>

#include "codecs/hex_digits.h"
#include "digest/file_digest.h"
#include "errors/last_error.h"
#include "file_encoder.h"
#include "platform/scoped_file.h"

namespace fe::digest {

namespace {

constexpr uint32_t kContents = fileCompareContents;
constexpr uint32_t kCreated = fileCompareCreated;
constexpr uint32_t kModified = fileCompareModified;
constexpr uint32_t kMd5 = fileCompareMD5;
constexpr uint32_t kSha1 = fileCompareSHA1;
constexpr uint32_t kSha256 = fileCompareSHA256;
constexpr uint32_t kDigestBits = kMd5 | kSha1 | kSha256;
constexpr uint32_t kExpansionLimit = 511;  // characters, terminator included
constexpr uint32_t kFullPathLimit = 512;
constexpr size_t kChunkSize = 16384;

bool Fail(ErrorCodes code) {
  SetLastError(ControlError(code));
  return false;
}

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// Expands, trims and checks a path and makes it absolute. `minimum` is the
// shortest expansion allowed, terminator included: 1 for the first path
// and 2 for the second, a difference callers have always seen.
bool PreparePath(const char* given, uint32_t minimum, std::string* prepared) {
  std::string path;
  const uint32_t expanded = platform::ExpandEnvironment(given, &path);
  if (expanded < minimum || expanded > kExpansionLimit) return false;
  const auto first = std::find_if_not(path.begin(), path.end(), IsBlank);
  const auto last = std::find_if_not(path.rbegin(), path.rend(), IsBlank).base();
  path = first < last ? std::string(first, last) : std::string();
  if (!path.empty() && path.back() == '.') path.pop_back();
  for (size_t i = 0; i < path.size(); ++i) {
    const auto c = static_cast<unsigned char>(path[i]);
    if (c < 0x20 || std::strchr("<>|?*\"", c) != nullptr || (c == ':' && i != 1)) return false;
    // Windows takes '/' for '\'; on Linux '/' is the separator itself.
    if (c == '/') path[i] = platform::kSeparator;
  }
  const uint32_t length = platform::AbsolutePath(path.c_str(), prepared);
  return length > 0 && length < kFullPathLimit;
}

// Leading blanks skipped; 32 to 66 characters, an optional "0x" prefix (or
// an "&H" one, recognised only where the tenth character is '&', which is
// kept as it always was), then hexadecimal digits only. An empty text is no
// digest at all.
bool PrepareDigest(const char* given, std::string* digest) {
  digest->clear();
  if (given == nullptr) return true;
  while (IsBlank(*given))
    ++given;
  size_t length = std::strlen(given);
  if (length == 0) return true;
  if (length < 32 || length > 66) return Fail(ovErrorInvalidDigestValue);
  if ((given[0] == '0' && (given[1] == 'x' || given[1] == 'X')) ||
      ((given[1] == 'h' || given[1] == 'H') && given[9] == '&')) {
    given += 2;
    length -= 2;
  }
  for (size_t i = 0; i < length; ++i) {
    if (codecs::kHexValue[static_cast<unsigned char>(given[i])] == codecs::kNotHex) {
      return Fail(ovErrorInvalidDigestValue);
    }
  }
  digest->assign(given, length);
  return true;
}

uint32_t DigestBitFor(size_t length) {
  return length == 32 ? kMd5 : length == 40 ? kSha1 : length == 64 ? kSha256 : 0;
}

bool ResolveOptions(size_t digestLength, uint32_t* options) {
  if (*options == 0 && digestLength == 0) *options = kContents;
  if (digestLength == 0) {
    *options &= ~kDigestBits;
  } else if ((*options & kDigestBits) == 0) {
    const uint32_t bit = DigestBitFor(digestLength);
    if (bit == 0) return Fail(ovErrorInvalidDigestType);
    *options |= bit;
  }
  // The strongest digest asked for wins.
  if (*options & kSha256) {
    *options &= ~(kSha1 | kMd5);
  } else if (*options & kSha1) {
    *options &= ~kMd5;
  }
  const uint32_t chosen = *options & kDigestBits;
  if (chosen != 0 && DigestBitFor(digestLength) != chosen) return Fail(ovErrorInvalidDigestType);
  return true;
}

struct OpenedFile {
  platform::ScopedFile file;
  uint64_t size = 0;
  int64_t created = 0;
  int64_t modified = 0;
};

bool OpenForComparison(const std::string& path, OpenedFile* opened) {
  const uint32_t attributes = platform::FileAttributes(path.c_str());
  if (attributes == platform::kNoAttributes) return Fail(ovErrorFileNotFound);
  if (attributes & (platform::kAttributeDirectory | platform::kAttributeDevice)) {
    return Fail(ovErrorInvalidFileType);
  }
  opened->file.Reset(platform::OpenFile(path.c_str(), platform::FileOpen::kRead));
  if (!opened->file.Valid()) return Fail(ovErrorAccessDenied);
  if (!platform::GetFileSize(opened->file.get(), &opened->size) ||
      !platform::GetFileTimes(opened->file.get(), &opened->created, &opened->modified)) {
    return Fail(ovErrorInternalFailure);
  }
  return true;
}

bool SameContents(const OpenedFile& a, const OpenedFile& b) {
  const auto chunk = static_cast<uint32_t>(std::min<uint64_t>(kChunkSize, a.size));
  std::array<uint8_t, kChunkSize> left{}, right{};
  for (;;) {
    uint32_t n = 0, m = 0;
    if (!platform::ReadFile(a.file.get(), left.data(), chunk, &n) ||
        !platform::ReadFile(b.file.get(), right.data(), chunk, &m)) {
      return Fail(ovErrorFileReadFailed);
    }
    if (n != m || std::memcmp(left.data(), right.data(), n) != 0) {
      return Fail(ovErrorFileContentMismatch);
    }
    if (n == 0) return true;
  }
}

bool MatchesDigest(const std::string& path, uint32_t options, const std::string& digest) {
  if (digest.empty()) return Fail(ovErrorInvalidDigestValue);
  const HashKind kind = options & kSha256 ? HashKind::kSha256
                        : options & kSha1 ? HashKind::kSha1
                                          : HashKind::kMd5;
  char text[65];
  const int32_t length = DigestFile(kind, path.c_str(), text);
  if (length != static_cast<int32_t>(digest.size())) return Fail(ovErrorFileDigestMismatch);
  for (int32_t i = 0; i < length; ++i) {
    if (std::toupper(static_cast<unsigned char>(digest[static_cast<size_t>(i)])) != text[i]) {
      return Fail(ovErrorFileDigestMismatch);
    }
  }
  return true;
}

// Paths compared as Windows compares them, without regard to case (Linux:
// exactly, its file systems being case-sensitive).
bool SamePath(const std::string& a, const std::string& b) {
#ifdef _WIN32
  return _stricmp(a.c_str(), b.c_str()) == 0;
#else
  return a == b;
#endif
}

bool Compare(const char* file1, const char* file2, uint32_t options, const char* digestText) {
  std::string first, second, digest;
  const bool hasFirst = file1 != nullptr && *file1 != '\0';
  const bool hasSecond = file2 != nullptr && *file2 != '\0';
  if (hasFirst && !PreparePath(file1, 1, &first)) return Fail(ovErrorInvalidFileName);
  if (hasSecond && !PreparePath(file2, 2, &second)) return Fail(ovErrorInvalidFileName);
  if (!PrepareDigest(digestText, &digest)) return false;
  if ((options & (kContents | kCreated | kModified)) && (!hasFirst || !hasSecond)) {
    return Fail(ovErrorInvalidFileName);
  }
  if (!ResolveOptions(digest.size(), &options)) return false;
  if (!hasFirst) return Fail(ovErrorInvalidFileName);

  OpenedFile a;
  if (!OpenForComparison(first, &a)) return false;
  const bool digestAsked = (options & kDigestBits) != 0;
  if (hasSecond && !SamePath(first, second)) {
    OpenedFile b;
    if (!OpenForComparison(second, &b)) return false;
    // Sizes are always compared when two files are given.
    if (a.size != b.size) return Fail(ovErrorFileSizeMismatch);
    if (((options & kCreated) && a.created != b.created) ||
        ((options & kModified) && a.modified != b.modified)) {
      return Fail(ovErrorFileTimeMismatch);
    }
    if ((options & kContents) && !SameContents(a, b)) return false;
  } else if (!hasSecond && !digestAsked) {
    // One file alone can only be checked against a digest.
    return Fail(ovErrorInvalidDigestValue);
  } else if (hasSecond && !digestAsked) {
    return true;  // the same file, by the same name
  }
  return !digestAsked || MatchesDigest(first, options, digest);
}

}  // namespace

}  // namespace fe::digest

extern "C" int CompareFiles(const char* file1, const char* file2, uint32_t options,
                            const char* digest) {
  if (!fe::digest::Compare(file1, file2, options, digest)) return 0;
  fe::SetLastError(0);
  return 1;
}
