// platenest_bench_cgal FILE... [--most PAIRS] [--repeat N] [--turned]
// No-fit polygons of the same ordered pairs, one after the other in one run: the calculator at ntComplete, and CGAL's
// reduced convolution with exact predicates and constructions (Behar and Lien 2011). The outlines count; parts of these
// instances have no holes. Times are medians per ordered pair; CGAL's polygons are made beforehand, ours are prepared
// within the call.
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Polygon_2.h>
#include <CGAL/Polygon_with_holes_2.h>
#include <CGAL/minkowski_sum_2.h>

#include <cmath>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "NfpPairs.h"
#include "Report.h"
#include "platenest/services/NFP.h"

namespace platenest::bench {

namespace {

using TKernel = CGAL::Exact_predicates_exact_constructions_kernel;
using TPeerPolygon = CGAL::Polygon_2<TKernel>;

TPeerPolygon PeerPolygon(const TVHPolygon& Shape, double Sign) {
  TPeerPolygon polygon;
  for (const TPoint2D& point : Shape.front().Vertices())
    polygon.push_back(TKernel::Point_2(Sign * point.X, Sign * point.Y));
  if (polygon.is_clockwise_oriented()) polygon.reverse_orientation();
  return polygon;
}

struct TPeerTimes {
  std::vector<double> Ours;
  std::vector<double> Theirs;
  std::vector<double> Ratios;
  int Failures = 0;
  int Differences = 0;  // areas that differ by more than a thousandth, CGAL's being the exact one
};

double PeerArea(const CGAL::Polygon_with_holes_2<TKernel>& Sum) {
  double area = CGAL::to_double(Sum.outer_boundary().area());
  for (auto hole = Sum.holes_begin(); hole != Sum.holes_end(); ++hole) area += CGAL::to_double(hole->area());
  return area;
}

void MeasurePair(const TVHPolygon& Static, const TVHPolygon& Dynamic, int Repeat, TPeerTimes& Times) {
  TNFP nfp;
  try {
    Times.Ours.push_back(
        MedianMs(Repeat, [&] { nfp = TNFPCalculator::CalcNFP(Dynamic, Static, false, ntComplete, {}, {}); }));
  } catch (const std::exception&) {
    ++Times.Failures;
    return;
  }
  const TPeerPolygon fixed = PeerPolygon(Static, 1);
  const TPeerPolygon moving = PeerPolygon(Dynamic, -1);
  CGAL::Polygon_with_holes_2<TKernel> sum;
  Times.Theirs.push_back(MedianMs(Repeat, [&] { sum = CGAL::minkowski_sum_by_reduced_convolution_2(fixed, moving); }));
  Times.Ratios.push_back(Times.Theirs.back() / Times.Ours.back());
  const double exact = PeerArea(sum);
  Times.Differences += std::abs(RegionArea(*nfp.NFP) - exact) > 1e-3 * exact;
}

TPeerTimes MeasureInstance(const TNfpInstance& Instance, int Most, int Repeat, bool Turned) {
  const std::vector<TNfpShape> shapes = ShapesOf(Instance, Turned);
  TPeerTimes times;
  for (const TNfpPair& pair : OrderedPairs(Size(shapes), Most)) {
    const TVHPolygon& fixed = shapes[static_cast<std::size_t>(pair.Static)].Shape;
    const TVHPolygon& moving = shapes[static_cast<std::size_t>(pair.Dynamic)].Shape;
    MeasurePair(fixed, moving, Repeat, times);
  }
  return times;
}

void Print(const std::string& Name, const TPeerTimes& Times) {
  const double ours = Quantile(Times.Ours, 0.5);
  const double theirs = Quantile(Times.Theirs, 0.5);
  std::printf("%-12s %6zu %12.4f %12.4f %10.2f %14.2f %9d %12d\n", Name.c_str(), Times.Ratios.size(), ours, theirs,
              ours > 0 ? theirs / ours : 0, Quantile(Times.Ratios, 0.5), Times.Failures, Times.Differences);
  std::fflush(stdout);
}

int Run(int argc, char** argv) {
  int most = 400, repeat = 1;
  bool turned = false;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--turned")
      turned = true;
    else if ((word == "--most" || word == "--repeat") && i + 1 < argc)
      (word == "--most" ? most : repeat) = std::stoi(argv[++i]);
    else
      files.push_back(word);
  }
  if (files.empty() || most <= 0 || repeat <= 0) {
    std::fputs("usage: platenest_bench_cgal FILE... [--most PAIRS] [--repeat N] [--turned]\n", stderr);
    return 2;
  }
  std::printf("%-12s %6s %12s %12s %10s %14s %9s %12s\n", "instance", "pairs", "platenest ms", "CGAL ms", "ratio",
              "pairwise ratio", "failures", "area differs");
  for (const std::string& file : files) {
    const TNfpInstance instance = ReadNfpInstance(file);
    Print(instance.Name, MeasureInstance(instance, most, repeat, turned));
  }
  return 0;
}

}  // namespace

}  // namespace platenest::bench

int main(int argc, char** argv) {
  try {
    return platenest::bench::Run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "platenest_bench_cgal: error: %s\n", error.what());
    return 1;
  }
}
