#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {

// FRAME
void TMaxCirclePacking::TryMethodNew() {}
void TMaxCirclePacking::Add4() {}

}  // namespace platenest
