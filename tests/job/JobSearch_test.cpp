#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <thread>

#include "ForEachSeed.h"
#include "JobExchange.h"
#include "JobFill.h"
#include "JobSearch.h"
#include "JobTrials.h"
#include "JobUnits.h"
#include "platenest/foundation/Random.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/LayoutCheck.h"

namespace platenest {
namespace {

using namespace detail;

struct TRandomSizes {
  explicit TRandomSizes(unsigned Seed) : FEngine(Seed) {}
  int Pick(int Low, int High) { return std::uniform_int_distribution(Low, High)(FEngine); }
  bool Chance(int Percent) { return Pick(1, 100) <= Percent; }

  // Up to three kinds of plates, parts up to as long as a plate, some locked; lengths of one decimal or of none that
  // they have in common.
  TJobSizes Make() {
    Job job;
    job.Kind = JobKind::Job;
    const double unit = Chance(70) ? 0.1 : 1.0 / 7;
    job.Gap = Chance(50) ? Pick(1, 9) * unit : 0;
    for (int i = Pick(1, 3); i > 0; --i) {
      Plate plate{.Id = "", .Width = Pick(60, 200) * unit, .Height = Pick(60, 200) * unit, .Count = Pick(1, 12)};
      plate.Remnant = Chance(20);
      if (Chance(30)) plate.Cost = Pick(0, 5);
      job.Plates.push_back(plate);
    }
    for (int i = Pick(1, 10); i > 0; --i) {
      Part part{.Id = "", .Width = Pick(8, 90) * unit, .Height = Pick(8, 90) * unit, .Amount = Pick(1, 20)};
      if (Chance(15)) part.Width = job.Plates[0].Width;
      if (Chance(20)) part.Turn = Rotate::None;
      if (Chance(10)) part.Amount = std::nullopt;
      job.Parts.push_back(part);
    }
    GiveIds(job);
    return JobSizesOf(job);
  }

