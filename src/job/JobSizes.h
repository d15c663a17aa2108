#pragma once

#include <optional>
#include <span>
#include <vector>

#include "platenest/URectNest/RectRecords.h"
#include "platenest/job/Job.h"

// FRAME. A job of kind Job in the nesters' units: one scale for all plates, margin taken off.
namespace platenest::detail {

struct TJobPlate {
  int Position = 0;   // in the job's list
  double Width = 0;   // less the margin
  double Height = 0;
  int Count = 0;      // in stock; where the job states none, as many as the demand could need
  double Cost = 0;    // in the job's units
  double Area = 0;    // of the whole plate, in the job's units
  bool Remnant = false;
};

struct TJobPart {
  int Position = 0;  // in the job's list
  double Width = 0;
  double Height = 0;
  int Amount = 0;           // copies to place; where the job states no amount, as many as the stock could hold
  bool IsUnlimited = false;
  bool MayTurn = true;
  double Area = 0;          // of one copy, in the job's units
};

struct TJobSizes {
  double Gap = 0;
  std::optional<int> Decimals;     // of all lengths
  std::vector<TJobPlate> Plates;   // remnants first, each group in the order of the job; those that hold no part left out
  std::vector<TJobPart> Parts;     // those that fit some plate in a turn that they may have
  bool TurnsAll() const;           // every part may turn, or turning changes nothing
};

TJobSizes JobSizesOf(const Job& AJob);

// Whether the plate holds the part in a turn that it may have.
bool Holds(const TJobPlate& APlate, const TJobPart& APart);

}  // namespace platenest::detail
