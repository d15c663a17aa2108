#include "platenest/URectNest/RectNestSmart.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <thread>
#include <tuple>
#include <utility>

#include "AllocationCounter.h"
#include "ForEachSeed.h"
#include "FreeRectangles.h"
#include "SmartFit.h"
#include "SmartPass.h"
#include "platenest/foundation/Clock.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

TNestRectList Parts(std::initializer_list<std::tuple<double, double, int>> Sizes) {
  TNestRectList list;
  for (const auto& [width, height, amount] : Sizes)
    list.emplace_back(amount, Size(list), TVRect2D::FromSize(width, height));
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
  EXPECT_NEAR(Nested(Plate(10, 10), Parts({{5, 5, 4}})).Usage, 1.0, 1e-9) << "only a late form fits at all";
  EXPECT_NEAR(Nested(Plate(10, 10).Translate({7, -3}), Parts({{5, 5, -1}})).Usage, 1.0, 1e-9) << "no end of copies";
  EXPECT_NEAR(Nested(Plate(100 * 1.1, 75 * 1.1), Parts({{15 * 1.1, 45 * 1.1, 6}, {85 * 1.1, 15 * 1.1, 8}})).Usage, 0.95,
              1e-9)
      << "rounding leaves room for sides that add up";
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
}

TEST(RectNestSmart, HasNoLayoutForUselessInput) {
  const double nan = std::nan("");
  const double inf = std::numeric_limits<double>::infinity();
  for (const TVRect2D& plate : {Plate(nan, 10), Plate(10, inf), Plate(0, 10), Plate(10, -1), Plate(1e-200, 1e-200)})
    EXPECT_EQ(Nested(plate, Parts({{1, 1, 9}})).Usage, 0);
  EXPECT_EQ(Nested(Plate(10, 10), Parts({{5, 5, 4}}), nan).Usage, 0);
  EXPECT_EQ(Nested(Plate(10, 10), {}).Usage, 0);
  EXPECT_EQ(Nested(Plate(10, 10), Parts({{11, 1, 4}, {5, 5, 0}})).Usage, 0);
  const TOutcome mixed = Nested(Plate(10, 10), Parts({{nan, 5, 1}, {0, 5, 1}, {5, 5, 4}, {inf, 1, 1}, {-5, 5, 1}}));
  ASSERT_EQ(mixed.Layout.Count(), 4);
  EXPECT_EQ(mixed.Layout[0].Part.Idx, 2) << "entries keep their numbers";
}

// How often the clock, which moves Ms at each reading, is asked whether another pass is worth it.
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
  // The plain fit of a quarter of the plate is below 0. It is not where thinner parts exist, if only with no copies
  // left.
  EXPECT_EQ(PassesAt(0, Parts({{5, 5, 4}}), Plate(10, 10)), 6);
  EXPECT_EQ(PassesAt(0, Parts({{5, 5, 4}, {1, 1, 0}}), Plate(10, 10)), 2);
  // Usage 0.5: 17682 ms for the first twelve passes, 3750.75 ms for the rest.
  EXPECT_EQ(PassesAt(5000, half, Plate(100, 60)), 4);
  EXPECT_EQ(PassesAt(300, half, Plate(100, 60)), 13);
  EXPECT_EQ(PassesAt(313, half, Plate(100, 60)), 12);
}

TEST(RectNestSmart, StopsBetweenPlacementsWithAValidLayout) {
  TNestRectList list;
  for (int i = 0; i < 1000; ++i) list.emplace_back(100, i, Plate(20 + i * 37 % 160, 20 + i * 53 % 161));
  TStopToken token;
  const TStopTokenScope scope(&token);
  std::jthread stopper([&token] {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    token.RequestStop();
  });
  EXPECT_LT(Nested(Plate(12000, 95000), list, 1).Layout.Count(), 100000) << "a pass alone takes seconds";
  EXPECT_EQ(Nested(Plate(100, 60), list).Layout.Count(), 0);
}

TEST(RectNestSmart, OfEqualUsageTheTighterLayoutWins) {
  const TOutcome outcome = Nested(Plate(105, 92), Parts({{49, 25, 1}, {35, 42, 2}}));
  EXPECT_EQ(outcome.Layout.Count(), 3);
  // Turned ones among them: boxes that miss their place by the turn would choose 6164, which the first form leaves.
  EXPECT_NEAR(outcome.Layout.BoundBox().Area(), 5520, 1e-6);
}

// A code of every place under every form, at two scales, got from a plain program without caches and shortcuts: an
// unintended change of the fit, the contact lengths, the free rectangles or an order shows here.
TEST(RectNestSmart, EachFormKeepsItsLayout) {
  const std::vector<bool> unlocked;
  TNestedRects layout;
  std::uint64_t code = 0;
  for (const auto& [scale, gap] : {std::pair{1.0, 0.0}, {1.0, 1.5}, {0.1, 0.0}, {0.1, 0.15}}) {
    TNestRectList list = Parts({{23, 11, 6}, {17, 29, 5}, {8, 31, 9}, {13, 13, 7}});
    for (TNestRect& part : list) part.BoundBox = part.BoundBox * scale;
    detail::TSmartPass pass(list, unlocked, detail::SmartGrown(Plate(90, 90) * scale, gap), gap, 8 * scale + gap);
    for (int form = 0; form < detail::kSmartForms; ++form) {
      pass.Nest(form, layout);
      for (const TNestedRect& item : layout)
        code = code * 31 + Round<std::uint64_t>((item.Trans.X * 14 + item.Trans.Y * 2) / scale + item.Part.Idx * 1000);
    }
  }
  EXPECT_EQ(code, 10245379251680210641U);
}

