#include "NfpCase.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <span>

#include "ExactMinkowski.h"
#include "InnerFit.h"
#include "NfpSampling.h"
#include "Report.h"
#include "platenest/services/NFP.h"

namespace platenest::bench {

namespace {

constexpr double kBand = 2e-5;            // drawing units that a border may be off
constexpr double kCleaning = 2.5e-4;      // drawing units that the cleaning of results may take off
constexpr double kShortEdge = 1e-3;       // drawing units below which the kernel drops an edge of a part
constexpr double kSlit = 2.5e-4;          // drawing units of width up to which a slit of a plate may be taken as closed
constexpr double kLeastRegion = 4e-6;     // square drawing units
constexpr double kAreaShare = 1e-4;       // of the exact area
constexpr Int64 kMostAreaEdges = 40'000;  // product of the edge counts up to which areas are compared
constexpr Int64 kManyEdges = 20'000;      // product from which fewer places are sampled

class TCeilingScope {
 public:
  TCeilingScope() : FFormer(HighestNFPType.exchange(ntExact)) {}
  ~TCeilingScope() { HighestNFPType = FFormer; }
  TCeilingScope(const TCeilingScope&) = delete;
  TCeilingScope& operator=(const TCeilingScope&) = delete;

 private:
  TNFPType FFormer;
};

std::string Sample(const TNfpRequest& Request, const TNfpAnswer& Answer, double Band, unsigned Seed) {
  const Int64 edges = EdgesOf(Request.Moving) * EdgesOf(Request.Fixed);
  TSamplingOptions options;
  options.Samples = edges > kManyEdges ? 30 : 100;
  options.Band = Band;
  options.SafeSideOnly = Answer.Quality < ntComplete;
  return Request.Inside ? CheckInnerFitBySampling(Request.Fixed, Request.Moving, Answer.Paths, Seed, options)
                        : CheckNfpBySampling(Request.Fixed, Request.Moving, Answer.Paths, Seed, options);
}

bool HasShortEdge(const TVHPolygon& Part) {
  for (const TVPolyline2D& contour : Part) {
    const std::span<const TPoint2D> points = contour.Vertices();
    for (std::size_t i = 0; i < points.size(); ++i) {
      const TPoint2D edge = points[(i + 1) % points.size()] - points[i];
      if (std::hypot(edge.X, edge.Y) < kShortEdge) return true;
    }
  }
  return false;
}

// What a border may be off by the cleaning of parts and results.
double CleaningOf(const TNfpRequest& Request) {
  return kCleaning + (HasShortEdge(Request.Moving) + HasShortEdge(Request.Fixed)) * kShortEdge;
}

TPaths Offset(const TPaths& Region, double Distance) {
  TClipperOffset offset;
  offset.AddPaths(Region, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
  TPaths result;
  offset.Execute(result, Distance * kPathScale);
  return result;
}

// The plate and its narrow slits: the kernel may take the two edges at the end of one for a straight line.
TPaths WithoutSlits(const TPaths& Plate) {
  TPaths closed = Offset(Offset(Plate, kSlit / 2), -kSlit / 2);
  TPathUtils::PathsAddRange(closed, Plate);
  TPaths united = Normalized(closed);
  std::stable_partition(united.begin(), united.end(), [](const TPath& path) { return ClipperLib::Area(path) > 0; });
  return united;
}

// Both checks of the oracle name the safe direction by one of these texts.
bool TellsOverlap(const std::string& Text) {
  return Text.starts_with("overlap outside") || Text.starts_with("no fit inside");
}

TNfpVerdict JudgeBySampling(const TNfpRequest& Request, const TNfpAnswer& Answer, unsigned Seed) {
  const std::string shallow = Sample(Request, Answer, kBand, Seed);
  if (shallow.empty()) return {};
  const std::string deep = Sample(Request, Answer, CleaningOf(Request), Seed);
  if (deep.empty()) return {TNfpFault::Shallow, shallow};
  return {TellsOverlap(deep) ? TNfpFault::Overlap : TNfpFault::Lost, deep};
}

std::string TextOf(const char* What, double Area, double Exact) {
  char text[120];
  std::snprintf(text, sizeof text, "%s %.6g square units of %.6g", What, Area, Exact);
  return text;
}

// Free places that the answer forbids, and forbidden ones that it allows, with what cleaning explains left out.
struct TAreas {
  double Lost = 0;
  double Overlap = 0;
  double Exact = 0;
  double Relative = 0;
};

TAreas AreasAround(const TNfpRequest& Request, const TPaths& Paths) {
  const TPaths exact = ForbiddenRegion(Request.Fixed, Request.Moving);
  const TRegionDifference fine = CompareRegions(Paths, exact, kBand, kLeastRegion);
  return {fine.Surplus, CompareRegions(Paths, exact, CleaningOf(Request), kLeastRegion).Lost, fine.Exact,
          fine.Relative()};
}

TAreas AreasInside(const TNfpRequest& Request, const TPaths& Paths) {
  const TPaths plate = PolygonOf(Request.Fixed);
  const TPaths part = PolygonOf(Request.Moving);
  TPaths exact = InnerFitRegion(plate, part);
  TRegionDifference coarse = CompareRegions(Paths, exact, CleaningOf(Request), kLeastRegion);
  const TRegionDifference fine = CompareRegions(Paths, exact, kBand, kLeastRegion);
  if (coarse.Surplus == 0) return {fine.Lost, 0, fine.Exact, fine.Relative()};
  exact = InnerFitRegion(WithoutSlits(plate), part);
  coarse = CompareRegions(Paths, exact, CleaningOf(Request), kLeastRegion);
  return {fine.Lost, coarse.Surplus, fine.Exact, CompareRegions(Paths, exact, kBand, kLeastRegion).Relative()};
}

TNfpVerdict JudgeByArea(const TNfpRequest& Request, const TNfpAnswer& Answer) {
  const TAreas areas = Request.Inside ? AreasInside(Request, Answer.Paths) : AreasAround(Request, Answer.Paths);
  const bool isSafeSideOnly = Answer.Quality < ntComplete;
  TNfpVerdict verdict;
  verdict.AreaCompared = !isSafeSideOnly;
  verdict.Relative = isSafeSideOnly ? 0 : areas.Relative;
  if (areas.Overlap > 0) {
    verdict.Fault = TNfpFault::Overlap;
    verdict.Text = TextOf("allows overlap over", areas.Overlap, areas.Exact);
  } else if (!isSafeSideOnly && areas.Lost > kAreaShare * areas.Exact) {
    verdict.Fault = Answer.Paths.empty() ? TNfpFault::Refused : TNfpFault::Lost;
    verdict.Text = TextOf("free places lost over", areas.Lost, areas.Exact);
  }
  return verdict;
}

}  // namespace

TNfpAnswer Ask(const TNfpRequest& Request, int Repeat) {
  const TCeilingScope ceiling;
  TNfpAnswer answer;
  TNFP nfp;
  try {
    answer.Ms = MedianMs(Repeat, [&] {
      NfpStatistics = {};
      nfp = TNFPCalculator::CalcNFP(Request.Moving, Request.Fixed, Request.Inside, Request.Required, {}, {});
    });
    answer.Quality = nfp.NFPType;
    if (!nfp.IsEmpty()) answer.Paths = *nfp.NFP;
  } catch (const std::exception& error) {
    answer.Error = error.what();
  }
  answer.Statistics = NfpStatistics;
  return answer;
}

int RungOf(const TNfpStatistics& Statistics) {
  for (int rung = 5; rung > 0; --rung)
    if (Statistics.Rungs[static_cast<std::size_t>(rung)] > 0) return rung;
  return Statistics.Failures > 0 ? -1 : 0;
}

int LadderOf(const TNfpStatistics& Statistics) {
  for (int step = 4; step > 0; --step)
    if (Statistics.Ladder[static_cast<std::size_t>(step)] > 0) return step;
  return 0;
}

const char* NameOf(TNfpFault Fault) {
  constexpr const char* kNames[kNfpFaultCount] = {"none", "error",   "overlap", "shallow",
                                                  "lost", "refused", "crash",   "hang"};
  return kNames[static_cast<int>(Fault)];
}

TNfpVerdict Judge(const TNfpRequest& Request, const TNfpAnswer& Answer, TOracle Oracle, unsigned Seed) {
  if (!Answer.Error.empty()) return {TNfpFault::Error, Answer.Error};
  if (Oracle == TOracle::Off) return {};
  const bool comparesArea =
      Oracle == TOracle::Area && EdgesOf(Request.Moving) * EdgesOf(Request.Fixed) <= kMostAreaEdges;
  TNfpVerdict byArea;
  if (comparesArea) byArea = JudgeByArea(Request, Answer);
  if (byArea.Fault != TNfpFault::None) return byArea;
  TNfpVerdict verdict = JudgeBySampling(Request, Answer, Seed);
  if (verdict.Fault == TNfpFault::Lost && Answer.Paths.empty()) verdict.Fault = TNfpFault::Refused;
  verdict.AreaCompared = byArea.AreaCompared;
  verdict.Relative = byArea.Relative;
  return verdict;
}

Int64 EdgesOf(const TVHPolygon& Part) {
  Int64 edges = 0;
  for (const TVPolyline2D& contour : Part) edges += static_cast<Int64>(contour.Vertices().size());
  return edges;
}

}  // namespace platenest::bench
