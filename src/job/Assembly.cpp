#include "Assembly.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <numbers>
#include <numeric>
#include <optional>

#include "platenest/job/JobErrors.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/Measures.h"

namespace platenest::detail {

namespace {

Box ToBox(const TPlacedBox& B) {
  return {B.Left, B.Bottom, B.Right, B.Top};
}
TPlacedBox ToPlacedBox(const Box& B) {
  return {B[0], B[1], B[2], B[3]};
}

// Results that were read from a file may multiply to more than a count holds; the checks on stock and demand see the
// cap.
int ToCount(Int64 Sum) {
  return static_cast<int>(std::min<Int64>(Sum, std::numeric_limits<int>::max()));
}

// Ways down of lengths that come again and again, as the coordinates of copies in rows and columns do.
class TWaysDown {
 public:
  explicit TWaysDown(const TScale& Scale) : FScale(Scale), FKnown(kPlaces) {}

  // Sums are brought back to twelve digits before the way down, so that whole sizes give whole corners.
  double operator()(double Length) {
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    const auto bits = std::bit_cast<std::uint64_t>(Length);
    TWay& way = FKnown[bits * kSpread >> (64 - kBits)];
    if (way.From != bits) way = {bits, FScale.DownRounded(Length)};
    return way.To;
  }

 private:
  struct TWay {
    std::uint64_t From = 0;  // the bits of 0, whose way down is 0
    double To = 0;
  };
  static constexpr int kBits = 12;
  static constexpr std::size_t kPlaces = std::size_t{1} << kBits;

