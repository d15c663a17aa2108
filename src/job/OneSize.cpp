#include "OneSize.h"

#include <algorithm>
#include <array>
#include <utility>

#include "OneSizeFiveblock.h"
#include "Scale.h"
#include "WholeUnits.h"
#include "platenest/URectNest/URectNest.h"
#include "platenest/job/Job.h"

namespace platenest::detail {

namespace {

// The nester shortens every gap from 1.0 on by this much.
constexpr double kGapShortfall = 1e-9;

struct TPrepared {
  TNestRect Part;
  double PlateWidth = 0;
  double PlateHeight = 0;
  double Gap = 0;
  std::optional<int> Decimals;
};

TPrepared Prepare(const TOneSize& S, int Amount) {
  TPrepared job;
  job.Decimals = CommonDecimals(std::array{S.PlateWidth, S.PlateHeight, S.PartWidth, S.PartHeight, S.Gap});
  const double slack = FitSlack(job.Decimals);
  const double gapAllowance = S.Gap >= 1 ? kGapShortfall : 0;  // the nester grows its plate by the gap it is given
  job.PlateWidth = S.PlateWidth + slack - gapAllowance;
  job.PlateHeight = S.PlateHeight + slack - gapAllowance;
  job.Gap = S.Gap + gapAllowance;
  job.Part = TNestRect(Amount, 0, TVRect2D::FromSize(S.PartWidth, S.PartHeight));
  job.Part.Area = S.PartWidth * S.PartHeight;
  return job;
}

// The plain grid of turned parts stands one gap to the right of where it could and may leave the plate there.
void ShiftToLeftEdge(TNestedRects& Layout) {
  if (Layout.empty()) return;
  double left = Layout[0].BoundBox().Left;
  for (const TNestedRect& placed : Layout) left = std::min(left, placed.BoundBox().Left);
  for (TNestedRect& placed : Layout) placed.Trans.X -= left;
}

void Finish(TNestedRects& Layout, const TPrepared& Job) {
  ShiftToLeftEdge(Layout);
  if (Job.Decimals) SnapToQuantum(Layout, *Job.Decimals);
}

TOneSizeAnswer RunStrip(const TPrepared& Job) {
  TOneSizeAnswer answer;
  answer.Method = "strip";
  bool isFull = false;
  TRectangleNest(TVRect2D::FromSize(Job.PlateWidth, Job.PlateHeight), Job.Part, Job.Gap)
      .SingleNest(answer.Layout, isFull);
  Finish(answer.Layout, Job);
  return answer;
}

// The trimming form shortens the list of part edges step by step; where all of them lie beyond a third of the plate it
// runs off the list's end, and the plain nest answers.
TOneSizeAnswer RunTrim(const TPrepared& Job) {
  try {
    TOneSizeAnswer answer;
    answer.Method = "trim";
    DynamicSingleRectNest(Job.Part, Job.PlateHeight, Job.PlateWidth, Job.Gap, answer.Layout);
    Finish(answer.Layout, Job);
    return answer;
  } catch (const TRangeError&) {
    TOneSizeAnswer answer = RunStrip(Job);
    answer.Remark = "trim found no shorter plate length to try; the strip layout stands";
    return answer;
  }
}

// Strips cost next to nothing. Their layout stands where five blocks do worse, which happens when time runs out or when
// sizes had to be rounded, and where nothing can be won.
TOneSizeAnswer RunFiveblock(const TPrepared& Job, const TOneSize& Sizes, bool IsAsked) {
  TOneSizeAnswer strip = RunStrip(Job);
  const TOneSizeBounds bounds = BoundOneSize(Sizes);
  const Int64 most = std::min(bounds.Area, bounds.Barnes);
  const bool isBest = strip.Layout.Count() >= std::min<Int64>(most, Job.Part.Amount);
  if (isBest && !IsAsked) return strip;
  if (most > limits::kCopies) {
    if (IsAsked) strip.Remark = "so many copies may fit that fiveblock was not tried; the strip layout stands";
    return strip;
  }
  TOneSizeAnswer blocks{NestByFiveblock(Sizes, Job.Part), "fiveblock", {}};
  if (blocks.Layout.Count() > strip.Layout.Count() || (IsAsked && blocks.Layout.Count() == strip.Layout.Count()))
    return blocks;
  if (IsAsked) strip.Remark = "fiveblock placed fewer copies in its time; the strip layout stands";
  return strip;
}

}  // namespace

std::vector<std::function<TOneSizeAnswer()>> OneSizeMethods(const std::string& Method, const TOneSize& Sizes,
                                                            int Amount) {
  const TPrepared job = Prepare(Sizes, Amount);
  const auto strip = [job] { return RunStrip(job); };
  if (Method == "trim") return {[job] { return RunTrim(job); }, strip};
  if (Method == "strip") return {strip};
  return {[job, Sizes, isAsked = Method == "fiveblock"] { return RunFiveblock(job, Sizes, isAsked); }, strip};
}

}  // namespace platenest::detail
