#include "RskfDrivers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "FakeClock.h"
#include "ForEachSeed.h"
#include "RskfRasterRules.h"
#include "RskfTables.h"
#include "platenest/URectNest/RSKF.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr Int64 kPlenty = Int64{1} << 50;

struct TJob {
  double Width;
  double Height;
  TNestRectList Parts;
  double Gap = 0;
  int Digit = 0;
  double TimeLimit = 0;
  bool Weighted = false;
};

TNestRect Part(int Amount, double Width, double Height) {
  TNestRect part(Amount, 77, TVRect2D::FromSize(Width, Height));
  part.Area = part.BoundBox.Area();
  return part;
}

// The three of 14 by 14: the pass finds two, since the cells that hold a single one are in use for the pair.
TJob ThreeInASquare() {
  return {14, 14, {Part(3, 7, 5)}};
}

struct TProbe : TRSKF {
  explicit TProbe(const TJob& Job)
      : TRSKF(TVRect2D::FromSize(Job.Width, Job.Height).Translate({7, -3}), Job.Parts, Job.Gap, Job.TimeLimit,
              Job.Digit, Job.Weighted) {}
  using TRSKF::CheckResidual, TRSKF::NestLShape, TRSKF::PrepareRaster, TRSKF::RSkfCoreAlg, TRSKF::TryFilling;
};

void ExpectValid(const TNestedRects& List, const TJob& Job, int From = 0) {
  TNestRectList demand = Job.Parts;
  for (int i = 0; i < Size(demand); ++i) demand[i].Idx = i;
  const TNestedRects list(std::vector(List.begin() + From, List.end()));
  EXPECT_EQ(CheckRectLayout(list, TVRect2D::FromSize(Job.Width, Job.Height), Job.Gap, demand), "");
}

double Usage(const TJob& Job, TNestedRects List = {}) {
  const int before = List.Count();
  const double usage = TProbe(Job).RunMultiRectNest(List, true, false);
  ExpectValid(List, Job, before);
  return usage;
}

