#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>

#include "CircleInstances.h"
#include "CircleSuite.h"
#include "platenest/UCircleNest/UCircleNest.h"
#include "platenest/layoutcheck/CircleCheck.h"

namespace platenest::bench {

namespace {

// Of the time for an instance; the bisection gets the rest.
constexpr double kBottomLeftShare = 0.2;

struct TStripLine {
  const TStripInstance* Instance = nullptr;
  double BottomLeft = 0;  // lengths; 0 for none
  double Bisection = 0;
  double Seconds = 0;
  std::string Fault;

  double Length() const {
    if (BottomLeft == 0 || Bisection == 0) return std::max(BottomLeft, Bisection);
    return std::min(BottomLeft, Bisection);
  }
  double Gap() const { return Length() / Instance->Best - 1; }
};

// Length is not given where the packing lies on the whole plate.
std::string FaultOf(const TStripInstance& Instance, const TCircleNestRst& Packing, double Length) {
  const TCircleSizes& sizes = Instance.Sizes;
  std::vector<TPlacedCircle> layout;
  std::vector<TCircleDemand> demand;
  for (std::size_t i = 0; i < sizes.Radii.size(); ++i) demand.push_back({sizes.Radii[i], sizes.Counts[i]});
  for (const TCornerPlacement& item : Packing)
    layout.push_back({item.Center, demand.at(static_cast<std::size_t>(item.CircleIdx)).Radius, item.CircleIdx});
  if (Size(layout) != sizes.Copies()) return "not all circles are placed";
  if (Length < Instance.Bound) return "shorter than the proven length";
  // Corner positions touch up to 1e-6 on either side.
  return CheckCircles(layout, {0, 0, Length, Instance.Width}, 0, demand, {.Tol = 1e-5});
}

double Pack(const TStripInstance& Instance, double Seconds, int Threads, TStripMethod Method, std::string& Fault) {
  TCirclePacking packing(TVRect2D::FromSize(2 * Instance.Best, Instance.Width), 0, Instance.Sizes.Radii,
                         Instance.Sizes.Counts);
  packing.SetThreadLimit(std::max(1, Threads));
  const std::optional<double> length = packing.StripPacking(static_cast<int>(Seconds * 1000), Method);
  if (!length) return 0;
  if (Fault.empty()) Fault = FaultOf(Instance, packing.ResultTranslation(), *length);
  return *length;
}

TStripLine Solve(const TStripInstance& Instance, const TArguments& Arguments) {
  TStripLine line;
  line.Instance = &Instance;
  const double first = Arguments.Seconds * kBottomLeftShare;
  line.Seconds =
      MedianMs(1,
               [&] {
                 line.BottomLeft = Pack(Instance, first, Arguments.Threads, TStripMethod::BottomLeft, line.Fault);
                 line.Bisection =
                     Pack(Instance, Arguments.Seconds - first, Arguments.Threads, TStripMethod::Bisection, line.Fault);
               }) /
      1000;
  if (line.Length() == 0) line.Fault = "no packing of all circles";
  return line;
}

void Print(const TStripLine& Line) {
  const TStripInstance& instance = *Line.Instance;
  const auto gap = [&instance](double length) { return length > 0 ? 100 * (length / instance.Best - 1) : 0; };
  std::printf("%-8s %4d %10.2f %10.2f %7.2f %8.2f %8.2f %8.2f %8.2f %7.2f %s\n", instance.Id.c_str(),
              instance.Sizes.Copies(), Line.Length(), instance.Best, 100 * Line.Gap(), gap(Line.BottomLeft),
              gap(Line.Bisection), gap(instance.BottomLeft), gap(instance.GreedyUnder), Line.Seconds,
              Line.Fault.c_str());
  std::fflush(stdout);
}

TRow RowOf(const TStripLine& Line) {
  TRow row;
  const TStripInstance& instance = *Line.Instance;
  row.Id = instance.Id;
  row.Size = std::to_string(instance.Sizes.Copies());
  row.Result = Line.Length() > 0 ? 100 * instance.Best / Line.Length() : 0;
  row.Best = 100;
  row.Bound = 100 * instance.Best / instance.Bound;
  row.Ms = 1000 * Line.Seconds;
  row.Fault = Line.Fault;
  row.Figures = {{"length", Line.Length()},         {"best_length", instance.Best},
                 {"bottom_left", Line.BottomLeft},  {"bisection", Line.Bisection},
                 {"own_left", instance.BottomLeft}, {"own_bisection", instance.GreedyUnder}};
  return row;
}

void PrintFamily(const std::string& Family, const std::vector<TStripLine>& Lines) {
  int count = 0, faults = 0, fromFill = 0;
  double sum = 0, own = 0, bottomLeft = 0, seconds = 0;
  std::vector<double> gaps;
  for (const TStripLine& line : Lines) {
    if (!line.Instance->Id.starts_with(Family)) continue;
    ++count;
    faults += !line.Fault.empty();
    fromFill += line.BottomLeft == line.Length();
    gaps.push_back(100 * line.Gap());
    sum += gaps.back();
    bottomLeft += 100 * (line.BottomLeft / line.Instance->Best - 1);
    const double simple = line.Instance->GreedyUnder > 0
                              ? std::min(line.Instance->GreedyUnder, line.Instance->BottomLeft)
                              : line.Instance->BottomLeft;
    own += 100 * (simple / line.Instance->Best - 1);
    seconds = std::max(seconds, line.Seconds);
  }
  if (count == 0) return;
  std::printf(
      "strips %s: %d instances, gap to the best known mean %.2f %% median %.2f %% worst %.2f %% (simple program %.2f "
      "%%), bottom-left alone %.2f %% and best of both %d times, %d faults, worst %.2f s\n",
      Family.c_str(), count, sum / count, Quantile(gaps, 0.5), Quantile(gaps, 1), own / count, bottomLeft / count,
      fromFill, faults, seconds);
}

}  // namespace

std::vector<TRow> RunCircleStrips(const TArguments& Arguments) {
  const std::vector<TStripInstance> instances = ReadStripInstances(Arguments.Data, Arguments.Only, Arguments.Every);
  std::vector<TStripLine> lines;
  std::vector<TRow> rows;
  if (!Arguments.Quiet)
    std::printf("%-8s %4s %10s %10s %7s %8s %8s %8s %8s %7s\n", "strip", "n", "length", "best", "gap %", "left",
                "bisect", "own left", "own bis", "s");
  for (const TStripInstance& instance : instances) {
    lines.push_back(Solve(instance, Arguments));
    rows.push_back(RowOf(lines.back()));
    if (!Arguments.Quiet) Print(lines.back());
  }
  for (const char* const family : {"SY", "KBG"}) PrintFamily(family, lines);
  return rows;
}

}  // namespace platenest::bench
