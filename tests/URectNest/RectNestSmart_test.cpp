#include "platenest/URectNest/RectNestSmart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "AllocationCounter.h"
#include "FakeClock.h"
#include "ForEachSeed.h"
#include "FreeRectangles.h"
#include "SmartFit.h"
#include "SmartPass.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

struct TSize {
  double Width;
  double Height;
  int Amount;
};

TNestRectList Parts(std::initializer_list<TSize> Sizes) {
  TNestRectList list;
  for (const TSize& size : Sizes)
    list.emplace_back(size.Amount, static_cast<int>(list.size()), TVRect2D::FromSize(size.Width, size.Height));
  return list;
}

struct TOutcome {
  double Usage = 0;
  bool Success = false;
  TNestedRects Layout;
};

TOutcome Nested(const TVRect2D& Plate, const TNestRectList& List, double Gap = 0, std::vector<bool> Locked = {}) {
  TRectNestSmart nest(Plate, List, Gap, 0.9);
  nest.LockTurns(std::move(Locked));
  TOutcome outcome;
  outcome.Usage = nest.OutNest(outcome.Layout, outcome.Success);
  EXPECT_EQ(outcome.Success, outcome.Usage >= 0.9);
  EXPECT_EQ(CheckRectLayout(outcome.Layout, TVRect2D::FromSize(Plate.Width(), Plate.Height()), Gap, List,
                            {.NegativeAmountIsNoLimit = true}),
            "");
  return outcome;
}

TVRect2D Plate(double Width, double Height) {
  return TVRect2D::FromSize(Width, Height);
}

TEST(RectNestSmart, ReachesTheUsageOfKnownJobs) {
  EXPECT_NEAR(Nested(Plate(100, 50), Parts({{30, 20, 10}})).Usage, 0.96, 1e-9);
  EXPECT_NEAR(Nested(Plate(12, 8), Parts({{6, 5, 2}, {4, 3, 4}})).Usage, 1.0, 1e-9);
  EXPECT_NEAR(Nested(Plate(10, 10), Parts({{5, 5, 4}})).Usage, 1.0, 1e-9) << "only a late form fits at all";
  EXPECT_NEAR(Nested(Plate(10, 10).Translate({7, -3}), Parts({{5, 5, -1}})).Usage, 1.0, 1e-9) << "no end of copies";
  // A gap on all sides of the grown plate: three by two of 40x30 and nothing between them.
  const TOutcome gapped = Nested(Plate(130, 65), Parts({{40, 30, 9}}), 5);
  EXPECT_EQ(gapped.Layout.Count(), 6);
  EXPECT_NEAR(gapped.Usage, 6.0 * 45 * 35 / (135 * 70), 1e-9);
}

TEST(RectNestSmart, TurnsOnlyWhatMayBeTurned) {
  const TNestRectList list = Parts({{10, 40, 1}, {8, 30, 1}});
  const TOutcome free = Nested(Plate(45, 20), list);
  ASSERT_EQ(free.Layout.Count(), 2);
  EXPECT_TRUE(free.Layout[0].IsRotate && free.Layout[1].IsRotate);
  const TOutcome locked = Nested(Plate(45, 20), list, 0, {true});
  ASSERT_EQ(locked.Layout.Count(), 1);
  EXPECT_EQ(locked.Layout[0].Part.Idx, 1);
  EXPECT_EQ(Nested(Plate(45, 20), list, 0, {true, true, true}).Layout.Count(), 0);
}

TEST(RectNestSmart, LeavesOutALargeRunOfTinyParts) {
  EXPECT_EQ(Nested(Plate(200, 100), Parts({{4, 4.9, 101}})).Layout.Count(), 0);
  EXPECT_EQ(Nested(Plate(200, 100), Parts({{4, 4.9, 100}})).Layout.Count(), 100);
  EXPECT_EQ(Nested(Plate(200, 100), Parts({{4, 5, 101}})).Layout.Count(), 101);
  // They count as the thinnest part nevertheless: the strip of 5 beside the first one is room and no waste.
  const TNestRectList list = Parts({{90, 95, 1}, {3, 3, 101}});
  EXPECT_EQ(Nested(Plate(100, 100), list).Layout.Count(), 1);
}

TEST(RectNestSmart, HasNoLayoutForUselessInput) {
  const double nan = std::nan("");
  const double inf = std::numeric_limits<double>::infinity();
  for (const TVRect2D& plate : {Plate(nan, 10), Plate(10, inf), Plate(0, 10), Plate(10, -1)})
    EXPECT_EQ(Nested(plate, Parts({{1, 1, 9}})).Layout.Count(), 0);
  EXPECT_EQ(Nested(Plate(10, 10), Parts({{5, 5, 4}}), nan).Layout.Count(), 0);
  EXPECT_EQ(Nested(Plate(10, 10), {}).Layout.Count(), 0);
  EXPECT_EQ(Nested(Plate(10, 10), Parts({{11, 1, 4}, {5, 5, 0}})).Usage, 0);
  const TOutcome mixed = Nested(Plate(10, 10), Parts({{nan, 5, 1}, {0, 5, 1}, {5, 5, 4}, {inf, 1, 1}, {-5, 5, 1}}));
  ASSERT_EQ(mixed.Layout.Count(), 4);
  EXPECT_EQ(mixed.Layout[0].Part.Idx, 2) << "entries keep their numbers";
}

TEST(RectNestSmart, StopsBetweenPlacementsAndPasses) {
  struct TGuard {
    ~TGuard() { RectNestTerminated = false; }
  } guard;
  RectNestTerminated = true;
  EXPECT_EQ(Nested(Plate(100, 100), Parts({{10, 7, 50}})).Layout.Count(), 0);
}

// A clock that moves Ms at each reading; one reading starts the watch, one follows each pass but the last.
int PassesAt(double Ms, const TNestRectList& List, const TVRect2D& OnPlate) {
  int readings = 0;
  TClockScope scope([&] { return Ms * readings++; });
  Nested(OnPlate, List);
  return readings - 1;
}

TEST(RectNestSmart, SearchesLongerTheWorseTheLayout) {
  const TNestRectList full = Parts({{6, 5, 2}, {4, 3, 4}});
  const TNestRectList half = Parts({{60, 50, 1}});
  EXPECT_EQ(PassesAt(0, half, Plate(100, 60)), 29);
  EXPECT_EQ(PassesAt(0, full, Plate(12, 8)), 2) << "a full plate ends the search after the third pass";
  // Usage 0.5: 17682 ms for the first twelve passes, 3750.75 ms for the rest.
  EXPECT_EQ(PassesAt(5000, half, Plate(100, 60)), 4);
  EXPECT_EQ(PassesAt(300, half, Plate(100, 60)), 13);
  EXPECT_EQ(PassesAt(313, half, Plate(100, 60)), 12);
}

}  // namespace
}  // namespace platenest
