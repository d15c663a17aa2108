#include "AnswerJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numbers>

#include "platenest/foundation/Rounding.h"

namespace platenest::test {

namespace {

constexpr double kRelative = 1e-9;  // of sums

// -1 if there is none.
template <class TEntry>
int PositionOf(const std::vector<TEntry>& Entries, const std::string& Id) {
  const auto found = std::ranges::find(Entries, Id, &TEntry::Id);
  return found == Entries.end() ? -1 : static_cast<int>(found - Entries.begin());
}

double AreaOf(const Plate& APlate) {
  return APlate.Width * APlate.Height;
}

}  // namespace

double AreaOf(const Part& APart) {
  return APart.Radius > 0 ? std::numbers::pi * APart.Radius * APart.Radius : APart.Width * APart.Height;
}
bool AreClose(double A, double B) {
  return std::fabs(A - B) <= kRelative * std::max({1e-3, std::fabs(A), std::fabs(B)});
}

TAnswerJudge::TAnswerJudge(const Job& AJob, const Result& AResult)
    : FJob(AJob), FResult(AResult), FUsed(AJob.Plates.size()), FPlaced(AJob.Parts.size()) {}

std::string TAnswerJudge::Fault() {
  JudgeHead();
  for (const Layout& layout : FResult.Layouts) {
    if (HasFault()) break;
    JudgeLayout(layout);
  }
  if (!HasFault()) JudgeStock();
  if (!HasFault()) JudgeSummary();
  if (!HasFault()) JudgeDemand();
  if (!HasFault()) JudgeReasons();
  if (!HasFault()) JudgeVerdict();
  if (!HasFault()) JudgeMore();
  return FFault.str();
}

const Part* TAnswerJudge::Count(const Layout& ALayout, const std::string& PartId) {
  const int position = PositionOf(FJob.Parts, PartId);
  if (!Holds(position >= 0, "a placement of an unknown part")) return nullptr;
  FPlaced[static_cast<std::size_t>(position)] += ALayout.Copies;
  return &FJob.Parts[static_cast<std::size_t>(position)];
}

bool TAnswerJudge::IsInside(const Layout& ALayout, const Box& ABox) const {
  return ABox[0] >= FJob.Margin[0] - kJudgeTol && ABox[1] >= FJob.Margin[1] - kJudgeTol &&
         ABox[2] <= ALayout.Width - FJob.Margin[2] + kJudgeTol &&
         ABox[3] <= ALayout.Height - FJob.Margin[3] + kJudgeTol;
}

void TAnswerJudge::JudgeClearance(const Layout& ALayout, double Least) {
  Holds(Least >= FJob.Gap - kJudgeTol, "two parts are ", Least, " apart");
  Holds(ALayout.MinClearance.has_value() == std::isfinite(Least), "a clearance of one part, or none of many");
  if (ALayout.MinClearance)
    Holds(std::fabs(*ALayout.MinClearance - Least) <= kJudgeTol, "the least clearance is ", Least);
}

void TAnswerJudge::JudgeUsedBox(const Layout& ALayout, const Box& Used) {
  for (std::size_t k = 0; k < 4; ++k)
    Holds(std::fabs(Used[k] - ALayout.UsedBox[k]) <= kJudgeTol, "the used box is wrong");
}

bool TAnswerJudge::WasCut() const {
  return FResult.Status == ResultStatus::TimeLimit || FResult.Status == ResultStatus::Stopped;
}

void TAnswerJudge::JudgeHead() {
  Holds(FResult.Kind == FJob.Kind && FResult.Name == FJob.Name && FResult.Units == FJob.Units &&
            FResult.Gap == FJob.Gap && FResult.Margin == FJob.Margin,
        "the head is not that of the job");
  Holds(FResult.Plates.size() == FJob.Plates.size() && FResult.Parts.size() == FJob.Parts.size(),
        "plates or parts are not all listed");
}

void TAnswerJudge::JudgeLayout(const Layout& ALayout) {
  const int position = PositionOf(FJob.Plates, ALayout.Plate);
  if (!Holds(position >= 0, "a layout on an unknown plate")) return;
  const Plate& plate = FJob.Plates[static_cast<std::size_t>(position)];
  Holds(ALayout.Width == plate.Width && ALayout.Height == plate.Height, "a layout has not the size of its plate");
  if (!Holds(ALayout.Copies >= 1 && !(ALayout.Placements.empty() && ALayout.Circles.empty()), "a layout of nothing"))
    return;
  FUsed[static_cast<std::size_t>(position)] += ALayout.Copies;
  FPlateArea += AreaOf(plate) * ALayout.Copies;
  FCost += plate.Cost.value_or(AreaOf(plate)) * ALayout.Copies;
  const double area = JudgeItems(ALayout);
  FPartArea += area * ALayout.Copies;
  Holds(AreClose(ALayout.Usage, area / AreaOf(plate)), "usage of ", ALayout.Usage, ", it is ", area / AreaOf(plate));
}

void TAnswerJudge::JudgeStock() {
  for (std::size_t i = 0; i < FUsed.size(); ++i) {
    const PlateUse& use = FResult.Plates[i];
    Holds(use.Id == FJob.Plates[i].Id && use.Count == FJob.Plates[i].Count, "plate ", i, " is listed wrongly");
    Holds(use.Used == FUsed[i], use.Id, ": says ", use.Used, " used, there are ", FUsed[i]);
    Holds(!use.Count || FUsed[i] <= *use.Count, use.Id, ": more plates than in stock");
  }
}

void TAnswerJudge::JudgeSummary() {
  Int64 plates = 0;
  for (const Int64 used : FUsed) plates += used;
  const Summary& stated = FResult.Total;
  Holds(stated.Plates == plates, "the summary says ", stated.Plates, " plates, there are ", plates);
  Holds(AreClose(stated.PartArea, FPartArea) && AreClose(stated.PlateArea, FPlateArea),
        "the summary's areas are wrong");
  Holds(AreClose(stated.Usage, FPlateArea > 0 ? FPartArea / FPlateArea : 0), "the summary's usage is wrong");
  Holds(AreClose(stated.Cost, FCost), "the summary says a cost of ", stated.Cost, ", it is ", FCost);
  Holds(stated.Value.has_value() == IsFill(), "a value in a job that has none, or none in a job that has");
  for (std::size_t i = 0; i < FPlaced.size(); ++i)
    FWorth += static_cast<double>(FPlaced[i]) * FJob.Parts[i].Value.value_or(AreaOf(FJob.Parts[i]));
  Holds(!stated.Value || AreClose(*stated.Value, FWorth), "the summary says a value of ", stated.Value.value_or(0),
        ", it is ", FWorth);
}

void TAnswerJudge::JudgeDemand() {
  for (std::size_t i = 0; i < FPlaced.size(); ++i) {
    const PartUse& use = FResult.Parts[i];
    const std::optional<int> asked = FJob.Parts[i].Amount;
    Holds(use.Id == FJob.Parts[i].Id && use.Amount == asked, "part ", i, " is listed wrongly");
    Holds(use.Placed == FPlaced[i], use.Id, ": says ", use.Placed, " placed, there are ", FPlaced[i]);
    Holds(!asked || FPlaced[i] <= *asked, use.Id, ": more copies than asked for");
    Holds(use.Unplaced == (asked ? *asked - FPlaced[i] : 0), use.Id, ": placed and unplaced make ",
          use.Placed + use.Unplaced);
    Holds(use.Reason.empty() == (use.Unplaced == 0), use.Id, ": reason \"", use.Reason, "\" beside ", use.Unplaced,
          " unplaced");
    FIsLeft = FIsLeft || use.Unplaced > 0;
  }
}

bool TAnswerJudge::IsSpare(std::size_t Plate) const {
  return !FJob.Plates[Plate].Count || FUsed[Plate] < *FJob.Plates[Plate].Count;
}

void TAnswerJudge::JudgeReasons() {
  // Lengths of more than twelve digits are rounded, so that a part as long as the room may just not fit.
  const double most = FJob.Units == "in" ? -kJudgeTol : 0;
  for (std::size_t i = 0; i < FPlaced.size(); ++i) {
    const PartUse& use = FResult.Parts[i];
    if (use.Unplaced == 0) continue;
    double least = std::numeric_limits<double>::infinity();
    bool holdsSpare = false;
    for (std::size_t k = 0; k < FUsed.size(); ++k) {
      const double excess = Excess(FJob.Parts[i], FJob.Plates[k]);
      least = std::min(least, excess);
      holdsSpare = holdsSpare || (excess <= most && IsSpare(k));
    }
    JudgeReason(use, least, holdsSpare);
    FIsShort = FIsShort || least <= kJudgeTol;
  }
}

void TAnswerJudge::JudgeReason(const PartUse& Use, double Least, bool HoldsSpare) {
  const std::string& reason = Use.Reason;
  Holds(reason != "too_large" || Least > -kJudgeTol, Use.Id, ": called too large, but it fits");
  Holds(reason == "too_large" || Least <= kJudgeTol, Use.Id, ": fits no plate, the reason is ", reason);
  Holds(reason != "no_stock" || !HoldsSpare, Use.Id, ": an unused plate holds it, the reason is no_stock");
  Holds(reason != "time" || WasCut(), Use.Id, ": left for time, but nothing cut the run short");
  Holds(WasCut() || !HoldsSpare, Use.Id, ": left although an unused plate holds it");
  Holds(WasCut() || IsFill() || reason != "left_by_method", Use.Id, ": left by a search that ended by itself");
  Holds(reason == "too_large" || reason == "no_stock" || reason == "time" || reason == "left_by_method", Use.Id,
        ": unknown reason ", reason);
}

void TAnswerJudge::JudgeVerdict() {
  Holds(!FIsLeft || FResult.Status != ResultStatus::Complete, "complete beside unplaced copies");
  const bool isLimited = std::ranges::all_of(FJob.Parts, [](const Part& part) { return part.Amount.has_value(); });
  Holds(FIsLeft || !isLimited || FResult.Status == ResultStatus::Complete, "all is placed, but not complete");
  bool isMet = false;
  for (const Bound& bound : FResult.Bounds) isMet = JudgeBound(bound) || isMet;
  Holds(!FResult.Proved || isMet, "called proved, but no bound is met");
}

// Whether it is met. Plates and cost cannot be less once all that fits is placed, area and copies cannot be more.
bool TAnswerJudge::JudgeBound(const Bound& ABound) {
  double placed = 0;
  for (const Int64 copies : FPlaced) placed += static_cast<double>(copies);
  const std::map<std::string, double> known = {
      {"area", FPartArea}, {"cost", FCost}, {"count", placed}, {"plates", FResult.Total.Plates}, {"value", FWorth}};
  if (!Holds(known.contains(ABound.What), "a bound on ", ABound.What)) return false;
  const double reached = known.at(ABound.What);
  const double slack = kRelative * std::max(reached, ABound.Value);
  const bool isMost = ABound.What != "cost" && ABound.What != "plates";
  const double room = isMost ? ABound.Value - reached : reached - ABound.Value;
  Holds(room >= -slack || (!isMost && FIsShort), ABound.What, " of ", reached, " beat the bound ", ABound.Kind, " of ",
        ABound.Value);
  return room <= slack;
}

std::string SampleFault(const TJobCase& Case, const Result& AResult) {
  if (!Case.Sample) return "";
  double area = 0, copies = 0;
  for (const Part& part : Case.AJob.Parts) {
    area += AreaOf(part) * part.Amount.value_or(0);
    copies += part.Amount.value_or(0);
  }
  for (const Bound& bound : AResult.Bounds) {
    const bool isArea = bound.What == "area", isMost = isArea || bound.What == "count";
    const double most = isArea ? area : copies, least = bound.What == "cost" ? Case.Sample->Cost : Case.Sample->Plates;
    const bool isSound = isMost ? bound.Value >= most * (1 - kRelative) : bound.Value <= least * (1 + kRelative);
    if (!isSound) return "the bound " + bound.Kind + " on " + bound.What + " rules out a known answer";
  }
  return "";
}

}  // namespace platenest::test
