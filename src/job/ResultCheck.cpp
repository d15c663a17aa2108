#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>
#include <string>

#include "Assembly.h"
#include "CircleVerdict.h"
#include "FillVerdict.h"
#include "JobForm.h"
#include "JobVerdict.h"
#include "OneSizeVerdict.h"
#include "ShapeResultCheck.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest {

namespace {

using namespace detail;

constexpr double kLengthTol = 1e-6;    // drawing units, as the layout promise has it
constexpr double kRelativeTol = 1e-9;  // of ratios and sums

bool AreClose(double A, double B) {
  return std::fabs(A - B) <= kRelativeTol * std::max({1.0, std::fabs(A), std::fabs(B)});
}

bool AreClose(const Box& A, const Box& B) {
  for (int i = 0; i < 4; ++i)
    if (std::fabs(A[i] - B[i]) > kLengthTol) return false;
  return true;
}

std::string Number(double V) {
  char text[32];
  std::snprintf(text, sizeof text, "%.12g", V);
  return text;
}

// Gathers what is wrong; every test names the place in the result.
class TResultCheck {
 public:
  TResultCheck(const Job& AJob, const Result& AResult) : FJob(AJob), FIds(AJob), FResult(AResult) {}

  std::vector<Fault> Run() {
    CheckHead();
    for (int i = 0; i < Size(FResult.Layouts); ++i) CheckOneLayout(i);
    if (FFaults.empty()) CheckCounts();  // counts are summed over known plates and parts only
    if (FFaults.empty()) CheckVerdict();
    return std::move(FFaults);
  }

 private:
  void Add(std::string Place, std::string Text) {
    if (Size(FFaults) < JobError::kMaxFaults) FFaults.push_back({"check", std::move(Place), std::move(Text), ""});
  }
  void Require(bool Holds, const std::string& Place, const std::string& Text) {
    if (!Holds) Add(Place, Text);
  }
  void RequireNumber(double Stated, double True, const std::string& Place) {
    Require(AreClose(Stated, True), Place, "states " + Number(Stated) + ", it is " + Number(True));
  }
  // Of any size: in metres areas are small, and values may be.
  void RequireSum(double Stated, double True, const std::string& Place) {
    const bool isClose = std::fabs(Stated - True) <= kRelativeTol * std::fabs(True);
    Require(isClose, Place, "states " + Number(Stated) + ", it is " + Number(True));
  }

  void CheckHead();
  void CheckOneLayout(int Index);
  bool IsOfCircles() const { return FJob.Kind == JobKind::Circles; }
  bool TakesManyPlates() const { return FJob.Kind == JobKind::Job || IsOfCircles(); }
  void CheckPlacements(const Layout& ALayout, const std::string& Place);
  void CheckCircles(const Layout& ALayout, const std::string& Place);
  void CheckMeasures(const Layout& ALayout, const std::string& Place);
  void CheckFreeBox(const Layout& Stated, const Layout& Measured, const std::string& Place);
  void CheckCounts();
  void CheckStock(const Result& True);
  void CheckDemand(const Result& True);
  void CheckVerdict();
  void CheckReasons();
  void CheckBoundsAndStatus();
  Job JobInForce() const;
  Result Judged(const Job& InForce) const;
  void CheckBeaten(const Job& InForce, const Result& True);
  void CheckStatus(const Result& True);