  std::mt19937 FEngine;
};

std::string FaultOf(const TJobSizes& Sizes, int Plate, const TNestedRects& Nested, std::span<const int> Most) {
  TNestRectList demand;
  for (int i = 0; i < Size(Sizes.Parts); ++i)
    demand.emplace_back(Most[i], i, TVRect2D::FromSize(Sizes.Parts[i].Width, Sizes.Parts[i].Height));
  for (const TNestedRect& placed : Nested)
    if (placed.IsRotate && !Sizes.Parts[placed.Part.Idx].MayTurn) return "a locked part is turned";
  const TJobPlate& plate = Sizes.Plates[Plate];
  return CheckRectLayout(Nested, TVRect2D::FromSize(plate.Width, plate.Height), Sizes.Gap, demand);
}

std::string FaultOf(const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  std::vector<int> amounts;
  for (const TJobPart& part : Sizes.Parts) amounts.push_back(part.Amount);
  for (const TJobLayout& layout : Layouts)
    if (std::string fault = FaultOf(Sizes, layout.Plate, layout.Nested, amounts); !fault.empty()) return fault;
  const std::vector<Int64> placed = PlacedCopies(Sizes, Layouts);
  for (int i = 0; i < Size(placed); ++i)
    if (placed[i] > amounts[i]) return "more copies than asked for";
  for (const int left : StockLeft(Sizes, Layouts))
    if (left < 0) return "more plates than in stock";
  return "";
}

TJobLayouts Walked(const TJobSizes& Sizes, TSkyTrials& Trials) {
  std::vector<int> left = AskedCopies(Sizes);
  std::vector<int> stock = StockLeft(Sizes, {});
  return FillPlates(Sizes, PlateOrder(Sizes), left, stock, Trials.Nest(6));
}

TEST(JobSearch, QuickFillsAreValidAndTakeWhatTheyPlaceOffTheDemand) {
  ForEachSeed(150, [](unsigned seed) {
    const TJobSizes sizes = TRandomSizes(seed).Make();
    if (sizes.Parts.empty()) return;
    const TRandomScope random(seed);
    TSkyTrials trials(sizes);
    const std::vector<int> all = AskedCopies(sizes);
    for (int kind = 0; kind < Size(sizes.Plates); ++kind) {
      std::vector<int> left = all;
      const TNestedRects nested = trials.LayoutOf(trials.Fill(kind, left, 1 + static_cast<int>(seed % 15)));
      EXPECT_EQ(FaultOf(sizes, kind, nested, all), "");
      std::vector<int> counted = all;
      for (const TNestedRect& placed : nested) --counted[placed.Part.Idx];
      EXPECT_EQ(counted, left);
      for (int i = 0; i < Size(left) && nested.empty(); ++i)
        EXPECT_TRUE(left[i] == 0 || !Holds(sizes.Plates[kind], sizes.Parts[i])) << "an empty plate holds each part";
    }
  });
}

// Copies that a damaged answer lacks come back as long as there is room or stock, and nothing else moves.
TEST(JobSearch, WhatALayoutLeavesIsPlacedWhereItFits) {
  ForEachSeed(100, [](unsigned seed) {
    TRandomSizes random(seed);
    const TJobSizes sizes = random.Make();
    if (sizes.Parts.empty()) return;
    const TRandomScope scope(seed);
    TSkyTrials trials(sizes);
    TJobLayouts layouts = Walked(sizes, trials);
    EXPECT_EQ(FaultOf(sizes, layouts), "");
    const TJobMerit whole = MeritOf(sizes, layouts);
    for (TJobLayout& layout : layouts)
      if (random.Chance(50)) layout.Nested.pop_back();
    const TJobMerit less = MeritOf(sizes, layouts);
    PlaceLeftOver(sizes, layouts, trials.Nest(6));
    EXPECT_EQ(FaultOf(sizes, layouts), "");
    const TJobMerit more = MeritOf(sizes, layouts);
    EXPECT_LE(more.UnplacedArea, less.UnplacedArea);
    const std::vector<int> stock = StockLeft(sizes, layouts);
    const std::vector<int> left = LeftOver(sizes, layouts);
    for (int i = 0; i < Size(left); ++i)
      for (int kind = 0; kind < Size(stock) && left[i] > 0; ++kind)
        EXPECT_TRUE(stock[kind] == 0 || !Holds(sizes.Plates[kind], sizes.Parts[i])) << whole.UnplacedArea;
  });
}

TEST(JobSearch, ExchangesKeepAnswersValidAndNeverMakeThemWorse) {
  ForEachSeed(40, [](unsigned seed) {
    const TJobSizes sizes = TRandomSizes(seed).Make();
    if (sizes.Parts.empty()) return;
    const TRandomScope random(seed);
    TSkyTrials trials(sizes);
    TExchange exchange(sizes, trials, Walked(sizes, trials));
    TJobMerit before = MeritOf(sizes, exchange.Layouts());
    const auto remnants = [&] {
      Int64 used = 0;
      for (const TJobLayout& layout : exchange.Layouts())
        used += sizes.Plates[layout.Plate].Remnant ? layout.Copies : 0;
      return used;
    };
    const Int64 least = remnants();
    for (int step = 0; step < 60; ++step) {
      const TExchange::Outcome outcome = exchange.Step();
      ASSERT_EQ(FaultOf(sizes, exchange.Layouts()), "") << "step " << step;
      TJobMerit now = MeritOf(sizes, exchange.Layouts());
      TJobMerit then = before;
      before = now;
      now.LastUsage = then.LastUsage = 0;
      EXPECT_FALSE(IsBetter(then, now)) << "step " << step;
      EXPECT_EQ(IsBetter(now, then), outcome == TExchange::Outcome::Better) << "step " << step;
    }
    EXPECT_GE(remnants(), least) << "remnants stay in use";
  });
}

// No part equals a plate in units that are exact, and layouts come back from them as they were.
TEST(JobSearch, LayoutsGoToWholeUnitsAndBack) {
  ForEachSeed(100, [](unsigned seed) {
    const TJobSizes sizes = TRandomSizes(seed).Make();
    if (sizes.Parts.empty()) return;
    const TRandomScope random(seed);
    TSkyTrials trials(sizes);
    const TJobUnits units(sizes, 20000);
    for (const TJobLayout& layout : Walked(sizes, trials)) {
      const TRectPattern pattern = units.PatternOf(layout);
      const TNestedRects back = units.LayoutOf(pattern);
      EXPECT_EQ(FaultOf(sizes, layout.Plate, back, AskedCopies(sizes)), "");
      for (int i = 0; i < Size(back); ++i) {
        EXPECT_NEAR(back[i].Trans.X, layout.Nested[i].Trans.X, 1e-9);
        EXPECT_NEAR(back[i].Trans.Y, layout.Nested[i].Trans.Y, 1e-9);
      }
      const TVRect2D plate = units.Plate(layout.Plate);
      const bool isExact = std::fmod(plate.Width(), 2) == 1;
      const TNestRectList rects = units.Rects(AskedCopies(sizes));
      for (int i = 0; i < Size(rects) && isExact; ++i) {
        const bool fits = sizes.Parts[i].Width <= sizes.Plates[layout.Plate].Width;
        EXPECT_EQ(rects[i].BoundBox.Width() < plate.Width(), fits);
        EXPECT_NE(rects[i].BoundBox.Width(), plate.Width());
      }
    }
  });
}

TEST(JobSearch, AShareOfTheTimeEndsWithoutTheRunAndTheRunEndsEachShare) {
  TStopToken run;
  const TStopTokenScope scope(&run);
  {
    const TTimeShare spent(0.0);
    while (!spent.IsOver()) std::this_thread::yield();
    EXPECT_TRUE(RunStopRequested());
  }
  EXPECT_FALSE(RunStopRequested());
  const TTimeShare endless(std::nullopt);
  EXPECT_FALSE(endless.IsOver());
  run.RequestStop();
  EXPECT_TRUE(endless.IsOver() && RunStopRequested());
}

TEST(JobSearch, EqualJobsInOtherUnitsHaveEqualAnswers) {
  Job millimetres;
  millimetres.Kind = JobKind::Job;
  millimetres.Plates = {{.Id = "a", .Width = 2800, .Height = 2070, .Count = 3},
                        {.Id = "b", .Width = 1200, .Height = 600, .Count = 9}};
  millimetres.Parts = {{.Id = "x", .Width = 720, .Height = 560, .Amount = 24},
                       {.Id = "y", .Width = 564, .Height = 540, .Amount = 20},
                       {.Id = "z", .Width = 300, .Height = 82, .Amount = 40}};
  millimetres.Gap = 4;
  millimetres.Run = {.TimeLimit = 0.3, .Deterministic = true};
  Job metres = millimetres;
  metres.Gap = 0.004;
  const auto inMetres = [](auto& sized) {
    sized.Width = std::round(sized.Width) / 1000;
    sized.Height = std::round(sized.Height) / 1000;
  };
  std::ranges::for_each(metres.Plates, inMetres);
  std::ranges::for_each(metres.Parts, inMetres);
  const Result wanted = run(millimetres);
  const Result result = run(metres);
  ASSERT_EQ(result.Layouts.size(), wanted.Layouts.size());
  for (int i = 0; i < Size(result.Layouts); ++i) {
    EXPECT_EQ(result.Layouts[i].Copies, wanted.Layouts[i].Copies);
    EXPECT_EQ(result.Layouts[i].Placements.size(), wanted.Layouts[i].Placements.size());
  }
  EXPECT_EQ(result.Plates, wanted.Plates);
}

}  // namespace
}  // namespace platenest
