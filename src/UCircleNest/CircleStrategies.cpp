#include "platenest/UCircleNest/CirclePacking.h"

namespace platenest {

// FRAME

}  // namespace platenest
