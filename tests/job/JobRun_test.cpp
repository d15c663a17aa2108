#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "FaultText.h"
#include "ForEachSeed.h"
#include "platenest/job/Run.h"

namespace platenest {
namespace {

using testing::ElementsAre;

constexpr const char* kMethods[] = {"repeat", "svc", "cg", "auto"};

Job WholeJob(std::vector<Plate> Plates, std::vector<Part> Parts, double Gap = 0) {
  Job job;
  job.Kind = JobKind::Job;
  job.Gap = Gap;
  job.Plates = std::move(Plates);
  job.Parts = std::move(Parts);
  job.Run.Deterministic = true;
  job.Run.TimeLimit = 2;
  GiveIds(job);
  return job;
}

Plate Sheet(double Width, double Height, std::optional<int> Count = std::nullopt, std::optional<double> Cost = {},
            bool Remnant = false) {
  return {.Id = "", .Width = Width, .Height = Height, .Count = Count, .Cost = Cost, .Remnant = Remnant};
}

Part Rect(double Width, double Height, std::optional<int> Amount, Rotate Turn = Rotate::Any) {
  return {.Id = "", .Width = Width, .Height = Height, .Amount = Amount, .Turn = Turn};
}

Result Answer(Job AJob, const std::string& Method, const RunHooks& Hooks = {}) {
  AJob.Run.Method = Method;
  Result result = run(AJob, Hooks);
  const std::vector<Fault> faults = CheckResult(AJob, result);
  EXPECT_TRUE(faults.empty()) << faults[0].Place << ": " << faults[0].Text << '\n' << JobToJson(AJob);
  return result;
}

std::vector<int> Placed(const Result& AResult) {
  std::vector<int> counts;
  for (const PartUse& part : AResult.Parts) counts.push_back(part.Placed);
  return counts;
}

std::vector<int> Used(const Result& AResult) {
  std::vector<int> counts;
  for (const PlateUse& plate : AResult.Plates) counts.push_back(plate.Used);
  return counts;
}

// Plates of 24 by 16 units cut from edge to edge, so that no answer needs fewer of them.
struct TCutUp {
  explicit TCutUp(unsigned Seed) : FEngine(Seed) {}

  int Pick(int Low, int High) { return std::uniform_int_distribution(Low, High)(FEngine); }
  void Cut(int Width, int Height, int Depth) {
    const bool isUpright = Width > Height;
    const int side = std::max(Width, Height);
    if (Depth == 0 || side < 4) return Pieces.push_back({Width, Height});
    const int at = Pick(2, side - 2);
    Cut(isUpright ? at : Width, isUpright ? Height : at, Depth - 1);
    Cut(isUpright ? side - at : Width, isUpright ? Height : side - at, Depth - 1);
  }
  // A gap of a whole unit is cut off the pieces and the plate.
  Job Make(int Plates, double Unit, bool HasGap) {
    for (int i = 0; i < Plates; ++i) Cut(24, 16, Pick(1, 3));
    const auto length = [&](int units) { return (units - (HasGap ? 1 : 0)) * Unit; };
    Job job = WholeJob({Sheet(length(24), length(16))}, {}, HasGap ? Unit : 0);
    for (const auto& [width, height] : Pieces) job.Parts.push_back(Rect(length(width), length(height), 1));
    GiveIds(job);
    return job;
  }

