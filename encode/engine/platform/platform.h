// The one seam between the engine and the operating system. On Windows each
// function is the Win32 call itself; on Linux it is the stand-in documented
// beside its implementation under posix/.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace fe::platform {

// Code pages the engine converts with itself.
inline constexpr uint32_t kCodePageUtf7 = 65000;
inline constexpr uint32_t kCodePageUtf8 = 65001;
// MB_ERR_INVALID_CHARS: fail on an invalid sequence instead of replacing it.
inline constexpr uint32_t kFailOnInvalidChars = 8;

// The calling thread's last-error slot (SetLastError / GetLastError).
void SetLastErrorCode(uint32_t code);
uint32_t GetLastErrorCode();

// Zero-filled heap block (LocalAlloc(LPTR)); null when memory is exhausted.
void* AllocateZeroed(size_t size);
void Release(void* block);

// `count` zero-filled items from AllocateZeroed, released on scope exit;
// data() is null when memory is exhausted.
template <typename T>
class ZeroedBlock {
 public:
  explicit ZeroedBlock(size_t count) : data_(static_cast<T*>(AllocateZeroed(count * sizeof(T)))) {}
  ~ZeroedBlock() { Release(data_); }
  ZeroedBlock(const ZeroedBlock&) = delete;
  ZeroedBlock& operator=(const ZeroedBlock&) = delete;
  T* data() const { return data_; }

 private:
  T* data_;
};

// WideCharToMultiByte(codePage, flags, ..., no default character): converts
// `length` UTF-16 units. outputSize 0 only measures. Returns the bytes
// written (or needed), 0 on failure with the reason as last error.
int WideToMultiByte(uint32_t codePage, uint32_t flags, const char16_t* text, int length,
                    char* output, int outputSize);

// MultiByteToWideChar(codePage, flags, ...): converts `length` bytes.
// outputSize 0 only measures. Returns the units written (or needed), 0 on
// failure with the reason as last error.
int MultiByteToWide(uint32_t codePage, uint32_t flags, const char* text, int length,
                    char16_t* output, int outputSize);

// IsValidCodePage: whether conversions with a code page are available.
bool IsValidCodePage(uint32_t codePage);
// GetACP: the system's ANSI code page (Linux: UTF-8, the locale's encoding).
uint32_t AnsiCodePage();
// IsDBCSLeadByteEx: whether `byte` begins a two-byte character.
bool IsLeadByte(uint32_t codePage, uint8_t byte);
// WideCharToMultiByte with its used-default-character report (not for
// UTF-7 and UTF-8, which have no default character): *usedDefault tells
// whether a character had no form in the code page.
int WideToCodePage(uint32_t codePage, const char16_t* text, int length, char* output,
                   int outputSize, bool* usedDefault);

// NormalizeString(NormalizationKD, ...): the compatibility decomposition of
// `length` UTF-16 units. outputSize 0 returns an estimate of the length.
// Returns the units written; <= 0 on failure with the reason as last error
// (122 when the output is too small).
int NormalizeKd(const char16_t* text, int length, char16_t* output, int outputSize);

// FormatMessage(from module | from system | ignore inserts, language
// neutral): the text of a code from the engine module's message table, else
// the system's. Writes at most size - 1 characters and a NUL; returns the
// length, 0 when there is no text.
int FormatMessageText(uint32_t code, char* buffer, int size);

// AES-256 in CBC mode with a zero IV and PKCS#7 padding, keyed with the
// SHA-256 digest of the key material: CryptoAPI's PROV_RSA_AES provider,
// CALG_SHA_256 hash and CALG_AES_256 key derived with no flags. Failures
// return the service's code (NTE_BAD_DATA for bad padding or length).
struct CipherKey;
inline constexpr uint32_t kBadData = 0x80090005;  // NTE_BAD_DATA

uint32_t OpenCipherKey(const uint8_t* material, size_t length, CipherKey** key);
// Encrypts or decrypts `*length` bytes in place (CryptEncrypt/CryptDecrypt):
// chunks before the final one are whole blocks; the final one is padded or
// unpadded. bufferSize is the room for the padded result.
uint32_t CipherTransform(CipherKey* key, bool encrypt, bool final, uint8_t* data, uint32_t* length,
                         uint32_t bufferSize);
// Encrypts or decrypts a run of whole blocks that is not the end of the
// message from `input` into `output` (the same buffer or apart), chaining
// on from the previous call as CipherTransform does.
uint32_t CipherTransformBlocks(CipherKey* key, bool encrypt, const uint8_t* input, uint8_t* output,
                               uint32_t length);
void CloseCipherKey(CipherKey* key);

// ---- Files and paths ----
// Paths are UTF-8; the Windows build widens them to UTF-16 for every call.

using FileHandle = intptr_t;
inline constexpr FileHandle kInvalidFile = -1;

// Opens follow Windows' sharing rules on every platform: a read open shares
// reading only, a create shares nothing, and an open that conflicts with
// another one of the same file (by any name, in any thread or process using
// the engine) fails with 32 (ERROR_SHARING_VIOLATION) before it changes
// anything. A directory cannot be opened as a file (5).
enum class FileOpen {
  kRead,       // read, shared for reading, existing file only, sequential scan
  kCreate,     // read and write, unshared, always created anew, sequential scan
  kCreateNew,  // as kCreate, but fails with 80 (ERROR_FILE_EXISTS) when the name exists
};

// A null path fails like an empty one.
FileHandle OpenFile(const char* path, FileOpen mode);

