#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {

// FRAME
void TMaxCirclePacking::TryCornerBlocks() {}
void TMaxCirclePacking::Add3() {}

}  // namespace platenest
