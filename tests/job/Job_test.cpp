#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Assembly.h"
#include "FaultText.h"
#include "ForEachSeed.h"
#include "JobAnswer.h"
#include "JobBounds.h"
#include "JobVerdict.h"
#include "platenest/job/Run.h"

namespace platenest {
namespace {

using namespace detail;
using testing::ElementsAre;
using testing::StartsWith;

std::string FirstFault(const Job& AJob, const Result& AResult) {
  const std::vector<Fault> faults = CheckResult(AJob, AResult);
  return faults.empty() ? "" : faults[0].Place + ": " + faults[0].Text;
}

// What run() would state, had its search ended with these layouts.
Result ResultOf(const Job& AJob, const TJobSizes& Sizes, const TJobLayouts& Layouts) {
  Result result;
  result.Kind = AJob.Kind;
  result.Units = AJob.Units;
  result.Gap = AJob.Gap;
  result.Margin = AJob.Margin;
  result.Bounds = JobBoundsOf(AJob);
  result.Layouts = AssembleLayouts(AJob, Sizes, Layouts);
  for (Layout& layout : result.Layouts) MeasureInto(layout, AJob.Gap, AJob.Margin);
  Account(AJob, result);
  JudgeJob(AJob, result);
  return result;
}

struct TRandom {
  explicit TRandom(unsigned Seed) : FEngine(Seed) {}
  int Pick(int Low, int High) { return std::uniform_int_distribution(Low, High)(FEngine); }
  bool Chance(int Percent) { return Pick(1, 100) <= Percent; }
  std::mt19937 FEngine;
};

// A job so small that every answer can be looked at: all lengths are a few units.
struct TTinyJob {
  explicit TTinyJob(TRandom& Random) : Unit(std::vector{1.0, 0.1, 2.54, 1.0 / 3}[Random.Pick(0, 3)]) {
    Asked.Kind = JobKind::Job;
    Asked.Gap = Random.Chance(30) ? Unit : 0;
    const double margin = Unit != 1.0 / 3 && Random.Chance(30) ? Unit : 0;
    Asked.Margin = {margin, 0, 0, 2 * margin};
    for (int i = Random.Pick(1, 2); i > 0; --i) {
      Asked.Plates.push_back({"", Random.Pick(2, 4) * Unit + margin, Random.Pick(2, 4) * Unit + 2 * margin});
      Asked.Plates.back().Count = Random.Chance(40) ? std::nullopt : std::optional(Random.Pick(1, 3));
      if (Random.Chance(60)) Asked.Plates.back().Cost = Random.Pick(0, 3) * 0.5;
    }
    for (int left = 6; left > 0; left -= *Asked.Parts.back().Amount + Random.Pick(0, 2)) {
      const int amount = Random.Pick(1, std::min(left, 3));
      Asked.Parts.push_back({"", Random.Pick(1, 4) * Unit, Random.Pick(1, 4) * Unit, amount});
      if (Random.Chance(30)) Asked.Parts.back().Turn = Rotate::None;
    }
    const bool isFinite = std::ranges::all_of(Asked.Plates, [](const Plate& plate) { return plate.Count.has_value(); });
    if (isFinite && Random.Chance(40)) Asked.Parts.back().Amount = std::nullopt;
    GiveIds(Asked);
    Unit = ScaleOf(Asked).Up(Unit);
  }

  Job Asked;
  double Unit;  // in the nesters' units
};

constexpr int kMostAmount = 7;
using TCopies = std::vector<int>;  // of each part

// What one plate holds, by trying all places on the grid of units. Every layout can sink until each part rests on the
// plate's edge or on another part, so that no other places are needed.
class TEveryLayout {
 public:
  TEveryLayout(const TJobSizes& Sizes, double Unit, int Plate)
      : FSizes(Sizes),
        FUnit(Unit),
        FColumns(Units(Sizes.Plates[Plate].Width + Sizes.Gap)),
        FRows(Units(Sizes.Plates[Plate].Height + Sizes.Gap)),
        FCopies(Sizes.Parts.size()) {
    Place(0, 0);
  }
  const std::map<TCopies, TNestedRects>& All() const { return FFound; }

