#include "FillMethods.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "FillNesters.h"
#include "FillRows.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/job/JobErrors.h"

namespace platenest::detail {

namespace {

using TSizes = std::shared_ptr<const TFillSizes>;

// Parts that are left out in turn.
constexpr int kMostLeftOut = 40;
// How often the most valuable parts for their area could cover the plate.
constexpr double kDenseShares[] = {1.0, 1.25};
// From this number of sizes times copies on, rows come first; and they are told parts for so many plates.
constexpr double kRowsWork = 2e4;
constexpr double kRowsShare = 1.5;
// What a millisecond does of it.
constexpr double kWorkPerMs = 1e4;
// Rounds with worths that are moved at random, and how far; every few rounds the slower program takes part. Small jobs
// have more rounds, though not of the program: as many as come to this number of sizes times copies.
constexpr int kRounds = 200;
constexpr int kMostRounds = 1000;
constexpr double kRoundWork = 2e5;
constexpr int kRoundsPerProgram = 4;
// No clock ends the rounds of a deterministic run, so they are fewer.
constexpr int kDeterministicRounds = 100;
constexpr double kOrderShake = 0.35;
constexpr double kWorthShake = 0.15;
constexpr double kLeastShare = 0.85;
constexpr double kShareRange = 0.6;

using TChange = std::function<TFillSizes(const TFillSizes&)>;

TFillSizes AsItIs(const TFillSizes& Sizes) {
  return Sizes;
}

int RoundCount(const TFillSizes& Sizes, bool IsDeterministic) {
  if (IsDeterministic) return kDeterministicRounds;
  return Round<int>(std::clamp<double>(kRoundWork / WorkOf(Sizes), kRounds, kMostRounds));
}

// Gathers the ways of one job, and of the same job without turning.
class TMethodList {
 public:
  explicit TMethodList(const Job& AJob) : FAsked(std::make_shared<TFillSizes>(FillSizesOf(AJob))), FUnturned(FAsked) {
    const auto mayTurn = [](const Part& part) { return part.Turn == Rotate::Any; };
    FTurnsAll = std::ranges::all_of(AJob.Parts, mayTurn);
    FTurnsSome = std::ranges::any_of(AJob.Parts, mayTurn);
    FCountedMs = std::max(1.0, WorkOf(*FAsked) / kWorkPerMs);
    if (FTurnsSome) FUnturned = std::make_shared<TFillSizes>(UnturnedSizesOf(AJob));
  }

  // The free-rectangle nest of a great job takes long for its first answer.
  void AddRows() {
    if (WorkOf(*FAsked) < kRowsWork) return;
    AddEach("rows", [](const TFillSizes& s) { return NestRows(s, DenseAmounts(s, kRowsShare)); });
    for (TFillMethod& method : FMethods) {
      method.CountedMs = 1;
      method.FillsFreeBoxes = false;
    }
  }
  void AddSmart() {
    AddEach("smart", [](const TFillSizes& s) { return NestAll(s); });
  }
  void AddDense() {
    if (!FAsked->HasValues) return;
    for (const double share : kDenseShares)
      AddEach("smart", [share](const TFillSizes& s) { return NestDense(s, share); });
  }
  void AddRaster(const TChange& Change) {
    if (FTurnsAll) Add("raster", FAsked, [Change](const TFillSizes& s) { return NestRaster(Change(s)); });
  }
  // Without turning first: on a large plate the time may end before the pass that turns does.
  void AddProgram(const TChange& Change, bool IsNormal) {
    Add("rskf", FUnturned, [=](const TFillSizes& s) { return NestUnturned(Change(s), IsNormal); });
    if (FTurnsAll) Add("rskf", FAsked, [=](const TFillSizes& s) { return NestProgram(Change(s), true, IsNormal); });
    if (FTurnsSome && !FTurnsAll)
      Add("rskf", FAsked, [=](const TFillSizes& s) { return NestWithTwins(Change(s), IsNormal); });
  }
  // One kind left out each time, which then may go where there is room.
  void AddSmartWithoutOne() {
    for (int i = 0; i < std::min(Size(FAsked->Parts), kMostLeftOut) && FAsked->Parts.size() > 1; ++i)
      AddEach("smart", [i](const TFillSizes& s) {
        std::vector<int> amounts = AllOffered(s);
        if (i < Size(amounts)) amounts[i] = 0;
        return NestSmart(s, amounts, s.PlateWidth, s.PlateHeight);
      });
  }
  // A deterministic run has no clock that would end the program's rounds, so they are left out.
  void AddShaken(const Options& Run) {
    const std::uint64_t seed = Run.Seed;
    const int programRounds = Run.Deterministic ? 0 : kRounds;
    const int count = RoundCount(*FUnturned, Run.Deterministic);
    for (int round = 0; round < count; ++round) {
      const double share = kLeastShare + kShareRange * Drawn(seed, round, -1);
      AddEach("smart", [=](const TFillSizes& s) { return NestDense(Shaken(s, kOrderShake, seed, round), share); });
      const auto shaken = [=](const TFillSizes& s) { return Shaken(s, kWorthShake, seed, round); };
      if (round % kRoundsPerProgram == kRoundsPerProgram / 2) AddRaster(shaken);
      if (round % kRoundsPerProgram == 0 && round < programRounds)
        AddProgram(shaken, round % (2 * kRoundsPerProgram) == 0);
    }
  }
  void AddBigFirst() {
    if (!FTurnsAll) return;
    for (const int big : BigRects(*FAsked))
      for (const bool isNormal : {false, true})
        Add("bigfirst", FAsked, [big, isNormal](const TFillSizes& s) { return NestBigFirst(s, big, isNormal); });
  }

  std::vector<TFillMethod> Taken() && { return std::move(FMethods); }

 private:
  void Add(const char* Name, const TSizes& Sizes, std::function<TNestedRects(const TFillSizes&)> Nest) {
    if (Sizes->Parts.empty()) return;
    FMethods.push_back({Name, Sizes, [Sizes, nest = std::move(Nest)] { return nest(*Sizes); }, FCountedMs, true});
  }
  void AddEach(const char* Name, const std::function<TNestedRects(const TFillSizes&)>& Nest) {
    Add(Name, FAsked, Nest);
    if (FTurnsSome) Add(Name, FUnturned, Nest);
  }

  TSizes FAsked;
  TSizes FUnturned;
  double FCountedMs = 1;
  bool FTurnsAll = false;
  bool FTurnsSome = false;
  std::vector<TFillMethod> FMethods;
};

}  // namespace

void RequireFillMethod(const Job& AJob) {
  if (AJob.Run.Method == "strips")
    throw InputError({"choice", "/options/method",
                      "this version fills by the methods `auto`, `smart`, `raster`, `rskf` and `bigfirst` only", ""});
}

std::vector<TFillMethod> FillMethods(const Job& AJob) {
  const std::string& method = AJob.Run.Method;
  const bool isAuto = method == "auto";
  TMethodList list(AJob);
  if (isAuto || method == "smart") list.AddRows();
  if (isAuto || method == "smart") list.AddSmart();
  if (isAuto || method == "raster") list.AddRaster(AsItIs);
  if (isAuto) list.AddDense();
  for (const bool isNormal : {false, true})
    if (isAuto || method == "rskf") list.AddProgram(AsItIs, isNormal);
  if (isAuto || method == "bigfirst") list.AddBigFirst();
  if (isAuto) list.AddSmartWithoutOne();
  if (isAuto) list.AddShaken(AJob.Run);
  return std::move(list).Taken();
}

}  // namespace platenest::detail
