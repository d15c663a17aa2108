#pragma once

#include <vector>

#include "JobSizes.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/job/Result.h"

// Answers to a job of kind Job, in the units of TJobSizes: lower left corner of the plate less its margin at the
// origin.
namespace platenest::detail {

// One layout and how many plates are cut by it. Part.Idx is a position in TJobSizes::Parts.
struct TJobLayout {
  int Plate = 0;  // position in TJobSizes::Plates
  int Copies = 0;
  TNestedRects Nested;
};

using TJobLayouts = std::vector<TJobLayout>;

// What answers are compared by, in this order. Sums are rounded to twelve digits, so that equal answers compare equal
// whatever the order of their sums was, and exact comparison is a strict weak order.
struct TJobMerit {
  double UnplacedArea = 0;   // of copies asked for by number
  double UnlimitedArea = 0;  // of copies placed of parts without limit; more is better
  double Cost = 0;
  Int64 Plates = 0;
  // Of the emptiest plate; less is better. Remnants come first, so the last plate is one of them only where no other is
  // used.
  double LastUsage = 0;
};

TJobMerit MeritOf(const TJobSizes& Sizes, const TJobLayouts& Layouts);
bool IsBetter(const TJobMerit& A, const TJobMerit& B);

// Copies of each part over all plates, and what is left of the demand, 0 where it is exceeded.
std::vector<Int64> PlacedCopies(const TJobSizes& Sizes, const TJobLayouts& Layouts);
std::vector<int> LeftOver(const TJobSizes& Sizes, const TJobLayouts& Layouts);
// Placements in all layouts, each counted once.
Int64 CopiesIn(const TJobLayouts& Layouts);

// Makes layouts an answer that may stand. Stock and demand go to the fullest plates first, so that the emptiest lose
// copies beyond the demand and plates beyond the stock, and nothing is lost that stock and demand allow on the plates
// that stay. Within a layout the last copies go first; plates of one layout part where only some of them lose a copy.
// No plate is empty. A copy that is turned and must not be is dropped, a square comes back unturned in its place.
// Plates of one kind with the same copies, wherever they lie, have one layout. Ordered by plate kind as in Sizes,
// fullest first. Cost: the placements of all layouts and a logarithm; for each part that runs out the layout at hand
// is copied once more.
void TidyAnswer(const TJobSizes& Sizes, TJobLayouts& Layouts);

// In the job's ids and units; nothing is measured.
std::vector<Layout> AssembleLayouts(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Layouts);

}  // namespace platenest::detail
