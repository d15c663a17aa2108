#include "RskfDrivers.h"

#include <gtest/gtest.h>

#include "FakeClock.h"
#include "ForEachSeed.h"
#include "RskfProbe.h"
#include "RskfRasterRules.h"
#include "platenest/foundation/Host.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

constexpr Int64 kPlenty = Int64{1} << 50;

// Takes what stood in the list before, a unit square, out of it.
void ExpectValid(TNestedRects& List, const TRskfJob& Job) {
  List.erase(List.begin());
  EXPECT_EQ(CheckRectLayout(List, Job.Plate(), Job.Gap, Numbered(Job.Parts)), "");
}

// The boxes that a run places, in square plate units.
double Nested(const TRskfJob& Job, bool NormalPattern = false) {
  TNestedRects list{Placed(1, 1, 500, 500)};
  const double usage = TRskfProbe(Job).RunMultiRectNest(list, Job.CanRotate, NormalPattern);
  const double area = detail::PlacedArea(list);
  EXPECT_NEAR(usage, area / ((Job.Width + Job.Gap) * (Job.Height + Job.Gap)), 1e-12) << "all that is in the list";
  ExpectValid(list, Job);
  return area - 1;
}

// The placements of a run of the block of the first rectangle and what is nested around it.
TNestedRects BigFirst(const TRskfJob& Job) {
  TNestedRects list{Placed(1, 1, 500, 500)};
  const double area = TRskfProbe(Job).RunBigFirstNest(list, 0, Job.CanRotate, false);
  EXPECT_NEAR(area, detail::PlacedArea(list) - 1, 1e-6) << "without what was in the list";
  ExpectValid(list, Job);
  return list;
}

TEST(RskfRaster, HeightLengthAndMemoryAreLimited) {
  const auto accepted = [](int l, int w, bool bounded, double limit = 0, Int64 memory = kPlenty) {
    return detail::IsRasterAccepted({l, w, 10, bounded}, memory, detail::TimeFactor(limit, 10));
  };
  const std::tuple<bool, double, int> highest[] = {
      {false, 10000, 5999}, {true, 0, 2999}, {true, 5000, 2999}, {true, 10000, 7976}, {true, 5001, 947}};
  for (const auto& [bounded, limit, w] : highest) {
    EXPECT_TRUE(accepted(20000, w, bounded, limit)) << limit;
    EXPECT_FALSE(accepted(20000, w + 1, bounded, limit) || accepted(20001, w, bounded, limit)) << limit;
  }
  // 100 by 100 cells of 72 bytes, or of one.
  EXPECT_TRUE(accepted(99, 97, true, 0, 900'001) && accepted(99, 97, false, 0, 12'501));
  EXPECT_FALSE(accepted(99, 97, true, 0, 900'000) || accepted(99, 97, false, 0, 12'500));
}

TEST(RskfRaster, UnitsGetCoarserWhateverTheMemory) {
  std::vector<int> chain{100};
  while (chain.back() > -4) chain.push_back(detail::CoarserAmplification(chain.back()));
  EXPECT_EQ(chain, (std::vector{100, 50, 25, 12, 6, 3, 1, -2, -4}));
  const auto lengthWith = [](Int64 memory, const TRskfJob& job) {
    const TFreeMemoryScope scope([=] { return memory; });
    TRskfProbe nester(job);
    return nester.Prepare() ? nester.Raster.RasterL.back() : 0;
  };
  const TRskfJob job{100, 60, {Part(9999, 33, 21), Part(9999, 17, 12)}, 0, 2};
  EXPECT_EQ(lengthWith(0, job), 10000) << "not known";
  EXPECT_EQ(lengthWith(16 * 2 * 1500, job), 1200);
  EXPECT_EQ(lengthWith(1, {1.5e9, 1.5e9, {Part(4, 3e8, 1e8)}}), 0) << "down to the last unit";
}

TEST(RskfDrivers, KnownLayouts) {
  EXPECT_NEAR(Nested({50, 30, {Part(9999, 21, 13), Part(9999, 17, 9)}}), 0.874 * 1500, 0.5);
  EXPECT_NEAR(Nested({100, 60, {Part(9999, 33, 21), Part(9999, 17, 12), Part(9999, 29, 8)}}), 5936, 1e-6);
  EXPECT_NEAR(Nested({14, 14, {Part(3, 7, 5)}}), 105, 1e-9) << "two by the pass, one by the filling";
  EXPECT_NEAR(Nested({10, 10, {Part(1, 10, 10), Part(1, 6, 6, 1000)}, 0, 0, 0, true}), 36, 1e-9) << "stated values";
  EXPECT_NEAR(Nested({20, 30, {Part(3, 20, 10)}, 0, 0, 0, false, false}), 400, 1e-9)
      << "unturned three would fit a tall plate";
}

