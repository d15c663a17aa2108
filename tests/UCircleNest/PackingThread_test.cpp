#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <future>
#include <new>
#include <numbers>
#include <thread>
#include <vector>

#include "AllocationCounter.h"
#include "ForEachSeed.h"
#include "PackingThread.h"
#include "platenest/UCircleNest/CirclePacking.h"
#include "platenest/foundation/EventTimer.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/StopToken.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest {
namespace {

using namespace std::chrono_literals;
using testing::SizeIs;

struct TProbe : TCirclePacking {
  using TCirclePacking::TCirclePacking, TCirclePacking::BinaryPacking, TCirclePacking::GenerateInitConfig,
      TCirclePacking::GeneratePosibleCP, TCirclePacking::GreedyPacking, TCirclePacking::PackingMultiThread,
      TCirclePacking::PackingWithY, TCirclePacking::TakeShortest, TCirclePacking::TMyPackingThread,
      TCirclePacking::UpdateResult;
};

using TWorker = TProbe::TMyPackingThread;

struct TJob {
  TVRect2D Plate;
  double Gap = 0;
  std::vector<double> Radii;
  std::vector<int> Counts;

  TProbe Make() const { return TProbe(Plate, Gap, Radii, Counts); }
  int Amount() const {
    int amount = 0;
    for (const int count : Counts) amount += count;
    return amount;
  }
};

// A plate for about as many circles as there are, or for twice as many.
TJob RandomJob(unsigned Seed, int Sizes, int MostOfASize) {
  const TRandomScope random(Seed);
  TJob job;
  job.Gap = Random(2) * 0.5;
  double area = 0;
  for (int i = 0; i < Sizes; ++i) {
    job.Radii.push_back(8 + Random(1000) / 50.0);
    job.Counts.push_back(1 + Random(MostOfASize));
    area += job.Counts[i] * std::numbers::pi * job.Radii[i] * job.Radii[i];
  }
  const double side = std::max(90.0, std::sqrt(area));
  job.Plate = TVRect2D::FromSize(side * (1 + Random(2)), side);
  return job;
}

// Circles of the working frame as a layout on the plate.
std::string Fault(const TJob& Job, const TCircleNestRst& Result) {
  std::vector<TPlacedCircle> layout;
  for (const TCornerPlacement& circle : Result)
    layout.push_back({circle.Center, Job.Radii[circle.CircleIdx], circle.CircleIdx});
  std::vector<TCircleDemand> demand;
  for (int i = 0; i < Size(Job.Radii); ++i) demand.push_back({Job.Radii[i], Job.Counts[i]});
  return CheckCircles(layout, {0, 0, Job.Plate.Width(), Job.Plate.Height()}, Job.Gap, demand, {.Tol = 1e-5});
}

bool SameLayout(const TCircleNestRst& A, const TCircleNestRst& B) {
  return std::equal(A.begin(), A.end(), B.begin(), B.end(), [](const TCornerPlacement& C, const TCornerPlacement& D) {
    return C.CircleIdx == D.CircleIdx && C.Center.X == D.Center.X && C.Center.Y == D.Center.Y;
  });
}

// Thirty circles of radius 1 on a square of side 10: one start pair, (1, 1) and (9, 1), and more circles than fit.
const TJob kThirty{TVRect2D::FromSize(10, 10), 0, {1}, {30}};
// Far more look-ahead than a test may wait for.
const TJob kEndless{TVRect2D::FromSize(200, 200), 0, {12, 11, 10, 9, 8}, {40, 40, 40, 40, 40}};
const TJob kEndlessStrip{TVRect2D::FromSize(5000, 200), 0, kEndless.Radii, kEndless.Counts};

class FlagGuard {
 public:
  FlagGuard() { FClassStop = true; }
  ~FlagGuard() { FClassStop = false; }
};

TEST(Workers, FourFindWhatOneFindsAndAnyCountIsValid) {
  TTimerBoard noTime;
  const TTimerScope scope(&noTime);
  ForEachSeed(25, [](unsigned Seed) {
    const TJob job = RandomJob(Seed, 3, 3);
    double one = 0;
    for (const int threads : {1, 2, 4}) {
      TProbe packing = job.Make();
      packing.SetThreadLimit(threads);
      packing.Packing(0, 60000);
      if (threads == 1) one = packing.OccuRate();
      EXPECT_GE(packing.OccuRate(), one - 1e-12);
      EXPECT_EQ(Fault(job, packing.ResultTranslation()), "");
    }
  });
}

TEST(Workers, MergeBothStagesAndRaiseNothingBelowTheResult) {
  // One start pair, which both stages run: three circles without look-ahead, four with it.
  const TJob job{TVRect2D::FromSize(4, 4), 0, {1}, {9}};
  TProbe plain = job.Make();
  plain.GenerateInitConfig();
  plain.PackingMultiThread(kNoLookAhead, 1, 1);
  EXPECT_THAT(plain.PackingResult(), SizeIs(3));
  TProbe both = job.Make();
  both.GenerateInitConfig();
  both.PackingMultiThread(1.0, 1, 1);
  EXPECT_THAT(both.PackingResult(), SizeIs(4));
  const TCircleNestRst best = both.PackingResult();
  both.PackingMultiThread(kNoLookAhead, 3, 1);
  EXPECT_TRUE(SameLayout(both.PackingResult(), best)) << "only what is denser replaces the result";
  both.PackingMultiThread(1.0, 2, 2);
  EXPECT_TRUE(SameLayout(both.PackingResult(), best)) << "strip workers offer no occupancy";
}

TEST(Workers, GoOnFromTheSharedResult) {
  TProbe packing = kThirty.Make();
  packing.UpdateResult(2 * std::numbers::pi / 100, {{0, 1, 1}, {0, 9, 1}});
  packing.PackingMultiThread(kNoLookAhead, 1, 0);
  EXPECT_GT(packing.PackingResult().size(), 20u);
  EXPECT_NEAR(packing.OccuRate(), Size(packing.PackingResult()) * std::numbers::pi / 100, 1e-9);
  EXPECT_EQ(packing.TakeShortest(1, 3, 50.0), 50.0) << "a strip needs all circles";

  const TJob fewer{kThirty.Plate, 0, {1}, {20}};
  TProbe strip = fewer.Make();
  strip.UpdateResult(0.01, {{0, 1, 1}, {0, 9, 1}});
  EXPECT_LT(strip.TakeShortest(1, 3, 50.0), 10.0);
  EXPECT_THAT(strip.PackingResult(), SizeIs(20));
}

TEST(Workers, AStopSetBeforeTheStartLeavesTheStartPair) {
  const auto pack = [] {
    TProbe packing = kEndless.Make();
    packing.Packing(0, 60000);
    EXPECT_THAT(packing.PackingResult(), SizeIs(2));
  };
  {
    const FlagGuard flag;
    pack();
  }
  TStopToken token;
  token.RequestStop();
  const TStopTokenScope scope(&token);
  pack();
}

TEST(Workers, ASuspendedOneWaitsForItsStart) {
  TProbe packing = kThirty.Make();
  packing.GenerateInitConfig();
  TWorker worker(true, packing, 0, kNoLookAhead, 1, TMainStrategy::InitConfig);
  worker.WaitFor();
  EXPECT_EQ(worker.OccuRate(), 0);
  worker.Start();
  worker.Start();
  worker.WaitFor();
  EXPECT_GT(worker.OccuRate(), 0.6);
}

TEST(Workers, WhatOneRaisesArrivesOnTheCallersThreadAndLeavesTheResult) {
  TProbe packing = kThirty.Make();
  packing.GenerateInitConfig();
  {
    const TAllocationsFailElsewhere noMemory;
    EXPECT_THROW(packing.PackingMultiThread(1.0, 3, 1), std::bad_alloc);
  }
  EXPECT_THAT(packing.PackingResult(), SizeIs(0));
  packing.PackingMultiThread(kNoLookAhead, 3, 1);
  EXPECT_GT(packing.OccuRate(), 0.6);
}

TEST(Budget, EndsTheRunWhenItsWholeSecondsAreOver) {
  TTimerBoard time;
  TProbe packing = kEndless.Make();
  const auto run = std::async(std::launch::async, [&] {
    const TTimerScope scope(&time);
    packing.Packing(0, 5999);
  });
  while (time.Running() == 0) std::this_thread::sleep_for(1ms);
  time.AdvanceSeconds(4.9);
  EXPECT_EQ(run.wait_for(50ms), std::future_status::timeout);
  time.AdvanceSeconds(0.1);
  ASSERT_EQ(run.wait_for(100s), std::future_status::ready);
  EXPECT_EQ(Fault(kEndless, packing.ResultTranslation()), "");
  EXPECT_GT(packing.OccuRate(), 0.7);
}

TEST(Budget, BelowOneSecondIsOverAtOnce) {
  TProbe packing = kEndless.Make();
  packing.Packing(0, 999);
  EXPECT_THAT(packing.PackingResult(), SizeIs(2));
}

TEST(Budget, ABisectionHasTenSecondsOfItsOwn) {
  TTimerBoard time;
  TProbe packing = kEndlessStrip.Make();
  packing.GenerateInitConfig();
  packing.StopPacking();
  const auto run = std::async(std::launch::async, [&] {
    const TTimerScope scope(&time);
    return packing.TakeShortest(2, 4, kNoLength);
  });
  while (time.Running() < 2) std::this_thread::sleep_for(1ms);
  time.AdvanceSeconds(9.9);
  EXPECT_EQ(time.Running(), 2);
  time.AdvanceSeconds(0.1);
  ASSERT_EQ(run.wait_for(100s), std::future_status::ready);
}

TEST(StepLimit, AnswersDependOnNeitherThreadsNorTime) {
  TTimerBoard time;
  const TTimerScope scope(&time);
  for (const bool strip : {false, true}) {
    TCircleNestRst first;
    for (const int threads : {1, 2, 4}) {
      TProbe packing = (strip ? kEndlessStrip : kEndless).Make();
      packing.SetThreadLimit(threads);
      packing.SetStepLimit(150000);
      if (strip)
        packing.StripPacking(0, TStripMethod::Best);
      else
        packing.Packing(0, 0);
      if (first.empty()) first = packing.PackingResult();
      EXPECT_GT(packing.PackingResult().size(), 20u);
      EXPECT_TRUE(SameLayout(packing.PackingResult(), first)) << threads << (strip ? " strip" : " plate");
    }
  }
}

// Rows of five, then five in the hollows and so on: no row of full width fits above the fifth.
TEST(BottomLeft, LeavesOutWhatFindsNoPlace) {
  TProbe packing = kThirty.Make();
  TCircleNestRst result{{0, 1, 1}, {0, 9, 1}};
  EXPECT_NEAR(packing.PackingWithY({0}, {28}, result), 8.92820, 1e-5);
  EXPECT_THAT(result, SizeIs(23));
  EXPECT_EQ(Fault(kThirty, result), "");
  TCircleNestRst nothing;
  EXPECT_EQ(packing.PackingWithY({0}, {30}, nothing), 0) << "without circles there is no corner";
}

TEST(Bisection, PutsThePlateBackAndKeepsThePairWhereNoHeightHoldsAll) {
  const TJob job{TVRect2D::FromSize(200, 50), 0, {5}, {40}};
  TProbe packing = job.Make();
  const TCircleNestRst pair{{0, 5, 5}, {0, 45, 5}};
  const auto candidates = packing.GeneratePosibleCP({0}, {38}, pair, false);
  TCircleNestRst result = pair;
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, result, candidates, 0, 64, 63), 10) << "no round at a width of 1";
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, result, candidates, 0, 30, 20), 10) << "no height holds them all";
  EXPECT_THAT(result, SizeIs(2));
  TCircleNestRst nothing;
  EXPECT_EQ(packing.BinaryPacking({0}, {38}, nothing, {}, 0, 64, 63), -4294967295.0);

  std::vector<int> remaining{38};
  auto copy = candidates;
  packing.GreedyPacking({0}, remaining, result, 0, copy);
  EXPECT_THAT(result, SizeIs(40)) << "the plate has its height again";
}

TEST(Strip, IsNothingWithoutRoomTimeOrStartPair) {
  EXPECT_FALSE(kThirty.Make().StripPacking(60000, TStripMethod::Best)) << "too short for all";
  EXPECT_FALSE(TProbe(TVRect2D::FromSize(100, 10), 0, {4}, {5}).StripPacking(60000, TStripMethod::Best));
  EXPECT_FALSE(TProbe(TVRect2D::FromSize(100, 10), 0, {6}, {5}).StripPacking(60000, TStripMethod::Best));
  EXPECT_FALSE(kEndless.Make().StripPacking(0, TStripMethod::Best));
}

}  // namespace
}  // namespace platenest
