#include "platenest/colgen/SVCBPRGNest.h"

#include <algorithm>
#include <utility>

#include "PatternRepeat.h"
#include "ValueCorrection.h"
#include "platenest/colgen/SVCBPRGNestSingle.h"

namespace platenest {

namespace {

bool Stopped(const TBCPStopWatch& Watch) {
  return Watch.TimeOver() || RectNestStopped();
}

bool MeetsDemand(const TNestRectList& Work) {
  return std::all_of(Work.begin(), Work.end(), [](const TNestRect& part) { return part.Amount == 0; });
}

Int64 PlateCount(const TRectSolution& Solution) {
  Int64 plates = 0;
  for (const auto& pair : Solution) plates += pair.Value;
  return plates;
}

}  // namespace

TSVCBPRGNest::TSVCBPRGNest(TNestSpaceList APlates, TNestRectList ARects, double AGap, double ATimeLimit,
                           bool SpecificValue, int AG)
    : FPlatesIn(std::move(APlates)),
      FRectsIn(std::move(ARects)),
      FGapIn(AGap),
      FTimeLimit(ATimeLimit),
      HasValue(SpecificValue),
      FGIn(AG) {}

void TSVCBPRGNest::Nest(TRectSolution& ASolution) const {
  NestMultiPlatesSVC(ASolution, nullptr, /*AKeepAll=*/false);
}

void TSVCBPRGNest::NestAllRes(std::vector<TRectSolution>& ANestResultAll) const {
  TRectSolution best;
  NestMultiPlatesSVC(best, &ANestResultAll, /*AKeepAll=*/true);
}

TNestRectList TSVCBPRGNest::WorkList() const {
  TNestRectList work = FRectsIn;
  for (int i = 0; i < Size(work); ++i) {
    TNestRect& part = work[static_cast<std::size_t>(i)];
    part.Idx = i;
    if (!HasValue) part.Area = detail::NewValue(part, 1.0);
  }
  return work;
}

void TSVCBPRGNest::NestMultiPlatesSVC(TRectSolution& ABest, std::vector<TRectSolution>* AAll, bool AKeepAll) const {
  TNestRectList work = WorkList();
  const TNestSpaceList spaces = FPlatesIn.MergeSameSize();
  TBCPStopWatch watch(FTimeLimit);
  watch.StartNew();
  for (int run = 0; run < FGIn && !Stopped(watch); ++run) {
    TRectSolution solution = FillPlates(spaces, work, watch);
    if (solution.Count() == 0) return;
    const bool isComplete = MeetsDemand(work);
    if (isComplete && IsBetter(solution, ABest)) ABest = solution.Clone();
    if (isComplete) detail::RectUpdate(solution, work, FRectsIn, FGapIn);
    if (AKeepAll && AAll != nullptr) AAll->push_back(std::move(solution));
    if (!isComplete) return;
  }
}

TRectSolution TSVCBPRGNest::FillPlates(const TNestSpaceList& Spaces, TNestRectList& Work,
                                       const TBCPStopWatch& Watch) const {
  TRectSolution solution;
  for (const TNestSpace& space : Spaces) {
    int left = space.Ratio;
    while (left > 0 && !Stopped(Watch)) {
      TNestedRects layout;
      TSVCBPRGNestSingle(space.Space, Work, FGapIn, /*SpecificValue=*/true).NestSinglePlate(layout);
      if (layout.empty()) break;
      const TRectPattern pattern(std::move(layout), space.Space);
      const int times = detail::Repeat(pattern.NestedRects(), left, Work);
      solution.AddSubSolution(pattern, times);
      left -= times;
    }
  }
  return solution;
}

bool TSVCBPRGNest::IsBetter(const TRectSolution& Solution, const TRectSolution& Best) const {
  if (Best.Count() == 0) return true;
  const Int64 plates = PlateCount(Solution);
  const Int64 bestPlates = PlateCount(Best);
  if (plates != bestPlates) return plates < bestPlates;
  const auto lastRate = [this](const TRectSolution& solution) {
    return detail::PatternUsedRate(*solution.GetSubSolution(solution.Count() - 1).Key, FGapIn);
  };
  return lastRate(Solution) < lastRate(Best);
}

}  // namespace platenest
