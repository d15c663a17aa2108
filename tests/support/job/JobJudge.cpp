#include "JobJudge.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>
#include <vector>

#include "platenest/foundation/Rounding.h"

namespace platenest::test {

namespace {

constexpr double kTol = 1e-6;       // of lengths, as promised
constexpr double kRelative = 1e-9;  // of sums

bool AreClose(double A, double B) {
  return std::fabs(A - B) <= kRelative * std::max({1e-3, std::fabs(A), std::fabs(B)});
}

double AreaOf(const Part& APart) {
  return APart.Width * APart.Height;
}
double AreaOf(const Plate& APlate) {
  return APlate.Width * APlate.Height;
}
double CostOf(const Plate& APlate) {
  return APlate.Cost.value_or(AreaOf(APlate));
}

template <class TEntry>
int PositionOf(const std::vector<TEntry>& Entries, const std::string& Id) {
  for (int i = 0; i < Size(Entries); ++i)
    if (Entries[static_cast<std::size_t>(i)].Id == Id) return i;
  return -1;
}

// How far the part is from fitting the plate's room, 0 or less when it fits.
double Excess(const Job& AJob, const Part& APart, const Plate& APlate) {
  const double w = APlate.Width - AJob.Margin[0] - AJob.Margin[2];
  const double h = APlate.Height - AJob.Margin[1] - AJob.Margin[3];
  const double upright = std::max(APart.Width - w, APart.Height - h);
  const double turned = std::max(APart.Height - w, APart.Width - h);
  return APart.Turn == Rotate::Any ? std::min(upright, turned) : upright;
}

// As the crow flies; below 0 the depth to which two boxes overlap.
double DistanceOf(const Box& A, const Box& B) {
  const double dx = std::max(A[0], B[0]) - std::min(A[2], B[2]);
  const double dy = std::max(A[1], B[1]) - std::min(A[3], B[3]);
  return dx > 0 && dy > 0 ? std::hypot(dx, dy) : std::max(dx, dy);
}

// Goes through an answer in one pass; the first fault found is kept.
class TJudge {
 public:
  TJudge(const Job& AJob, const Result& AResult)
      : FJob(AJob), FResult(AResult), FUsed(AJob.Plates.size()), FPlaced(AJob.Parts.size()) {}

  std::string Fault() {
    JudgeHead();
    for (const Layout& layout : FResult.Layouts) {
      if (!FFault.str().empty()) break;
      JudgeLayout(layout);
    }
    if (FFault.str().empty()) JudgeStock();
    if (FFault.str().empty()) JudgeSummary();
    if (FFault.str().empty()) JudgeDemand();
    if (FFault.str().empty()) JudgeReasons();
    if (FFault.str().empty()) JudgeVerdict();
    return FFault.str();
  }

 private:
  // Notes what does not hold; what follows a fault is not looked at.
  template <class... TText>
  bool Holds(bool Condition, const TText&... Text) {
    if (!Condition && FFault.str().empty()) (FFault << ... << Text);
    return Condition;
  }

  void JudgeHead() {
    Holds(FResult.Kind == JobKind::Job && FResult.Name == FJob.Name && FResult.Units == FJob.Units &&
              FResult.Gap == FJob.Gap && FResult.Margin == FJob.Margin,
          "the head is not that of the job");
    Holds(FResult.Plates.size() == FJob.Plates.size() && FResult.Parts.size() == FJob.Parts.size(),
          "plates or parts are not all listed");
  }

  void JudgeLayout(const Layout& ALayout) {
    const int position = PositionOf(FJob.Plates, ALayout.Plate);
    if (!Holds(position >= 0, "a layout on an unknown plate")) return;
    const Plate& plate = FJob.Plates[static_cast<std::size_t>(position)];
    Holds(ALayout.Width == plate.Width && ALayout.Height == plate.Height, "a layout has not the size of its plate");
    Holds(ALayout.Copies >= 1 && !ALayout.Placements.empty(), "a layout of nothing");
    FUsed[static_cast<std::size_t>(position)] += ALayout.Copies;
    FPlateArea += AreaOf(plate) * ALayout.Copies;
    FCost += CostOf(plate) * ALayout.Copies;
    double area = 0;
    for (const Placement& item : ALayout.Placements) area += JudgePlacement(ALayout, item);
    FPartArea += area * ALayout.Copies;
    Holds(AreClose(ALayout.Usage, area / AreaOf(plate)), "usage of ", ALayout.Usage, ", it is ", area / AreaOf(plate));
    if (FFault.str().empty()) JudgeBoxes(ALayout);
  }

