#include "NfpSuite.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "NfpCase.h"
#include "NfpPairs.h"

namespace platenest::bench {

namespace {

// Product of the edge counts up to which ntExact, which nothing bounds, is asked for.
constexpr Int64 kMostExactEdges = 40'000;
constexpr double kStripLengths = 3;  // length of the strip in longest parts

struct TTally {
  std::string Id;
  std::vector<double> Ms;
  std::array<int, 5> Delivered{};
  std::array<int, kNfpFaultCount> Faults{};
  TNfpStatistics Sum;
  int Right = 0;
  int AreasCompared = 0;
  double WorstRelative = 0;
  std::string FirstFault;
};

void AddStatistics(TNfpStatistics& Sum, const TNfpStatistics& More) {
  Sum.Convolutions += More.Convolutions;
  Sum.Chips += More.Chips;
  Sum.Circuits += More.Circuits;
  Sum.Retries += More.Retries;
  for (std::size_t i = 0; i < Sum.Rungs.size(); ++i) Sum.Rungs[i] += More.Rungs[i];
  Sum.Failures += More.Failures;
  Sum.Recollected += More.Recollected;
  Sum.TrailChecks += More.TrailChecks;
  Sum.TrailHits += More.TrailHits;
  for (std::size_t i = 0; i < Sum.Ladder.size(); ++i) Sum.Ladder[i] += More.Ladder[i];
}

void Add(TTally& Tally, const std::string& Name, const TNfpRequest& Request, const TNfpAnswer& Answer,
         const TNfpVerdict& Verdict) {
  Tally.Ms.push_back(Answer.Ms);
  ++Tally.Delivered[static_cast<std::size_t>(Answer.Quality)];
  ++Tally.Faults[static_cast<std::size_t>(Verdict.Fault)];
  AddStatistics(Tally.Sum, Answer.Statistics);
  const bool isFull = Answer.Quality >= Request.Required;
  Tally.Right += !IsFailure(Verdict.Fault) && isFull;
  Tally.AreasCompared += Verdict.AreaCompared;
  Tally.WorstRelative = std::max(Tally.WorstRelative, Verdict.Relative);
  if (Verdict.Fault == TNfpFault::None && isFull) return;
  const std::string text = Name + ": " + (Verdict.Fault == TNfpFault::None ? "reduced" : NameOf(Verdict.Fault)) + " " +
                           TNFPTypeUtils::GetTypeNameStr(Answer.Quality) + " rung " +
                           std::to_string(RungOf(Answer.Statistics)) + " ladder " +
                           std::to_string(LadderOf(Answer.Statistics)) + " " + Verdict.Text;
  if (IsFailure(Verdict.Fault) && Tally.FirstFault.empty()) Tally.FirstFault = text;
  if (Verdict.Fault == TNfpFault::None && Request.Required != ntComplete) return;
  std::printf("  %s %s\n", Tally.Id.c_str(), text.c_str());
  std::fflush(stdout);
}

TRow RowOf(const TTally& Tally) {
  TRow row;
  const double count = static_cast<double>(Tally.Ms.size());
  row.Id = Tally.Id;
  row.Size = std::to_string(Tally.Ms.size());
  row.Result = Tally.Right;
  row.Best = row.Bound = count;
  row.Ms = Quantile(Tally.Ms, 0.5);
  row.Fault = Tally.FirstFault;
  row.Figures = {{"ms_p99", Quantile(Tally.Ms, 0.99)}, {"ms_worst", Quantile(Tally.Ms, 1)}};
  for (std::size_t i = 0; i < Tally.Delivered.size(); ++i)
    row.Figures.push_back({Numbered("delivered_", i), Tally.Delivered[i]});
  for (int i = 1; i < kNfpFaultCount; ++i)
    row.Figures.push_back({NameOf(static_cast<TNfpFault>(i)), Tally.Faults[static_cast<std::size_t>(i)]});
  const auto add = [&row](const std::string& name, auto value) {
    row.Figures.push_back({name, static_cast<double>(value)});
  };
  const TNfpStatistics& sum = Tally.Sum;
  add("convolutions", sum.Convolutions);
  add("chips", sum.Chips);
  add("circuits", sum.Circuits);
  add("retries", sum.Retries);
  for (std::size_t i = 0; i < sum.Rungs.size(); ++i) add(Numbered("rung_", i), sum.Rungs[i]);
  add("failures", sum.Failures);
  add("recollected", sum.Recollected);
  add("trail_checks", sum.TrailChecks);
  add("trail_hits", sum.TrailHits);
  for (std::size_t i = 1; i < sum.Ladder.size(); ++i) add(Numbered("ladder_", i), sum.Ladder[i]);
  add("areas_compared", Tally.AreasCompared);
  add("worst_relative", Tally.WorstRelative);
  return row;
}

std::string Joined(const auto& Counts, std::size_t From) {
  std::string text;
  for (std::size_t i = From; i < Counts.size(); ++i)
    text += Numbered(i > From ? "/" : "", static_cast<std::size_t>(Counts[i]));
  return text;
}

void PrintHead() {
  std::printf("%-20s %5s %9s %9s %9s %-16s %9s %8s %7s %-12s %8s %-8s %-10s %s\n", "instance", "pairs", "median ms",
              "p99", "worst", "NO/CV/CC/CP/EX", "chips", "circuits", "retries", "rungs 1-5", "failures", "ladder",
              "trails", "faults");
}

void Print(const TTally& Tally) {
  std::string faults;
  for (int i = 1; i < kNfpFaultCount; ++i) {
    const int count = Tally.Faults[static_cast<std::size_t>(i)];
    if (count > 0) faults += std::string(" ") + NameOf(static_cast<TNfpFault>(i)) + " " + std::to_string(count);
  }
  const TNfpStatistics& sum = Tally.Sum;
  const std::string trails = std::to_string(sum.TrailHits) + "/" + std::to_string(sum.TrailChecks);
  std::printf("%-20s %5zu %9.4f %9.4f %9.3f %-16s %9lld %8lld %7lld %-12s %8lld %-8s %-10s %d areas, worst %.2g%s\n",
              Tally.Id.c_str(), Tally.Ms.size(), Quantile(Tally.Ms, 0.5), Quantile(Tally.Ms, 0.99),
              Quantile(Tally.Ms, 1), Joined(Tally.Delivered, 0).c_str(), static_cast<long long>(sum.Chips),
              static_cast<long long>(sum.Circuits), static_cast<long long>(sum.Retries), Joined(sum.Rungs, 1).c_str(),
              static_cast<long long>(sum.Failures), Joined(sum.Ladder, 1).c_str(), trails.c_str(), Tally.AreasCompared,
              Tally.WorstRelative, faults.c_str());
  std::fflush(stdout);
}

TTally MeasurePairs(const std::string& Instance, const std::vector<TNfpShape>& Shapes, TNFPType Required,
                    const TArguments& Arguments) {
  TTally tally;
  tally.Id = Instance + "/" + TNFPTypeUtils::GetTypeNameStr(Required);
  std::vector<TNfpPair> pairs = OrderedPairs(Size(Shapes), Arguments.Pair < 0 ? Arguments.Most : 1 << 30);
  if (Arguments.Pair >= 0) std::erase_if(pairs, [&](const TNfpPair& p) { return p.Number != Arguments.Pair; });
  for (const TNfpPair& pair : pairs) {
    const TNfpShape& fixed = Shapes[static_cast<std::size_t>(pair.Static)];
    const TNfpShape& moving = Shapes[static_cast<std::size_t>(pair.Dynamic)];
    if (Required == ntExact && EdgesOf(fixed.Shape) * EdgesOf(moving.Shape) > kMostExactEdges) continue;
    const TNfpRequest request{moving.Shape, fixed.Shape, false, Required};
    const TNfpAnswer answer = Ask(request, Arguments.Repeat);
    const TOracle oracle = Required == ntComplete ? Arguments.Oracle : TOracle::Off;
    const TNfpVerdict verdict = Judge(request, answer, oracle, static_cast<unsigned>(pair.Number));
    const std::string name =
        Numbered("pair ", static_cast<std::size_t>(pair.Number)) + ", " + moving.Name + " around " + fixed.Name;
    Add(tally, name, request, answer, verdict);
  }
  return tally;
}

TVHPolygon StripFor(const TVHPolygon& Part, double Width) {
  const double length = kStripLengths * Part.front().BoundBox().Width();
  TVHPolygon strip;
  strip.push_back(TVPolyline2D{{0, 0}, {length, 0}, {length, Width}, {0, Width}});
  return strip;
}

TTally MeasureInside(const TNfpInstance& Instance, const std::vector<TNfpShape>& Shapes, const TArguments& Arguments) {
  TTally tally;
  tally.Id = Instance.Name + "/inside";
  const auto measure = [&](const TNfpShape& part, const TVHPolygon& plate, std::size_t number) {
    const TNfpRequest request{part.Shape, plate, true, ntComplete};
    const TNfpAnswer answer = Ask(request, Arguments.Repeat);
    const TNfpVerdict verdict = Judge(request, answer, Arguments.Oracle, static_cast<unsigned>(number));
    Add(tally, Numbered(part.Name + " in plate ", number), request, answer, verdict);
  };
  for (const TNfpShape& shape : Shapes) {
    if (Instance.StripWidth) measure(shape, StripFor(shape.Shape, *Instance.StripWidth), 0);
    for (std::size_t i = 0; i < Instance.Plates.size(); ++i) measure(shape, Instance.Plates[i], i);
  }
  return tally;
}

}  // namespace

std::vector<TRow> RunNfpSuite(const TArguments& Arguments) {
  std::vector<TRow> rows;
  PrintHead();
  const auto take = [&rows](const TTally& tally) {
    Print(tally);
    rows.push_back(RowOf(tally));
  };
  for (const std::string& file : Arguments.Files) {
    const TNfpInstance instance = ReadNfpInstance(file);
    const std::vector<TNfpShape> shapes = ShapesOf(instance, Arguments.Turned);
    for (const TNFPType required : {ntComplete, ntConcaveHull, ntConvexHull, ntExact})
      take(MeasurePairs(instance.Name, shapes, required, Arguments));
    if (Arguments.Inside) take(MeasureInside(instance, shapes, Arguments));
  }
  return rows;
}

}  // namespace platenest::bench
