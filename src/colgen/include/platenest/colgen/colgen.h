#pragma once

// Whole rectangle jobs as cutting stock: layouts as columns, the problem that they answer, the nesters that price and
// complete them, results for hosts, plate after plate by values.
#include "platenest/colgen/ColumnList.h"
#include "platenest/colgen/RectNestProblem.h"
#include "platenest/colgen/RectNestSolver.h"
#include "platenest/colgen/RectPattern.h"
#include "platenest/colgen/SVCBPRGNest.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"
