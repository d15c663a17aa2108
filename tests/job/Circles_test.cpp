#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "CircleBounds.h"
#include "CircleVerdict.h"
#include "JobBounds.h"
#include "PlateJobs.h"
#include "platenest/job/Convert.h"

namespace platenest {
namespace {

using namespace detail;
using testing::HasSubstr;

// Two sheets that hold 3 x 2 of the discs each, of which seven are asked for.
Job Discs() {
  Job job = PlateJob(JobKind::Circles, {Sheet(74, 52, 2)}, {{.Id = "disc", .Amount = 7, .Radius = 10}}, 2);
  job.Margin = {5, 5, 5, 5};
  return job;
}

Layout Grid(const Job& AJob, int Columns, int Rows, int Copies = 1) {
  const Plate& plate = AJob.Plates[0];
  const double r = AJob.Parts[0].Radius;
  const double pitch = 2 * r + AJob.Gap;
  Layout layout;
  std::tie(layout.Plate, layout.Width, layout.Height, layout.Copies) =
      std::tie(plate.Id, plate.Width, plate.Height, Copies);
  for (int y = 0; y < Rows; ++y)
    for (int x = 0; x < Columns; ++x)
      layout.Circles.push_back({AJob.Parts[0].Id, {AJob.Margin[0] + r + pitch * x, AJob.Margin[1] + r + pitch * y}, r});
  return layout;
}

// What run() makes of layouts that a search has found.
Result ResultOf(const Job& AJob, std::vector<Layout> Layouts) {
  Result result = HeadOf(AJob);
  result.Layouts = std::move(Layouts);
  for (Layout& layout : result.Layouts) MeasureCirclesInto(layout, AJob.Gap, AJob.Margin);
  Account(AJob, result);
  result.Bounds = CircleBoundsOf(AJob);
  JudgeCircles(AJob, result);
  return result;
}

TEST(Circles, TablesHoldRadiiOrSides) {
  const std::string table = "label;radius;amount\nLid;60,5;4\n;12;null\n";
  const Job job = JobFromCsv(table, "discs.csv", Discs().Plates);
  EXPECT_EQ(std::tuple(job.Kind, job.Parts[0].Radius, job.Parts[1].Amount, job.Parts[1].Id),
            std::tuple(JobKind::Circles, 60.5, std::nullopt, "part-2"));
  EXPECT_EQ(PartsToCsv(job.Parts), "id,radius,amount,label\npart-1,60.5,4,Lid\npart-2,12,null,\n");
  EXPECT_EQ(FaultsOf([&] { JobToRectText(job); }), "InputError: conflict /kind");
}

// Exact rows and columns, hexagonal rows, and a plate that is one circle high.
TEST(Circles, OlerBoundIsMetBySmallLayoutsAndForgivesWhatTheCheckForgives) {
  const double hexHigh = 2 + std::sqrt(3.0);
  EXPECT_EQ(OlerBound(2, 2, 1, 0), 1);
  EXPECT_EQ(OlerBound(1.99, 7, 1, 0), 0);
  EXPECT_EQ(OlerBound(20, 2, 1, 0), 10);
  EXPECT_EQ(OlerBound(20 - 3e-6, 2, 1, 0), 10);
  EXPECT_EQ(OlerBound(20 - 1e-4, 2, 1, 0), 9);
  EXPECT_EQ(OlerBound(29, 2, 1, 1), 10);
  EXPECT_EQ(OlerBound(4, hexHigh, 1, 0), 3);
  EXPECT_EQ(OlerBound(4, 4, 1, 0), 4);
}

TEST(Circles, BoundsFollowStockAndDemand) {
  Job job = Discs();
  // a = b = 2, 1 pitches of 22: 2.309 + 3 + 1 = 6.3 circles on a sheet.
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "count demand 7, count oler 12, plates area 1, plates oler 2, ");
  job.Parts[0].Amount = 13;  // more than the stock holds
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "count demand 13, count oler 12, ");
  job.Parts[0].Amount = {};
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "count oler 12, ");
  job.Parts[0].Amount = 40;
  job.Plates[0].Count = {};
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "count demand 40, plates area 6, plates oler 7, ");
  job.Plates.push_back(Sheet(52, 52, 3, 1000, true));  // four circles each, so that 28 are left for five sheets
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)),
            "count demand 40, plates area 6, plates oler 7, cost area 15456, cost oler 22240, ");
  job.Parts = {
      {.Id = "a", .Amount = 3, .Radius = 10}, {.Id = "b", .Amount = 9, .Radius = 16}, {.Id = "c", .Radius = 99}};
  job.Plates.pop_back();
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "count demand 12, plates area 4, plates oler 5, ");
  job.Plates[0].Count = 1;
  job.Parts[0].Amount = {};
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "area stock 2572, ");
  job.Parts.erase(job.Parts.begin(), job.Parts.begin() + 2);
  EXPECT_EQ(BoundsText(CircleBoundsOf(job)), "plates area 0, ");
  EXPECT_FALSE(std::signbit(NextSum(std::vector{0.0, 5.0}, 0)));  // not "at least -0"
}

