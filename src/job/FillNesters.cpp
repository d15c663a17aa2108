#include "FillNesters.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "FillBounds.h"
#include "Scale.h"
#include "WholeUnits.h"
#include "platenest/URectNest/URectNest.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Rounding.h"
#include "platenest/foundation/Sort.h"

namespace platenest::detail {

namespace {

// The raster nests cost by the number of reachable positions and not by the number of units; these keep the sums and
// tables of units small.
constexpr double kMostRasterUnits = 50000;
constexpr double kMostProgramUnits = 200000;
// Bounds on what a plate's worth is scaled to: at least this many times its area in units, and no more than that.
constexpr double kLeastWorthRate = 100;
constexpr double kMostWorth = 1e14;
// Big rectangles to begin with.
constexpr int kBigRects = 4;

// What a nester is given, and where it stands in the sizes.
struct TOffer {
  TNestRectList Rects;
  std::vector<int> Positions;
};

TNestedRects AtPositions(const TFillSizes& Sizes, const TOffer& Offer, const TNestedRects& Nested, double Scale) {
  TNestedRects layout;
  layout.reserve(Nested.size());
  for (const TNestedRect& placed : Nested) {
    const TNestRect record = RecordOf(Sizes, Offer.Positions.at(placed.Part.Idx), 1);
    layout.emplace_back(record, placed.IsRotate, TPoint2D{placed.Trans.X / Scale, placed.Trans.Y / Scale});
  }
  if (Sizes.Decimals) SnapToQuantum(layout, *Sizes.Decimals);
  return layout;
}

// A power of ten that makes all worths whole, if there is one; either way so large that what is cut off does not matter
// and that worths are of the order of areas in units, and so small that a plate's worth stays far below 2^63.
double WorthScale(const TFillSizes& Sizes, double PlateUnits) {
  std::vector<double> worths;
  for (const TFillPart& part : Sizes.Parts) worths.push_back(part.Worth);
  const double bound = BoundFillByArea(Sizes);
  const double fine = std::ceil(std::log10(kLeastWorthRate * PlateUnits / bound));
  const double whole = CommonDecimals(worths).value_or(0);
  return std::pow(10.0, std::min(std::max(fine, whole), std::floor(std::log10(kMostWorth / bound))));
}

// A job in whole units. Some nesters grow it by the gap themselves.
struct TWholeJob {
  TWholeUnits Units;
  TVRect2D Plate;
  double Gap;
  TOffer Offer;
};

TWholeJob WholeJobOf(const TFillSizes& Sizes, double MostUnits) {
  std::vector<double> lengths{Sizes.PlateWidth, Sizes.PlateHeight};
  for (const TFillPart& part : Sizes.Parts) lengths.insert(lengths.end(), {part.Width, part.Height});
  const TWholeUnits units(lengths, Sizes.Gap, MostUnits);
  TWholeJob job{
      units, TVRect2D::FromSize(units.Room(Sizes.PlateWidth), units.Room(Sizes.PlateHeight)), 2 * units.HalfGap(), {}};
  const double scale = WorthScale(Sizes, job.Plate.Area());
  for (int i = 0; i < Size(Sizes.Parts); ++i) {
    const TFillPart& part = Sizes.Parts[i];
    TNestRect rect(part.Offered, i, TVRect2D::FromSize(units.Need(part.Width), units.Need(part.Height)));
    // A nester cuts fractions off, and what is whole may have come out a little less.
    rect.Area = RoundHalfEven(part.Worth * scale);
    job.Offer.Rects.push_back(rect);
    job.Offer.Positions.push_back(i);
  }
  return job;
}

void SnapToUnits(TNestedRects& Nested) {
  for (TNestedRect& placed : Nested) placed.Trans = {RoundHalfEven(placed.Trans.X), RoundHalfEven(placed.Trans.Y)};
}

// Where no amount binds the program takes this many bytes for each one that it is told to be free; 0 would mean that
// nobody knows.
constexpr Int64 kBytesTaken = 12;

Int64 MemoryFor(const TFillSizes& Sizes) {
  const Int64 free = FreePhysicalMemory();
  const bool isScarce = std::ranges::any_of(Sizes.Parts, &TFillPart::IsScarce);
  return isScarce || free <= 0 ? free : std::max<Int64>(free / kBytesTaken, 1);
}

// Runs the program without a time limit of its own: it would change the raster, and the run's token stops it.
template <class Run>
TNestedRects WithProgram(const TFillSizes& Sizes, Run AskProgram) {
  const TWholeJob job = WholeJobOf(Sizes, kMostProgramUnits);
  const TFreeMemoryScope memory([free = MemoryFor(Sizes)] { return free; });
  TNestedRects nested;
  TRSKF program(job.Plate, job.Offer.Rects, job.Gap, 0, 0, Sizes.HasValues);
  AskProgram(program, nested);
  return AtPositions(Sizes, job.Offer, nested, job.Units.Scale());
}

// The program exchanges the axes of a plate that is higher than wide, but never the sides of a part that must not turn:
// such a plate is laid down before, and its parts with it.
TFillSizes LaidDown(TFillSizes Sizes) {
  std::swap(Sizes.PlateWidth, Sizes.PlateHeight);
  for (TFillPart& part : Sizes.Parts) std::swap(part.Width, part.Height);
  return Sizes;
}

}  // namespace

std::vector<int> AllOffered(const TFillSizes& Sizes) {
  std::vector<int> amounts;
  for (const TFillPart& part : Sizes.Parts) amounts.push_back(part.Offered);
  return amounts;
}

TNestedRects NestAll(const TFillSizes& Sizes) {
  return NestSmart(Sizes, AllOffered(Sizes), Sizes.PlateWidth, Sizes.PlateHeight);
}

std::vector<int> DenseAmounts(const TFillSizes& Sizes, double Share) {
  const auto grown = [&](const TFillPart& part) { return (part.Width + Sizes.Gap) * (part.Height + Sizes.Gap); };
  std::vector<int> order;
  for (int i = 0; i < Size(Sizes.Parts); ++i) order.push_back(i);
  SortBy(order, [&](int left, int right) {
    const TFillPart& a = Sizes.Parts[left];
    const TFillPart& b = Sizes.Parts[right];
    const double difference = b.Worth * grown(a) - a.Worth * grown(b);
    return difference < 0 ? -1 : (difference > 0 ? 1 : 0);
  });
  std::vector<int> amounts(Sizes.Parts.size());
  double room = Share * (Sizes.PlateWidth + Sizes.Gap) * (Sizes.PlateHeight + Sizes.Gap);
  for (const int i : order) {
    const TFillPart& part = Sizes.Parts[i];
    if (room <= 0) break;
    amounts[i] = static_cast<int>(std::min<double>(part.Offered, std::ceil(room / grown(part))));
    room -= amounts[i] * grown(part);
  }
  return amounts;
}

TNestedRects NestDense(const TFillSizes& Sizes, double Share) {
  return NestSmart(Sizes, DenseAmounts(Sizes, Share), Sizes.PlateWidth, Sizes.PlateHeight);
}

double Drawn(std::uint64_t Seed, int Round, int Position) {
  std::uint64_t bits = Seed + 0x9E3779B97F4A7C15U * (static_cast<std::uint64_t>(Round) * 1000003U +
                                                     static_cast<std::uint64_t>(Position) + 1U);
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
  return static_cast<double>((bits ^ (bits >> 31)) >> 11) * 0x1p-53;
}

TFillSizes Shaken(TFillSizes Sizes, double Share, std::uint64_t Seed, int Round) {
  Sizes.HasValues = true;
  for (TFillPart& part : Sizes.Parts) part.Worth *= 1 + Share * (2 * Drawn(Seed, Round, part.Position) - 1);
  return Sizes;
}

TNestedRects NestRaster(const TFillSizes& Sizes) {
  const TWholeJob job = WholeJobOf(Sizes, kMostRasterUnits);
  // By itself it counts the gap around a part as worth, too.
  const bool isByWorth = Sizes.HasValues || job.Gap > 0;
  TNestedRects nested;
  int status = 0;
  TMultiRectNest(job.Plate, job.Offer.Rects, job.Gap, 0, isByWorth).ShapeRectNestWithAmt(nested, status);
  SnapToUnits(nested);
  return AtPositions(Sizes, job.Offer, nested, job.Units.Scale());
}

TNestedRects NestProgram(const TFillSizes& Sizes, bool MayTurn, bool IsNormal) {
  return WithProgram(
      Sizes, [=](TRSKF& program, TNestedRects& nested) { program.RunMultiRectNest(nested, MayTurn, IsNormal); });
}

TNestedRects NestUnturned(const TFillSizes& Sizes, bool IsNormal) {
  if (Sizes.PlateHeight <= Sizes.PlateWidth) return NestProgram(Sizes, false, IsNormal);
  TNestedRects layout = NestProgram(LaidDown(Sizes), false, IsNormal);
  for (TNestedRect& placed : layout) {
    const TVRect2D box = placed.BoundBox();
    placed.Part = RecordOf(Sizes, placed.Part.Idx, 1);
    placed.Trans = {box.Bottom + (placed.IsRotate ? placed.Part.BoundBox.Height() : 0), box.Left};
  }
  return layout;
}

TNestedRects NestWithTwins(const TFillSizes& Sizes, bool IsNormal) {
  TFillSizes twins = Sizes;
  std::vector<int> origin;
  for (int i = 0; i < Size(Sizes.Parts); ++i) origin.push_back(i);
  for (int i = 0; i < Size(Sizes.Parts); ++i) {
    TFillPart twin = Sizes.Parts[i];
    if (!twin.MayTurn) continue;
    std::swap(twin.Width, twin.Height);
    twins.Parts.push_back(twin);
    origin.push_back(i);
  }
  TNestedRects layout = NestUnturned(twins, IsNormal);
  for (TNestedRect& placed : layout) {
    const bool isTwin = placed.Part.Idx >= Size(Sizes.Parts);
    if (isTwin) placed.Trans.X += (placed.IsRotate ? -1 : 1) * placed.BoundBox().Width();
    placed.IsRotate ^= isTwin;
    placed.Part = RecordOf(Sizes, origin[placed.Part.Idx], 1);
  }
  return layout;
}

TNestedRects NestBigFirst(const TFillSizes& Sizes, int BigRect, bool IsNormal) {
  return WithProgram(
      Sizes, [=](TRSKF& program, TNestedRects& nested) { program.RunBigFirstNest(nested, BigRect, true, IsNormal); });
}

std::vector<int> BigRects(const TFillSizes& Sizes) {
  std::vector<std::pair<double, int>> blocks;
  for (int i = 0; i < Size(Sizes.Parts); ++i) {
    const TFillPart& part = Sizes.Parts[i];
    const auto grid = [&](double w, double h) {
      return std::floor((Sizes.PlateWidth + Sizes.Gap) / (w + Sizes.Gap)) *
             std::floor((Sizes.PlateHeight + Sizes.Gap) / (h + Sizes.Gap));
    };
    const double count = std::max(grid(part.Width, part.Height), grid(part.Height, part.Width));
    blocks.emplace_back(part.Worth * std::min<double>(count, part.Offered), i);
  }
  SortBy(blocks, [](const auto& a, const auto& b) { return a.first > b.first ? -1 : (a.first < b.first ? 1 : 0); });
  std::vector<int> best;
  for (int i = 0; i < std::min(kBigRects, Size(blocks)); ++i) best.push_back(blocks[i].second);
  return best;
}

double WorkOf(const TFillSizes& Sizes) {
  double copies = 0;
  double area = 0;
  for (const TFillPart& part : Sizes.Parts) {
    copies += part.Most;
    area += (part.Width + Sizes.Gap) * (part.Height + Sizes.Gap) * part.Most;
  }
  const double plate = (Sizes.PlateWidth + Sizes.Gap) * (Sizes.PlateHeight + Sizes.Gap);
  return std::max(1.0, copies * plate / std::max(area, plate) * Size(Sizes.Parts));
}

TNestRect RecordOf(const TFillSizes& Sizes, int Index, int Amount) {
  const TFillPart& part = Sizes.Parts[Index];
  TNestRect record(Amount, Index, TVRect2D::FromSize(part.Width, part.Height));
  record.Area = part.Width * part.Height;
  return record;
}

TNestedRects NestSmart(const TFillSizes& Sizes, std::span<const int> Amounts, double Width, double Height) {
  TOffer offer;
  std::vector<bool> locked;
  for (int i = 0; i < Size(Amounts); ++i) {
    if (Amounts[i] <= 0) continue;
    offer.Rects.push_back(RecordOf(Sizes, i, Amounts[i]));
    offer.Positions.push_back(i);
    locked.push_back(!Sizes.Parts[i].MayTurn);
  }
  const double slack = FitSlack(Sizes.Decimals);
  TRectNestSmart nester(TVRect2D::FromSize(Width + slack, Height + slack), offer.Rects, Sizes.Gap, 0);
  nester.LockTurns(locked);
  TNestedRects nested;
  bool isSuccess = false;
  nester.OutNest(nested, isSuccess);
  return AtPositions(Sizes, offer, nested, 1);
}

}  // namespace platenest::detail
