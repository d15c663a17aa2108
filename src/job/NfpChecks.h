#pragma once

#include "FaultList.h"
#include "platenest/job/Job.h"

// The checks of polygons and lines, of the pairs that a job of kind Nfp asks for, and of the part that others are
// about.
namespace platenest::detail {

// The outline and holes of one part: enough points, within the limits, with area, free of crossings, holes inside and
// apart. Contours are judged on the grid of 1e-5 units that the answers have; they may touch. Cost: O(n log n).
void FindShapeFaults(const Part& APart, int Index, FaultList& Faults);

// Lines of two different points and more, within the limits; they may cross.
void FindLineFaults(const std::vector<PolygonRing>& Lines, std::string_view Member, FaultList& Faults);

// Whether it is clear which part is meant.
void FindSubjectFaults(const Job& AJob, FaultList& Faults);

void FindPairFaults(const Job& AJob, FaultList& Faults);

}  // namespace platenest::detail
