#pragma once

#include <optional>
#include <vector>

#include "Scale.h"
#include "platenest/foundation/Types.h"
#include "platenest/job/Job.h"

// A job of kind Job in the nesters' units: one scale for all plates, margin taken off. Where lengths have more decimals
// than measure anything, parts and gap are cut and plates raised, by less than the tolerance of the layout check, so
// that a part of a sixth of a plate fits six times.
namespace platenest::detail {

struct TJobPlate {
  int Position = 0;  // in the job's list
  double Width = 0;  // less the margin
  double Height = 0;
  int Count = 0;    // in stock, or the copies that could lie on such plates where these are fewer; 1 or more
  double Cost = 0;  // in the job's units
  double Area = 0;  // of the whole plate, in the job's units
  bool Remnant = false;
};

struct TJobPart {
  int Position = 0;  // in the job's list
  double Width = 0;
  double Height = 0;
  int Amount = 0;            // copies to place; of a part without limit no stock can hold more
  bool IsUnlimited = false;  // Amount is no demand
  bool MayTurn = true;
  double Area = 0;  // of one copy, in the job's units
};

struct TJobSizes {
  double Gap = 0;
  std::optional<int> Decimals;  // of all lengths
  std::vector<TJobPlate>
      Plates;                   // remnants first, each group in the order of the job; those that hold no part left out
  std::vector<TJobPart> Parts;  // those that fit some plate in a turn that they may have
  bool TurnsAll() const;        // every part may turn, or turning changes nothing
};

// The scale of all plates of a job together.
TScale ScaleOf(const Job& AJob);

// Both lists are empty where no part fits. Raises InputError where the margin leaves nothing of any plate, LimitError
// where a part without limit would be placed too often. Cost: part kinds times plate kinds.
TJobSizes JobSizesOf(const Job& AJob);

// Whether the plate holds the part in a turn that it may have.
bool Holds(const TJobPlate& APlate, const TJobPart& APart);

// Plates and parts of TJobSizes, each a gap longer and wider, in whole units: layouts of parts that keep the gap on an
// axis are packings of these. Exactly where all lengths are decimal fractions of moderate length; elsewhere plates are
// rounded up and parts down at a scale of 1e-8 of the longest side or finer, so that no packing is lost. Products of
// two sides stay within 63 bits.
struct TGrownSizes {
  struct TSides {
    Int64 Width = 0;
    Int64 Height = 0;
    Int64 Area() const { return Width * Height; }
  };
  bool IsExact = false;
  std::vector<TSides> Plates;
  std::vector<TSides> Parts;
};

TGrownSizes GrownSizesOf(const TJobSizes& Sizes);

}  // namespace platenest::detail
