#pragma once

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "OneSizeBounds.h"
#include "Scale.h"
#include "platenest/URectNest/RectRecords.h"
#include "platenest/job/Job.h"
#include "platenest/job/Result.h"

namespace platenest::detail {

// A job in the nester's units: scaled, margin taken off. Lengths of the job and of the nester never mix outside this
// record.
struct TScaledPlate {
  TScaledPlate(const Job& AJob, const Plate& APlate);
  // In a scale that several plates share.
  TScaledPlate(const Job& AJob, const Plate& APlate, const TScale& AScale);

  TScale Scale;
  double Gap = 0;
  double MarginLeft = 0;
  double MarginBottom = 0;
  double Width = 0;  // less the margin; 0 or below when the margin leaves nothing
  double Height = 0;
};

// The layout of a nester in the job's ids and units, with everything measured that a result states about it. Part.Idx
// of a placement is the position in the job's list of parts, or in Positions, which lead there.
Layout AssembleLayout(const Job& AJob, const Plate& APlate, const TScaledPlate& Scaled, const TNestedRects& Nested,
                      std::span<const int> Positions = {});

// What can be measured on the placements of a layout: usage, used box, clearance, edge-to-edge, free box.
void MeasureInto(Layout& ALayout, double Gap, const std::array<double, 4>& Margin);

// The parts of a job by their ids, made once for all its layouts. The job must outlive it.
class TPartIds {
 public:
  explicit TPartIds(const Job& AJob);

  const Job& Subject() const { return *FJob; }
  // -1 for an unknown one. Likely: a position to look at first, or -1; copies of one part often follow each other.
  int PositionOf(std::string_view Id, int Likely = -1) const;

 private:
  const Job* FJob;
  std::unordered_map<std::string_view, int> FPositions;  // for look-up only; no order is taken from it
};

// Placements as records for the checker. Part.Idx is the position in the job's list, -1 for an unknown id.
TNestedRects ToRecords(const TPartIds& Ids, const Layout& ALayout);

// The checker's verdict on a layout, empty if it is valid: plate less margin, gap, convention, known parts of right
// size.
std::string CheckLayout(const TPartIds& Ids, const Layout& ALayout, double Gap, const std::array<double, 4>& Margin);

// The worth of one copy in a job of kind Fill: its value, or its area in the job's units.
double WorthOf(const Part& APart);

// Copies of each part in a layout, whose ids are known, and what counts of copies are worth in sum.
std::vector<Int64> CountCopies(const TPartIds& Ids, const Layout& ALayout);
double WorthOfCopies(const Job& AJob, std::span<const Int64> Counts);

// The limit on copies of a part that states none.
[[noreturn]] void RaiseTooManyCopies(int Position);

// Raises InputError where the margin leaves nothing of the plate.
void RequireRoom(const TScaledPlate& Scaled, const Plate& APlate);

// Sums over all layouts: summary, plates and parts with their counts, without reasons.
void Account(const Job& AJob, Result& AResult);
void Account(const Job& AJob, std::span<const Layout> Layouts, Result& AResult);

}  // namespace platenest::detail
