#include "AllocationCounter.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

thread_local platenest::Int64 allocationCount = 0;
thread_local bool memoryIsHere = false;
std::atomic<bool> memoryFailsElsewhere{false};

}  // namespace

// All forms for single objects of usual alignment: a sanitizer that keeps one of them sees a mismatch when another
// frees its memory. The forms for arrays call these, or stay with the sanitizer as a whole.
void* operator new(std::size_t Bytes, const std::nothrow_t&) noexcept {
  ++allocationCount;
  return memoryFailsElsewhere && !memoryIsHere ? nullptr : std::malloc(std::max<std::size_t>(Bytes, 1));
}
void* operator new(std::size_t Bytes) {
  void* const memory = operator new(Bytes, std::nothrow);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void operator delete(void* Memory) noexcept {
  std::free(Memory);
}
void operator delete(void* Memory, std::size_t) noexcept {
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