TEST(RectNestSmart, RandomLayoutsKeepPlateGapAmountsAndLocks) {
  ForEachSeed(150, [](unsigned Seed) {
    std::mt19937 random(Seed);
    const auto draw = [&](int Least, int Most) { return std::uniform_int_distribution<int>(Least, Most)(random); };
    const double scale = std::array{0.01, 0.1, 1.0, 37.7}[draw(0, 3)];
    const double gap = draw(0, 1) * draw(1, 50) / 10.0 * scale;
    TNestRectList list;
    std::vector<bool> locked;
    for (int i = draw(1, 12); i > 0; --i) {
      list.emplace_back(draw(0, 4) == 0 ? draw(90, 120) : draw(0, 20), Size(list),
                        TVRect2D::FromSize(draw(10, 900) / 10.0 * scale, draw(10, 700) / 10.0 * scale));
      locked.push_back(draw(0, 1) == 1);
    }
    const TVRect2D plate = Plate(draw(60, 300) * scale, draw(40, 200) * scale);
    for (const TNestedRect& item : Nested(plate, list, gap, locked).Layout)
      EXPECT_FALSE(item.IsRotate && locked[item.Part.Idx]);
  });
}

// The free rectangle is 100 by 100 at the origin.
TEST(FreeRectangles, TellHowABoxLiesToThem) {
  struct TCase {
    double Left, Bottom, Right, Top;
    detail::TVecRelation Relation;
    int Corner;
  };
  using enum detail::TVecRelation;
  const TCase cases[] = {
      {101, 0, 120, 20, vrNone, 0},        {100.0002, 0, 120, 20, vrNone, 0}, {100.00005, 10, 120, 20, vrPoke, 3},
      {70, 70, 120, 120, vrCorner, 0},     {-20, 70, 30, 120, vrCorner, 1},   {-20, -20, 30, 30, vrCorner, 2},
      {70, -20, 120, 30, vrCorner, 3},     {30, 70, 60, 120, vrPoke, 0},      {-20, 30, 30, 60, vrPoke, 1},
      {30, -20, 60, 30, vrPoke, 2},        {70, 30, 120, 60, vrPoke, 3},      {-20, -20, 120, 30, vrSide, 0},
      {70, -20, 120, 120, vrSide, 1},      {-20, 70, 120, 120, vrSide, 2},    {-20, -20, 30, 120, vrSide, 3},
      {-20, 30, 120, 60, vrCross, 0},      {30, -20, 60, 120, vrCross, 1},    {10, 10, 20, 20, vrBoxInside, 0},
      {-1, -1, 101, 101, vrFreeInside, 0}, {30, 0, 60, 100, vrCross, 0},  // level at both ends: both sides are lost
      {-20, -20, 100, 30, vrCorner, 0},                                   // all that is above is lost
  };
  const TAllocationCounter allocations;
  for (const TCase& c : cases) {
    const auto contact = detail::VecRelation(Plate(100, 100), TVRect2D::FromBounds(c.Top, c.Left, c.Bottom, c.Right));
    EXPECT_TRUE(contact.Relation == c.Relation && contact.Corner == c.Corner) << c.Left << ' ' << c.Bottom;
  }
  detail::TSmartFit fit(5);
  const std::array<detail::TSmartTrial, 2> trials = {{{50, 45, 0, false}, {50, 45, 1, true}}};
  for (int form = 0; form < detail::kSmartForms; ++form) {
    fit.SetForm(form);
    EXPECT_EQ(fit.Choose(50, 45, trials).Part, 0) << "first of equals";
  }
  EXPECT_EQ(allocations.Count(), 0);
}

TEST(SmartPass, ShiftsLeftUpToWhatItFaces) {
  const auto item = [](double X, double Y, bool Turned = false) {
    return TNestedRect(TNestRect(1, 0, Plate(30, 20)), Turned, {X, Y});
  };
  TNestedRects list{item(0, 0), item(40, 10), item(75, 24, true), item(90, 32), item(200000, 500)};
  detail::ShiftLeft(list, 2);
  EXPECT_EQ(list[1].Trans, TPoint2D(32, 10));
  EXPECT_EQ(list[2].Trans, TPoint2D(64, 24)) << "behind the second one where that is now";
  EXPECT_EQ(list[3].Trans, TPoint2D(86, 32)) << "the turned one is 20 wide";
  EXPECT_EQ(list[4].Trans, TPoint2D(200000 - 99997, 500)) << "the furthest move past others";
}

}  // namespace
}  // namespace platenest