  // The area of the placed copy.
  double JudgePlacement(const Layout& ALayout, const Placement& Item) {
    const int position = PositionOf(FJob.Parts, Item.Part);
    if (!Holds(position >= 0, "a placement of an unknown part")) return 0;
    const Part& part = FJob.Parts[static_cast<std::size_t>(position)];
    FPlaced[static_cast<std::size_t>(position)] += ALayout.Copies;
    Holds(!Item.Rotated || part.Turn == Rotate::Any, part.Id, " is turned against its lock");
    // A quarter turn counter-clockwise takes (w, h) to (-h, w).
    const auto [x, y] = Item.Trans;
    const Box true_ =
        Item.Rotated ? Box{x - part.Height, y, x, y + part.Width} : Box{x, y, x + part.Width, y + part.Height};
    for (std::size_t i = 0; i < 4; ++i)
      Holds(std::fabs(true_[i] - Item.Bounds[i]) <= kTol, part.Id, " is not where its box is");
    Holds(true_[0] >= FJob.Margin[0] - kTol && true_[1] >= FJob.Margin[1] - kTol &&
              true_[2] <= ALayout.Width - FJob.Margin[2] + kTol && true_[3] <= ALayout.Height - FJob.Margin[3] + kTol,
          part.Id, " is outside of plate less margin");
    return AreaOf(part);
  }

  void JudgeBoxes(const Layout& ALayout) {
    std::vector<Box> boxes;
    for (const Placement& item : ALayout.Placements) boxes.push_back(item.Bounds);
    std::ranges::sort(boxes);
    double least = std::numeric_limits<double>::infinity();
    Box used = boxes[0];
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      for (std::size_t k = 0; k < 4; ++k)
        used[k] = k < 2 ? std::min(used[k], boxes[i][k]) : std::max(used[k], boxes[i][k]);
      for (std::size_t j = i + 1; j < boxes.size() && boxes[j][0] - boxes[i][2] < std::min(least, 1e9); ++j)
        least = std::min(least, DistanceOf(boxes[i], boxes[j]));
    }
    Holds(least >= FJob.Gap - kTol, "two parts are ", least, " apart");
    Holds(ALayout.MinClearance.has_value() == (boxes.size() > 1), "a clearance of one part, or none of many");
    if (ALayout.MinClearance) Holds(std::fabs(*ALayout.MinClearance - least) <= kTol, "the least clearance is ", least);
    for (std::size_t k = 0; k < 4; ++k) Holds(std::fabs(used[k] - ALayout.UsedBox[k]) <= kTol, "the used box is wrong");
    const Box& free = ALayout.FreeBox;
    if (free[2] <= free[0] || free[3] <= free[1]) return;
    Holds(free[0] >= FJob.Margin[0] - kTol && free[1] >= FJob.Margin[1] - kTol &&
              free[2] <= ALayout.Width - FJob.Margin[2] + kTol && free[3] <= ALayout.Height - FJob.Margin[3] + kTol,
          "the free box is outside of plate less margin");
    for (const Box& box : boxes) Holds(DistanceOf(free, box) >= FJob.Gap - kTol, "the free box is not free");
  }

  void JudgeStock() {
    for (std::size_t i = 0; i < FUsed.size(); ++i) {
      const PlateUse& use = FResult.Plates[i];
      Holds(use.Id == FJob.Plates[i].Id && use.Count == FJob.Plates[i].Count, "plate ", i, " is listed wrongly");
      Holds(use.Used == FUsed[i], use.Id, ": says ", use.Used, " used, there are ", FUsed[i]);
      Holds(!use.Count || FUsed[i] <= *use.Count, use.Id, ": more plates than in stock");
    }
  }

  void JudgeSummary() {
    Int64 plates = 0;
    for (const Int64 used : FUsed) plates += used;
    const Summary& stated = FResult.Total;
    Holds(stated.Plates == plates, "the summary says ", stated.Plates, " plates, there are ", plates);
    Holds(AreClose(stated.PartArea, FPartArea) && AreClose(stated.PlateArea, FPlateArea),
          "the summary's areas are wrong");
    Holds(AreClose(stated.Usage, FPlateArea > 0 ? FPartArea / FPlateArea : 0), "the summary's usage is wrong");
    Holds(AreClose(stated.Cost, FCost), "the summary says a cost of ", stated.Cost, ", it is ", FCost);
    Holds(!stated.Value, "a value in a job that has none");
  }

