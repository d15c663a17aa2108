#include "platenest/UCircleNest/MaxCirclePacking.h"

namespace platenest {

// FRAME

}  // namespace platenest
