#include "PackingThread.h"

namespace platenest {

// FRAME

}  // namespace platenest
