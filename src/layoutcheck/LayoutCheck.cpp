#include "platenest/layoutcheck/LayoutCheck.h"

#include <limits>

#include "BoxSweep.h"
#include "Guards.h"
#include "TextOf.h"

namespace platenest {

using detail::TextOf;

namespace {

TPlacedBox BoxOf(const TVRect2D& R) {
  return {R.Left, R.Bottom, R.Right, R.Top};
}

std::string BoxText(const TPlacedBox& B) {
  return TextOf("[", B.Left, ", ", B.Bottom, ", ", B.Right, ", ", B.Top, "]");
}

std::string SizeText(double Width, double Height) {
  return TextOf(Width, " x ", Height);
}

bool IsInside(const TPlacedBox& Box, const TPlacedBox& Plate, double Slack) {
  return Box.IsProper() && Box.Left >= Plate.Left - Slack && Box.Bottom >= Plate.Bottom - Slack &&
         Box.Right <= Plate.Right + Slack && Box.Top <= Plate.Top + Slack;
}

// Which side of the plate the box passes, and by how much: the worst of the four.
std::string OutsideText(const TPlacedBox& Box, const TPlacedBox& Plate) {
  const std::pair<double, const char*> sides[] = {{Plate.Left - Box.Left, "left"},
                                                  {Plate.Bottom - Box.Bottom, "bottom"},
                                                  {Box.Right - Plate.Right, "right"},
                                                  {Box.Top - Plate.Top, "top"}};
  const auto* worst = &sides[0];
  for (const auto& side : sides)
    if (side.first > worst->first) worst = &side;
  return TextOf("box ", BoxText(Box), " reaches ", worst->first, " beyond the ", worst->second, " of ", BoxText(Plate));
}

// The demand, looked up by Idx.
class TDemandCount {
 public:
  TDemandCount(const TNestRectList& Demand, bool NegativeIsNoLimit) : FDemand(Demand) {
    for (int i = 0; i < Size(Demand); ++i) FByIdx.push_back(i);
    SortBy(FByIdx, [&](int A, int B) { return Sign(Demand[A].Idx, Demand[B].Idx); });
    FLimit.resize(Demand.size());
    FUsed.resize(Demand.size());
    for (int i = 0; i < Size(Demand); ++i) {
      const bool noLimit = NegativeIsNoLimit && Demand[i].Amount < 0;
      FLimit[GroupOf(Demand[i].Idx)] += noLimit ? kNoLimit : std::max(Demand[i].Amount, 0);
    }
  }

  // Counts one copy in; the fault of this copy, or an empty text.
  std::string Take(const TNestRect& Part, double Slack) {
    const int group = GroupOf(Part.Idx);
    if (group < 0) return "is no part of the demand";
    if (!HasSize(group, Part.BoundBox, Slack)) {
      const TVRect2D& wanted = FDemand[FByIdx[group]].BoundBox;
      return TextOf("has size ", SizeText(Part.BoundBox.Width(), Part.BoundBox.Height()), ", but the demand says ",
                    SizeText(wanted.Width(), wanted.Height()));
    }
    if (++FUsed[group] > FLimit[group]) return TextOf("is copy ", FUsed[group], " of ", FLimit[group], " wanted");
    return {};
  }

 private:
  static constexpr Int64 kNoLimit = Int64{1} << 40;  // above any count, and safe to add up

  // The first place in FByIdx of the entries with this Idx, -1 if there is none.
  int GroupOf(int Idx) const {
    const auto at = std::lower_bound(FByIdx.begin(), FByIdx.end(), Idx,
                                     [&](int Entry, int Value) { return FDemand[Entry].Idx < Value; });
    return at != FByIdx.end() && FDemand[*at].Idx == Idx ? static_cast<int>(at - FByIdx.begin()) : -1;
  }

  bool HasSize(int Group, const TVRect2D& Box, double Slack) const {
    const int idx = FDemand[FByIdx[Group]].Idx;
    for (int i = Group; i < Size(FByIdx) && FDemand[FByIdx[i]].Idx == idx; ++i)
      if (FDemand[FByIdx[i]].BoundBox.SizeEquals(Box, Slack)) return true;
    return false;
  }

