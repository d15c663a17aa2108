#include "JobSkyline.h"

#include <algorithm>

#include "platenest/foundation/Rounding.h"

namespace platenest::detail {

namespace {

// Whole numbers up to here and their sums are exact in a double.
constexpr double kMostUnits = 1e14;
// Placed whatever the time is.
constexpr int kLeastCopies = 100;

std::vector<double> LengthsOf(const TJobSizes& Sizes) {
  std::vector<double> lengths;
  for (const TJobPlate& plate : Sizes.Plates) lengths.insert(lengths.end(), {plate.Width, plate.Height});
  for (const TJobPart& part : Sizes.Parts) lengths.insert(lengths.end(), {part.Width, part.Height});
  if (lengths.empty()) lengths.push_back(1);
  return lengths;
}

}  // namespace

TSkyline::TSkyline(const TJobSizes& Sizes) : FSizes(Sizes), FUnits(LengthsOf(Sizes), Sizes.Gap, kMostUnits) {
  const double gap = 2 * FUnits.HalfGap();
  for (const TJobPlate& plate : Sizes.Plates)
    FPlates.push_back({FUnits.Room(plate.Width) + gap, FUnits.Room(plate.Height) + gap});
  for (const TJobPart& part : Sizes.Parts)
    FParts.push_back({FUnits.Need(part.Width) + gap, FUnits.Need(part.Height) + gap});
}

bool TSkyline::Holds(int Plate, int Part) const {
  const TSize& plate = FPlates[Plate];
  const TSize& part = FParts[Part];
  if (part.Width <= plate.Width && part.Height <= plate.Height) return true;
  return FSizes.Parts[Part].MayTurn && part.Height <= plate.Width && part.Width <= plate.Height;
}

int TSkyline::LowestStep() const {
  const auto lowest = std::ranges::min_element(FSteps, {}, &TStep::Y);
  return static_cast<int>(lowest - FSteps.begin());
}

TSkyline::TNiche TSkyline::NicheAt(int Step, double PlateHeight) const {
  const TStep& step = FSteps[Step];
  const double left = Step > 0 ? FSteps[Step - 1].Y : PlateHeight;
  const double right = Step + 1 < Size(FSteps) ? FSteps[Step + 1].Y : PlateHeight;
  return {step.Width, PlateHeight - step.Y, left - step.Y, right - step.Y};
}

// Keys fall along the order, so the search ends where even the highest bonus cannot help any more.
TSkyline::TChoice TSkyline::Choose(const TNiche& Niche, const TSkyTaste& Taste) const {
  constexpr double kMostFits = 3;
  TChoice best;
  for (const int i : FOpen) {
    ++FWork;
    const double key = Taste.Keys[i];
    if (best.Part >= 0 && key + kMostFits * Taste.FitBonus <= best.Score) break;
    for (const bool turned : {false, true}) {
      if (turned && !FSizes.Parts[i].MayTurn) break;
      const bool isSwapped = turned != Taste.IsFlipped;
      const TSize extent = isSwapped ? TSize{FParts[i].Height, FParts[i].Width} : FParts[i];
      if (extent.Width > Niche.Width || extent.Height > Niche.Height) continue;
      const bool fillsWidth = extent.Width == Niche.Width;
      const int fits = (fillsWidth ? 1 : 0) + (extent.Height == Niche.LeftWall ? 1 : 0) +
                       (extent.Height == Niche.RightWall && (fillsWidth || extent.Height != Niche.LeftWall) ? 1 : 0);
      const double score = key + fits * Taste.FitBonus;
      if (best.Part < 0 || score > best.Score) best = {i, turned, score, extent};
    }
  }
  return best;
}

void TSkyline::Join(int Step) {
  if (Step < 0 || Step + 1 >= Size(FSteps) || FSteps[Step].Y != FSteps[Step + 1].Y) return;
  FSteps[Step].Width += FSteps[Step + 1].Width;
  FSteps.erase(FSteps.begin() + Step + 1);
}

void TSkyline::Lift(int Step, double Y) {
  FSteps[Step].Y = Y;
  Join(Step);
  Join(Step - 1);
}

void TSkyline::Lay(int Step, bool AtRight, const TSize& Extent) {
  TStep& step = FSteps[Step];
  const double top = step.Y + Extent.Height;
  if (Extent.Width == step.Width) return Lift(Step, top);
  const TStep rest{AtRight ? step.X : step.X + Extent.Width, step.Y, step.Width - Extent.Width};
  step = {AtRight ? step.X + rest.Width : step.X, step.Y, Extent.Width};
  FSteps.insert(FSteps.begin() + Step + (AtRight ? 0 : 1), rest);
  Lift(AtRight ? Step + 1 : Step, top);
}

void TSkyline::Fill(int Plate, const TSkyTaste& Taste, std::vector<int>& Left, TSkyLayout& Layout) {
  TSize plate = FPlates[Plate];
  if (Taste.IsFlipped) std::swap(plate.Width, plate.Height);
  FSteps.assign(1, {0, 0, plate.Width});
  FOpen.clear();
  std::ranges::copy_if(Taste.Order, std::back_inserter(FOpen),
                       [&](int part) { return Left[part] > 0 && Holds(Plate, part); });
  while (!FOpen.empty() && (Size(Layout) < kLeastCopies || !RectNestStopped())) {
    const int step = LowestStep();
    const TNiche niche = NicheAt(step, plate.Height);
    if (niche.Height <= 0) return;
    const TChoice choice = Choose(niche, Taste);
    if (choice.Part < 0) {
      Lift(step, FSteps[step].Y + std::min(niche.LeftWall, niche.RightWall));
      continue;
    }
    // Beside the wall that it ends level with, else beside the higher one.
    const bool fitsRight = choice.Extent.Height == niche.RightWall && choice.Extent.Height != niche.LeftWall;
    const bool fitsLeft = choice.Extent.Height == niche.LeftWall;
    const bool atRight = fitsRight || (!fitsLeft && niche.RightWall > niche.LeftWall);
    const double x = FSteps[step].X + (atRight ? niche.Width - choice.Extent.Width : 0);
    const double y = FSteps[step].Y;
    Layout.push_back({choice.Part, choice.IsTurned, Taste.IsFlipped ? y : x, Taste.IsFlipped ? x : y});
    Lay(step, atRight, choice.Extent);
    if (--Left[choice.Part] == 0) std::erase(FOpen, choice.Part);
  }
}

TNestedRects TSkyline::LayoutOf(const TSkyLayout& Layout) const {
  TNestedRects nested;
  nested.reserve(Layout.size());
  for (const TSkyPlaced& placed : Layout) {
    const TJobPart& part = FSizes.Parts[placed.Part];
    TNestRect record(1, placed.Part, TVRect2D::FromSize(part.Width, part.Height));
    record.Area = part.Width * part.Height;
    const TPoint2D corner{placed.X / FUnits.Scale(), placed.Y / FUnits.Scale()};
    nested.emplace_back(record, placed.IsTurned, TPoint2D{corner.X + (placed.IsTurned ? part.Height : 0), corner.Y});
  }
  if (FSizes.Decimals) SnapToQuantum(nested, *FSizes.Decimals);
  return nested;
}

}  // namespace platenest::detail
