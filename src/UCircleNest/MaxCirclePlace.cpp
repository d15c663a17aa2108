#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {

// FRAME
void TMaxCirclePacking::TrySquareBlocks() {}
void TMaxCirclePacking::Add2() {}

}  // namespace platenest
