#include "platenest/UCircleNest/CirclePacking.h"

namespace platenest {

void TCirclePacking::LargePlateNest() {}

void TCirclePacking::CheckLastPlate() {}

}  // namespace platenest
