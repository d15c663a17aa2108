#pragma once

#include <span>

#include "JobAnswer.h"
#include "JobSizes.h"
#include "WholeUnits.h"
#include "platenest/colgen/RectPattern.h"

// A whole job in whole units, for nesters that lose exact fits elsewhere.
namespace platenest::detail {

class TJobUnits {
 public:
  // At most MostUnits along a plate's longer side; where sizes are no decimal fractions with so few digits, parts are
  // rounded up and plates down.
  TJobUnits(const TJobSizes& Sizes, double MostUnits);

  double Gap() const { return 2 * FUnits.HalfGap() * kSteps; }
  TVRect2D Plate(int Kind) const;
  // With copies as given; Idx is the position.
  TNestRectList Rects(std::span<const int> Copies) const;

  // Positions that copies can take along both axes, multiplied: what the tables of raster programs grow with.
  double RasterStates(int Kind, std::span<const int> Copies) const;

  // To and from the steps of a plate. The layout of a pattern keeps the gap if the pattern does.
  TNestedRects LayoutOf(const TRectPattern& Pattern) const;
  TRectPattern PatternOf(const TJobLayout& Layout) const;

 private:
  // Where units are exact each has two steps, and a plate is one step longer than its units, so that no part equals a
  // plate in a side. Nothing fits that does not truly fit, since all sizes are even; positions are cut to even ones.
  static constexpr double kSteps = 2;

  TVRect2D BoxOf(const TJobPart& Part) const;

  const TJobSizes& FSizes;
  TWholeUnits FUnits;
};

}  // namespace platenest::detail