  std::vector<std::pair<int, int>> Pieces;
  std::mt19937 FEngine;
};

TEST(RunJob, PlatesThatWereCutUpAreFoundAgainInEveryUnit) {
  ForEachSeed(12, [](unsigned seed) {
    TCutUp cut(seed);
    const int plates = 1 + static_cast<int>(seed % 4);
    const Job job = cut.Make(plates, std::vector{1.0, 0.1, 30.0, 0.0625}[seed % 4], seed % 3 == 0);
    const Result result = Answer(job, "auto");
    EXPECT_EQ(result.Total.Plates, plates);
    EXPECT_TRUE(result.Proved);
    for (const char* method : {"svc", "cg"}) EXPECT_LE(Answer(job, method).Total.Plates, plates + 1) << method;
  });
}

// Sizes without common decimals must not lose the fit of two thirds and a third.
TEST(RunJob, EachMethodRepeatsAPatternAndPlacesWhatIsAsLongAsThePlate) {
  for (const char* method : kMethods) {
    SCOPED_TRACE(method);
    const Result full = Answer(
        WholeJob({Sheet(100, 60)}, {Rect(100, 60, 2), Rect(60, 30, 3), Rect(100, 20, 3), Rect(40, 60, 2)}), method);
    EXPECT_EQ(full.Status, ResultStatus::Complete);
    EXPECT_LE(full.Total.Plates, 6);
    const Result many = Answer(WholeJob({Sheet(1, 1)}, {Rect(1.0 / 3, 2.0 / 3, 299), Rect(0.3, 0.3, 299)}), method);
    EXPECT_EQ(many.Status, ResultStatus::Complete);
    EXPECT_LE(many.Total.Plates, 101);
    EXPECT_LE(many.Layouts.size(), 8U);
  }
}

TEST(RunJob, LockedPartsNeverTurnAndMethodsThatTurnAreRefused) {
  Job job = WholeJob({Sheet(900, 1400)}, {Rect(400, 260, 19, Rotate::None), Rect(300, 120, 40), Rect(90, 90, 30)}, 3);
  for (const char* method : {"auto", "repeat"}) {
    const Result result = Answer(job, method);
    EXPECT_EQ(result.Status, ResultStatus::Complete);
    EXPECT_LE(result.Total.Plates, 4) << method;
    for (const Layout& layout : result.Layouts)
      for (const Placement& place : layout.Placements) EXPECT_FALSE(place.Part == "part-1" && place.Rotated) << method;
  }
  for (const char* method : {"svc", "cg"}) {
    job.Run.Method = method;
    EXPECT_EQ(FaultsOf([&] { run(job); }), "InputError: conflict /options/method");
    const Job square = WholeJob({Sheet(900, 1400)}, {Rect(90, 90, 500, Rotate::None), Rect(300, 120, 40)}, 3);
    EXPECT_EQ(Answer(square, method).Status, ResultStatus::Complete);
  }
}

TEST(RunJob, KindsOfPlatesAreChosenByStockRemnantsAndCost) {
  const std::vector<Part> parts = {Rect(50, 50, 9)};
  const std::tuple<const char*, std::vector<Plate>, std::vector<int>> cases[] = {
      {"remnants first", {Sheet(100, 100), Sheet(100, 50, 1, 0, true)}, {2, 1}},
      {"the last plate is the cheapest that holds the rest", {Sheet(100, 100), Sheet(60, 60, 1)}, {2, 1}},
      {"dear plates stay", {Sheet(100, 100, 9, 5), Sheet(100, 100, 2, 1), Sheet(50, 50, 9, 1)}, {0, 2, 1}},
      {"stock ends", {Sheet(100, 50, 1), Sheet(50, 50, 2)}, {1, 2}},
  };
  for (const auto& [what, plates, used] : cases) {
    for (const char* method : {"repeat", "auto"}) {
      const Result result = Answer(WholeJob(plates, parts), method);
      EXPECT_EQ(Used(result), used) << what << ' ' << method;
    }
  }
  const Result stock = Answer(WholeJob(std::get<1>(cases[3]), parts), "auto");
  EXPECT_EQ(std::pair(stock.Parts[0].Placed, stock.Parts[0].Reason), std::pair(4, std::string("no_stock")));
}

TEST(RunJob, CopiesWithoutLimitTakeWhatTheDemandLeavesOfTheStock) {
  const Job job = WholeJob({Sheet(100, 100, 3)}, {Rect(60, 100, 2), Rect(20, 20, std::nullopt), Rect(300, 5, 1)});
  for (const char* method : kMethods) {
    const Result result = Answer(job, method);
    EXPECT_THAT(Placed(result), ElementsAre(2, 25 + 2 * 10, 0)) << method;
    EXPECT_EQ(result.Parts[2].Reason, "too_large");
  }
}

// However short the time is, the quick answer stands; rows take the part of quick fills where sizes are many.
TEST(RunJob, GreatJobsAreAnsweredInNoTime) {
  Job job = WholeJob({Sheet(3000, 1500)}, {});
  std::mt19937 engine(1);
  for (int i = 0; i < 600; ++i)
    job.Parts.push_back(Rect(20 + static_cast<double>(engine() % 900), 20 + static_cast<double>(engine() % 500), 300));
  GiveIds(job);
  job.Run = {.TimeLimit = 1e-3};
  const Result result = Answer(job, "auto");
  EXPECT_EQ(result.Status, ResultStatus::Complete);
  EXPECT_GT(result.Total.Usage, 0.75);
}

TEST(RunJob, ColumnGenerationTellsItsLpValueAndAnEstimateThatIsNoBound) {
  Job job = WholeJob({Sheet(250, 250)}, {Rect(167, 184, 90), Rect(114, 118, 75), Rect(167, 152, 71), Rect(83, 140, 13),
                                         Rect(70, 86, 39), Rect(143, 166, 79), Rect(120, 160, 63), Rect(66, 148, 93)});
  job.Run = {.TimeLimit = 20};
  std::set<std::string> phases;
  int lpValues = 0;
  const auto onProgress = [&](const Progress& now) {
    phases.insert(now.Phase);
    lpValues += now.LpValue ? 1 : 0;
    return true;
  };
  const Result result = Answer(job, "cg", {.OnProgress = onProgress, .Stop = nullptr});
  EXPECT_TRUE(phases.contains("repeat"));
  ASSERT_TRUE(result.Estimate);
  EXPECT_EQ(result.Total.Plates, result.Estimate->Value) << "rounds up to the optimum";
  for (const Bound& bound : result.Bounds) EXPECT_NE(bound.Kind, "cg");
}

}  // namespace
}  // namespace platenest