TEST(RskfDrivers, ResidualStripsHoldABoxThatHasCopiesLeft) {
  for (const int amount : {4, 5}) {
    TRskfProbe nester({14, 14, {Part(amount, 7, 5)}});
    ASSERT_TRUE(nester.Prepare() && nester.Pass(true));
    const auto isLeftBy = [&](int l, int w) {
      return nester.CheckResidual(nester.Raster, nester.Raster.IndexL[l], nester.Raster.IndexW[w]);
    };
    EXPECT_EQ(isLeftBy(7, 14) && isLeftBy(14, 7), amount == 5) << "of 4 all are placed";
    EXPECT_FALSE(isLeftBy(10, 14) || isLeftBy(14, 14)) << "strips of 4 and 0";
  }
}

TEST(RskfBigFirst, BlocksAreTheLargestGridThatTheAmountAllows) {
  const auto grid = [](int a, int b, int amount) {
    const detail::TGridPair pair = detail::LargestGrid(a, b, amount);
    return std::pair(pair.First, pair.Second);
  };
  EXPECT_EQ(grid(3, 3, 7), std::pair(3, 2));
  EXPECT_EQ(grid(5, 4, 17), std::pair(4, 4));
  EXPECT_EQ(grid(4, 6, 11), std::pair(2, 5));
  EXPECT_EQ(grid(1 << 30, 1 << 30, 9), std::pair(9, 1));
  EXPECT_EQ(BigFirst({31, 19, {Part(7, 9, 5)}, 2})[5].Trans, TPoint2D(22, 7)) << "3 by 2, column by column";
  const TNestedRect tied = BigFirst({31, 31, {Part(7, 9, 9)}, 2})[5];
  EXPECT_TRUE(tied.IsRotate && tied.Trans == TPoint2D(20, 22)) << "2 by 3";
}

TEST(RskfBigFirst, TheRestIsCutInTheBetterOfTwoWaysAndKnowsNoValues) {
  EXPECT_EQ(BigFirst({30, 20, {Part(1, 10, 10), Part(1, 20, 20)}}).Count(), 2) << "full height beside";
  EXPECT_EQ(BigFirst({20, 30, {Part(1, 10, 10), Part(1, 20, 20)}}).Count(), 2) << "full width above";
  const TVRect2D tied = BigFirst({20, 20, {Part(1, 10, 10), Part(1, 10, 10)}})[1].BoundBox();
  EXPECT_NEAR(tied.Bottom, 0, 1e-9) << "beside first, not above first";
  const TNestRectList weighted{Part(1, 10, 10), Part(1, 9, 10), Part(1, 6, 6, 1e6)};
  EXPECT_EQ(BigFirst({20, 10, weighted, 0, 0, 0, true})[1].Part.Idx, 1);
  // A filling would find the place of the block free.
  EXPECT_EQ(BigFirst({20, 10, {Part(1, 10, 10), Part(4, 10, 5)}}).Count(), 3);
}

TEST(RskfDrivers, RandomLayoutsAreValidWithLittleMemoryAndTimeToo) {
  ForEachSeed(150, [](unsigned seed) {
    TDice from(seed);
    const int units = seed % 2 == 0 ? 10 : 1;
    const auto length = [&](int low, int high) { return 1.0 * from(low * units, high * units) / units; };
    TRskfJob job{length(30, 400), length(30, 400), {}, length(0, 5) * from(0, 1), units / 10, seed % 5 == 0 ? 1.0 : 0};
    job.Weighted = from(0, 1) == 1;
    job.CanRotate = seed % 4 != 0;
    for (int i = from(1, 8); i > 0; --i) job.Parts.push_back(Part(from(1, 200), length(3, 200), length(3, 200), i));
    TFakeClock clock;
    clock.AdvanceAtEachReading(seed % 5 == 0 ? from(0, 300) : 0);
    const TFreeMemoryScope scope([free = seed % 3 == 0 ? from(1, 2'000'000) : kPlenty] { return free; });
    Nested(job, seed % 7 == 0);
    BigFirst(job);
    if (seed % 5 == 0) return;
    TRskfProbe repeated(job);
    TNestedRects first, second;
    EXPECT_EQ(repeated.RunMultiRectNest(first, true, false), repeated.RunMultiRectNest(second, true, false));
  });
}

TEST(RskfDrivers, ALimitStopsThePassAndAStopLeavesTheBlock) {
  int readings = 0;
  const auto nestedWith = [&](double limit, double msPerReading) {
    readings = 0;
    const TClockScope scope([&] { return ++readings * msPerReading; });
    return Nested({100, 100, {Part(4, 50, 50)}, 0, 0, limit});
  };
  EXPECT_EQ(nestedWith(1, 5999), 10000) << "five seconds are added";
  EXPECT_EQ(nestedWith(1, 6001), 0);
  EXPECT_EQ(nestedWith(0, 1e9), 10000);
  EXPECT_EQ(readings, 0);
  RectNestTerminated = true;
  EXPECT_EQ(nestedWith(0, 0), 0);
  EXPECT_EQ(BigFirst({300, 200, {Part(4, 90, 70), Part(60, 13, 11)}, 1, 1}).Count(), 4);
  RectNestTerminated = false;
}

}  // namespace
}  // namespace platenest