  void JudgeDemand() {
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

  bool IsSpare(std::size_t Plate) const {
    return !FJob.Plates[Plate].Count || FUsed[Plate] < *FJob.Plates[Plate].Count;
  }

  void JudgeReasons() {
    const bool wasCut = FResult.Status == ResultStatus::TimeLimit || FResult.Status == ResultStatus::Stopped;
    // Lengths of more than twelve digits are rounded, so that a part as long as the room may just not fit.
    const double most = FJob.Units == "in" ? -kTol : 0;
    for (std::size_t i = 0; i < FPlaced.size(); ++i) {
      const PartUse& use = FResult.Parts[i];
      if (use.Unplaced == 0) continue;
      double least = std::numeric_limits<double>::infinity();
      bool holdsSpare = false;
      for (std::size_t k = 0; k < FUsed.size(); ++k) {
        const double excess = Excess(FJob, FJob.Parts[i], FJob.Plates[k]);
        least = std::min(least, excess);
        holdsSpare = holdsSpare || (excess <= most && IsSpare(k));
      }
      const std::string& reason = use.Reason;
      Holds(reason != "too_large" || least > -kTol, use.Id, ": called too large, but it fits");
      Holds(reason == "too_large" || least <= kTol, use.Id, ": fits no plate, the reason is ", reason);
      Holds(reason != "no_stock" || !holdsSpare, use.Id, ": an unused plate holds it, the reason is no_stock");
      Holds(reason != "time" || wasCut, use.Id, ": left for time, but nothing cut the run short");
      Holds(wasCut || (!holdsSpare && reason != "left_by_method"), use.Id, ": left although an unused plate holds it");
      Holds(reason == "too_large" || reason == "no_stock" || reason == "time" || reason == "left_by_method", use.Id,
            ": unknown reason ", reason);
      FIsShort = FIsShort || least <= kTol;
    }
  }

  void JudgeVerdict() {
    Holds(!FIsLeft || FResult.Status != ResultStatus::Complete, "complete beside unplaced copies");
    const bool isLimited = std::ranges::all_of(FJob.Parts, [](const Part& part) { return part.Amount.has_value(); });
    Holds(FIsLeft || !isLimited || FResult.Status == ResultStatus::Complete, "all is placed, but not complete");
    bool isMet = false;
    for (const Bound& bound : FResult.Bounds) isMet = JudgeBound(bound) || isMet;
    Holds(!FResult.Proved || isMet, "called proved, but no bound is met");
  }

  // Whether it is met. Plates and cost cannot be less once all that fits is placed, part area cannot be more.
  bool JudgeBound(const Bound& ABound) {
    const bool isArea = ABound.What == "area", isCost = ABound.What == "cost";
    Holds(isArea || isCost || ABound.What == "plates", "a bound on ", ABound.What);
    const double reached = isArea ? FPartArea : isCost ? FCost : FResult.Total.Plates;
    const double slack = kRelative * std::max(reached, ABound.Value);
    const double room = isArea ? ABound.Value - reached : reached - ABound.Value;
    Holds(room >= -slack || (!isArea && FIsShort), ABound.What, " of ", reached, " beat the bound ", ABound.Kind,
          " of ", ABound.Value);
    return room <= slack;
  }

  const Job& FJob;
  const Result& FResult;
  std::vector<Int64> FUsed, FPlaced;
  double FPartArea = 0, FPlateArea = 0, FCost = 0;
  bool FIsLeft = false;
  bool FIsShort = false;  // something is left that a plate may hold
  std::ostringstream FFault;
};

}  // namespace

std::string JobFault(const Job& AJob, const Result& AResult) {
  return TJudge(AJob, AResult).Fault();
}

std::string JobFault(const TJobCase& Case, const Result& AResult) {
  std::string fault = JobFault(Case.AJob, AResult);
  if (!fault.empty() || !Case.Sample) return fault;
  double area = 0;
  for (const Part& part : Case.AJob.Parts) area += AreaOf(part) * part.Amount.value_or(0);
  for (const Bound& bound : AResult.Bounds) {
    const bool isSound =
        bound.What == "area"
            ? bound.Value >= area * (1 - kRelative)
            : bound.Value <= (bound.What == "cost" ? Case.Sample->Cost : Case.Sample->Plates) * (1 + kRelative);
    if (!isSound) return "the bound " + bound.Kind + " on " + bound.What + " rules out a known answer";
  }
  return "";
}

TJobWorth JobWorthOf(const Job& AJob, const Result& AResult) {
  TJobWorth worth;
  for (std::size_t i = 0; i < AResult.Parts.size(); ++i)
    worth.UnplacedArea += AResult.Parts[i].Unplaced * AreaOf(AJob.Parts[i]);
  for (std::size_t i = 0; i < AResult.Parts.size(); ++i)
    if (!AJob.Parts[i].Amount) worth.UnlimitedArea += AResult.Parts[i].Placed * AreaOf(AJob.Parts[i]);
  worth.Cost = AResult.Total.Cost;
  worth.Plates = AResult.Total.Plates;
  worth.LastUsage = AResult.Layouts.empty() ? 0 : 1;
  for (const Layout& layout : AResult.Layouts) worth.LastUsage = std::min(worth.LastUsage, layout.Usage);
  return worth;
}

bool IsWorse(const TJobWorth& A, const TJobWorth& B) {
  if (!AreClose(A.UnplacedArea, B.UnplacedArea)) return A.UnplacedArea > B.UnplacedArea;
  if (!AreClose(A.UnlimitedArea, B.UnlimitedArea)) return A.UnlimitedArea < B.UnlimitedArea;
  if (!AreClose(A.Cost, B.Cost)) return A.Cost > B.Cost;
  if (A.Plates != B.Plates) return A.Plates > B.Plates;
  return A.LastUsage > B.LastUsage + kRelative;
}

}  // namespace platenest::test