TEST(RskfRaster, UnitsGetCoarserUntilMemoryTimeAndPositionsAllow) {
  using namespace detail;
  std::vector<int> chain{100};
  while (chain.back() > -4) chain.push_back(CoarserAmplification(chain.back()));
  EXPECT_EQ(chain, (std::vector{100, 50, 25, 12, 6, 3, 1, -2, -4}));

  EXPECT_EQ(CellLimit(true, TimeFactor(10000, 10)), 63639610);
  const auto accepted = [](int l, int w, bool bounded, double limit = 0, Int64 memory = kPlenty) {
    return IsRasterAccepted({l, w, 10, bounded}, memory, TimeFactor(limit, 10));
  };
  const std::tuple<bool, double, int> highest[] = {{false, 0, 5999},    {true, 0, 2999},      {true, 5000, 2999},
                                                   {true, 10000, 7976}, {false, 10000, 5999}, {true, 5001, 948 - 1}};
  for (const auto& [bounded, limit, w] : highest) {
    EXPECT_TRUE(accepted(20000, w, bounded, limit)) << limit;
    EXPECT_FALSE(accepted(20000, w + 1, bounded, limit)) << limit;
  }
  EXPECT_FALSE(accepted(20001, 10, false));
  EXPECT_FALSE(accepted(20001, 10, true, 1e300));
  // 100 by 100 cells of 72 bytes, or of one.
  EXPECT_TRUE(accepted(99, 97, true, 0, 900'001));
  EXPECT_FALSE(accepted(99, 97, true, 0, 900'000));
  EXPECT_TRUE(accepted(99, 97, false, 0, 12'501));
  EXPECT_FALSE(CanBuildRaster(1'000'000'001, 1, kPlenty));
}

TEST(RskfRaster, CoarseningEndsWhateverTheMemory) {
  const TJob job{100, 60, {Part(9999, 33, 21), Part(9999, 17, 12)}, 0, 2};
  const auto lengthWith = [&](Int64 memory) {
    const TFreeMemoryScope scope([=] { return memory; });
    TRaster raster;
    if (!TProbe(job).PrepareRaster(raster, true, false)) return 0;
    return raster.RasterL.back();
  };
  EXPECT_EQ(lengthWith(kPlenty), 10000);
  EXPECT_EQ(lengthWith(0), 10000) << "not known";
  EXPECT_EQ(lengthWith(16 * 2 * 1500), 1200);
  EXPECT_EQ(lengthWith(1), 0);
  const TFreeMemoryScope scope([] { return 1500; });
  EXPECT_GT(Usage(job), 0) << "with halves of the units";
}

TEST(RskfDrivers, KnownUsages) {
  EXPECT_NEAR(Usage({50, 30, {Part(9999, 21, 13), Part(9999, 17, 9)}}), 0.874, 0.0005);
  EXPECT_NEAR(Usage({100, 60, {Part(9999, 33, 21), Part(9999, 17, 12), Part(9999, 29, 8)}}), 0.989333, 1e-6);
  EXPECT_NEAR(Usage({100, 100, {Part(9999, 35, 25)}}), 0.875, 1e-9);
  EXPECT_NEAR(Usage({20, 10, {Part(4, 10, 5)}}), 1, 1e-9);
  EXPECT_NEAR(Usage(ThreeInASquare()), 105.0 / 196, 1e-9) << "two by the pass, one by the filling";
  EXPECT_NEAR(Usage({21, 10, {Part(4, 10, 4.5)}, 1, 1}), 180.0 / (22 * 11), 1e-9) << "the gap around the plate counts";
  EXPECT_NEAR(Usage({14, 14, {Part(0, 7, 5)}}, {TNestedRect(Part(1, 49, 2), false, {})}), 0.5, 1e-9)
      << "what was in the list counts, too";
  TJob weighted{10, 10, {Part(1, 10, 10), Part(1, 6, 6)}, 0, 0, 0, true};
  weighted.Parts[1].Area = 1000;
  EXPECT_NEAR(Usage(weighted), 0.36, 1e-9) << "the box, whatever the part is worth";
}

TEST(RskfDrivers, ARunCanBeRepeated) {
  const TJob job{100, 60, {Part(3, 33, 21), Part(7, 17, 12)}};
  TProbe nester(job);
  TNestedRects first;
  TNestedRects second;
  EXPECT_EQ(nester.RunMultiRectNest(first, true, false), nester.RunMultiRectNest(second, true, false));
  EXPECT_GT(second.Count(), 0);
}

TEST(RskfDrivers, ResidualStripsHoldABoxThatHasCopiesLeft) {
  const auto isLeftBy = [](int amount, int length, int width) {
    TProbe nester({14, 14, {Part(amount, 7, 5)}});
    TRaster raster;
    detail::TRskfTables tables;
    int column = 0;
    int row = 0;
    EXPECT_TRUE(nester.PrepareRaster(raster, true, true) && nester.RSkfCoreAlg(raster, column, row, tables));
    return nester.CheckResidual(raster, raster.IndexL[length], raster.IndexW[width]);
  };
  EXPECT_TRUE(isLeftBy(5, 7, 14));
  EXPECT_TRUE(isLeftBy(5, 14, 7));
  EXPECT_FALSE(isLeftBy(5, 10, 14)) << "a strip of 4";
  EXPECT_FALSE(isLeftBy(5, 14, 14));
  EXPECT_FALSE(isLeftBy(4, 7, 7)) << "all copies are placed";
}

// The placements of a run of the block of one rectangle and what is nested around it.
TNestedRects BigFirst(const TJob& Job, double ExpectedArea, bool CanRotate = true) {
  TNestedRects list{TNestedRect(Part(1, 1, 1), false, {500, 500})};
  const double area = TProbe(Job).RunBigFirstNest(list, 0, CanRotate, false);
  EXPECT_NEAR(area, detail::PlacedArea(list) - 1, 1e-6) << "without what was in the list";
  EXPECT_NEAR(area, ExpectedArea > 0 ? ExpectedArea : area, 1e-6);
  ExpectValid(list, Job, 1);
  list.erase(list.begin());
  return list;
}

TEST(RskfBigFirst, BlocksAreTheLargestGridThatTheAmountAllows) {
  const auto grid = [](int a, int b, int amount) {
    const detail::TGridPair pair = detail::LargestGrid(a, b, amount);
    return std::pair(pair.First, pair.Second);
  };
  EXPECT_EQ(grid(3, 3, 7), std::pair(3, 2));
  EXPECT_EQ(grid(5, 4, 17), std::pair(4, 4));
  EXPECT_EQ(grid(4, 6, 11), std::pair(2, 5));
  EXPECT_EQ(grid(4, 0, 24), std::pair(4, 0));
  EXPECT_EQ(grid(1 << 30, 1 << 30, 9), std::pair(9, 1));
  EXPECT_EQ(grid(4, 6, 0), std::pair(0, 0));

  const TNestedRects straight = BigFirst({31, 19, {Part(7, 9, 5)}, 2}, 7 * 45);
  EXPECT_EQ(straight[5].Trans, TPoint2D(22, 7)) << "3 by 2, column by column";
  EXPECT_FALSE(straight[5].IsRotate);
  const TNestedRects turned = BigFirst({31, 31, {Part(7, 9, 9)}, 2}, 7 * 81);
  EXPECT_TRUE(turned[5].IsRotate) << "of equal counts the turned";
  EXPECT_EQ(turned[5].Trans, TPoint2D(20, 22)) << "2 by 3";
}

TEST(RskfBigFirst, TheRestIsCutInTheBetterOfTwoWays) {
  EXPECT_EQ(BigFirst({30, 20, {Part(1, 10, 10), Part(1, 20, 20)}}, 500).Count(), 2) << "full height beside";
  EXPECT_EQ(BigFirst({20, 30, {Part(1, 10, 10), Part(1, 20, 20)}}, 500).Count(), 2) << "full width above";
  const TVRect2D tied = BigFirst({20, 20, {Part(1, 10, 10), Part(1, 10, 10)}}, 200)[1].BoundBox();
  EXPECT_NEAR(tied.Left, 10, 1e-9) << "beside first, not above first";
  EXPECT_NEAR(tied.Bottom, 0, 1e-9);
  EXPECT_EQ(BigFirst({20, 10, {Part(1, 30, 30), Part(9, 10, 10)}}, 200).Count(), 2) << "without a block";
}

TEST(RskfBigFirst, TheFillingOfTheRestIsLostAndTheRestKnowsNoValues) {
  // A filling would find the place of the block free.
  EXPECT_EQ(BigFirst({20, 10, {Part(1, 10, 10), Part(4, 10, 5)}}, 200).Count(), 3);
  TJob weighted{20, 10, {Part(1, 10, 10), Part(1, 9, 10), Part(1, 6, 6)}};
  weighted.Parts[2].Area = 1e6;
  weighted.Weighted = true;
  EXPECT_EQ(BigFirst(weighted, 190)[1].Part.Idx, 1);
  TNestedRects list;
  EXPECT_THROW(TProbe(weighted).RunBigFirstNest(list, 3, true, false), TRangeError);
}

TJob RandomJob(std::mt19937& Random) {
  const auto whole = [&](int low, int high) { return std::uniform_int_distribution(low, high)(Random); };
  const int digit = whole(0, 2);
  const int units = digit == 2 ? 100 : digit == 1 ? 10 : 1;
  const auto length = [&](int low, int high) { return 1.0 * whole(low * units, high * units) / units; };
  TJob job{length(30, 400), length(30, 400), {}, length(0, 5) * whole(0, 1), digit};
  job.Weighted = whole(0, 1) == 1;
  for (int i = whole(1, 8); i > 0; --i) {
    job.Parts.push_back(Part(whole(1, 200), length(3, 200), length(3, 200)));
    job.Parts.back().Area *= whole(1, 3);
  }
  return job;
}

TEST(RskfDrivers, RandomLayoutsAreValidWithLittleMemoryAndTimeToo) {
  ForEachSeed(150, [](unsigned seed) {
    std::mt19937 random(seed);
    TJob job = RandomJob(random);
    job.TimeLimit = seed % 5 == 0 ? 1 : 0;
    TFakeClock clock;
    clock.AdvanceAtEachReading(seed % 5 == 0 ? static_cast<double>(random() % 300) : 0);
    const Int64 memory = seed % 3 == 0 || job.Digit > 0 ? random() % 2'000'000 : kPlenty;
    const TFreeMemoryScope scope([&] { return memory; });
    TNestedRects list;
    const double usage = TProbe(job).RunMultiRectNest(list, seed % 4 != 0, seed % 7 == 0);
    ExpectValid(list, job);
    EXPECT_NEAR(usage, detail::PlacedArea(list) / ((job.Width + job.Gap) * (job.Height + job.Gap)), 1e-12);
    BigFirst(job, 0, seed % 4 != 0);
  });
}

TEST(RskfDrivers, WithoutALimitNoClockIsReadAndWithOneAPassThatRunsOutGivesNothing) {
  TJob job{100, 100, {Part(4, 50, 50)}};
  int readings = 0;
  const auto countWith = [&](double limit, double msPerReading) {
    job.TimeLimit = limit;
    readings = 0;
    const TClockScope scope([&] { return ++readings * msPerReading; });
    return Usage(job);
  };
  EXPECT_EQ(countWith(0, 0), 1);
  EXPECT_EQ(readings, 0);
  EXPECT_EQ(countWith(1, 0), 1);
  EXPECT_EQ(countWith(1, 5999), 1) << "five seconds are added";
  EXPECT_EQ(countWith(1, 6001), 0);
}

TEST(RskfDrivers, AStopLeavesWhatWasLaidBefore) {
  const TJob job{300, 200, {Part(4, 90, 70), Part(9, 37, 23), Part(60, 13, 11)}, 1, 1, 60};
  std::vector<int> counts;
  for (int stopAt = 1; stopAt < 200; stopAt += 7) {
    TStopToken token;
    const TStopTokenScope scope(&token);
    int readings = 0;
    const TClockScope clock([&] {
      if (++readings == stopAt) token.RequestStop();
      return 0.0;
    });
    counts.push_back(BigFirst(job, 0).Count());
  }
  EXPECT_EQ(counts.front(), 4) << "the block alone";
  EXPECT_GT(counts.back(), 4);
  RectNestTerminated = true;
  EXPECT_EQ(Usage(job), 0);
  RectNestTerminated = false;
}

}  // namespace
}  // namespace platenest
