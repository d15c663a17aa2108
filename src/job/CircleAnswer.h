#pragma once

#include <vector>

#include "CircleSizes.h"
#include "JobAnswer.h"
#include "platenest/job/Result.h"

// Answers to a job of kind Circles, in the units of TCircleSizes.
namespace platenest::detail {

// One layout and how many plates are cut by it.
struct TCircleLayout {
  int Plate = 0;  // position in TCircleSizes::Plates
  int Copies = 0;
  TCircleSpots Spots;
};

using TCircleLayouts = std::vector<TCircleLayout>;

// Answers are compared as those of kind Job.
TJobMerit MeritOf(const TCircleSizes& Sizes, const TCircleLayouts& Layouts);

// Copies of each part over all plates.
std::vector<Int64> PlacedCopies(const TCircleSizes& Sizes, const TCircleLayouts& Layouts);
// Placements in all layouts, each counted once.
Int64 CopiesIn(const TCircleLayouts& Layouts);

// Ordered by plate kind as in Sizes, fullest first.
void SortLayouts(const TCircleSizes& Sizes, TCircleLayouts& Layouts);

// In the job's ids and units; nothing is measured. Centres that stand out of the plate by the noise of the nesters are
// brought back.
std::vector<Layout> AssembleCircles(const Job& AJob, const TCircleSizes& Sizes, const TCircleLayouts& Layouts);

}  // namespace platenest::detail
