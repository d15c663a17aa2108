#pragma once

#include "CircleSearch.h"

// Local search on the best answer.
namespace platenest::detail {

// Takes a few neighbours off a plate at a time and lays them anew toward a random side, with circles that are not
// placed yet in among them; what covers no less stays. The circles of the emptiest plate count as not placed where all
// are, so that they may come to lie on the other plates. Ends with the run, when all are placed, or after so many
// turns; nothing is done for one size, where patterns are as good, for thousands of circles or for many plates. Returns
// whether the answer has become better.
bool ImproveCircles(TCircleSearch& Search, int Turns);

// The same from layouts that leave some circles, until all are placed on their plates, which makes them an answer.
// Whether it comes to that before this thread's stop token says so.
bool CompleteCircles(TCircleSearch& Search, const TCircleLayouts& Start, int Turns);

}  // namespace platenest::detail
