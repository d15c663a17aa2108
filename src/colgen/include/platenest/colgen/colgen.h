#pragma once

// Whole rectangle jobs as cutting stock: layouts as columns, the problem that they answer, results for hosts,
// plate after plate by values, and column generation with the nesters as pricing.
#include "platenest/colgen/BCPRectNest.h"
#include "platenest/colgen/CGRectNest.h"
#include "platenest/colgen/ColumnList.h"
#include "platenest/colgen/RectNestProblem.h"
#include "platenest/colgen/RectNestSolver.h"
#include "platenest/colgen/RectPattern.h"
#include "platenest/colgen/SVCBPRGNest.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"
