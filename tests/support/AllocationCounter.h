#pragma once

#include "platenest/foundation/Types.h"

namespace platenest {

// Counts the calls of operator new on this thread since it was made. Link platenest_allocation_counter, which replaces
// the operators of the whole executable.
class TAllocationCounter {
 public:
  TAllocationCounter();
  Int64 Count() const;

 private:
  Int64 FBefore;
};

// While it lives, operator new fails on every thread but this one.
class TAllocationsFailElsewhere {
 public:
  TAllocationsFailElsewhere();
  ~TAllocationsFailElsewhere();
  TAllocationsFailElsewhere(const TAllocationsFailElsewhere&) = delete;
  TAllocationsFailElsewhere& operator=(const TAllocationsFailElsewhere&) = delete;
};

}  // namespace platenest
