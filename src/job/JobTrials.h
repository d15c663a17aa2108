#pragma once

#include <span>
#include <vector>

#include "JobFill.h"
#include "JobSkyline.h"

namespace platenest::detail {

// What a millisecond does of the work of TSkyTrials.
inline constexpr double kTrialWorkPerMs = 2e5;

// The best of several skyline passes on one plate, under orders and tastes that are drawn by the generator of this
// thread (see foundation/Random.h): an ordered first few, then random ones and small changes of the best one.
class TSkyTrials {
 public:
  explicit TSkyTrials(const TJobSizes& Sizes);

  // What a copy of each part counts, its area to begin with. Keys grow with worth for area.
  std::vector<double>& Worths() { return FWorths; }
  void ResetWorths();

  // The layout of greatest worth, taken off Left. Ends early where all is placed or the plate is full, and by
  // RectNestStopped, though never before the end of the first pass.
  TSkyLayout Fill(int Plate, std::vector<int>& Left, int Trials);
  TNestedRects LayoutOf(const TSkyLayout& Layout) const { return FSkyline.LayoutOf(Layout); }
  double AreaOf(const TSkyLayout& Layout) const;
  TPlateNest Nest(int Trials);

  // Looks at parts since the last call, the measure of what all this costs.
  double TakeWork() { return FSkyline.TakeWork(); }

 private:
  void DrawKeys(int Plate, int Trial);
  void ChangeKeys();

  const TJobSizes& FSizes;
  TSkyline FSkyline;
  std::vector<double> FWorths;
  std::vector<int> FOrder;
  std::vector<double> FKeys;
  std::vector<double> FBestKeys;
};

// A number in [0, 1) from the generator of this thread.
double DrawnUniform();

}  // namespace platenest::detail
