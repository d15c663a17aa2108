#include "platenest/layoutcheck/CircleCheck.h"

#include <limits>

#include "BoxSweep.h"
#include "TextOf.h"
#include "platenest/foundation/Errors.h"

namespace platenest {

using detail::TextOf;

namespace {

TPlacedBox BoxOf(const TPlacedCircle& C) {
  return {C.Center.X - C.Radius, C.Center.Y - C.Radius, C.Center.X + C.Radius, C.Center.Y + C.Radius};
}

bool IsFinite(const TPlacedCircle& C) {
  return std::isfinite(C.Center.X) && std::isfinite(C.Center.Y) && std::isfinite(C.Radius);
}

std::string OutsideText(const TPlacedCircle& Circle, const TPlacedBox& Plate) {
  const TPlacedBox box = BoxOf(Circle);
  const std::pair<double, const char*> sides[] = {{Plate.Left - box.Left, "left"},
                                                  {Plate.Bottom - box.Bottom, "bottom"},
                                                  {box.Right - Plate.Right, "right"},
                                                  {box.Top - Plate.Top, "top"}};
  const auto* worst = &sides[0];
  for (const auto& side : sides)
    if (side.first > worst->first) worst = &side;
  return TextOf("at (", Circle.Center.X, ", ", Circle.Center.Y, ") with radius ", Circle.Radius, " reaches ",
                worst->first, " beyond the ", worst->second, " of the plate");
}

bool IsInside(const TPlacedBox& Box, const TPlacedBox& Plate, double Slack) {
  return Box.Left >= Plate.Left - Slack && Box.Bottom >= Plate.Bottom - Slack && Box.Right <= Plate.Right + Slack &&
         Box.Top <= Plate.Top + Slack;
}

// What is wrong with one circle beside its neighbours; Used counts the copies of each entry.
std::string CircleFault(const TPlacedCircle& Circle, const TPlacedBox& Plate, double Slack,
                        std::span<const TCircleDemand> Demand, bool NegativeIsNoLimit, std::vector<Int64>& Used) {
  if (!IsFinite(Circle)) return "has a radius or position that is not a finite number";
  if (!(Circle.Radius > 0)) return TextOf("has the radius ", Circle.Radius, ", which is not positive");
  if (Circle.Idx < 0 || Circle.Idx >= Size(Used)) return "is no part of the demand";
  const TCircleDemand& wanted = Demand[Circle.Idx];
  if (!(std::fabs(wanted.Radius - Circle.Radius) <= Slack))
    return TextOf("has radius ", Circle.Radius, ", but the demand says ", wanted.Radius);
  const bool isLimited = wanted.Amount >= 0 || !NegativeIsNoLimit;
  const int most = std::max(wanted.Amount, 0);
  if (++Used[Circle.Idx] > most && isLimited) return TextOf("is copy ", Used[Circle.Idx], " of ", most, " wanted");
  if (!Plate.IsProper()) return "lies on a plate that is none";
  if (!IsInside(BoxOf(Circle), Plate, Slack)) return OutsideText(Circle, Plate);
  return {};
}

// Some pair whose clearance is below Least, always the same one for the same list. Margin, above 0, covers what the
// sides of the boxes lose by rounding.
std::optional<std::pair<int, int>> FirstTooClose(std::span<const TPlacedCircle> Circles, double Least, double Margin) {
  const auto isTooClose = [&](int A, int B) {
    const double reach = Circles[A].Radius + Circles[B].Radius + Least;
    const double dx = Circles[A].Center.X - Circles[B].Center.X;
    const double dy = Circles[A].Center.Y - Circles[B].Center.Y;
    return reach > 0 && dx * dx + dy * dy < reach * reach;
  };
  const std::vector<TPlacedBox> boxes = PlacedBoxesOf(Circles);
  double reach = std::max(Least, 0.0) + Margin;
  // The quick sweep only tells whether there is such a pair; which one is for the other to say.
  if (detail::SweepStrips(boxes, reach, isTooClose) == detail::TSweepEnd::Done) return std::nullopt;
  std::optional<std::pair<int, int>> found;
  detail::SweepNearPairs(boxes, reach, [&](int A, int B) {
    if (isTooClose(A, B)) found = std::minmax(A, B);
    return found.has_value();
  });
  return found;
}

}  // namespace

std::string CheckCircles(std::span<const TPlacedCircle> Layout, const TPlacedBox& Plate, double Gap,
                         std::span<const TCircleDemand> Demand, const TLayoutCheckOptions& Options) {
  if (Layout.empty()) return {};
  if (!std::isfinite(Gap)) return "circles are placed, but the gap is not a finite number";
  const double slack = CheckTolerance(Plate, Options.Tol);
  std::vector<Int64> used(Demand.size());
  for (int i = 0; i < Size(Layout); ++i)
    if (const std::string fault = CircleFault(Layout[i], Plate, slack, Demand, Options.NegativeAmountIsNoLimit, used);
        !fault.empty())
      return TextOf("circle ", i, " of part ", Layout[i].Idx, " ", fault);
  const auto pair = FirstTooClose(Layout, Gap - slack, slack);
  if (!pair) return {};
  const auto [a, b] = *pair;
  const double clearance = Clearance(Layout[a], Layout[b]);
  const std::string who = TextOf("circles ", a, " and ", b);
  return clearance < 0 ? TextOf(who, " overlap by ", -clearance, ", the gap is ", Gap)
                       : TextOf(who, " are ", clearance, " apart, the gap is ", Gap);
}

double Clearance(const TPlacedCircle& A, const TPlacedCircle& B) {
  return std::hypot(A.Center.X - B.Center.X, A.Center.Y - B.Center.Y) - (A.Radius + B.Radius);
}

std::optional<double> LeastClearance(std::span<const TPlacedCircle> Circles) {
  for (std::size_t i = 0; i < Circles.size(); ++i)
    if (!IsFinite(Circles[i]) || Circles[i].Radius < 0)
      throw TArgumentError(TextOf("[Error] LayoutCheck.LeastClearance: circle ", i, " is not a proper circle"));
  if (Circles.size() < 2) return std::nullopt;
  // Nesters list neighbours one after the other, so the least of these is often the answer or close to it.
  double least = Clearance(Circles[0], Circles[1]);
  for (int i = 2; i < Size(Circles); ++i) least = std::min(least, Clearance(Circles[i - 1], Circles[i]));
  const auto visit = [&](int A, int B) {
    least = std::min(least, Clearance(Circles[A], Circles[B]));
    return false;
  };
  const std::vector<TPlacedBox> boxes = PlacedBoxesOf(Circles);
  // Boxes of circles that overlap by some depth overlap by no less along both axes, so a least below 0 is a reach too.
  if (least < 0 || detail::SweepStrips(boxes, least, visit) == detail::TSweepEnd::GaveUp)
    detail::SweepNearPairs(boxes, least, visit);
  return least;
}

std::vector<TPlacedBox> PlacedBoxesOf(std::span<const TPlacedCircle> Circles) {
  std::vector<TPlacedBox> boxes;
  boxes.reserve(Circles.size());
  for (const TPlacedCircle& circle : Circles) boxes.push_back(BoxOf(circle));
  return boxes;
}

}  // namespace platenest
