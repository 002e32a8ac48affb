// A small tmpfs of its own, for tests that need a full disk or a read-only
// folder. Mounting needs root (or a user namespace); without it a test skips.
#pragma once

#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "temp_folder.h"

namespace fe::test {

class SmallMount {
 public:
  explicit SmallMount(size_t kibibytes) : point_(holder_.Path("mnt")) {
    std::filesystem::create_directories(point_);
    const std::string options = "size=" + std::to_string(kibibytes) + "k,mode=0777";
    if (::mount("fe_test", point_.c_str(), "tmpfs", 0, options.c_str()) == 0) {
      mounted_ = true;
    } else {
      why_ = std::strerror(errno);
    }
  }
  ~SmallMount() {
    if (mounted_) ::umount2(point_.c_str(), MNT_DETACH);
  }
  SmallMount(const SmallMount&) = delete;
  SmallMount& operator=(const SmallMount&) = delete;

  bool Mounted() const { return mounted_; }
  const std::string& WhyNot() const { return why_; }
  std::string Path(const std::string& name) const { return point_ + "/" + name; }
  const std::string& Folder() const { return point_; }

  // Takes every free block with a file of its own.
  void Fill() const {
    std::ofstream filler(Path("filler"), std::ios::binary);
    const std::vector<char> block(4096, 'f');
    while (filler.write(block.data(), static_cast<std::streamsize>(block.size())) &&
           filler.flush()) {
    }
  }

  bool MakeReadOnly() const {
    return ::mount(nullptr, point_.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
  }

 private:
  TempFolder holder_;
  std::string point_;
  bool mounted_ = false;
  std::string why_;
};

}  // namespace fe::test