 private:
  int Units(double Length) const { return static_cast<int>(std::lround(Length / FUnit)); }

  void Place(int Cell, std::uint64_t Taken) {
    FFound.emplace(FCopies, FLayout);
    for (; Cell < FColumns * FRows; ++Cell)
      for (int i = 0; i < Size(FCopies); ++i)
        for (const bool isTurned : {false, true}) Put(Cell, i, isTurned, Taken);
  }

  void Put(int Cell, int Index, bool IsTurned, std::uint64_t Taken) {
    const TJobPart& part = FSizes.Parts[Index];
    const int width = Units((IsTurned ? part.Height : part.Width) + FSizes.Gap);
    const int height = Units((IsTurned ? part.Width : part.Height) + FSizes.Gap);
    const int x = Cell % FColumns;
    const int y = Cell / FColumns;
    const bool isAllowed = FCopies[Index] < part.Amount && (part.MayTurn || !IsTurned);
    if (!isAllowed || x + width > FColumns || y + height > FRows) return;
    const std::uint64_t row = ((std::uint64_t{1} << width) - 1) << Cell;
    std::uint64_t cells = 0;
    for (int k = 0; k < height; ++k) cells |= row << (k * FColumns);
    if ((cells & Taken) != 0 || (y > 0 && (row >> FColumns & Taken) == 0)) return;
    const TNestRect record(1, Index, TVRect2D::FromSize(part.Width, part.Height));
    FLayout.emplace_back(record, IsTurned, TPoint2D{x * FUnit + (IsTurned ? part.Height : 0), y * FUnit});
    ++FCopies[Index];
    Place(Cell + 1, Taken | cells);
    --FCopies[Index];
    FLayout.pop_back();
  }

  const TJobSizes& FSizes;
  double FUnit;
  int FColumns;
  int FRows;
  TCopies FCopies;
  TNestedRects FLayout;
  std::map<TCopies, TNestedRects> FFound;
};

// Every answer, by what it places, each at its least weight.
class TEveryAnswer {
 public:
  struct TAnswer {
    double Weight = 0;
    TJobLayouts Layouts;
  };
  using TAnswers = std::map<TCopies, TAnswer>;

  TEveryAnswer(const TJobSizes& Sizes, double Unit) : FSizes(Sizes) {
    for (int i = 0; i < Size(Sizes.Plates); ++i) FLayouts.push_back(TEveryLayout(Sizes, Unit, i).All());
  }

  TAnswers By(const std::function<double(const TJobPlate&)>& WeightOf) const {
    TAnswers answers{{TCopies(FSizes.Parts.size()), {}}};
    for (int i = 0; i < Size(FSizes.Plates); ++i)
      for (int k = 0; k < std::min(FSizes.Plates[i].Count, kMostAmount); ++k)
        for (const auto& [placed, answer] : TAnswers(answers))
          for (const auto& [copies, nested] : FLayouts[i])
            Add(answers, placed, answer, copies, {i, 1, nested}, WeightOf(FSizes.Plates[i]));
    return answers;
  }

  TJobLayouts AnyOne(TRandom& Random) const {
    TJobLayouts layouts;
    for (int i = Random.Pick(0, 4); i > 0; --i) {
      const int plate = Random.Pick(0, Size(FLayouts) - 1);
      const auto layout = std::next(FLayouts[plate].begin(), Random.Pick(0, Size(FLayouts[plate]) - 1));
      layouts.push_back({plate, Random.Pick(1, 2), layout->second});
    }
    return layouts;
  }

