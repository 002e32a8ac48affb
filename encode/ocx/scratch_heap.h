// The control's private heap for the scratch buffers of its text
// properties and methods: created on first use, destroyed by Reset.
#pragma once

#include <windows.h>

#include <cstddef>

namespace fe::ocx {

class ScratchHeap {
 public:
  ScratchHeap() = default;
  ~ScratchHeap() { Destroy(); }
  ScratchHeap(const ScratchHeap&) = delete;
  ScratchHeap& operator=(const ScratchHeap&) = delete;

  // A zero-filled block, or null when memory is exhausted.
  void* Allocate(size_t size) {
    if (heap_ == nullptr) heap_ = ::HeapCreate(0, 0, 0);
    return heap_ == nullptr ? nullptr : ::HeapAlloc(heap_, HEAP_ZERO_MEMORY, size == 0 ? 1 : size);
  }
  void Free(void* block) {
    if (block != nullptr && heap_ != nullptr) ::HeapFree(heap_, 0, block);
  }
  void Destroy() {
    if (heap_ != nullptr && heap_ != ::GetProcessHeap()) ::HeapDestroy(heap_);
    heap_ = nullptr;
  }

 private:
  HANDLE heap_ = nullptr;
};

// A block of the scratch heap, freed when it goes out of scope.
template <typename T = BYTE>
class ScratchBlock {
 public:
  ScratchBlock(ScratchHeap& heap, size_t count)
      : heap_(heap), data_(static_cast<T*>(heap.Allocate(count * sizeof(T)))) {}
  ~ScratchBlock() { heap_.Free(data_); }
  ScratchBlock(const ScratchBlock&) = delete;
  ScratchBlock& operator=(const ScratchBlock&) = delete;
  T* get() const { return data_; }
  explicit operator bool() const { return data_ != nullptr; }

 private:
  ScratchHeap& heap_;
  T* data_;
};

}  // namespace fe::ocx
