#pragma once

#include "FaultList.h"
#include "platenest/job/Job.h"

// The checks of polygons and of the pairs that a job of kind Nfp asks for.
namespace platenest::detail {

// The outline and holes of one part: enough points, within the limits, with area, free of crossings, holes inside and
// apart. Contours are judged on the grid of 1e-5 units that the answers have; they may touch. Cost: O(n log n).
void FindShapeFaults(const Part& APart, int Index, FaultList& Faults);

// What only jobs of this kind may say, in a job of another one.
void RefuseShapes(const Job& AJob, FaultList& Faults);

void FindPairFaults(const Job& AJob, FaultList& Faults);

}  // namespace platenest::detail
