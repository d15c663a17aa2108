#include "Summary.h"

#include <algorithm>
#include <map>
#include <optional>

#include "Text.h"

namespace platenest {

namespace {

std::string Line(const std::string& Name, const std::string& Text) {
  return "  " + Name + std::string(Name.size() < 11 ? 11 - Name.size() : 1, ' ') + Text + "\n";
}

std::string Counted(Int64 Count, const std::string& Noun) {
  return std::to_string(Count) + " " + Noun + (Count == 1 ? "" : "s");
}

Int64 PlacedCopies(const Result& AResult) {
  Int64 count = 0;
  for (const PartUse& part : AResult.Parts) count += part.Placed;
  return count;
}

std::string NounOf(const Result& AResult) {
  return AResult.Kind == JobKind::Circles ? "circle" : "part";
}

std::string BoundsText(const Result& AResult) {
  std::string text;
  for (const Bound& bound : AResult.Bounds) {
    if (!text.empty()) text += ", ";
    const bool isLeast = bound.What == "plates" || bound.What == "cost";
    text += bound.What + (isLeast ? " at least " : " at most ") + Shortest(bound.Value) + " (" + bound.Kind + ")";
  }
  return AResult.Proved ? text + ": proved best" : text;
}

// "5 parts (no_stock)", or how many for each of several reasons; the result lists every part with its own.
std::string UnplacedText(const Result& AResult) {
  std::map<std::string, Int64> counts;
  for (const PartUse& part : AResult.Parts)
    if (part.Unplaced > 0 && !part.Reason.empty()) counts[part.Reason] += part.Unplaced;
  std::string reasons;
  for (const auto& [reason, count] : counts)
    reasons += (reasons.empty() ? "" : ", ") + (counts.size() > 1 ? std::to_string(count) + " " : "") + reason;
  return Counted(UnplacedCopies(AResult), NounOf(AResult)) + (reasons.empty() ? "" : " (" + reasons + ")");
}

std::string EstimateText(const HeuristicBound& Estimate) {
  return "about " + Fixed(Estimate.Value, 2) + " " + Estimate.What + " (" + Estimate.Kind + "), no bound";
}

std::optional<double> LeastClearance(const Result& AResult) {
  std::optional<double> least;
  for (const Layout& layout : AResult.Layouts) {
    if (layout.MinClearance) least = std::min(least.value_or(*layout.MinClearance), *layout.MinClearance);
  }
  return least;
}

NfpQuality LeastQuality(const Result& AResult) {
  NfpQuality least = NfpQuality::Exact;
  for (const NfpPair& pair : AResult.Pairs) least = std::min(least, pair.Quality);
  return least;
}

// What a result of kind Nfp says.
std::string PairsText(const Result& AResult) {
  Int64 points = 0;
  Int64 empty = 0;
  for (const NfpPair& pair : AResult.Pairs) {
    for (const PolygonRing& path : pair.Paths) points += Size(path);
    empty += pair.Paths.empty() ? 1 : 0;
  }
  std::string text = Counted(Size(AResult.Pairs), "pair") + "\n";
  if (AResult.Pairs.empty()) return text;
  text +=
      Line("quality", (AResult.Pairs.size() > 1 ? "at least " : "") + std::string(QualityName(LeastQuality(AResult))));
  text += Line("outline", Counted(points, "point"));
  if (empty > 0) text += Line("no place", "for " + Counted(empty, "pair"));
  return text;
}

// Decimals beyond those for plates of hundreds of units: metres need more than millimetres.
int MoreDecimals(const Result& AResult) {
  constexpr int kMost = 5;
  double longest = 0;
  for (const Layout& layout : AResult.Layouts) longest = std::max({longest, layout.Width, layout.Height});
  int more = 0;
  for (; more < kMost && longest > 0 && longest < 100; ++more) longest *= 10;
  return more;
}

std::string LayoutsText(const Result& AResult) {
  const std::string unit = AResult.Units == "none" ? "" : " " + AResult.Units;
  const int more = MoreDecimals(AResult);
  std::string text =
      Counted(PlacedCopies(AResult), NounOf(AResult)) + " on " + Counted(AResult.Total.Plates, "plate") + "\n";
  const bool tellsCost = AResult.Kind == JobKind::Job || AResult.Plates.size() > 1;
  text += Line("use", Fixed(AResult.Total.Usage * 100, 1) + " %" +
                          (tellsCost ? ", plates cost " + Shortest(AResult.Total.Cost) : ""));
  if (AResult.Total.Value) text += Line("value", Shortest(*AResult.Total.Value));
  if (!AResult.Bounds.empty()) text += Line("bounds", BoundsText(AResult));
  if (AResult.Estimate) text += Line("estimate", EstimateText(*AResult.Estimate));
  if (UnplacedCopies(AResult) > 0) text += Line("unplaced", UnplacedText(AResult));
  if (const std::optional<double> clearance = LeastClearance(AResult)) {
    text += Line("clearance", Fixed(*clearance, 3 + more) + unit + " between the nearest two " + NounOf(AResult) + "s");
  }
  if (AResult.Layouts.size() == 1) {
    const Box& free = AResult.Layouts.front().FreeBox;
    text += Line("offcut", Fixed(free[2] - free[0], 1 + more) + " x " + Fixed(free[3] - free[1], 1 + more) + unit);
  }
  return text;
}

std::string PointText(const std::array<double, 2>& V) {
  return Fixed(V[0], 3) + ", " + Fixed(V[1], 3);
}

std::string ArrayText(const ArrayAnswer& Answer) {
  return "two vectors\n" + Line("first", PointText(Answer.First)) + Line("second", PointText(Answer.Second)) +
         Line("cell", Fixed(Answer.CellArea, 3) + ", of which the part fills " + Fixed(Answer.Density * 100, 1) + " %");
}

std::string LabelText(const LabelAnswer& Answer) {
  if (!Answer.Found) return "no place for the label\n";
  return std::string("a place for the label") + (Answer.Rotated ? ", turned" : "") + "\n" +
         Line("from", PointText({Answer.Bounds[0], Answer.Bounds[1]})) +
         Line("to", PointText({Answer.Bounds[2], Answer.Bounds[3]})) + Line("margin", Fixed(Answer.Margin, 3));
}

std::string SuckerText(const SuckerAnswer& Answer) {
  if (!Answer.Found) return "no place for the gripper\n";
  return "a place for the gripper\n" + Line("center", PointText(Answer.Center));
}

std::string AnswerText(const Result& AResult) {
  if (AResult.Array) return ArrayText(*AResult.Array);
  if (AResult.Label) return LabelText(*AResult.Label);
  if (AResult.Sucker) return SuckerText(*AResult.Sucker);
  return AResult.Kind == JobKind::Nfp ? PairsText(AResult) : LayoutsText(AResult);
}

}  // namespace

Int64 UnplacedCopies(const Result& AResult) {
  Int64 count = 0;
  for (const PartUse& part : AResult.Parts) count += part.Unplaced;
  return count;
}

std::string SummaryText(const Result& AResult) {
  std::string text = (AResult.Name.empty() ? "" : Printable(AResult.Name) + ": ") +
                     std::string(StatusName(AResult.Status)) + ", " + AnswerText(AResult);
  if (!AResult.Warnings.empty()) text += Line("warning", Printable(AResult.Warnings.front()));
  return text + Line("method", AResult.Run.Method + ", " + Fixed(AResult.Run.Seconds, 2) + " s");
}

}  // namespace platenest
