#pragma once

#include <span>
#include <string>
#include <vector>

#include "JobSizes.h"
#include "platenest/URectNest/RectRecords.h"

// FRAME. Answers to a job of kind Job, in the units of TJobSizes.
namespace platenest::detail {

// One layout and how many plates are cut by it. Part.Idx is a position in TJobSizes::Parts.
struct TJobLayout {
  int Plate = 0;  // position in TJobSizes::Plates
  int Copies = 0;
  TNestedRects Nested;
};

using TJobLayouts = std::vector<TJobLayout>;

// What answers are compared by, in this order.
struct TJobMerit {
  double UnplacedArea = 0;       // of copies asked for by number
  double UnlimitedArea = 0;      // of copies placed of parts without limit; more is better
  double Cost = 0;
  Int64 Plates = 0;
  double LastUsage = 0;          // of the emptiest plate; less is better
};

TJobMerit MeritOf(const TJobSizes& Sizes, const TJobLayouts& Layouts);
// A is better than B by more than rounding explains.
bool IsBetter(const TJobMerit& A, const TJobMerit& B);

// Copies of each part over all plates, and what is left of the demand.
std::vector<Int64> PlacedCopies(const TJobSizes& Sizes, const TJobLayouts& Layouts);
std::vector<int> LeftOver(const TJobSizes& Sizes, const TJobLayouts& Layouts);

// Makes layouts an answer that may stand: no more copies than asked (the last ones of a layout go first, plates are
// split where only some of their copies lose one), no empty plate, no more plates than in stock (the emptiest go),
// equal layouts joined, ordered by plate kind as in Sizes, fullest first.
void TidyAnswer(const TJobSizes& Sizes, TJobLayouts& Layouts);

}  // namespace platenest::detail
