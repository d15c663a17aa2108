#pragma once

// The rectangle model and the rectangle nesters.
#include "platenest/URectNest/BarnesBound.h"
#include "platenest/URectNest/CoEdge.h"
#include "platenest/URectNest/MultiRectNest.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/URectNest/Raster.h"
#include "platenest/URectNest/RectFile.h"
#include "platenest/URectNest/RectJostler.h"
#include "platenest/URectNest/RectNestSmart.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/URectNest/RectangleNest.h"
#include "platenest/URectNest/RecursiveFiveblockNest.h"
#include "platenest/URectNest/Strips.h"
