#pragma once

#include "platenest/foundation/Export.h"
#include "platenest/foundation/Types.h"

namespace platenest {

// Barnes (1979): the most copies of an A by B rectangle, turned or not, that any layout can put on a plate of L by W.
// No layout holds more, yet one that holds as many need not exist. The waste of a layout is at least what strips of
// 1 by A and 1 by B must leave. Raises TArgumentError for a negative plate or for a rectangle that has no positive
// sides, TRangeError for a bound beyond 64 bits.
PLATENEST_API Int64 BarnesBound(Int64 L, Int64 W, Int64 A, Int64 B);

// The same on sizes in hundredths: the plate rounded down, the rectangle to nearest. Where sizes have more than two
// decimals the result is an estimate and may lie below the true bound.
PLATENEST_API Int64 BarnesUpbound(double L, double W, double A, double B);

}  // namespace platenest
