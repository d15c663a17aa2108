#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

#include "PlateJobs.h"
#include "ShapeJobs.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

Job PartJob(JobKind Kind, const Part& APart, double Gap = 0) {
  return PlateJob(Kind, {}, {APart}, Gap);
}

Job ArrayJob(const Part& APart, Along Direction, double Gap = 0) {
  Job job = PartJob(JobKind::Array, APart, Gap);
  job.Direction = Direction;
  return job;
}

Job LabelJob(const Part& APart, double Width, double Height, double Offset = 0) {
  Job job = PartJob(JobKind::Label, APart);
  std::tie(job.Label, job.Offset) = std::tuple(LabelSize{Width, Height}, Offset);
  return job;
}

Job SuckerJob(const Part& APart, double Radius) {
  Job job = PartJob(JobKind::Sucker, APart);
  job.Radius = Radius;
  return job;
}

// Any answer holds against the check and survives its form.
Result Answered(const Job& AJob) {
  Result result = Answer(AJob);
  EXPECT_EQ(ParseResult(ResultToJson(result)), result);
  return result;
}

// A star-shaped outline with dents, long and slanted for some seeds.
Part Star(unsigned Seed) {
  std::mt19937 random(Seed);
  const auto share = [&] { return static_cast<double>(random() % 10000) / 10000; };
  const int points = 5 + static_cast<int>(random() % 30);
  const double stretch = 1 + 6 * share() * share();
  const double turn = std::numbers::pi * share();
  PolygonRing outline = Round(points, [&](int) { return 20 + 60 * share(); });
  for (auto& [x, y] : outline) {
    const double wide = x * stretch;
    x = wide * std::cos(turn) - y * std::sin(turn);
    y = wide * std::sin(turn) + y * std::cos(turn);
  }
  return Polygon("star", outline);
}

TEST(ArrayRun, RepeatsRectanglesWithTheGapAndAnglesIntoTheirHollow) {
  const Part unit{.Id = "u", .Width = 2, .Height = 1};
  for (const Along along : {Along::X, Along::Y, Along::XY, Along::Free}) {
    EXPECT_NEAR(Answered(ArrayJob(unit, along)).Array->Density, 1, 1e-6);
    EXPECT_NEAR(Answered(ArrayJob(unit, along, 0.5)).Array->CellArea, 2.5 * 1.5, 1e-4);
  }
  const ArrayAnswer nested = *Answered(ArrayJob(Polygon("l", kL), Along::Free)).Array;
  EXPECT_NEAR(nested.CellArea, 6, 1e-6) << "angles with arms one wide leave nothing between them";
  EXPECT_NEAR(nested.Density, 1, 1e-6);
}

TEST(ArrayRun, SeparatePassesTheWholeExtent) {
  Job job = ArrayJob(Polygon("u", {{0, 0}, {10, 0}, {10, 9}, {7, 9}, {7, 2}, {2, 2}, {2, 9}, {0, 9}}), Along::Y);
  job.Separate = true;
  EXPECT_THAT(Answered(job).Array->First, ElementsAre(0, testing::DoubleNear(9, 1e-3)));
}

TEST(ArrayRun, EveryLatticeOfManyShapesPassesItsCheck) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    double best = 1e300;
    for (const Along along : {Along::X, Along::Y, Along::XY, Along::Free}) {
      const double cell = Answered(ArrayJob(Star(seed), along, seed % 3)).Array->CellArea;
      EXPECT_TRUE(along != Along::Free || cell <= best * (1 + 1e-6)) << seed;
      best = std::min(best, cell);
    }
  }
}

// A needle that the kernel cannot tell from a line.
TEST(ArrayRun, SpacesCopiesByTheirBoxWhereTheKernelGivesUp) {
  const Part needle = Polygon("needle", {{0, 0}, {1000, 0.0001}, {1000, 0.0015}});
  const Result result = Answered(ArrayJob(needle, Along::Y, 1));
  EXPECT_EQ(result.Run.Method, "boxes");
  EXPECT_THAT(result.Warnings, ElementsAre(HasSubstr("copies are spaced by its box")));
  EXPECT_THAT(result.Array->Second, ElementsAre(1001, 0));
}

