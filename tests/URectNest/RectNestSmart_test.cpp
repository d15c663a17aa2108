#include "platenest/URectNest/RectNestSmart.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>
#include <tuple>
#include <utility>

#include "FreeRectangles.h"
#include "Rects.h"
#include "SmartPass.h"
#include "platenest/foundation/Clock.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using testing::UnorderedElementsAre;

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
  EXPECT_EQ(CheckRectLayout(outcome.Layout, TVRect2D::FromSize(Plate.Width(), Plate.Height()), Gap, Numbered(List),
                            {.NegativeAmountIsNoLimit = true}),
            "");
  return outcome;
}

TVRect2D Plate(double Width, double Height) {
  return TVRect2D::FromSize(Width, Height);
}

TEST(RectNestSmart, ReachesTheUsageOfKnownJobs) {
  EXPECT_NEAR(Nested(Plate(10, 10), {Part(4, 5, 5)}).Usage, 1.0, 1e-9) << "only a late form fits at all";
  EXPECT_NEAR(Nested(Plate(10, 10).Translate({7, -3}), {Part(-1, 5, 5)}).Usage, 1.0, 1e-9) << "no end of copies";
  const TNestRectList exact{Part(6, 15 * 1.1, 45 * 1.1), Part(8, 85 * 1.1, 15 * 1.1)};
  EXPECT_NEAR(Nested(Plate(100 * 1.1, 75 * 1.1), exact).Usage, 0.95, 1e-9)
      << "rounding leaves room for sides that add up";
  EXPECT_NEAR(Nested(Plate(130, 65), {Part(9, 40, 30)}, 5).Usage, 6.0 * 45 * 35 / (135 * 70), 1e-9);
}

TEST(RectNestSmart, TurnsOnlyWhatMayBeTurned) {
  const auto placed = [](std::vector<bool> locked) {
    std::vector<std::pair<int, bool>> result;
    for (const TNestedRect& item : Nested(Plate(45, 20), {Part(1, 10, 40), Part(1, 8, 30)}, 0, locked).Layout)
      result.emplace_back(item.Part.Idx, item.IsRotate);
    return result;
  };
  EXPECT_THAT(placed({}), UnorderedElementsAre(std::pair(0, true), std::pair(1, true)));
  EXPECT_THAT(placed({true}), UnorderedElementsAre(std::pair(1, true)));
  EXPECT_THAT(placed({true, false}), UnorderedElementsAre(std::pair(1, true)));
  EXPECT_THAT(placed({true, true, true}), UnorderedElementsAre());
}

TEST(RectNestSmart, LeavesOutALargeRunOfTinyParts) {
  const auto placed = [](double height, int amount) {
    return Nested(Plate(200, 100), {Part(amount, 4, height)}).Layout.Count();
  };
  EXPECT_EQ(placed(4.9, 101), 0);
  EXPECT_EQ(placed(4.9, 100), 100);
  EXPECT_EQ(placed(5, 101), 101);
}

TEST(RectNestSmart, HasNoLayoutForUselessInput) {
  const double nan = std::nan("");
  const double inf = std::numeric_limits<double>::infinity();
  for (const TVRect2D& plate : {Plate(nan, 10), Plate(10, inf), Plate(0, 10), Plate(10, -1), Plate(1e-200, 1e-200)})
    EXPECT_EQ(Nested(plate, {Part(9, 1, 1)}).Usage, 0);
  EXPECT_EQ(Nested(Plate(10, 10), {Part(4, 5, 5)}, nan).Usage, 0);
  EXPECT_EQ(Nested(Plate(10, 10), {}).Usage, 0);
  const TNestRectList mixed{Part(1, nan, 5), Part(1, 0, 5), Part(4, 5, 5), Part(1, inf, 1), Part(1, -5, 5)};
  EXPECT_EQ(Nested(Plate(10, 10), mixed).Layout.Count(), 4);
}

// How often the clock, which moves Ms at each reading, is asked whether another pass is worth it.
int PassesAt(double Ms, const TNestRectList& List, const TVRect2D& OnPlate) {
  int readings = 0;
  TClockScope scope([&] { return Ms * readings++; });
  Nested(OnPlate, List);
  return readings - 1;
}

TEST(RectNestSmart, SearchesLongerTheWorseTheLayout) {
  const TNestRectList half{Part(1, 60, 50)};
  EXPECT_EQ(PassesAt(0, half, Plate(100, 60)), 29);
  EXPECT_EQ(PassesAt(0, {Part(2, 6, 5), Part(4, 4, 3)}, Plate(12, 8)), 2) << "a full plate ends it after three passes";
  // The plain fit of a quarter of the plate is below 0. It is not where thinner parts exist, if only with no copies
  // left.
  EXPECT_EQ(PassesAt(0, {Part(4, 5, 5)}, Plate(10, 10)), 6);
  EXPECT_EQ(PassesAt(0, {Part(4, 5, 5), Part(0, 1, 1)}, Plate(10, 10)), 2);
  // Usage 0.5: 17682 ms for the first twelve passes, 3750.75 ms for the rest.
  EXPECT_EQ(PassesAt(5000, half, Plate(100, 60)), 4);
  EXPECT_EQ(PassesAt(300, half, Plate(100, 60)), 13);
  EXPECT_EQ(PassesAt(313, half, Plate(100, 60)), 12);
}

