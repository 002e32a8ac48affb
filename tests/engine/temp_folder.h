// A folder of its own for a test's files, removed afterwards.
#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "test_support.h"

namespace fe::test {

class TempFolder {
 public:
  TempFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("fe_test_" + std::to_string(random()));
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string Path(const std::string& name) const { return (path_ / name).string(); }
  std::string Folder() const { return path_.string(); }

  std::string Write(const std::string& name, const Bytes& data) const {
    std::ofstream(Path(name), std::ios::binary)
        .write(reinterpret_cast<const char*>(data.data()),
               static_cast<std::streamsize>(data.size()));
    return Path(name);
  }

  static Bytes Read(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
  }

  static bool Exists(const std::string& path) { return std::filesystem::exists(path); }

  // How many entries the folder holds (to spot leftover temporary files).
  size_t Count() const {
    size_t n = 0;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      (void)entry;
      ++n;
    }
    return n;
  }

 private:
  std::filesystem::path path_;
};

}  // namespace fe::test