// A row of the slanted needle takes hundreds of thousands of overlapping copies.
TEST(ArrayRun, SparesEndlessRows) {
  const Part slender = Polygon("n", {{0, 0}, {1e4, 1e4}, {1e4 - 0.5, 1e4}});
  const Result result = Answered(ArrayJob(slender, Along::X));
  EXPECT_THAT(result.Warnings, ElementsAre(HasSubstr("too slender")));
  EXPECT_EQ(result.Array->First[1], 0);
  EXPECT_EQ(result.Run.Method, "rows");
  EXPECT_LT(result.Array->First[0], 1);
}

TEST(LabelRun, PutsALabelUprightTurnedOrNowhere) {
  const Part square = Polygon("s", Square(100, 0, 10));
  const LabelAnswer upright = *Answered(LabelJob(square, 2, 1, 0.5)).Label;
  EXPECT_FALSE(upright.Rotated);
  EXPECT_DOUBLE_EQ(upright.Margin, 3.875);
  EXPECT_NEAR(upright.Bounds[0], 104, 0.2);
  const Part bar{.Id = "bar", .Width = 10, .Height = 50};
  const LabelAnswer turned = *Answered(LabelJob(bar, 40, 5)).Label;
  EXPECT_TRUE(turned.Rotated);
  EXPECT_NEAR(turned.Bounds[2] - turned.Bounds[0], 5, 1e-9);
  EXPECT_NEAR(turned.Move[0] + 20, 5, 2.5) << "turned about its own centre";
  for (const Job& job : {LabelJob(square, 11, 1), LabelJob(square, 1, 1, 6)}) {
    const Result none = Answered(job);
    EXPECT_TRUE(LacksPlace(none));
    EXPECT_EQ(none.Status, ResultStatus::Complete);
    EXPECT_THAT(ResultToJson(none), HasSubstr("\"label\": {\"found\": false}"));
    EXPECT_THAT(PartToSvg(job, none), HasSubstr("no place for the label"));
  }
}

TEST(PlaceRun, PlacesOnManyShapesPassTheirCheck) {
  int found = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    Job job = LabelJob(Star(seed), 5 + 3 * seed, 3 + seed % 17, seed % 2);
    if (seed % 5 == 0) job.Parts[0].Holes = {Square(-5, -5, 4)};
    if (seed % 4 == 0) job.InnerLines = {{{-30, -30}, {30, 30}}, {{-30, 30}, {0, 0}, {-20, 0}}};
    found += LacksPlace(Answered(job)) ? 0 : 1;
    found += LacksPlace(Answered(SuckerJob(Star(seed), 2 + seed))) ? 0 : 1;
  }
  EXPECT_GT(found, 50);
  EXPECT_LT(found, 80) << "some places must be missing";
}

TEST(SuckerRun, HoldsAtTheCentroidOrNextToAHole) {
  const Part square = Polygon("s", Square(0, 0, 10));
  EXPECT_THAT(Answered(SuckerJob(square, 2)).Sucker->Center, ElementsAre(testing::DoubleNear(5, 1e-6), testing::_));
  EXPECT_TRUE(LacksPlace(Answered(SuckerJob(square, 5.01))));
  EXPECT_TRUE(Answered(SuckerJob(Polygon("r", Square(0, 0, 30), {Square(10, 10, 10)}), 4)).Sucker->Found);
}

// Time runs out while the no-fit polygon of many points is made: what needs none stands, and a place is not looked for.
TEST(PartKinds, TimeCutsTheSearches) {
  PolygonRing slanted = Round(300, [](int i) { return 1000 + 50 * (i % 2); });
  for (auto& [x, y] : slanted) y = x + y / 5;
  Job job = ArrayJob(Polygon("slanted", slanted), Along::Free);
  job.Run.TimeLimit = 1e-3;
  const Result cut = Answered(job);
  EXPECT_EQ(cut.Status, ResultStatus::TimeLimit);
  EXPECT_THAT(cut.Run.Method, testing::AnyOf("rows", "columns", "boxes"));
  job.Run.Deterministic = true;
  const Result whole = run(job);
  EXPECT_EQ(ResultToJson(whole), ResultToJson(run(job)));
  EXPECT_EQ(whole.Status, ResultStatus::Complete) << "a counted clock";
  EXPECT_LT(whole.Array->CellArea, cut.Array->CellArea);
}

}  // namespace
}  // namespace platenest
