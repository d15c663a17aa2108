#pragma once

#include <string>

#include "platenest/job/Job.h"
#include "platenest/job/Result.h"
#include "platenest/layoutcheck/PartCheck.h"

// The checkers' verdicts on answers about one part, empty if they are right. The job has passed its checks.
namespace platenest::detail {

// The part that the job is about.
const Part& SubjectPart(const Job& AJob);

TLattice LatticeOf(const ArrayAnswer& Answer);

// Where the label comes to stand.
Box LabelBox(const LabelSize& Label, bool Rotated, const std::array<double, 2>& Move);

std::string ArrayVerdict(const Job& AJob, const TLattice& Lattice, double Gap);
// Both answers have a place.
std::string LabelVerdict(const Job& AJob, const LabelAnswer& Answer);
std::string SuckerVerdict(const Job& AJob, const SuckerAnswer& Answer);

}  // namespace platenest::detail
