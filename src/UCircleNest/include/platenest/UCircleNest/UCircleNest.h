#pragma once

// Circle nesting: closed-form patterns for one size, corner placement for several.

#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/UCircleNest/MaxCirclePacking.h"
