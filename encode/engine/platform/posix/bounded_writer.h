// Output side of the code-page conversions: writes into a caller buffer of
// fixed size, or only counts when the size is 0 (the measuring call of
// WideCharToMultiByte / MultiByteToWideChar).
#pragma once

#include <cstddef>

namespace fe::platform {

template <typename Unit>
class BoundedWriter {
 public:
  BoundedWriter(Unit* output, int size) : output_(output), size_(size) {}

  void Put(Unit unit) {
    if (size_ == 0) {
      ++count_;
    } else if (count_ < size_) {
      output_[count_++] = unit;
    } else {
      overflow_ = true;
    }
  }

  int count() const { return count_; }
  bool overflow() const { return overflow_; }

 private:
  Unit* output_;
  int size_;
  int count_ = 0;
  bool overflow_ = false;
};

}  // namespace fe::platform
