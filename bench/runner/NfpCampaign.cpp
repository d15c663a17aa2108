#include "NfpCampaign.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <map>

#include "Isolated.h"
#include "NfpInstances.h"
#include "Shapes.h"
#include "platenest/foundation/Random.h"
#include "platenest/foundation/Rounding.h"

namespace platenest::bench {

namespace {

constexpr unsigned kCaseSeconds = 120;
constexpr double kGrowth = 0.002;  // drawing units that a jigsaw hole is wider all round
constexpr double kFitBand = 2e-5;  // drawing units between the known place of an exact fit and the region
constexpr int kJigsawEdges = 24;

double Uniform(double Low, double High) {
  return Low + (High - Low) * Random(1 << 30) / (1 << 30);
}

struct TNamedRequest {
  std::string Kind;
  TNfpRequest Request;
};

TNamedRequest RandomPair(unsigned Seed, int MostEdges) {
  TShapePair pair = MakePair(MostEdges, Seed);
  const std::string kind = std::string(NameOf(pair.DynamicKind)) + " around " + NameOf(pair.StaticKind);
  return {kind, {std::move(pair.Dynamic), std::move(pair.Static), false, ntComplete}};
}

TVHPolygon Strip(double Length, double Width) {
  TVHPolygon strip;
  strip.push_back(TVPolyline2D{{0, 0}, {Length, 0}, {Length, Width}, {0, Width}});
  return strip;
}

// Every eighth plate is a strip, some of them exactly as wide as the part is high.
TNamedRequest RandomInside(unsigned Seed, int MostEdges) {
  const TRandomScope scope(Seed * 16ULL + 13);
  const TShapeKind partKind = kShapeKinds[static_cast<std::size_t>(Random(Size(kShapeKinds)))];
  const TShapeKind plateKind = kShapeKinds[static_cast<std::size_t>(Random(Size(kShapeKinds)))];
  const double size = std::pow(10, Uniform(1.5, 2.9));
  const int edges = 8 + Random(std::max(1, MostEdges - 7));
  const TVHPolygon part = MakeShape(partKind, edges, size * Uniform(0.03, 0.4), 2 * Seed);
  const std::string name = std::string(NameOf(partKind)) + " in ";
  if (Random(8) == 0) {
    const TVRect2D box = part.front().BoundBox();
    const double room = Random(3) == 0 ? 0 : Uniform(0, 2);
    return {name + "strip", {part, Strip(3 * box.Width(), box.Height() * (1 + room)), true, ntComplete}};
  }
  return {name + NameOf(plateKind), {part, MakeShape(plateKind, edges, size, 2 * Seed + 1), true, ntComplete}};
}

struct TFit {
  TNfpRequest Request;
  TPoint2D Place;
};

// Whether the answer lets the part stand at the place.
bool Allows(const TFit& Fit, const TNfpAnswer& Answer) {
  if (!Answer.Error.empty()) return false;
  const TIntPoint at = TPathUtils::CreateIntPoint(Fit.Place, kPathScale);
  const TPlace wanted = Fit.Request.Inside ? TPlace::Inside : TPlace::Outside;
  return PlaceOf(at, Answer.Paths) == wanted || DistanceToBorder(at, Answer.Paths) <= kFitBand * kPathScale;
}

TCaseRecord TryFit(const TFit& Fit) {
  const TNfpAnswer answer = Ask(Fit.Request);
  TNfpVerdict verdict;
  if (!answer.Error.empty()) verdict = {TNfpFault::Error, answer.Error};
  TCaseRecord record = RecordOf(answer, verdict);
  record.Found = Allows(Fit, answer);
  if (verdict.Fault == TNfpFault::None && !record.Found) record.Fault = TNfpFault::Lost;
  return record;
}

struct TCampaign {
  std::array<int, kNfpFaultCount> Faults{};
  std::array<int, 5> Delivered{};
  std::array<int, 6> Rungs{};
  std::array<int, 5> Ladder{};
  int GaveUp = 0;
  int TrailHits = 0;
  std::vector<double> Ms;
  std::vector<TRow> Rows;
};

void Take(TCampaign& Campaign, const std::string& Id, const std::string& Kind, const TCaseRecord& Record) {
  ++Campaign.Faults[static_cast<std::size_t>(Record.Fault)];
  ++Campaign.Delivered[static_cast<std::size_t>(Record.Quality)];
  if (Record.Rung < 0)
    ++Campaign.GaveUp;
  else
    ++Campaign.Rungs[static_cast<std::size_t>(Record.Rung)];
  ++Campaign.Ladder[static_cast<std::size_t>(Record.Ladder)];
  Campaign.TrailHits += Record.TrailHits;
  Campaign.Ms.push_back(Record.Ms);
  const bool isFull = Record.Quality >= ntComplete;
  TRow row;
  row.Id = Id;
  row.Size = Kind;
  row.Result = !IsFailure(Record.Fault) && isFull;
  row.Best = row.Bound = 1;
  row.Ms = Record.Ms;
  if (IsFailure(Record.Fault)) row.Fault = std::string(NameOf(Record.Fault)) + " " + Record.Text;
  if (Record.Fault != TNfpFault::None || !isFull) {
    std::printf("  %s (%s): %s, quality %s, rung %d, ladder %d, %d retries: %s\n", Id.c_str(), Kind.c_str(),
                Record.Fault == TNfpFault::None ? "reduced" : NameOf(Record.Fault),
                TNFPTypeUtils::GetTypeNameStr(Record.Quality), Record.Rung, Record.Ladder, Record.Retries, Record.Text);
    std::fflush(stdout);
  }
  Campaign.Rows.push_back(std::move(row));
}

void PrintCounts(const char* Title, const auto& Counts, const auto& NameAt) {
  std::printf("%s:", Title);
  for (std::size_t i = 0; i < Counts.size(); ++i) std::printf(" %s %d", NameAt(i).c_str(), Counts[i]);
  std::printf("\n");
}

void PrintCampaign(const TCampaign& Campaign) {
  const auto number = [](std::size_t i) { return Numbered("level ", i); };
  std::printf("%zu cases, median %.4f ms, p99 %.3f ms, worst %.1f ms, %d trail hits\n", Campaign.Ms.size(),
              Quantile(Campaign.Ms, 0.5), Quantile(Campaign.Ms, 0.99), Quantile(Campaign.Ms, 1), Campaign.TrailHits);
  PrintCounts("faults", Campaign.Faults, [](std::size_t i) { return std::string(NameOf(static_cast<TNfpFault>(i))); });
  PrintCounts("quality", Campaign.Delivered, [](std::size_t i) {
    return i == 0 ? std::string("NO") : std::string(TNFPTypeUtils::GetTypeNameStr(static_cast<TNFPType>(i)));
  });
  PrintCounts("rungs", Campaign.Rungs, number);
  PrintCounts("ladder", Campaign.Ladder, number);
  std::printf("convolutions that gave up in %d cases\n", Campaign.GaveUp);
}

void TakeJudged(TCampaign& Campaign, const TNamedRequest& Named, unsigned Seed, TOracle Oracle) {
  const TCaseRecord record = RunIsolated(
      [&] {
        const TNfpAnswer answer = Ask(Named.Request);
        return RecordOf(answer, Judge(Named.Request, answer, Oracle, Seed));
      },
      kCaseSeconds);
  Take(Campaign, Numbered("seed ", Seed), Named.Kind, record);
}

// How many fits were found, by the name of the case.
using TFound = std::map<std::string, std::array<int, 2>>;

void TakeFit(TCampaign& Campaign, TFound& Found, const std::string& Id, const std::string& Kind, const TFit& Fit) {
  const TCaseRecord record = RunIsolated([&Fit] { return TryFit(Fit); }, kCaseSeconds);
  Take(Campaign, Id, Kind, record);
  std::array<int, 2>& counts = Found[Kind];
  counts[0] += record.Found;
  ++counts[1];
}

void PrintFound(const TFound& Found) {
  for (const auto& [kind, counts] : Found) std::printf("found %d of %d: %s\n", counts[0], counts[1], kind.c_str());
}

// The part around a plate whose hole it fills, and in that hole as an outline.
void TakeFits(TCampaign& Campaign, TFound& Found, const std::string& Id, const std::string& Kind,
              const TJigsaw& Jigsaw) {
  TakeFit(Campaign, Found, Id, Kind + ", hole of a plate",
          {{Jigsaw.Part, Jigsaw.Plate, false, ntComplete}, Jigsaw.Place});
  TVHPolygon cavity;
  cavity.push_back(Jigsaw.Plate.back());
  cavity.SetIsClockwise(false);
  TakeFit(Campaign, Found, Id, Kind + ", inside", {{Jigsaw.Part, cavity, true, ntComplete}, Jigsaw.Place});
}

std::string KindOf(double Grow) {
  return Grow > 0 ? "grown" : "exact";
}

void TakeJigsaws(TCampaign& Campaign, TFound& Found, unsigned Seed) {
  const TShapeKind kind = kShapeKinds[Seed % kShapeKinds.size()];
  for (const double grow : {0.0, kGrowth}) {
    const TJigsaw jigsaw = MakeJigsaw(kind, kJigsawEdges, 50, grow, Seed);
    TakeFits(Campaign, Found, Numbered("seed ", Seed), KindOf(grow) + " " + NameOf(kind), jigsaw);
  }
}

TPaths PlacedPath(const TNfpInstance& Instance, const TNfpPlacement& Placement) {
  for (const TNfpPart& part : Instance.Parts)
    if (part.Id == Placement.Part)
      return TPathUtils::Translate(PolygonOf(part.Shape),
                                   TPathUtils::CreatePointL2D(TPathUtils::CreateIntPoint(Placement.At, kPathScale)));
  return {};
}

// What the other pieces leave free of the square from (0, 0) to (Side, Side), widened by Grow.
TPaths HoleLeft(const TNfpInstance& Instance, std::size_t Last, double Grow) {
  const Int64 side = Round<Int64>(*Instance.StripWidth * kPathScale);
  TClipper clipper;
  clipper.AddPath({{0, 0}, {side, 0}, {side, side}, {0, side}}, ClipperLib::ptSubject, true);
  for (std::size_t i = 0; i < Instance.Layout.size(); ++i)
    if (i != Last) clipper.AddPaths(PlacedPath(Instance, Instance.Layout[i]), ClipperLib::ptClip, true);
  TPaths hole;
  clipper.Execute(ClipperLib::ctDifference, hole, ClipperLib::pftNonZero, ClipperLib::pftNonZero);
  if (Grow == 0) return hole;
  TClipperOffset offset;
  offset.AddPaths(hole, ClipperLib::jtMiter, ClipperLib::etClosedPolygon);
  TPaths grown;
  offset.Execute(grown, Grow * kPathScale);
  return grown;
}

void TakeLayout(TCampaign& Campaign, TFound& Found, const TNfpInstance& Instance) {
  for (std::size_t i = 0; i < Instance.Layout.size(); ++i) {
    const TNfpPlacement& piece = Instance.Layout[i];
    for (const double grow : {0.0, kGrowth}) {
      TPaths hole = HoleLeft(Instance, i, grow);
      const TIntRect box = TPathUtils::BoundBox(hole);
      const Int64 rim = Round<Int64>(kPathScale);
      TPaths plate{{{box.Left - rim, box.Bottom - rim},
                    {box.Right + rim, box.Bottom - rim},
                    {box.Right + rim, box.Top + rim},
                    {box.Left - rim, box.Top + rim}}};
      TPathUtils::SetIsClockwise(hole, true, true);
      TPathUtils::PathsAddRange(plate, hole);
      TPaths part = TPathUtils::Translate(
          PlacedPath(Instance, piece),
          TPathUtils::CreatePointL2D(TPathUtils::CreateIntPoint(TPoint2D{} - piece.At, kPathScale)));
      TakeFits(Campaign, Found, Instance.Name + " piece " + std::to_string(piece.Part), KindOf(grow),
               {PartOf(part), PartOf(plate), piece.At});
    }
  }
}

}  // namespace

std::vector<TRow> RunNfpCampaign(const TArguments& Arguments) {
  TCampaign campaign;
  TFound found;
  for (int i = 0; i < Arguments.Pairs; ++i) {
    const unsigned seed = static_cast<unsigned>(Arguments.Seed + i);
    if (Arguments.Suite == "nfp-jigsaw")
      TakeJigsaws(campaign, found, seed);
    else
      TakeJudged(
          campaign,
          Arguments.Suite == "nfp-inside" ? RandomInside(seed, Arguments.Edges) : RandomPair(seed, Arguments.Edges),
          seed, Arguments.Oracle);
  }
  PrintCampaign(campaign);
  PrintFound(found);
  return campaign.Rows;
}

std::vector<TRow> RunLayoutCampaign(const TArguments& Arguments) {
  TCampaign campaign;
  TFound found;
  for (const std::string& file : Arguments.Files) TakeLayout(campaign, found, ReadNfpInstance(file));
  PrintCampaign(campaign);
  PrintFound(found);
  return campaign.Rows;
}

}  // namespace platenest::bench
