#pragma once

#include <optional>
#include <vector>

#include "platenest/job/Job.h"

namespace platenest::detail {

// One part of a job of kind Fill that fits its plate in a turn that it may have, in the nesters' units.
struct TFillPart {
  int Position = 0;  // in the job's list
  double Width = 0;
  double Height = 0;
  int Asked = 0;          // no more copies may be placed
  int Most = 0;           // upper bound on the copies that the plate takes; never above Asked
  int Offered = 0;        // what a nester is told: Asked where that binds, else so many that they are no limit to it
  bool IsScarce = false;  // fewer are asked for than the plate may take
  double Worth = 0;
  bool MayTurn = true;
};

struct TFillSizes {
  double PlateWidth = 0;  // less the margin
  double PlateHeight = 0;
  double Gap = 0;
  std::optional<int> Decimals;  // of all lengths
  bool HasValues = false;       // some part states its worth; otherwise all are worth their area
  std::vector<TFillPart> Parts;
};

// Parts that fit in no turn that they may have are left out. Raises LimitError where a part without limit would be
// placed too often.
TFillSizes FillSizesOf(const Job& AJob);

// The same with every part kept from turning.
TFillSizes UnturnedSizesOf(const Job& AJob);

}  // namespace platenest::detail
