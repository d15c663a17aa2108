#include "RskfPass.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

#include "AllocationCounter.h"
#include "FakeClock.h"
#include "ForEachSeed.h"
#include "GuillotineOptimum.h"
#include "RskfProbe.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

double Share(const TRskfJob& Job, bool Bounded) {
  TRskfProbe nester(Job);
  EXPECT_TRUE(nester.Pass(Bounded));
  const TNestedRects list = nester.Layout();
  EXPECT_EQ(CheckRectLayout(list, Job.Plate(), Job.Gap, Job.Demand()), "");
  double area = 0;
  for (const TNestedRect& placed : list) area += placed.Part.BoundBox.Area();
  return area / Job.Plate().Area();
}

TEST(RskfPass, KnownPlates) {
  const int any = 9999;
  EXPECT_DOUBLE_EQ(Share({50, 30, {Part(any, 21, 13), Part(any, 17, 9)}}, false), 0.874);
  EXPECT_NEAR(Share({100, 60, {Part(any, 33, 21), Part(any, 17, 12), Part(any, 29, 8)}}, false), 0.989333, 1e-6);
  EXPECT_DOUBLE_EQ(Share({100, 100, {Part(any, 35, 25)}}, false), 0.875);
  EXPECT_DOUBLE_EQ(Share({20, 10, {Part(4, 10, 5)}}, true), 1);
  EXPECT_DOUBLE_EQ(Share({14, 14, {Part(3, 7, 5)}}, true), 70.0 / 196)
      << "the cells of one keep the layout that came first, and the third does not fit to theirs";
  EXPECT_EQ(Share({5, 5, {Part(any, 9, 3)}}, false), 0);
  EXPECT_EQ(Share({5, 5, {}}, true), 0);
}

struct TSmallJob {
  int L;
  int W;
  TIntBoxList Boxes;
  bool CanRotate;
};