// What identifies a file and tells whether it changed: the volume and file
// index (Linux: device and inode), its size, last write time and
// permission bits.
struct FileIdentity {
  uint64_t volume = 0;
  uint64_t index = 0;
  uint64_t size = 0;
  int64_t modified = 0;
  uint32_t permissions = 0;
  bool regular = false;

  bool SameFile(const FileIdentity& other) const {
    return volume == other.volume && index == other.index;
  }
  bool Unchanged(const FileIdentity& other) const {
    return SameFile(other) && size == other.size && modified == other.modified;
  }
};
bool IdentifyFile(FileHandle file, FileIdentity* identity);
// The identity of what a path names now (following links); false with the
// reason as last error.
bool IdentifyPath(const char* path, FileIdentity* identity);

// Removes a file this call created or truncated, identified when it was
// opened: only while the name still stands for that regular file. Written
// through a link, the file is emptied instead, so no partial data stays.
// Anything else (a device, another file put there since) is left alone.
void RemoveCreatedFile(const char* path, const FileIdentity& created);

// Moves `from` over `to` atomically: only while `to` is still the file
// `expected` describes (else 32), never over a read-only file (5), keeping
// the permission bits of `to`. Across volumes `from` is first copied to a
// new temporary file beside `to`, so `to` is never truncated or lost.
bool ReplaceFileAtomically(const char* from, const char* to, const FileIdentity& expected);
// Moves `from` to the name `to`, which must not exist (80 when it does):
// MoveFileEx without replacing. Across volumes through a complete copy
// beside `to`, so `to` never appears half-written.
bool MoveFileToNewName(const char* from, const char* to);
// GetTempFileName with uUnique 0: a new empty file named from the first
// three characters of `prefix` and four hexadecimal digits, in `folder`;
// the full name goes to `output`. False with the reason as last error.
bool CreateUniqueTempFile(const char* folder, const char* prefix, std::string* output);
// GetTempPath: the folder for temporary files, ending in a separator;
// its length in characters, 0 on failure.
uint32_t TempPath(std::string* folder);
// GetFileTime: creation and last-write time in 100-nanosecond units since
// 1601 (Linux: the birth time, 0 where the file system keeps none).
bool GetFileTimes(FileHandle file, int64_t* created, int64_t* modified);
// SetFileTime: creation (where the file system keeps one) and last-write
// time, in the units of GetFileTimes.
bool SetFileTimes(FileHandle file, int64_t created, int64_t modified);
// ReadFile / WriteFile: false with the reason as last error.
bool ReadFile(FileHandle file, void* buffer, uint32_t size, uint32_t* read);
bool WriteFile(FileHandle file, const void* buffer, uint32_t size, uint32_t* written);
bool SeekFile(FileHandle file, int64_t offset);
bool GetFileSize(FileHandle file, uint64_t* size);
void CloseFile(FileHandle file);

// GetFileAttributesW: kNoAttributes when the file cannot be examined.
inline constexpr uint32_t kNoAttributes = 0xFFFFFFFF;
inline constexpr uint32_t kAttributeDirectory = 0x10;
inline constexpr uint32_t kAttributeDevice = 0x40;
uint32_t FileAttributes(const char* path);

inline constexpr uint32_t kAttributeReadOnly = 0x01;
inline constexpr uint32_t kAttributeHidden = 0x02;
inline constexpr uint32_t kAttributeSystem = 0x04;
inline constexpr uint32_t kAttributeArchive = 0x20;
inline constexpr uint32_t kAttributeNormal = 0x80;
inline constexpr uint32_t kAttributeOffline = 0x1000;
// SetFileAttributesW (Linux: read-only clears the write permission bits,
// its absence gives the owner write permission back; the other bits have no
// counterpart).
bool SetFileAttributeBits(const char* path, uint32_t attributes);

bool RemoveFile(const char* path);

// The ANSI path calls of the path helpers (GetCurrentDirectoryA,
// GetFullPathNameA, GetDriveTypeA, GetWindowsDirectoryA,
// GetEnvironmentVariableA): counts without the terminator, 0 on failure.
uint32_t CurrentDirectory(char* buffer, uint32_t size);
uint32_t FullPathName(const char* name, char* buffer, uint32_t size);
uint32_t DriveType(const char* root);
uint32_t WindowsDirectory(char* buffer, uint32_t size);
uint32_t EnvironmentVariable(const char* name, char* buffer, uint32_t size);

// ExpandEnvironmentStringsW: %NAME% replaced by the variable's value, an
// unknown name left as it stands. Returns the expansion's length in UTF-16
// units with its terminator, as that call counts, 0 on failure.
uint32_t ExpandEnvironment(const char* text, std::string* expanded);
// GetFullPathNameW: the absolute form of a path; its length in UTF-16
// units, 0 on failure.
uint32_t AbsolutePath(const char* path, std::string* full);

// The path separator and whether paths may begin with a drive letter.
#ifdef _WIN32
inline constexpr char kSeparator = '\\';
inline constexpr bool kHasDrives = true;
#else
inline constexpr char kSeparator = '/';
inline constexpr bool kHasDrives = false;
#endif

// Milliseconds since an arbitrary start (GetTickCount).
uint32_t GetTickCount();
// GetSystemTimeAsFileTime: UTC in 100-nanosecond units since 1601.
int64_t SystemTimeAsFileTime();
// RtlGenRandom: bytes from the system's cryptographic generator.
bool RandomBytes(void* buffer, size_t size);

}  // namespace fe::platform
