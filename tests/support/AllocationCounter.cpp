#include "AllocationCounter.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

thread_local platenest::Int64 allocationCount = 0;
thread_local bool memoryIsHere = false;
std::atomic<bool> memoryFailsElsewhere{false};

void* Allocate(std::size_t Bytes, std::size_t Alignment) noexcept {
  ++allocationCount;
  if (memoryFailsElsewhere && !memoryIsHere) return nullptr;
  if (Alignment <= alignof(std::max_align_t)) return std::malloc(Bytes > 0 ? Bytes : 1);
  return std::aligned_alloc(Alignment, (Bytes + Alignment - 1) / Alignment * Alignment);
}

void* AllocateOrThrow(std::size_t Bytes, std::size_t Alignment) {
  void* const memory = Allocate(Bytes, Alignment);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

// All forms, because a sanitizer that keeps some of its own sees a mismatch when the others free their memory.
void* operator new(std::size_t Bytes) {
  return AllocateOrThrow(Bytes, 1);
}
void* operator new[](std::size_t Bytes) {
  return AllocateOrThrow(Bytes, 1);
}
void* operator new(std::size_t Bytes, const std::nothrow_t&) noexcept {
  return Allocate(Bytes, 1);
}
void* operator new[](std::size_t Bytes, const std::nothrow_t&) noexcept {
  return Allocate(Bytes, 1);
}
void* operator new(std::size_t Bytes, std::align_val_t Alignment) {
  return AllocateOrThrow(Bytes, static_cast<std::size_t>(Alignment));
}
void* operator new[](std::size_t Bytes, std::align_val_t Alignment) {
  return AllocateOrThrow(Bytes, static_cast<std::size_t>(Alignment));
}
void* operator new(std::size_t Bytes, std::align_val_t Alignment, const std::nothrow_t&) noexcept {
  return Allocate(Bytes, static_cast<std::size_t>(Alignment));
}
void* operator new[](std::size_t Bytes, std::align_val_t Alignment, const std::nothrow_t&) noexcept {
  return Allocate(Bytes, static_cast<std::size_t>(Alignment));
}
void operator delete(void* Memory) noexcept {
  std::free(Memory);
}
void operator delete[](void* Memory) noexcept {
  std::free(Memory);
}
void operator delete(void* Memory, std::size_t) noexcept {
  std::free(Memory);
}
void operator delete[](void* Memory, std::size_t) noexcept {
  std::free(Memory);
}
void operator delete(void* Memory, std::align_val_t) noexcept {
  std::free(Memory);
}
void operator delete[](void* Memory, std::align_val_t) noexcept {
  std::free(Memory);
}
void operator delete(void* Memory, std::size_t, std::align_val_t) noexcept {
  std::free(Memory);
}
void operator delete[](void* Memory, std::size_t, std::align_val_t) noexcept {
  std::free(Memory);
}

namespace platenest {

TAllocationCounter::TAllocationCounter() : FBefore(allocationCount) {}

Int64 TAllocationCounter::Count() const {
  return allocationCount - FBefore;
}

TAllocationsFailElsewhere::TAllocationsFailElsewhere() {
  memoryIsHere = true;
  memoryFailsElsewhere = true;
}

TAllocationsFailElsewhere::~TAllocationsFailElsewhere() {
  memoryFailsElsewhere = false;
}

}  // namespace platenest
