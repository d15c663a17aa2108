#include "RskfRebuild.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "ForEachSeed.h"
#include "HostCapture.h"
#include "RskfCells.h"
#include "RskfProbe.h"
#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

// IsWhole: whole sizes and an even gap, which the units hold exactly, and no part so small that it is laid in grids.
// One job in four has three prices only: many layouts of a cell have one value but different pieces.
TRskfJob RandomJob(unsigned Seed, bool IsWhole) {
  TDice from(Seed);
  const auto size = [&](int low, int high) { return from(low, high) + (IsWhole ? 0 : from(0, 99) / 100.0); };
  TRskfJob job{size(20, IsWhole ? 100 : 130), size(20, 130), {}};
  job.CanRotate = from(0, 3) > 0;
  job.Gap = from(0, 1) == 0 ? 0 : (IsWhole ? 2 : size(0, 2));
  job.Digit = IsWhole ? 0 : from(0, 1);
  job.Weighted = Seed % 2 == 0;
  for (int i = from(2, 10); i > 0; --i) {
    const double a = size(IsWhole ? 5 : 3, 40);
    const double b = size(IsWhole ? 5 : 3, 40);
    const double worth = Seed % 4 == 0 ? from(1, 3) : std::floor(a * b * from(7, 12));
    job.Parts.push_back(Part(from(0, 2) == 0 ? kAnyAmount : from(1, 9), a, b, worth, Size(job.Parts)));
  }
  return job;
}

double Worth(const TRskfJob& Job, const TNestedRects& List) {
  double worth = 0;
  for (const TNestedRect& placed : List) worth += Job.Weighted ? placed.Part.Area : placed.Part.BoundBox.Area() * 100;
  return worth;
}

// Where cells of equal value are many, one layout in some thousands loses a piece.
TEST(RskfRebuild, LayoutsAreValidAndWorthWhatThePassSays) {
  int jobs = 0;
  int lost = 0;
  ForEachSeed(4000, [&](unsigned seed) {
    const bool isWhole = seed % 5 < 3;
    const TRskfJob job = RandomJob(seed, isWhole);
    TRskfProbe nester(job);
    if (!isWhole && seed % 2 == 0) nester.CreateAmplifiedRectInfo(-2);
    ASSERT_TRUE(nester.Prepare(job.CanRotate) && nester.Pass(isWhole || seed % 3 != 0));
    const TNestedRects list = nester.Layout();
    ASSERT_EQ(CheckRectLayout(list, job.Plate(), job.Gap, job.Parts), "");
    if (!isWhole) return;
    ++jobs;
    lost += Worth(job, list) != static_cast<double>(nester.Value());
  });
  EXPECT_LE(lost, 0.001 * jobs);
}

// The cell of the answer has the cut of its left neighbour, but its own lower side is worth more than that one's.
TEST(RskfRebuild, CutsThatLeaveNoRestAreNotFollowed) {
  const TRskfJob job{.Width = 21, .Height = 31, .Parts = {Part(3, 5, 20, 3), Part(5, 6, 8, 1, 1)}, .Weighted = true};
  TRskfProbe nester(job);
  ASSERT_TRUE(nester.Prepare() && nester.Pass(true));
  EXPECT_EQ(Worth(job, nester.Layout()), nester.Value());
}

// Each axis has the points 0, 18 and its end, so the cell of a group of 2 by 2 holds 4 by 4.
TEST(RskfRebuild, GroupsFillTheirCellUpToTheDemand) {
  for (const double height : {82.0, 90.0}) {
    const TRskfJob job{86, height, {Part(5, 4, 3.9), Part(1, 10, 6, 0, 1)}};
    TRskfProbe nester(job);
    ASSERT_TRUE(nester.Prepare() && nester.Pass(true));
    const TNestedRects list = nester.Layout();
    EXPECT_EQ(list.Count(), 5);
    EXPECT_EQ(CheckRectLayout(list, job.Plate(), 0, job.Parts), "");
  }
}

TEST(RskfRebuild, OnePieceTooManyIsAnExcess) {
  const TRskfProbe nester({100, 60, {Part(1, 50, 30), Part(2, 50, 30)}});
  TNestedRects list{Placed(50, 30, 0, 0)};
  EXPECT_FALSE(nester.CheckExcess(list));
  list.push_back(list.front());
  EXPECT_TRUE(nester.CheckExcess(list));
}

TEST(RskfRebuild, TablesThatContradictThemselvesAreReported) {
  TRaster raster;
  raster.ConstructNormalPattern({0, 2, 4}, {0, 2, 4, 6});
  raster.ConstructIndex(4, 6);
  detail::TRskfTables tables;
  tables.F = TGrid<Int64>(4, 3);
  tables.X = TGrid<std::uint16_t>(4, 3);
  tables.Y = TGrid<std::uint16_t>(3, 4);
  const auto halves = [&] { return detail::TRskfCells(tables, raster).Halves({2, 3}); };
  const auto expectError = [&](const std::string& text) {
    const THostCapture host;
    EXPECT_THAT(halves, testing::ThrowsMessage<TNestError>(text));
    EXPECT_EQ(host.Warnings(), std::vector{text});
  };
  tables.F.At(3, 2) = 10;
  expectError("No Guillotine Point is Found");
  tables.Y.At(2, 3) = 1;
  expectError("Value Error in FindGuillotine");
  tables.F.At(1, 2) = 6;
  expectError("No Tighter Raster is Found");
  tables.F.At(1, 1) = 4;
  EXPECT_EQ(halves().Second.Column, 1) << "in the block below";
}

}  // namespace
}  // namespace platenest
