#pragma once

#include <vector>

#include "Scale.h"
#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/job/Job.h"

// A job of kind Circles in the nesters' units: one scale for all plates, margin taken off.
namespace platenest::detail {

struct TCirclePlate {
  int Position = 0;  // in the job's list
  double Width = 0;  // less the margin
  double Height = 0;
  int Count = 0;    // in stock, or the copies that could lie on such plates where these are fewer; 1 or more
  double Cost = 0;  // in the job's units
  double Area = 0;  // of the whole plate, in the job's units
  bool Remnant = false;
};

struct TCirclePart {
  int Position = 0;  // in the job's list
  double Radius = 0;
  int Amount = 0;            // copies to place; of a part without limit no stock can hold more
  bool IsUnlimited = false;  // Amount is no demand
  double Area = 0;           // of one copy, in the job's units
};

struct TCircleSizes {
  double Gap = 0;
  std::vector<TCirclePlate> Plates;  // remnants first, each group in the order of the job; those that hold no part left
                                     // out
  std::vector<TCirclePart> Parts;    // those that fit some plate, largest first

  bool HasOneSize() const { return Parts.front().Radius == Parts.back().Radius; }
};

// Up, so that comparisons of the nesters, which are within 1e-6, are finer than what the layout check forgives.
TScale CircleScaleOf(const Job& AJob);

// Both lists are empty where no part fits. Raises InputError where the margin leaves nothing of any plate, LimitError
// where square grids of a part without limit hold too many copies; where only denser layouts do, its Amount is one
// more than are allowed. Cost: part kinds times plate kinds.
TCircleSizes CircleSizesOf(const Job& AJob);

bool Holds(const TCirclePlate& APlate, const TCirclePart& APart);

// Circles on one plate: CircleIdx is a position in TCircleSizes::Parts, the plate less its margin begins at the origin.
using TCircleSpots = TCircleNestRst;

// The most circles of a radius that the area of a plate can take, each a gap larger; 0 where none fits.
double MostOnPlate(const TCircleSizes& Sizes, const TCirclePlate& APlate, double Radius);

}  // namespace platenest::detail
