#include "platenest/foundation/Polyline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

namespace platenest {

namespace {

constexpr double kZeroLength = 1e-12;   // drawing units
constexpr double kStraightSine = 1e-9;  // turns below it come from the rounding of coordinates

// Twice the signed area and the first moments (six times area times centroid), both about Reference.
struct TMoments {
  double Area2 = 0;
  TPoint2D Moment6;
};

TMoments MomentsOf(const TVPolyline2D& Contour, const TPoint2D& Reference) {
  TMoments sum;
  const std::span<const TPoint2D> vertices = Contour.Vertices();
  if (vertices.size() < 3) return sum;
  TPoint2D from = vertices.back() - Reference;
  for (const TPoint2D& vertex : vertices) {
    const TPoint2D to = vertex - Reference;
    const double cross = from.CrossMul(to);
    sum.Area2 += cross;
    sum.Moment6 += (from + to) * cross;
    from = to;
  }
  return sum;
}

int CompareByXY(const TPoint2D& A, const TPoint2D& B) {
  const int byX = Sign(A.X, B.X);
  return byX != 0 ? byX : Sign(A.Y, B.Y);
}

// Appends the part of the hull that lies right of the way through Points, which are sorted along that way.
template <class Iterator>
void AppendHalfHull(Iterator From, Iterator To, std::vector<TPoint2D>& Hull) {
  const std::size_t start = Hull.size();
  for (; From != To; ++From) {
    while (Hull.size() >= start + 2 && TPoint2DUtils::IsLeft(Hull[Hull.size() - 2], Hull.back(), *From) <= 0)
      Hull.pop_back();
    Hull.push_back(*From);
  }
  Hull.pop_back();
}

}  // namespace

void TVPoint2DList::Zoom(double Factor) {
  for (TPoint2D& point : *this) point = point * Factor;
}

TVPolyline2D::TVPolyline2D(const TVRect2D& Box)
    : TVPoint2DList{Box.GetTopLeft(), Box.GetTopRight(), Box.GetBottomRight(), Box.GetBottomLeft()} {}

TVPolyline2D::~TVPolyline2D() = default;

std::unique_ptr<TVPolyline2D> TVPolyline2D::Clone() const {
  return std::make_unique<TVPolyline2D>(*this);
}

double TVPolyline2D::Area() const {
  return empty() ? 0 : MomentsOf(*this, front()).Area2 / 2;
}

TVRect2D TVPolyline2D::BoundBox() const {
  TVRect2D box = TVRect2D::InvalidRect;
  for (const TPoint2D& point : *this) box.ExpandInPlace(TVRect2D(point));
  return box;
}

void TVPolyline2D::Translate(const TPoint2D& Vector) {
  for (TPoint2D& point : *this) point += Vector;
}

void TVPolyline2D::SetIsClockwise(bool Clockwise) {
  const double area = Area();
  if (area != 0 && (area < 0) != Clockwise) Reverse();
}

void TVPolyline2D::Mirror() {
  for (TPoint2D& point : *this) point = -point;
}

std::span<const TPoint2D> TVPolyline2D::Vertices() const {
  return {data(), size() >= 2 && front() == back() ? size() - 1 : size()};
}

bool TVPolyline2D::IsClosed(double Tol) const {
  return size() >= 3 && fEqual(front().X, back().X, Tol) && fEqual(front().Y, back().Y, Tol);
}

bool TVPolyline2D::IsConvexPolygon() const {
  std::vector<TPoint2D> directions;
  const std::span<const TPoint2D> vertices = Vertices();
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const TPoint2D edge = vertices[i + 1 == vertices.size() ? 0 : i + 1] - vertices[i];
    if (!edge.IsZeroLength(kZeroLength)) directions.push_back(edge / edge.Mag());
  }
  bool turnsLeft = false;
  bool turnsRight = false;
  double turned = 0;
  for (std::size_t i = 0; i < directions.size(); ++i) {
    const TPoint2D& next = directions[i + 1 == directions.size() ? 0 : i + 1];
    const double sine = directions[i].CrossMul(next);
    const double cosine = directions[i].DotMul(next);
    if (std::fabs(sine) <= kStraightSine && cosine < 0) return false;
    turnsLeft |= sine > kStraightSine;
    turnsRight |= sine < -kStraightSine;
    turned += std::atan2(sine, cosine);
  }
  return turnsLeft != turnsRight && std::fabs(turned) < 3 * std::numbers::pi;
}

bool TVPolyline2D::IsRect(bool Strict) const {
  const std::span<const TPoint2D> p = Vertices();
  if (p.size() != 4) return false;
  const TPoint2D first = p[1] - p[0];
  const TPoint2D second = p[2] - p[1];
  const double shorter = std::min(first.Mag(), second.Mag());
  if (!(shorter > kDefaultTol) || !(p[0] + p[2] == p[1] + p[3])) return false;
  if (!Strict) return std::fabs(first.DotMul(second)) <= kDefaultTol * shorter;
  const auto isFlat = [](double Delta) { return std::fabs(Delta) <= kDefaultTol; };
  return (isFlat(first.Y) && isFlat(second.X)) || (isFlat(first.X) && isFlat(second.Y));
}

void TVPolyline2D::ConvexHull(TVPolyline2D& Hull) const {
  const std::span<const TPoint2D> vertices = Vertices();
  std::vector<TPoint2D> sorted(vertices.begin(), vertices.end());
  if (sorted.size() < 3) {
    Hull = TVPolyline2D(std::move(sorted));
    return;
  }
  SortBy(sorted, CompareByXY);
  const auto isSame = [](const TPoint2D& A, const TPoint2D& B) { return CompareByXY(A, B) == 0; };
  sorted.erase(std::unique(sorted.begin(), sorted.end(), isSame), sorted.end());
  std::vector<TPoint2D> hull;
  hull.reserve(sorted.size() + 1);
  if (sorted.size() == 1) {
    hull = sorted;
  } else {
    AppendHalfHull(sorted.begin(), sorted.end(), hull);
    AppendHalfHull(sorted.rbegin(), sorted.rend(), hull);
  }
  Hull = TVPolyline2D(std::move(hull));
}

double TVPolyline2D::DistTo(const TPoint2D& Point, TPoint2D& Nearest) const {
  const std::span<const TPoint2D> vertices = Vertices();
  double best = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    const TVLine2D edge{vertices[i], vertices[i + 1 == vertices.size() ? 0 : i + 1]};
    double t = 0;
    const double distance = edge.SegmentDistanceTo(Point, t);
    if (distance >= best) continue;
    best = distance;
    Nearest = edge.EvalPoint(t);
  }
  return best;
}

void TVHPolygon::SetIsClockwise(bool Clockwise) {
  for (std::size_t i = 0; i < size(); ++i) (*this)[i].SetIsClockwise((i == 0) == Clockwise);
}

TPoint2D TVHPolygon::Gravity() const {
  if (empty() || front().empty()) return Origin2D;
  const TPoint2D reference = front().front();
  TMoments sum;
  for (std::size_t i = 0; i < size(); ++i) {
    const TMoments contour = MomentsOf((*this)[i], reference);
    const double sign = (contour.Area2 > 0) == (i == 0) ? 1 : -1;
    sum.Area2 += sign * contour.Area2;
    sum.Moment6 += contour.Moment6 * sign;
  }
  const TVRect2D box = front().BoundBox();
  if (!(sum.Area2 > 1e-12 * box.Area())) return box.Center();  // flat: the quotient would be noise
  return reference + sum.Moment6 / (3 * sum.Area2);
}

}  // namespace platenest