  const Job& FJob;
  const TPartIds FIds;
  const Result& FResult;
  std::vector<Box> FFreeBoxes;  // of the layouts, measured
  std::vector<Fault> FFaults;
};

void TResultCheck::CheckHead() {
  Require(FResult.Kind == FJob.Kind, "/kind", "is not the kind of the job");
  Require(FResult.Units == FJob.Units, "/units", "are not the units of the job");
  Require(FResult.Name == FJob.Name, "/name", "is not the name of the job");
  Require(FResult.Gap >= FJob.Gap, "/gap", "is smaller than the gap of the job, " + Number(FJob.Gap));
  for (int i = 0; i < 4; ++i)
    Require(FResult.Margin[i] >= FJob.Margin[i], "/margin/" + std::to_string(i),
            "is smaller than the margin of the job, " + Number(FJob.Margin[i]));
}

void TResultCheck::CheckOneLayout(int Index) {
  const Layout& layout = FResult.Layouts[Index];
  const std::string place = "/layouts/" + std::to_string(Index);
  const auto plate = std::ranges::find(FJob.Plates, layout.Plate, &Plate::Id);
  if (plate == FJob.Plates.end()) return Add(place + "/plate", "names no plate of the job: " + layout.Plate);
  const std::size_t before = FFaults.size();
  Require(layout.Width == plate->Width, place + "/width", "is not that of the plate, " + Number(plate->Width));
  Require(layout.Height == plate->Height, place + "/height", "is not that of the plate, " + Number(plate->Height));
  Require(layout.Copies >= 1, place + "/copies", "must be at least 1");
  const bool isOfCircles = IsOfCircles();
  Require(isOfCircles ? layout.Placements.empty() : layout.Circles.empty(), place + "/placements",
          isOfCircles ? "holds rectangles" : "holds circles");
  Require(isOfCircles ? !layout.Circles.empty() : !layout.Placements.empty(), place + "/placements",
          "is empty: an unused plate is no layout");
  isOfCircles ? CheckCircles(layout, place) : CheckPlacements(layout, place);
  if (FFaults.size() != before) return;
  const std::string verdict = isOfCircles ? CheckCircleLayout(FIds, layout, FResult.Gap, FResult.Margin)
                                          : CheckLayout(FIds, layout, FResult.Gap, FResult.Margin);
  if (!verdict.empty()) return Add(place, verdict);
  CheckMeasures(layout, place);
}

void TResultCheck::CheckPlacements(const Layout& ALayout, const std::string& Place) {
  const TNestedRects records = ToRecords(FIds, ALayout);
  for (int i = 0; i < records.Count(); ++i) {
    const Placement& stated = ALayout.Placements[i];
    const std::string place = Place + "/placements/" + std::to_string(i);
    const int position = records[i].Part.Idx;
    if (position < 0) {
      Add(place + "/part", "names no part of the job: " + stated.Part);
      continue;
    }
    Require(!stated.Rotated || FJob.Parts[position].Turn == Rotate::Any, place + "/rotated",
            "turns a part that may not turn");
    const TPlacedBox box = PlacedBoxOf(records[i]);
    Require(AreClose(stated.Bounds, Box{box.Left, box.Bottom, box.Right, box.Top}), place + "/box",
            "does not follow from size, rotated and trans");
  }
}

void TResultCheck::CheckCircles(const Layout& ALayout, const std::string& Place) {
  int position = -1;
  for (int i = 0; i < Size(ALayout.Circles) && Size(FFaults) < JobError::kMaxFaults; ++i) {
    const CirclePlacement& stated = ALayout.Circles[i];
    const std::string place = Place + "/placements/" + std::to_string(i);
    position = FIds.PositionOf(stated.Part, position);
    if (position < 0)
      Add(place + "/part", "names no part of the job: " + stated.Part);
    else if (stated.Radius != FJob.Parts[position].Radius)
      Add(place + "/radius", "is not that of the part, " + Number(FJob.Parts[position].Radius));
  }
}

void TResultCheck::CheckMeasures(const Layout& ALayout, const std::string& Place) {
  Layout measured = ALayout;
  if (IsOfCircles())
    MeasureCirclesInto(measured, FResult.Gap, FResult.Margin);
  else
    MeasureInto(measured, FResult.Gap, FResult.Margin);
  FFreeBoxes.push_back(measured.FreeBox);
  RequireNumber(ALayout.Usage, measured.Usage, Place + "/usage");
  Require(AreClose(ALayout.UsedBox, measured.UsedBox), Place + "/used_box", "is not the box around the parts");
  Require(ALayout.EdgeToEdge == measured.EdgeToEdge, Place + "/edge_to_edge", "is wrong");
  Require(ALayout.MinClearance.has_value() == measured.MinClearance.has_value() &&
              (!ALayout.MinClearance || std::fabs(*ALayout.MinClearance - *measured.MinClearance) <= kLengthTol),
          Place + "/min_clearance", "is not the least distance of two parts");
  CheckFreeBox(ALayout, measured, Place);
}

// The stated rectangle must be free and as large as the largest one; several may be.
void TResultCheck::CheckFreeBox(const Layout& Stated, const Layout& Measured, const std::string& Place) {
  const Box& box = Stated.FreeBox;
  const TPlacedBox placed{box[0], box[1], box[2], box[3]};
  const double area = placed.Area();
  const double largest = (Measured.FreeBox[2] - Measured.FreeBox[0]) * (Measured.FreeBox[3] - Measured.FreeBox[1]);
  const TPlacedBox room{FResult.Margin[0], FResult.Margin[1], Stated.Width - FResult.Margin[2],
                        Stated.Height - FResult.Margin[3]};
  if (area != 0 && FirstOutside(std::span(&placed, 1), room)) return Add(Place + "/free_box", "is not on the plate");
  Require(placed.IsProper() && std::fabs(area - largest) <= kLengthTol * std::max(1.0, Stated.Width + Stated.Height),
          Place + "/free_box", "is not a largest free rectangle");
  std::vector<TPlacedBox> parts = CircleBoxesOf(Stated);
  for (const Placement& part : Stated.Placements)
    parts.push_back({part.Bounds[0], part.Bounds[1], part.Bounds[2], part.Bounds[3]});
  for (const TPlacedBox& other : parts)
    if (area > 0 && Clearance(placed, other) < FResult.Gap - kLengthTol) return Add(Place + "/free_box", "is not free");
}

void TResultCheck::CheckCounts() {
  Result truth;
  truth.Layouts = FResult.Layouts;
  Account(FJob, truth);
  const Summary& stated = FResult.Total;
  RequireNumber(stated.Plates, truth.Total.Plates, "/summary/plates");
  RequireNumber(stated.Usage, truth.Total.Usage, "/summary/usage");
  RequireSum(stated.PartArea, truth.Total.PartArea, "/summary/part_area");
  RequireSum(stated.PlateArea, truth.Total.PlateArea, "/summary/plate_area");
  RequireSum(stated.Cost, truth.Total.Cost, "/summary/cost");
  Require(stated.Value.has_value() == truth.Total.Value.has_value(), "/summary/value",
          truth.Total.Value ? "is missing" : "has no meaning in a result of this kind");
  if (stated.Value && truth.Total.Value) RequireSum(*stated.Value, *truth.Total.Value, "/summary/value");
  CheckStock(truth);
  CheckDemand(truth);
}

void TResultCheck::CheckStock(const Result& True) {
  Require(Size(FResult.Plates) == Size(True.Plates), "/plates", "does not list the plates of the job");
  for (int i = 0; i < std::min(Size(FResult.Plates), Size(True.Plates)); ++i) {
    const std::string place = "/plates/" + std::to_string(i);
    const PlateUse& use = FResult.Plates[i];
    Require(use.Id == True.Plates[i].Id, place + "/id", "is not the plate of the job at this place");
    Require(use.Count == True.Plates[i].Count, place + "/count", "is not the stock of the job");
    RequireNumber(use.Used, True.Plates[i].Used, place + "/used");
    Require(!True.Plates[i].Count || True.Plates[i].Used <= *True.Plates[i].Count, place + "/used",
            "more plates than there are in stock");
  }
  Require(TakesManyPlates() || True.Total.Plates <= 1, "/layouts", "uses more than one plate");
}

void TResultCheck::CheckDemand(const Result& True) {
  Require(Size(FResult.Parts) == Size(True.Parts), "/parts", "does not list the parts of the job");
  for (int i = 0; i < std::min(Size(FResult.Parts), Size(True.Parts)); ++i) {
    const std::string place = "/parts/" + std::to_string(i);
    const PartUse& use = FResult.Parts[i];
    const PartUse& truth = True.Parts[i];
    Require(use.Id == truth.Id, place + "/id", "is not the part of the job at this place");
    Require(use.Amount == truth.Amount, place + "/amount", "is not the amount of the job");
    RequireNumber(use.Placed, truth.Placed, place + "/placed");
    RequireNumber(use.Unplaced, truth.Unplaced, place + "/unplaced");
    Require(!truth.Amount || truth.Placed <= *truth.Amount, place + "/placed", "more copies than asked for");
    Require(use.Reason.empty() == (truth.Unplaced == 0), place + "/reason",
            use.Reason.empty() ? "is missing beside unplaced copies" : "stands beside no unplaced copy");
  }
}

void TResultCheck::CheckVerdict() {
  CheckReasons();
  CheckBoundsAndStatus();
  if (!FResult.Estimate) return;
  Require(FJob.Kind == JobKind::Job, "/estimate", "has no meaning in a result of this kind");
  Require(std::isfinite(FResult.Estimate->Value) && FResult.Estimate->Value >= 0, "/estimate/value",
          "must be a number of at least 0");
}

void TResultCheck::CheckReasons() {
  constexpr const char* known[] = {"", "too_large", "no_stock", "time", "left_by_method"};
  for (int i = 0; i < Size(FResult.Parts); ++i)
    Require(std::ranges::find(known, FResult.Parts[i].Reason) != std::end(known),
            "/parts/" + std::to_string(i) + "/reason", "is not a known reason");
}

// Everything that follows from the placements is worked out again, for the gap and margin that the run was given.
Job TResultCheck::JobInForce() const {
  Job inForce = FJob;
  inForce.Gap = FResult.Gap;
  inForce.Margin = FResult.Margin;
  return inForce;
}

Result TResultCheck::Judged(const Job& InForce) const {
  Result truth = FResult;
  for (int i = 0; i < Size(truth.Layouts); ++i) truth.Layouts[i].FreeBox = FFreeBoxes[i];
  if (FJob.Kind == JobKind::Job) {
    truth.Bounds = JobBoundsOf(InForce);
    JudgeJob(InForce, truth);
  } else if (IsOfCircles()) {
    truth.Bounds = CircleBoundsOf(InForce);
    JudgeCircles(InForce, truth);
  } else if (FJob.Kind == JobKind::Fill) {
    truth.Bounds = FillBoundsOf(InForce);
    JudgeFill(InForce, truth);
  } else {
    truth.Bounds = BoundsOf(InForce);
    Judge(InForce, truth);
  }
  return truth;
}

void TResultCheck::CheckBoundsAndStatus() {
  const Job inForce = JobInForce();
  const Result truth = Judged(inForce);
  Require(FResult.Bounds == truth.Bounds, "/bounds", "are not the bounds of the job");
  Require(FResult.Proved == truth.Proved, "/proved",
          truth.Proved ? "is false although a bound is met" : "is true although no bound is met");
  CheckBeaten(inForce, truth);
  CheckStatus(truth);
}

void TResultCheck::CheckBeaten(const Job& InForce, const Result& True) {
  if (TakesManyPlates()) {
    const Bound* const beaten =
        IsOfCircles() ? BeatenCircleBound(InForce, True, True.Bounds) : BeatenBound(InForce, True, True.Bounds);
    return Require(beaten == nullptr, "/layouts",
                   beaten == nullptr ? "" : "are better than the bound " + beaten->What + ", " + beaten->Kind);
  }
  for (const Bound& bound : True.Bounds) {
    if (FJob.Kind == JobKind::Fill)
      Require(!BeatsBound(*True.Total.Value, bound), "/layouts", "are worth more than the bound " + bound.Kind);
    else
      Require(True.Parts[0].Placed <= bound.Value, "/layouts", "hold more copies than the bound " + bound.Kind);
  }
}

void TResultCheck::CheckStatus(const Result& True) {
  const bool wasCut = FResult.Status == ResultStatus::TimeLimit || FResult.Status == ResultStatus::Stopped;
  Require(FResult.Status == True.Status || (wasCut && True.Status == ResultStatus::Partial), "/status",
          "should be " + std::string(StatusName(True.Status)));
  for (int i = 0; i < Size(FResult.Parts); ++i) {
    const std::string& stated = FResult.Parts[i].Reason;
    const std::string& reason = True.Parts[i].Reason;
    Require(stated == reason || (wasCut && stated == "time" && reason == "left_by_method"),
            "/parts/" + std::to_string(i) + "/reason", "should be " + reason);
  }
}

}  // namespace

std::vector<Fault> CheckResult(const Job& AJob, const Result& AResult) {
  CheckJob(AJob);
  if (IsOfShapes(AJob.Kind)) return CheckShapeResult(AJob, AResult);
  return TResultCheck(AJob, AResult).Run();
}

}  // namespace platenest
