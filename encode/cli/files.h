// The tool's own file handling around the engine: standard input and output
// as "-", temporary files, and results that reach their target only whole.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace fe::cli {

inline bool IsStandardStream(const std::string& name) {
  return name == "-";
}
// What messages call an input: its name, or "standard input" for "-".
std::string InputLabel(const std::string& name);

// Whole contents of a file or of standard input ("-").
std::vector<uint8_t> ReadWhole(const std::string& name);

// A file the tool created for itself, removed when it goes out of scope.
class TemporaryFile {
 public:
  // In `directory`, or the temporary directory when it is empty.
  explicit TemporaryFile(const std::string& directory = {});
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }
  int descriptor() const { return descriptor_; }
  // The file now belongs to someone else (it was renamed into place).
  void Release();

 private:
  std::string path_;
  int descriptor_ = -1;
  int slot_ = -1;  // for removal on a signal
};

// An input for an engine operation that takes a file name: the file itself,
// or standard input copied first into a private temporary folder as a file
// called `stagedName` (uuencode and yEnc write the input's name into their
// headers).
class InputFile {
 public:
  explicit InputFile(const std::string& name, const std::string& stagedName = "stdin");
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  const std::string& path() const { return path_; }
  // What messages call it.
  const std::string& label() const { return label_; }

 private:
  void RemoveStaged();

  std::string path_;
  std::string label_;
  std::string folder_;  // the private folder of staged input, else empty
  int fileSlot_ = -1;   // for removal on a signal
  int folderSlot_ = -1;
};

// A result that replaces its target only when Commit is reached: it is
// written into a temporary file beside the target (by Write, or by an engine
// operation given path()), which Commit renames over the target keeping its
// permission bits; for "-" or a device the temporary file is in the
// temporary folder and Commit copies it out.
class PendingOutput {
 public:
  explicit PendingOutput(const std::string& name);
  const std::string& path() const { return file_->path(); }
  void Write(const void* bytes, size_t length);
  void Commit();

 private:
  std::string name_;
  std::string target_;  // the file a rename replaces (links followed)
  bool replaces_ = false;
  std::unique_ptr<TemporaryFile> file_;
};

// A whole result in memory to its target, through PendingOutput for files.
void WriteResult(const std::string& name, const void* bytes, size_t length);

// Size of a file in bytes, 0 when it cannot be read (progress only).
uint64_t FileSize(const std::string& path);

// The process's file-creation mask, read once before any thread starts.
void RememberCreationMask();

}  // namespace fe::cli