 private:
  void Add(TAnswers& Answers, TCopies Placed, TAnswer Answer, const TCopies& Copies, TJobLayout Layout,
           double Weight) const {
    for (int i = 0; i < Size(Placed); ++i)
      if ((Placed[i] += Copies[i]) > FSizes.Parts[i].Amount) return;
    Answer.Weight += Weight;
    Answer.Layouts.push_back(std::move(Layout));
    const auto [known, isNew] = Answers.emplace(Placed, Answer);
    if (!isNew && Answer.Weight < known->second.Weight) known->second = std::move(Answer);
  }

  const TJobSizes& FSizes;
  std::vector<std::map<TCopies, TNestedRects>> FLayouts;
};

bool PlacesAll(const TJobSizes& Sizes, const TCopies& Placed) {
  for (int i = 0; i < Size(Placed); ++i)
    if (!Sizes.Parts[i].IsUnlimited && Placed[i] < Sizes.Parts[i].Amount) return false;
  return true;
}

void ExpectSound(const std::vector<Bound>& Bounds, const TJobSizes& Sizes, const TEveryAnswer& Every) {
  const auto byPlates = Every.By([](const TJobPlate&) { return 1.0; });
  const auto byCost = Every.By([](const TJobPlate& plate) { return plate.Cost; });
  for (const Bound& bound : Bounds) {
    for (const auto& [placed, answer] : bound.What == "plates" ? byPlates : byCost) {
      double area = 0;
      for (int i = 0; i < Size(placed); ++i) area += placed[i] * Sizes.Parts[i].Area;
      const bool isMost = bound.What == "area";
      const double value = isMost ? bound.Value * (1 + 1e-11) - area : answer.Weight - bound.Value * (1 - 1e-11);
      EXPECT_TRUE(value >= 0 || !(isMost || PlacesAll(Sizes, placed))) << bound.What << ", " << bound.Kind;
    }
  }
}

TEST(WholeJob, BoundsHoldForEveryAnswerAndWhatIsProvedIsBest) {
  int proved = 0;
  int jobs = 0;
  ForEachSeed(400, [&](unsigned seed) {
    TRandom random(seed);
    const TTinyJob tiny(random);
    SCOPED_TRACE(JobToJson(tiny.Asked));
    const TJobSizes sizes = JobSizesOf(tiny.Asked);
    if (sizes.Parts.empty() ||
        std::ranges::any_of(sizes.Parts, [](const TJobPart& p) { return p.Amount > kMostAmount; }))
      return;
    const TEveryAnswer every(sizes, tiny.Unit);
    ExpectSound(JobBoundsOf(tiny.Asked), sizes, every);
    const auto byCost = every.By([](const TJobPlate& plate) { return plate.Cost; });
    TJobLayouts best;
    for (const auto& [placed, answer] : byCost)
      if (IsBetter(MeritOf(sizes, answer.Layouts), MeritOf(sizes, best))) best = answer.Layouts;
    const TJobMerit least = MeritOf(sizes, best);
    for (int i = 0; i < 4; ++i) {
      TJobLayouts layouts = i == 0 ? best : every.AnyOne(random);
      TidyAnswer(sizes, layouts);
      const Result result = ResultOf(tiny.Asked, sizes, layouts);
      EXPECT_EQ(JobFault(tiny.Asked, result.Layouts, result.Bounds), "");
      EXPECT_EQ(FirstFault(tiny.Asked, ParseResult(ResultToJson(result))), "") << ResultToJson(result);
      const TJobMerit merit = MeritOf(sizes, layouts);
      if (i == 0) proved += result.Proved ? 1 : 0;
      EXPECT_TRUE(!result.Proved || std::tuple(merit.UnplacedArea, merit.UnlimitedArea, merit.Cost) ==
                                        std::tuple(least.UnplacedArea, least.UnlimitedArea, least.Cost))
          << ResultToJson(result);
    }
    ++jobs;
  });
  EXPECT_GT(jobs, 200);
  EXPECT_GT(proved, jobs / 3);
}

// Layouts of which only the counts matter.
TJobLayouts AnyLayouts(TRandom& Random, const TJobSizes& Sizes) {
  TJobLayouts layouts;
  for (int i = Random.Pick(0, 12); i > 0; --i) {
    TJobLayout layout{.Plate = Random.Pick(0, Size(Sizes.Plates) - 1), .Copies = Random.Pick(0, 4), .Nested = {}};
    const int kinds = Random.Pick(1, Size(Sizes.Parts));
    for (int k = Random.Pick(0, 9); k > 0; --k) {
      const TNestRect record(1, Random.Pick(0, kinds - 1), TVRect2D::FromSize(1, 1));
      layout.Nested.emplace_back(record, Random.Chance(20), TPoint2D{static_cast<double>(Size(layout.Nested)), 0});
    }
    layouts.push_back(layout);
  }
  return layouts;
}

TEST(WholeJob, TidyAnswersKeepStockAndDemandAndLoseNothingElse) {
  ForEachSeed(2000, [](unsigned seed) {
    TRandom random(seed);
    TJobSizes sizes;
    for (int i = random.Pick(1, 3); i > 0; --i)
      sizes.Plates.push_back({.Width = 100, .Height = 100, .Count = random.Pick(1, 12), .Cost = 1, .Area = 1e4});
    for (int i = random.Pick(1, 4); i > 0; --i)
      sizes.Parts.push_back({.Width = 10, .Height = 20, .Amount = random.Pick(1, 60), .Area = 100.0 * i});
    sizes.Parts[0].MayTurn = false;
    const TJobLayouts given = AnyLayouts(random, sizes);
    TJobLayouts kept = given;
    TidyAnswer(sizes, kept);

    std::vector<Int64> offered = PlacedCopies(sizes, given);
    for (const TJobLayout& layout : given)
      for (const TNestedRect& item : layout.Nested)
        offered[0] -= item.IsRotate && item.Part.Idx == 0 ? layout.Copies : 0;
    const std::vector<Int64> placed = PlacedCopies(sizes, kept);
    std::vector<int> used(sizes.Plates.size());
    std::set<std::pair<int, TCopies>> contents;
    for (const TJobLayout& layout : kept) {
      TCopies copies(sizes.Parts.size());
      for (const TNestedRect& item : layout.Nested) ++copies[item.Part.Idx];
      EXPECT_TRUE(layout.Copies > 0 && !layout.Nested.empty() && contents.emplace(layout.Plate, copies).second);
      used[layout.Plate] += layout.Copies;
    }
    bool usesUp = false;
    for (int k = 0; k < Size(used); ++k) {
      EXPECT_LE(used[k], sizes.Plates[k].Count);
      usesUp |= used[k] == sizes.Plates[k].Count;
    }
    for (int i = 0; i < Size(placed); ++i) {
      const Int64 due = std::min<Int64>(offered[i], sizes.Parts[i].Amount);
      EXPECT_TRUE(placed[i] == due || (placed[i] < due && usesUp)) << placed[i] << " of " << due;
    }
    TJobLayouts again = kept;
    TidyAnswer(sizes, again);
    const TJobMerit before = MeritOf(sizes, kept);
    EXPECT_TRUE(!IsBetter(before, MeritOf(sizes, again)) && !IsBetter(MeritOf(sizes, again), before));
  });
}

TEST(WholeJob, SizesLeaveOutWhatIsOfNoUse) {
  Job job;
  job.Kind = JobKind::Job;
  job.Gap = 3;
  job.Margin = {10, 10, 10, 10};
  job.Plates = {{.Id = "", .Width = 2800, .Height = 2070, .Count = std::nullopt, .Cost = 5},
                {.Id = "", .Width = 19, .Height = 900, .Count = 3},
                {.Id = "", .Width = 620, .Height = 420, .Count = 9, .Cost = 1, .Remnant = true},
                {.Id = "", .Width = 60, .Height = 40, .Count = 9}};
  job.Parts = {{.Id = "", .Width = 2060, .Height = 300, .Amount = 4, .Turn = Rotate::None},
               {.Id = "", .Width = 600, .Height = 400, .Amount = 2},
               {.Id = "", .Width = 2781, .Height = 10, .Amount = 9}};
  GiveIds(job);
  const TJobSizes sizes = JobSizesOf(job);
  ASSERT_EQ(std::pair(Size(sizes.Plates), Size(sizes.Parts)), std::pair(2, 2));
  EXPECT_THAT((std::vector{sizes.Plates[0].Position, sizes.Plates[0].Count, sizes.Plates[1].Count}),
              ElementsAre(2, 2, 6));
  job.Plates.erase(job.Plates.begin());
  job.Parts[1].Amount = std::nullopt;
  EXPECT_EQ(JobSizesOf(job).Parts.at(0).Amount, 9);
  job.Parts.push_back({.Id = "small", .Width = 0.4, .Height = 0.4, .Amount = std::nullopt});
  job.Gap = 0;
  EXPECT_EQ(FaultsOf([&] { JobSizesOf(job); }), "LimitError: limit /parts/3/amount");
  job.Margin = {300, 250, 400, 250};
  EXPECT_EQ(FaultsOf([&] { JobSizesOf(job); }), "InputError: range /margin");
}

// A third of a side has more digits than a double, and three of them can be longer than the side.
TEST(WholeJob, PartsThatDivideAPlateFillIt) {
  ForEachSeed(60, [](unsigned seed) {
    TRandom random(seed);
    const double unit = std::vector{1.0, 0.001, 25.4, 1.0 / 16}[random.Pick(0, 3)];
    const int across = random.Pick(2, 9);
    const int along = random.Pick(2, 9);
    Job job;
    job.Kind = JobKind::Job;
    job.Gap = random.Pick(0, 2) * 2 * unit;
    const double margin = random.Pick(0, 1) * 10 * unit;
    job.Margin = {margin, margin, margin, margin};
    const double width = random.Pick(500, 1900) * unit;
    const double height = random.Pick(500, 1900) * unit;
    job.Plates = {{.Id = "whole", .Width = width, .Height = height}};
    job.Parts = {{.Id = "piece",
                  .Width = (width - 2 * margin - (across - 1) * job.Gap) / across,
                  .Height = (height - 2 * margin - (along - 1) * job.Gap) / along,
                  .Amount = across * along}};
    job.Run.Method = "repeat";
    job.Run.TimeLimit = 5;
    const Result result = run(job);
    EXPECT_EQ(result.Parts.at(0).Unplaced, 0) << JobToJson(job);
    EXPECT_EQ(FirstFault(job, result), "") << JobToJson(job);
    EXPECT_TRUE(result.Layouts.at(0).EdgeToEdge) << JobToJson(job);
  });
}

// A bound on one of the things that answers are compared by does not end the search for the others.
TEST(WholeJob, GoesOnWhereABoundSaysHalfOfIt) {
  Job full;  // five parts fill the grown plate, but others hold more area
  full.Kind = JobKind::Job;
  full.Gap = 1;
  full.Plates = {{.Id = "plate", .Width = 7, .Height = 5}};
  full.Parts = {{.Id = "long", .Width = 7, .Height = 1, .Amount = 4},
                {.Id = "short", .Width = 2, .Height = 4, .Amount = 3}};
  full.Run.Deterministic = true;
  EXPECT_EQ(run(full).Total.PartArea, 24);
  Job cheap = full;  // two small plates cost what a large one does
  cheap.Plates = {{.Id = "large", .Width = 9, .Height = 5, .Count = 2, .Cost = 1},
                  {.Id = "small", .Width = 5, .Height = 6, .Count = 2, .Cost = 0.5}};
  cheap.Parts = {{.Id = "strip", .Width = 5, .Height = 2, .Amount = 3}};
  EXPECT_EQ(run(cheap).Total.Plates, 1);
}

TEST(WholeJob, LastPlateIsARemnantOnlyWhereNoOtherIsUsed) {
  Job job;
  job.Kind = JobKind::Job;
  job.Plates = {{.Id = "rest", .Width = 10, .Height = 10, .Remnant = true}, {.Id = "board", .Width = 20, .Height = 10}};
  job.Parts = {{.Id = "piece", .Width = 10, .Height = 5, .Amount = 4}};
  const TJobSizes sizes = JobSizesOf(job);
  const TNestRect record(1, 0, TVRect2D::FromSize(sizes.Parts[0].Width, sizes.Parts[0].Height));
  TNestedRects one, three;
  for (int i = 0; i < 3; ++i) (i == 0 ? one : three).emplace_back(record, false, TPoint2D{0, 0});
  three.emplace_back(record, false, TPoint2D{0, 0});
  EXPECT_EQ(MeritOf(sizes, {{0, 1, one}, {1, 1, three}}).LastUsage, 0.75);
  EXPECT_EQ(MeritOf(sizes, {{0, 1, one}}).LastUsage, 0.5);
}

// A fill that stops as soon as all is placed leaves less than six tenths of the room in one piece.
TEST(WholeJob, LeavesTheRoomOfALastPlateInOnePiece) {
  double shares = 0;
  int jobs = 0;
  ForEachSeed(30, [&](unsigned seed) {
    TRandom random(seed);
    Job job;
    job.Kind = JobKind::Job;
    job.Gap = 4;
    job.Plates = {{.Id = "board", .Width = 2800, .Height = 2070, .Count = std::nullopt}};
    double least = 0.01 * random.Pick(55, 75) * 2800 * 2070;
    while (least > 0) {
      const double width = random.Pick(100, 700);
      const double height = random.Pick(100, 700);
      job.Parts.push_back({.Id = "", .Width = width, .Height = height, .Amount = random.Pick(1, 4)});
      least -= width * height * *job.Parts.back().Amount;
    }
    GiveIds(job);
    job.Run.TimeLimit = 5;
    const Result result = run(job);
    EXPECT_EQ(FirstFault(job, result), "");
    if (result.Layouts.size() != 1) return;
    const Box& free = result.Layouts[0].FreeBox;
    shares += (free[2] - free[0]) * (free[3] - free[1]) / (result.Total.PlateArea - result.Total.PartArea);
    ++jobs;
  });
  EXPECT_GT(jobs, 20);
  EXPECT_GT(shares, 0.67 * jobs);
}

// Two plates of a stock, one layout on both, a part too large, parts that found no plate.
struct TSample {
  TSample() {
    Asked.Name = "sample";
    Asked.Kind = JobKind::Job;
    Asked.Gap = 4;
    Asked.Plates = {{.Id = "board", .Width = 1000, .Height = 500, .Count = 2, .Cost = 3},
                    {.Id = "rest", .Width = 300, .Height = 200, .Count = 1, .Cost = 0, .Remnant = true}};
    Asked.Parts = {{.Id = "side", .Width = 700, .Height = 480, .Amount = 3},
                   {.Id = "shelf", .Width = 280, .Height = 190, .Amount = 5},
                   {.Id = "large", .Width = 1100, .Height = 10, .Amount = 1}};
    const TJobSizes sizes = JobSizesOf(Asked);
    const auto record = [&](int i) {
      return TNestRect(1, i, TVRect2D::FromSize(sizes.Parts[i].Width, sizes.Parts[i].Height));
    };
    TNestedRects board, rest;
    board.emplace_back(record(0), false, TPoint2D{0, 0});
    board.emplace_back(record(1), false, TPoint2D{704, 0});
    board.emplace_back(record(1), false, TPoint2D{704, 194});
    rest.emplace_back(record(1), false, TPoint2D{0, 0});
    Good = ResultOf(Asked, sizes, {{0, 1, rest}, {1, 2, board}});
    Good.Name = Asked.Name;
    Good.Estimate = {"plates", "cg", 3.4};
  }
  Job Asked;
  Result Good;
};

TEST(WholeJob, IsCompleteWhenNoCopyWithoutLimitFitsAnyMore) {
  TSample sample;
  sample.Asked.Parts[0].Amount = sample.Good.Parts[0].Amount = 2;
  sample.Asked.Parts[1].Amount = sample.Good.Parts[1].Amount = std::nullopt;
  sample.Asked.Parts[2].Amount = sample.Good.Parts[2].Amount = std::nullopt;
  for (PartUse& part : sample.Good.Parts) part.Unplaced = 0;
  const auto status = [&] {
    JudgeJob(sample.Asked, sample.Good);
    return sample.Good.Status;
  };
  EXPECT_EQ(status(), ResultStatus::Complete);
  sample.Good.Layouts[1].FreeBox = {0, 0, 190, 280};
  EXPECT_EQ(status(), ResultStatus::Partial);
  sample.Asked.Parts[1].Turn = Rotate::None;
  EXPECT_EQ(status(), ResultStatus::Complete);
  sample.Asked.Plates[0].Count = sample.Good.Plates[0].Count = 3;
  EXPECT_EQ(status(), ResultStatus::Partial);
}

TEST(CheckResult, FindsWhatIsWrongInAWholeJob) {
  const TSample sample;
  EXPECT_EQ(FirstFault(sample.Asked, sample.Good), "");
  EXPECT_THAT((std::vector{sample.Good.Parts[0].Reason, sample.Good.Parts[1].Reason, sample.Good.Parts[2].Reason}),
              ElementsAre("no_stock", "", "too_large"));
  const std::pair<const char*, std::function<void(Job&, Result&)>> changes[] = {
      {"/layouts/1/copies", [](Job&, Result& r) { r.Layouts[1].Copies = 0; }},
      {"/summary/plates", [](Job&, Result& r) { r.Layouts[1].Copies = 1; }},
      {"/summary/cost", [](Job&, Result& r) { r.Total.Cost = 5; }},
      {"/summary/cost", [](Job& j, Result&) { j.Plates[1].Cost.reset(); }},
      {"/bounds", [](Job&, Result& r) { r.Bounds.front().Value += 1; }},
      {"/bounds",
       [](Job&, Result& r) {
         r.Bounds.push_back({"plates", "cg", 3.4});
       }},
      {"/proved", [](Job&, Result& r) { r.Proved = !r.Proved; }},
      {"/status", [](Job&, Result& r) { r.Status = ResultStatus::Complete; }},
      {"/estimate/value", [](Job&, Result& r) { r.Estimate->Value = -1; }},
      {"/estimate/value", [](Job&, Result& r) { r.Estimate->Value = std::nan(""); }},
      {"/plates/0/used", [](Job& j, Result& r) { j.Plates[0].Count = r.Plates[0].Count = 1; }},
      {"/parts/1/placed", [](Job& j, Result& r) { j.Parts[1].Amount = r.Parts[1].Amount = 4; }},
      {"/parts/0/reason", [](Job&, Result& r) { r.Parts[0].Reason = "left_by_method"; }},
      {"/parts/2/reason", [](Job&, Result& r) { r.Parts[2].Reason = "no_stock"; }},
      {"/layouts/0/placements/0/rotated",
       [](Job& j, Result& r) {
         j.Parts[1].Turn = Rotate::None;
         r.Layouts[0].Placements[0] = {"shelf", true, {190, 0}, {0, 0, 190, 280}};
       }},
      {"/layouts/1: ", [](Job&, Result& r) { r.Layouts[1].Placements[2] = r.Layouts[1].Placements[1]; }},
  };
  for (const auto& [place, change] : changes) {
    Job asked = sample.Asked;
    Result bad = sample.Good;
    change(asked, bad);
    EXPECT_THAT(FirstFault(asked, bad), StartsWith(place));
  }
}

}  // namespace
}  // namespace platenest