TEST(RectNestSmart, StopsBetweenPlacementsWithAValidLayout) {
  TNestRectList list;
  for (int i = 0; i < 1000; ++i) list.push_back(Part(100, 20 + i * 37 % 160, 20 + i * 53 % 161));
  TStopToken token;
  const TStopTokenScope scope(&token);
  std::jthread stopper([&token] {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    token.RequestStop();
  });
  EXPECT_LT(Nested(Plate(12000, 95000), list, 1).Layout.Count(), 100000) << "a pass alone takes seconds";
}

TEST(RectNestSmart, OfEqualUsageTheTighterLayoutWins) {
  const TNestedRects layout = Nested(Plate(105, 92), {Part(1, 49, 25), Part(2, 35, 42)}).Layout;
  EXPECT_EQ(layout.Count(), 3);
  // Turned ones among them: boxes that miss their place by the turn would choose 6164, which the first form leaves.
  EXPECT_NEAR(layout.BoundBox().Area(), 5520, 1e-6);
}

// A code of every place under every form, at two scales, got from a plain program without caches and shortcuts: an
// unintended change of the fit, the contact lengths, the free rectangles or an order shows here.
TEST(RectNestSmart, EachFormKeepsItsLayout) {
  const std::vector<bool> unlocked;
  TNestedRects layout;
  std::uint64_t code = 0;
  for (const auto& [scale, gap] : {std::pair{1.0, 0.0}, {1.0, 1.5}, {0.1, 0.0}, {0.1, 0.15}}) {
    TNestRectList list = Numbered({Part(6, 23, 11), Part(5, 17, 29), Part(9, 8, 31), Part(7, 13, 13)});
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

// The free rectangle is 100 by 100 at the origin. What the code of places can hardly reach.
TEST(FreeRectangles, TellHowABoxThatEndsLevelWithThemLies) {
  using enum detail::TVecRelation;
  const std::tuple<TVRect2D, detail::TVecRelation, int> cases[] = {
      {{{100.0002, 20}, {120, 0}}, vrNone, 0},   {{{100.00005, 20}, {120, 10}}, vrPoke, 3},
      {{{-1, 101}, {101, -1}}, vrFreeInside, 0}, {{{10, 20}, {20, 10}}, vrBoxInside, 0},
      {{{30, 100}, {60, 0}}, vrCross, 0},      // level at both ends: both sides are lost
      {{{-20, 30}, {100, -20}}, vrCorner, 0},  // all that is above is lost
      {{{70, 100}, {120, -20}}, vrCorner, 1},  // all that is at the left is lost
  };
  for (const auto& [box, relation, corner] : cases) {
    const auto contact = detail::VecRelation(Plate(100, 100), box);
    EXPECT_TRUE(contact.Relation == relation && contact.Corner == corner) << box.Left << ' ' << box.Bottom;
  }
}

TEST(FreeRectangles, KeepWhatABoxLeavesThatCoversAWholeSide) {
  for (const double left : {0.0, 60.0}) {
    detail::TFreeRectangles free;
    free.Reset(Plate(100, 100));
    free.Place(0, Plate(60, 50).Translate({left > 0 ? 0.0 : 40.0, 0}), left > 0 ? 2 : 3, 1);
    ASSERT_EQ(free.Items().size(), 2u) << "above, and beside";
    free.Place(1, Plate(40, 100).Translate({left, 0}), 2, 1);
    ASSERT_EQ(free.Items().size(), 1u);
    EXPECT_EQ(free.Items()[0].Box.GetBottomLeft(), TPoint2D(left > 0 ? 0 : 40, 50));
    EXPECT_EQ(free.Items()[0].Area, 60 * 50);
  }
}

TEST(SmartPass, ShiftsLeftUpToWhatItFaces) {
  TNestedRects list{Placed(30, 20, 0, 0), Placed(30, 20, 40, 10), Placed(30, 20, 75, 24, 0, true),
                    Placed(30, 20, 90, 32), Placed(30, 20, 200000, 500)};
  detail::ShiftLeft(list, 2);
  EXPECT_EQ(list[1].Trans, TPoint2D(32, 10));
  EXPECT_EQ(list[2].Trans, TPoint2D(64, 24)) << "behind the second one where that is now";
  EXPECT_EQ(list[3].Trans, TPoint2D(86, 32)) << "the turned one is 20 wide";
  EXPECT_EQ(list[4].Trans, TPoint2D(200000 - 99997, 500)) << "the furthest move past others";
}

}  // namespace
}  // namespace platenest
