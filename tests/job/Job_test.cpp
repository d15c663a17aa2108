#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <random>
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
    for (int i = Random.Pick(1, 2); i > 0; --i) AddPlate(Random);
    for (int left = 6; left > 0;) {
      const int amount = Random.Pick(1, std::min(left, 3));
      left -= amount + Random.Pick(0, 2);
      const double width = Random.Pick(1, 4) * Unit;
      Asked.Parts.push_back({.Id = "", .Width = width, .Height = Random.Pick(1, 4) * Unit, .Amount = amount});
      if (Random.Chance(30)) Asked.Parts.back().Turn = Rotate::None;
    }
    const bool isFinite = std::ranges::all_of(Asked.Plates, [](const Plate& plate) { return plate.Count.has_value(); });
    if (isFinite && Random.Chance(40)) Asked.Parts.back().Amount = std::nullopt;
    GiveIds(Asked);
    Unit = ScaleOf(Asked).Up(Unit);
  }
  void AddPlate(TRandom& Random) {
    Plate plate;
    plate.Width = Random.Pick(2, 4) * Unit + Asked.Margin[0];
    plate.Height = Random.Pick(2, 4) * Unit + Asked.Margin[3];
    plate.Count = Random.Chance(40) ? std::nullopt : std::optional(Random.Pick(1, 3));
    if (Random.Chance(60)) plate.Cost = Random.Pick(0, 3) * 0.5;
    plate.Remnant = Random.Chance(20);
    Asked.Plates.push_back(plate);
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

}  // namespace
}  // namespace platenest
