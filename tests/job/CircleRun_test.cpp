#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "PlateJobs.h"

namespace platenest {
namespace {

Job JobOf(double Width, double Height, std::optional<int> Stock,
          const std::vector<std::pair<double, std::optional<int>>>& Parts, double Gap = 0) {
  Job job = PlateJob(JobKind::Circles, {Sheet(Width, Height, Stock)}, {}, Gap);
  for (const auto& [radius, amount] : Parts) job.Parts.push_back({.Id = "", .Amount = amount, .Radius = radius});
  GiveIds(job);
  job.Run.TimeLimit = 0.3;
  return job;
}

int PlacedIn(const Job& AJob) {
  const std::vector<int> counts = Placed(Answer(AJob));
  return std::accumulate(counts.begin(), counts.end(), 0);
}

double FreeAreaOf(const Layout& ALayout) {
  const auto [left, bottom, right, top] = ALayout.FreeBox;
  return (right - left) * (top - bottom);
}

// What no pattern and no start pair of the nesters stands for.
TEST(RunCircles, FewCirclesAndThinPlatesAreLaidToo) {
  EXPECT_EQ(PlacedIn(JobOf(100, 100, 1, {{50, 1}})), 1);
  EXPECT_EQ(PlacedIn(JobOf(171, 171, 1, {{50, 2}})), 2);     // from corner to corner
  EXPECT_EQ(PlacedIn(JobOf(170, 170, 1, {{50, 2}})), 1);     // a millimetre short of that
  EXPECT_EQ(PlacedIn(JobOf(1000, 90, 1, {{45, 20}})), 11);   // a row
  EXPECT_EQ(PlacedIn(JobOf(1000, 144, 1, {{45, 20}})), 13);  // a zigzag, 54 up and 72 along
  EXPECT_EQ(PlacedIn(JobOf(144, 1000, 1, {{45, 20}})), 13);
  EXPECT_EQ(PlacedIn(JobOf(200, 100, 1, {{50, 1}, {49, 1}})), 2);       // side by side, no pair of bottom corners
  EXPECT_EQ(PlacedIn(JobOf(0.2, 0.1, 1, {{0.05, 1}, {0.049, 1}})), 2);  // in metres
  EXPECT_EQ(PlacedIn(JobOf(202, 100, 1, {{50, 2}, {9, 20}}, 2)), 4);    // one above and one below where the large meet
}

// The pattern is the first answer of each method but pack, and a search beside it loses nothing.
TEST(RunCircles, EqualCirclesAreNeverFewerThanInAPattern) {
  TRandom random(1);
  for (int i = 0; i < 12; ++i) {
    const Job job = JobOf(random.Pick(200, 599), random.Pick(150, 349), 1, {{random.Pick(15, 54), std::nullopt}},
                          random.Pick(0, 3));
    EXPECT_GE(PlacedIn(job), PlacedIn(With(job, "pattern"))) << JobToJson(job);
  }
}

// The last plate of equal circles takes a part of the pattern that leaves a strip of it free.
TEST(RunCircles, LastPlateKeepsAnOffcut) {
  const Result result = Answer(With(JobOf(1000, 600, std::nullopt, {{40, 100}}, 3), "pattern"));
  ASSERT_EQ(result.Layouts.size(), 2U);
  EXPECT_GE(FreeAreaOf(result.Layouts[1]), 0.9 * (600'000 - 1.1 * 83 * 83 * (100 - result.Parts[0].Placed + 21)));
  EXPECT_EQ(result.Parts[0].Placed, 100);
}

TEST(RunCircles, LastPlateOfSeveralSizesIsFilledFromOneSide) {
  Job job = JobOf(2000, 1000, std::nullopt, {{222.5, 21}, {170, 5}, {142.5, 18}, {110, 11}, {82.5, 4}, {60, 3}}, 4);
  job.Run.TimeLimit = 2;
  job.Run.Deterministic = true;
  const Result result = Answer(job);
  const Layout& last = result.Layouts.back();
  EXPECT_GE(FreeAreaOf(last), 0.58 * (1 - last.Usage) * last.Width * last.Height);
}

// Great jobs end in time, with what was done until then.
TEST(RunCircles, TimeLimitHoldsForGreatJobs) {
  Job sizes = JobOf(3000, 1500, std::nullopt, {}, 1);
  for (int i = 0; i < 2000; ++i) sizes.Parts.push_back({.Id = std::to_string(i), .Amount = 10, .Radius = 5 + i * 0.01});
  const Job mixed = JobOf(1000, 1000, 1, {{60, 15}, {50, 20}, {40, 25}, {33, 30}, {26, 30}, {20, 30}}, 2);
  const Job copies = JobOf(3000, 3000, std::nullopt, {{6, 50'000}, {4, 100'000}});
  for (Job job : {sizes, mixed, copies}) {
    job.Run.TimeLimit = 0.5;
    const Result result = Answer(job);
    EXPECT_FALSE(result.Layouts.empty());
    EXPECT_LE(result.Run.Seconds, 3);  // far beyond what a loaded machine explains
  }
}

TEST(RunCircles, RemnantsComeFirstAndTheLastPlateIsTheCheapestThatTakesTheRest) {
  Job job = JobOf(1000, 1000, 5, {{100, 40}, {30, 20}});
  job.Plates.push_back(Sheet(600, 400, 1, 0, true));
  job.Plates.push_back(Sheet(700, 500, 3, 400'000));
  GiveIds(job);
  const Result result = Answer(job);
  EXPECT_THAT(Placed(result), testing::ElementsAre(40, 20));
  EXPECT_EQ(result.Plates[1].Used, 1);  // the remnant takes six of the large ones
  EXPECT_LE(result.Total.Cost, 2'000'000);
}

// Fifteen lie on a large plate and six on a small one, so that one kind alone takes 20 or more.
TEST(RunCircles, PlateKindsAreMixedWhereThatCostsLess) {
  for (const auto& parts : {std::vector<std::pair<double, std::optional<int>>>{{10, 27}}, {{10, 20}, {9.9, 7}}}) {
    Job job = JobOf(100, 60, std::nullopt, parts);
    job.Plates = {Sheet(100, 60, std::nullopt, 10), Sheet(40, 60, std::nullopt, 4.1)};
    GiveIds(job);
    job.Run.Deterministic = true;
    job.Run.TimeLimit = 2;
    EXPECT_NEAR(Answer(job).Total.Cost, 18.2, 1e-9);
  }
}

TEST(RunCircles, WordsTellWhyNoneOfACircleWithoutLimitIsLaid) {
  Job job = JobOf(100, 60, 1, {{31, std::nullopt}});
  job.Parts[0].Id = "lid";
  EXPECT_THAT(Answer(job).Warnings, testing::ElementsAre("\"lid\" fits no plate"));
}

}  // namespace
}  // namespace platenest
