#pragma once

#include "FaultList.h"
#include "platenest/job/Job.h"

// The checks of what some kinds of jobs say and others do not.
namespace platenest::detail {

// Members that have no meaning in a job of this kind, each where it is given.
void RefuseForeignMembers(const Job& AJob, FaultList& Faults);

// Members of parts that have no meaning in a job of this kind: those of rectangles for circles, radii for others.
void RefuseForeignPartMembers(const std::vector<Part>& Parts, JobKind Kind, FaultList& Faults);

void FindArrayFaults(const Job& AJob, FaultList& Faults);
void FindLabelFaults(const Job& AJob, FaultList& Faults);
void FindSuckerFaults(const Job& AJob, FaultList& Faults);

}  // namespace platenest::detail
