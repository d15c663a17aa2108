#pragma once

#include <thread>
#include <vector>

#include "platenest/UCircleNest/CirclePacking.h"

namespace platenest {

// What a worker does with the start configurations.
enum class TMainStrategy : int {
  SingleResult = 0,       // goes on from the shared result
  InitConfig = 1,         // best occupancy over the configurations
  InitConfigStrip = 2,    // least used height over the configurations, bottom-left
  SingleResultStrip = 3,  // least used height from the shared result
  BinarySearchStrip = 4,  // least used height by bisection on the plate's height
};

// FRAME: completed by the owner of the threads.

}  // namespace platenest
