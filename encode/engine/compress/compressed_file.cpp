#include "compress/compressed_file.h"

#include <cstring>

#include "errors/last_error.h"
#include "errors/system_errors.h"
#include "file_encoder.h"

namespace fe::compress {

namespace {


// Windows compares paths without regard to case (lstrcmpiA); Linux file
// systems are case-sensitive, so there the comparison is exact.
bool SamePath(const char* a, const char* b) {
#ifdef _WIN32
  return _stricmp(a, b) == 0;
#else
  return std::strcmp(a, b) == 0;
#endif
}

}  // namespace

bool CheckSource(const char* source) {
  if (source == nullptr || *source == '\0') {
    SetLastError(kErrorFileNotFound);
    return false;
  }
  const uint32_t attributes = platform::FileAttributes(source);
  if (attributes == platform::kNoAttributes) return false;
  if (attributes & (platform::kAttributeDirectory | platform::kAttributeDevice)) {
    SetLastError(kErrorBadFileType);
    return false;
  }
  return true;
}

Output::Output(const char* source, const char* output) : source_(source) {
  in_place_ = output == nullptr || *output == '\0' || SamePath(output, source);
  if (!in_place_) {
    path_ = output;
    return;
  }
  // Beside the source, or in the temporary directory when its folder
  // cannot be derived.
  char folder[261];
  const char* directory = GetPathDirectory(source, folder);
  char temporary[260];
  if (CreateTempFileName(directory, nullptr, temporary) != nullptr) path_ = temporary;
}

platform::FileHandle Output::Create() {
  const platform::FileHandle file = platform::OpenFile(path_.c_str(), platform::FileOpen::kCreate);
  if (file == platform::kInvalidFile) {
    // The temporary name was reserved by this call: give it up.
    if (in_place_ && !path_.empty()) {
      const KeepLastError keep;
      platform::RemoveFile(path_.c_str());
    }
    return file;
  }
  created_ = platform::IdentifyFile(file, &identity_);
  return file;
}

void Output::Discard() const {
  const KeepLastError keep;
  if (created_) platform::RemoveCreatedFile(path_.c_str(), identity_);
}

bool Output::Commit(const platform::FileIdentity& source) const {
  if (!in_place_) return true;
  if (platform::ReplaceFileAtomically(path_.c_str(), source_.c_str(), source)) return true;
  Discard();
  return false;
}

bool WriteAll(platform::FileHandle file, const uint8_t* data, size_t size) {
  uint32_t written = 0;
  return size == 0 || (platform::WriteFile(file, data, static_cast<uint32_t>(size), &written) &&
                       written == size);
}

}  // namespace fe::compress