  const TScale& FScale;
  std::vector<TWay> FKnown;
};

struct TSize {
  double Width = 0;
  double Height = 0;
};

Placement AssemblePlacement(const Part& APart, const TSize& Up, const TScaledPlate& Scaled, const TNestedRect& Nested,
                            TWaysDown& Down) {
  const double x = Nested.Trans.X + Scaled.MarginLeft;
  const double y = Nested.Trans.Y + Scaled.MarginBottom;
  const double downX = Down(x);
  const double downY = Down(y);
  Placement place;
  place.Part = APart.Id;
  place.Rotated = Nested.IsRotate;
  place.Trans = {downX, downY};
  place.Bounds = Nested.IsRotate ? Box{Down(x - Up.Height), downY, downX, Down(y + Up.Width)}
                                 : Box{downX, downY, Down(x + Up.Width), Down(y + Up.Height)};
  return place;
}

}  // namespace

TScaledPlate::TScaledPlate(const Job& AJob, const Plate& APlate)
    : TScaledPlate(AJob, APlate, TScale(std::max(APlate.Width, APlate.Height))) {}

TScaledPlate::TScaledPlate(const Job& AJob, const Plate& APlate, const TScale& AScale) : Scale(AScale) {
  Gap = Scale.Up(AJob.Gap);
  MarginLeft = Scale.Up(AJob.Margin[0]);
  MarginBottom = Scale.Up(AJob.Margin[1]);
  Width = RoundToTwelveDigits(Scale.Up(APlate.Width) - MarginLeft - Scale.Up(AJob.Margin[2]));
  Height = RoundToTwelveDigits(Scale.Up(APlate.Height) - MarginBottom - Scale.Up(AJob.Margin[3]));
}

Layout AssembleLayout(const Job& AJob, const Plate& APlate, const TScaledPlate& Scaled, const TNestedRects& Nested,
                      std::span<const int> Positions) {
  Layout layout;
  layout.Plate = APlate.Id;
  layout.Width = APlate.Width;
  layout.Height = APlate.Height;
  layout.Placements.reserve(Nested.size());
  std::vector<std::optional<TSize>> sizes(AJob.Parts.size());
  TWaysDown down(Scaled.Scale);
  for (const TNestedRect& placed : Nested) {
    const int position = Positions.empty() ? placed.Part.Idx : Positions[placed.Part.Idx];
    const Part& part = AJob.Parts.at(position);
    std::optional<TSize>& size = sizes[position];
    if (!size) size = TSize{Scaled.Scale.Up(part.Width), Scaled.Scale.Up(part.Height)};
    layout.Placements.push_back(AssemblePlacement(part, *size, Scaled, placed, down));
  }
  return layout;
}

void MeasureInto(Layout& ALayout, double Gap, const std::array<double, 4>& Margin) {
  std::vector<TPlacedBox> boxes;
  boxes.reserve(ALayout.Placements.size());
  for (const Placement& place : ALayout.Placements) boxes.push_back(ToPlacedBox(place.Bounds));
  const TPlacedBox plate{0, 0, ALayout.Width, ALayout.Height};
  const TPlacedBox inner{Margin[0], Margin[1], ALayout.Width - Margin[2], ALayout.Height - Margin[3]};
  const TLayoutMeasures measures = MeasureLayout(boxes, plate, inner, Gap);
  ALayout.Usage = measures.Usage;
  ALayout.UsedBox = measures.Used ? ToBox(*measures.Used) : Box{0, 0, 0, 0};
  ALayout.MinClearance = measures.MinClearance;
  ALayout.EdgeToEdge = measures.EdgeToEdge;
  ALayout.FreeBox = measures.Free ? ToBox(*measures.Free) : Box{0, 0, 0, 0};
}

TPartIds::TPartIds(const Job& AJob) : FJob(&AJob) {
  for (int i = 0; i < Size(AJob.Parts); ++i) FPositions.emplace(AJob.Parts[i].Id, i);
}

int TPartIds::PositionOf(std::string_view Id, int Likely) const {
  if (Likely >= 0 && FJob->Parts[Likely].Id == Id) return Likely;
  const auto known = FPositions.find(Id);
  return known == FPositions.end() ? -1 : known->second;
}

TNestedRects ToRecords(const TPartIds& Ids, const Layout& ALayout) {
  TNestedRects records;
  records.reserve(ALayout.Placements.size());
  int position = -1;
  for (const Placement& place : ALayout.Placements) {
    position = Ids.PositionOf(place.Part, position);
    TNestRect part(1, position, TVRect2D());
    if (position >= 0) {
      const Part& demand = Ids.Subject().Parts[position];
      part.BoundBox = TVRect2D::FromSize(demand.Width, demand.Height);
    }
    records.emplace_back(part, place.Rotated, TPoint2D{place.Trans[0], place.Trans[1]});
  }
  return records;
}

std::string CheckLayout(const TPartIds& Ids, const Layout& ALayout, double Gap, const std::array<double, 4>& Margin) {
  const TNestedRects records = ToRecords(Ids, ALayout);
  std::vector<char> isMet(Ids.Subject().Parts.size());
  for (const TNestedRect& placed : records)
    if (placed.Part.Idx >= 0) isMet[placed.Part.Idx] = true;
  TNestRectList demand;
  for (int position = 0; position < Size(isMet); ++position) {
    if (!isMet[position]) continue;
    const Part& part = Ids.Subject().Parts[position];
    // Amounts belong to the whole job and are counted over all layouts.
    demand.emplace_back(-1, position, TVRect2D::FromSize(part.Width, part.Height));
  }
  const TVRect2D plate =
      TVRect2D::FromBounds(ALayout.Height - Margin[3], Margin[0], Margin[1], ALayout.Width - Margin[2]);
  return CheckRectLayout(records, plate, Gap, demand, {.NegativeAmountIsNoLimit = true});
}

double WorthOf(const Part& APart) {
  return APart.Value.value_or(APart.Width * APart.Height);
}

std::vector<Int64> CountCopies(const TPartIds& Ids, const Layout& ALayout) {
  std::vector<Int64> counts(Ids.Subject().Parts.size());
  int position = -1;
  for (const Placement& place : ALayout.Placements) ++counts.at(position = Ids.PositionOf(place.Part, position));
  return counts;
}

double WorthOfCopies(const Job& AJob, std::span<const Int64> Counts) {
  long double worth = 0;
  for (int i = 0; i < Size(Counts); ++i)
    worth += static_cast<long double>(WorthOf(AJob.Parts[i])) * static_cast<long double>(Counts[i]);
  return static_cast<double>(worth);
}

void RaiseTooManyCopies(int Position) {
  throw LimitError(
      {"limit", "/parts/" + std::to_string(Position) + "/amount",
       "more than " + std::to_string(limits::kCopies) + " copies fit, which is the limit; ask for an amount", ""});
}

void RequireRoom(const TScaledPlate& Scaled, const Plate& APlate) {
  if (Scaled.Width > 0 && Scaled.Height > 0) return;
  throw InputError({"range", "/margin", "leaves nothing of plate `" + APlate.Id + "`", ""});
}

void Account(const Job& AJob, Result& AResult) {
  Account(AJob, AResult.Layouts, AResult);
}

void Account(const Job& AJob, std::span<const Layout> Layouts, Result& AResult) {
  const TPartIds ids(AJob);
  std::unordered_map<std::string_view, int> platePositions;  // for look-up only
  for (int i = 0; i < Size(AJob.Plates); ++i) platePositions.emplace(AJob.Plates[i].Id, i);
  std::vector<Int64> placed(AJob.Parts.size()), used(AJob.Plates.size());
  for (const Part& part : AJob.Parts) AResult.Parts.push_back({part.Id, part.Amount, 0, 0, ""});
  for (const Plate& plate : AJob.Plates) AResult.Plates.push_back({plate.Id, 0, plate.Count});
  for (const Layout& layout : Layouts) {
    const int platePosition = platePositions.at(layout.Plate);
    const Plate& plate = AJob.Plates[platePosition];
    const double plateArea = layout.Width * layout.Height;
    used[platePosition] += layout.Copies;
    AResult.Total.PlateArea += plateArea * layout.Copies;
    AResult.Total.Cost += plate.Cost.value_or(plateArea) * layout.Copies;
    int position = -1;
    for (const Placement& place : layout.Placements) {
      position = ids.PositionOf(place.Part, position);
      placed.at(position) += layout.Copies;
      AResult.Total.PartArea += AJob.Parts[position].Width * AJob.Parts[position].Height * layout.Copies;
    }
    for (const CirclePlacement& circle : layout.Circles) {
      position = ids.PositionOf(circle.Part, position);
      placed.at(position) += layout.Copies;
      AResult.Total.PartArea +=
          std::numbers::pi * AJob.Parts[position].Radius * AJob.Parts[position].Radius * layout.Copies;
    }
  }
  for (int i = 0; i < Size(used); ++i) AResult.Plates[i].Used = ToCount(used[i]);
  AResult.Total.Plates = ToCount(std::accumulate(used.begin(), used.end(), Int64{0}));
  for (int i = 0; i < Size(placed); ++i) AResult.Parts[i].Placed = ToCount(placed[i]);
  for (PartUse& part : AResult.Parts) part.Unplaced = part.Amount ? std::max(0, *part.Amount - part.Placed) : 0;
  if (AJob.Kind == JobKind::Fill) AResult.Total.Value = WorthOfCopies(AJob, placed);
  if (AResult.Total.PlateArea > 0) AResult.Total.Usage = AResult.Total.PartArea / AResult.Total.PlateArea;
}

}  // namespace platenest::detail