  const TNestRectList& FDemand;
  std::vector<int> FByIdx;    // positions in the demand, ascending by Idx
  std::vector<Int64> FLimit;  // by group: the sum of amounts
  std::vector<Int64> FUsed;
};

std::string PlacementFault(const TNestedRect& Item, const TPlacedBox& Plate, double Slack, TDemandCount& Count) {
  const double width = Item.Part.BoundBox.Width();
  const double height = Item.Part.BoundBox.Height();
  const TPlacedBox box = PlacedBoxOf(Item);
  if (!std::isfinite(width) || !std::isfinite(height) || !std::isfinite(Item.Trans.X) || !std::isfinite(Item.Trans.Y))
    return "has a size or position that is not a finite number";
  if (!(width > 0 && height > 0)) return TextOf("has the size ", SizeText(width, height), ", which is not positive");
  if (std::string fault = Count.Take(Item.Part, Slack); !fault.empty()) return fault;
  if (!Plate.IsProper()) return "lies on a plate that is none";
  if (!IsInside(box, Plate, Slack)) return OutsideText(box, Plate);
  return {};
}

std::string PairFault(const TBoxPair& Pair, double Gap) {
  const std::string who = TextOf("placements ", Pair.First, " and ", Pair.Second);
  return Pair.Clearance < 0 ? TextOf(who, " overlap by ", -Pair.Clearance, ", the gap is ", Gap)
                            : TextOf(who, " are ", Pair.Clearance, " apart, the gap is ", Gap);
}

}  // namespace

TPlacedBox PlacedBoxOf(const TNestedRect& Item) {
  const double w = Item.Part.BoundBox.Right - Item.Part.BoundBox.Left;
  const double h = Item.Part.BoundBox.Top - Item.Part.BoundBox.Bottom;
  const double x = Item.Trans.X;
  const double y = Item.Trans.Y;
  return Item.IsRotate ? TPlacedBox{x - h, y, x, y + w} : TPlacedBox{x, y, x + w, y + h};
}

std::vector<TPlacedBox> PlacedBoxesOf(const TNestedRects& Layout) {
  std::vector<TPlacedBox> boxes;
  boxes.reserve(Layout.size());
  for (const TNestedRect& item : Layout) boxes.push_back(PlacedBoxOf(item));
  return boxes;
}

double CheckTolerance(const TPlacedBox& Plate, double Tol) {
  const double reach =
      std::max({std::fabs(Plate.Left), std::fabs(Plate.Bottom), std::fabs(Plate.Right), std::fabs(Plate.Top)});
  const double finest = 8 * std::numeric_limits<double>::epsilon() * reach;
  return std::isfinite(finest) ? std::max(Tol, finest) : Tol;
}

std::optional<int> FirstOutside(std::span<const TPlacedBox> Boxes, const TPlacedBox& Plate, double Tol) {
  const double slack = CheckTolerance(Plate, Tol);
  for (int i = 0; i < Size(Boxes); ++i)
    if (!Plate.IsProper() || !IsInside(Boxes[i], Plate, slack)) return i;
  return std::nullopt;
}

std::optional<TBoxPair> FirstTooClose(std::span<const TPlacedBox> Boxes, double Gap, double Tol) {
  detail::RequireProper(Boxes, "FirstTooClose");
  detail::RequireFinite(Gap, "FirstTooClose", "the gap");
  detail::RequireFinite(Tol, "FirstTooClose", "the tolerance");
  const double least = Gap - Tol;
  double reach = std::max(least, 0.0);
  // The quick sweep only tells whether there is such a pair; which one is for the other to say.
  const auto isTooClose = [&](int A, int B) { return Clearance(Boxes[A], Boxes[B]) < least; };
  if (detail::SweepStrips(Boxes, reach, isTooClose) == detail::TSweepEnd::Done) return std::nullopt;
  std::optional<TBoxPair> found;
  detail::SweepNearPairs(Boxes, reach, [&](int A, int B) {
    const double clearance = Clearance(Boxes[A], Boxes[B]);
    if (clearance < least) found = TBoxPair{std::min(A, B), std::max(A, B), clearance};
    return found.has_value();
  });
  return found;
}

std::string CheckRectLayout(const TNestedRects& Layout, const TVRect2D& Plate, double Gap, const TNestRectList& Demand,
                            const TLayoutCheckOptions& Options) {
  if (Layout.empty()) return {};
  if (!std::isfinite(Gap)) return "parts are placed, but the gap is not a finite number";
  const TPlacedBox plate = BoxOf(Plate);
  const double slack = CheckTolerance(plate, Options.Tol);
  TDemandCount count(Demand, Options.NegativeAmountIsNoLimit);
  for (int i = 0; i < Layout.Count(); ++i)
    if (std::string fault = PlacementFault(Layout[i], plate, slack, count); !fault.empty())
      return TextOf("placement ", i, " of part ", Layout[i].Part.Idx, " ", fault);
  const std::optional<TBoxPair> pair = FirstTooClose(PlacedBoxesOf(Layout), Gap, slack);
  return pair ? PairFault(*pair, Gap) : std::string();
}

}  // namespace platenest
