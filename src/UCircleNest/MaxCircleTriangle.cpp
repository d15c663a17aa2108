#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {

// FRAME
void TMaxCirclePacking::TriangleDivide() {}
void TMaxCirclePacking::Add5() {}

}  // namespace platenest
