#pragma once

#include <vector>

#include "CircleSizes.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// The most circles of this radius on a box, the gap kept between them, by Oler 1961: their centres lie in the box less
// the radius all round and at least a pitch of 2 Radius + Gap apart. Where its sides are a and b pitches it holds at
// most 2/sqrt(3) ab + a + b + 1 of them. 0 where the circle does not fit. What the layout check forgives is allowed
// for, so that no answer that passes it has more.
double OlerBound(double Width, double Height, double Radius, double Gap);

// What holds without trust in a search, in the order in which a result lists it. Of all answers:
//   count, demand   all copies of parts that fit a plate, unless one of these is without limit
//   count, oler     the sum of OlerBound over the stock, where all parts that fit have one radius and no plate is
//                   without limit
//   area, stock     otherwise, where the demand is as large as the stock or a part is without limit, all grown by the
//                   gap: the best mix of whole and broken copies
// Of answers that place all copies asked for by number, of parts that fit a plate; left out where sums show that there
// is none:
//   plates, area    whole plates, largest first, until they are as large as the demand, all grown by the gap
//   plates, oler    where it is more: plates that hold most first, until OlerBound for some radius reaches the number
//                   of circles that are no smaller; a circle of that radius lies in each of them
//   cost, area      where plates differ in cost: whole and broken plates, cheapest for their area first, up to the next
//                   sum that costs can make
//   cost, oler      where it is more: the cheapest whole plates that by OlerBound hold the circles, for some radius; of
//                   great numbers of circles broken plates
//   cost, plates    where it is more: the cheapest plates, as many as the bounds on plates say
// Cost: a hundred times plate kinds, and part kinds; some milliseconds for whole plates that differ in cost.
std::vector<Bound> BoundsOfCircles(const Job& AJob, const TCircleSizes& Sizes);

bool HasOneCost(const TCircleSizes& Sizes);

}  // namespace platenest::detail