TEST(Circles, StatusReasonsAndProofFollowFromLayouts) {
  Job job = Discs();
  const auto verdict = [&](std::vector<Layout> layouts) {
    const Result result = ResultOf(job, std::move(layouts));
    EXPECT_EQ(Verdict(job, result), "");
    return Told(result);
  };
  EXPECT_EQ(verdict({Grid(job, 3, 2), Grid(job, 1, 1)}), "7 complete proved");
  EXPECT_EQ(verdict({Grid(job, 3, 2)}), "6 partial left_by_method");
  EXPECT_EQ(verdict({Grid(job, 3, 1, 2)}), "6 partial no_stock");
  job.Parts[0].Amount = 20;
  EXPECT_EQ(verdict({Grid(job, 3, 2, 2)}), "12 partial no_stock proved");
  job.Parts[0].Amount = {};
  EXPECT_EQ(verdict({Grid(job, 3, 2, 2)}), "12 complete proved");
  EXPECT_EQ(verdict({Grid(job, 3, 2)}), "6 partial");
  EXPECT_EQ(verdict({Grid(job, 2, 2, 2)}), "8 partial");
  job.Parts[0] = {.Id = "disc", .Amount = 2, .Radius = 21.1};
  EXPECT_EQ(verdict({}), "0 partial too_large proved");
}

TEST(Circles, MeasuresAreThoseOfTheCircles) {
  Job job = Discs();
  job.Margin = {0, 0, 0, 0};
  Layout layout = Grid(job, 2, 1);
  layout.Circles.push_back({"disc", {21, 10 + 11 * std::sqrt(3.0)}, 10});  // on top of the two, in the dent
  MeasureCirclesInto(layout, job.Gap, job.Margin);
  EXPECT_NEAR(layout.Usage, 300 * std::acos(-1.0) / (74 * 52), 1e-12);
  EXPECT_NEAR(layout.MinClearance.value(), 2, 1e-12);
  EXPECT_NEAR(layout.UsedBox[3], 20 + 11 * std::sqrt(3.0), 1e-12);
  EXPECT_FALSE(layout.EdgeToEdge);
  EXPECT_EQ(layout.FreeBox, (Box{44, 0, 74, 52}));  // the boxes of the circles end at 42
}

TEST(Circles, AnswersThatAreNoneAreToldBeforeTheyStand) {
  const Job job = Discs();
  const Result good = ResultOf(job, {Grid(job, 3, 2), Grid(job, 1, 1)});
  EXPECT_EQ(CircleFault(job, good.Layouts, good.Bounds), "");
  EXPECT_THAT(CircleFault(job, {Grid(job, 4, 2)}, good.Bounds), HasSubstr("beyond the right"));
  EXPECT_THAT(CircleFault(job, {Grid(job, 3, 2, 2)}, good.Bounds), HasSubstr("more copies"));
  EXPECT_THAT(CircleFault(job, {Grid(job, 1, 1, 3)}, good.Bounds), HasSubstr("more plates"));
  EXPECT_THAT(CircleFault(job, good.Layouts, {{"plates", "oler", 3}}), HasSubstr("bound plates, oler"));
}

}  // namespace
}  // namespace platenest