TSmallJob SmallJob(unsigned Seed) {
  std::mt19937 random(Seed);
  const auto from = [&](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
  TSmallJob job{from(10, 50), from(10, 40), {}, from(0, 1) == 1};
  if (job.L < job.W) std::swap(job.L, job.W);
  const bool weighted = from(0, 2) == 0;
  for (int i = from(1, 6); i >= 0; --i) {
    const int a = from(2, job.L / 2);
    const int b = from(2, job.W / 2 + 1);
    job.Boxes.emplace_back(a, b, i, from(1, 6), weighted ? Int64{a} * b * from(5, 15) : Int64{a} * b * 10);
  }
  return job;
}

Int64 PassValue(const TSmallJob& Job, bool Bounded) {
  TIntBoxList boxes = Job.Boxes;
  if (!Bounded)
    for (TIntBox& box : boxes) box.Amount = kAnyAmount;
  const TRaster raster(Job.L, Job.W, boxes, Job.CanRotate, false);
  std::vector<detail::TRasterBox> pieces;
  detail::MergeCongruentBoxes(boxes, pieces, Job.CanRotate, true);
  const detail::TRskfPieceRows rows = detail::PieceRowsOf(boxes, raster, Job.CanRotate);
  const TStopwatch unlimited;
  detail::TRskfBudget budget(unlimited, 0);
  detail::TRskfTables tables;
  detail::TRskfCell best;
  const detail::TRskfProblem problem{raster, boxes, rows.Rows, rows.Columns, rows.Boxes};
  EXPECT_TRUE(Bounded ? RunBoundedPass(problem, budget, tables, best)
                      : RunUnboundedPass(problem, budget, tables, best));
  return tables.F.At(best.Row, best.Column);
}

// A row inherited from the left is not among the cuts of a column, so the pass may miss the best layout.
TEST(RskfPass, UnboundedValuesAreNearlyAlwaysThoseOfAnExhaustiveSearch) {
  int jobs = 0;
  int equal = 0;
  ForEachSeed(2000, [&](unsigned seed) {
    const TSmallJob job = SmallJob(seed);
    const Int64 best = TGuillotineOptimum(job.L, job.W, job.Boxes, job.CanRotate).At(job.L, job.W);
    const Int64 found = PassValue(job, false);
    EXPECT_LE(found, best);
    EXPECT_GE(static_cast<double>(found), 0.86 * static_cast<double>(best));
    EXPECT_LE(PassValue(job, true), found);
    ++jobs;
    if (found == best) ++equal;
  });
  EXPECT_GE(equal, 0.97 * jobs) << jobs;
}

TEST(RskfPass, CountsKeepTheAmountsAlsoAtSixteenBits) {
  TRskfProbe many({4000, 20, {Part(70000, 1, 1)}});
  ASSERT_TRUE(many.Pass(true));
  EXPECT_EQ(many.Value(), 65535 * 100);

  // Limits of one, two, 255, 256 and 65535 copies, in several words.
  TIntBoxList boxes;
  for (const int amount : {1, 2, 255, 256, 70000, 65535, 32767, 32768, 3}) boxes.emplace_back(1, 1, 0, amount, 1);
  const detail::TPiecePacking packing(boxes, 100000);
  ASSERT_EQ(packing.Words(), 2);
  for (int b = 0; b < Size(boxes); ++b) {
    const int limit = std::min(boxes[b].Amount, 65535);
    std::vector<detail::TWord> one(2);
    packing.SetSingle(one.data(), b);
    std::vector<detail::TWord> full{one[0] * limit, one[1] * limit};
    EXPECT_EQ(packing.CountOf(full.data(), b), limit);
    EXPECT_TRUE(packing.Holds(full.data(), one.data()));
    EXPECT_EQ(packing.Holds(one.data(), full.data()), limit == 1);
    const auto breaks = [&](const std::vector<detail::TWord>& first, const std::vector<detail::TWord>& second) {
      const auto over = [&](int w) { return (first[w] + second[w] + packing.Bias()[w]) & packing.Guards()[w]; };
      return (over(0) | over(1)) != 0;
    };
    EXPECT_TRUE(breaks(full, one));
    EXPECT_FALSE(breaks({full[0] - one[0], full[1] - one[1]}, one));
  }
}

TRskfJob BusyJob() {
  TRskfJob job{600, 300, {}};
  for (int i = 0; i < 12; ++i) job.Parts.push_back(Part(5, 40 + i * 37 % 89, 21 + i * 23 % 59));
  return job;
}

TEST(RskfPass, StopsByFlagTokenAndBudgetAndLeavesTheResultAlone) {
  const auto isStopped = [](double budgetMs, const TStopwatch& watch) {
    TStopwatch shared = watch;
    TRskfProbe nester(BusyJob(), budgetMs, shared);
    bool stopped = true;
    for (const bool bounded : {false, true}) {
      stopped = !nester.Pass(bounded) && stopped;
      EXPECT_EQ(nester.Column == 0, stopped);
    }
    return stopped;
  };
  TFakeClock clock;
  const TStopwatch running = TStopwatch::StartNew();
  clock.AdvanceMs(100);
  EXPECT_TRUE(isStopped(100, running)) << "at the limit";
  EXPECT_FALSE(isStopped(100.5, running));
  EXPECT_FALSE(isStopped(0.5, TStopwatch())) << "a watch that never ran";
  clock.AdvanceAtEachReading(10);
  EXPECT_TRUE(isStopped(1000, running)) << "on the way";
  const double before = Clock::NowMs();
  EXPECT_FALSE(isStopped(0, running));
  EXPECT_EQ(Clock::NowMs() - before, 10) << "without a limit nobody looks at the clock";

  TStopToken token;
  token.RequestStop();
  {
    const TStopTokenScope scope(&token);
    EXPECT_TRUE(isStopped(0, running));
  }
  RectNestTerminated = true;
  EXPECT_TRUE(isStopped(0, running));
  RectNestTerminated = false;
}

TEST(RskfPass, MemoryIsTakenByRowsAndColumnsNotByCells) {
  TRskfProbe nester(BusyJob());
  const Int64 points = nester.Raster.SizeL + nester.Raster.SizeW;
  for (const bool bounded : {false, true}) {
    const TAllocationCounter counter;
    ASSERT_TRUE(nester.Pass(bounded));
    EXPECT_LT(counter.Count(), 10 * points);
    EXPECT_GT(Int64{nester.Raster.SizeL} * nester.Raster.SizeW, 100 * points) << "or it would prove nothing";
  }
}

}  // namespace
}  // namespace platenest
