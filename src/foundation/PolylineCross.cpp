#include <algorithm>
#include <cmath>
#include <optional>

#include "platenest/foundation/Polyline.h"

namespace platenest {

namespace {

constexpr double kZeroLength = 1e-12;  // drawing units

struct TContact {
  double T = 0;  // parameter on the edge of the receiver
  TPoint2D Point;
};

struct TPiece {
  double T = 0;  // parameter of its start on the edge of the receiver
  TVLine2D Line;
};

// What one edge of the receiver meets, in the order of finding.
struct TMeetings {
  std::vector<TContact> Contacts;
  std::vector<TPiece> Pieces;
};

// The edges of a contour with length; a list of two points has one edge.
TVLine2DList EdgesOf(const TVPolyline2D& Contour) {
  const std::span<const TPoint2D> vertices = Contour.Vertices();
  const std::size_t count = vertices.size() < 3 ? std::max<std::size_t>(vertices.size(), 1) - 1 : vertices.size();
  TVLine2DList edges;
  edges.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const TVLine2D edge{vertices[i], vertices[i + 1 == vertices.size() ? 0 : i + 1]};
    if (!(edge.EndPoint - edge.StartPoint).IsZeroLength(kZeroLength)) edges.push_back(edge);
  }
  return edges;
}

bool BoxesApart(const TVLine2D& E, const TVLine2D& F) {
  const auto apart = [](double E0, double E1, double F0, double F1) {
    return std::min(F0, F1) - std::max(E0, E1) > kDefaultTol || std::min(E0, E1) - std::max(F0, F1) > kDefaultTol;
  };
  return apart(E.StartPoint.X, E.EndPoint.X, F.StartPoint.X, F.EndPoint.X) ||
         apart(E.StartPoint.Y, E.EndPoint.Y, F.StartPoint.Y, F.EndPoint.Y);
}

double ParameterOf(const TVLine2D& Edge, const TPoint2D& Point) {
  const TPoint2D direction = Edge.EndPoint - Edge.StartPoint;
  return direction.DotMul(Point - Edge.StartPoint) / direction.DotMul(direction);
}

// Both ends of Edge lie within the tolerance of the infinite line through Base.
bool RunsAlong(const TVLine2D& Base, const TVLine2D& Edge) {
  const TPoint2D direction = Base.EndPoint - Base.StartPoint;
  const double limit = kDefaultTol * direction.Mag();
  return std::fabs(direction.CrossMul(Edge.StartPoint - Base.StartPoint)) <= limit &&
         std::fabs(direction.CrossMul(Edge.EndPoint - Base.StartPoint)) <= limit;
}

// The piece of E that F covers, both on one line; nothing when it is shorter than the tolerance.
std::optional<TPiece> CommonPiece(const TVLine2D& E, const TVLine2D& F) {
  const auto [low, high] = std::minmax({ParameterOf(E, F.StartPoint), ParameterOf(E, F.EndPoint)});
  const double from = std::max(low, 0.0);
  const double to = std::min(high, 1.0);
  if (!((to - from) * (E.EndPoint - E.StartPoint).Mag() > kDefaultTol)) return std::nullopt;
  return TPiece{from, {E.EvalPoint(from), E.EvalPoint(to)}};
}

// Ends of one edge that lie on the other one. True if there is any.
bool AddEndContacts(const TVLine2D& E, const TVLine2D& F, std::vector<TContact>& Contacts) {
  const std::size_t before = Contacts.size();
  double t = 0;
  for (const TPoint2D& end : {F.StartPoint, F.EndPoint})
    if (E.SegmentDistanceTo(end, t) <= kDefaultTol) Contacts.push_back({t, end});
  for (const double end : {0.0, 1.0})
    if (F.SegmentDistanceTo(E.EvalPoint(end), t) <= kDefaultTol) Contacts.push_back({end, E.EvalPoint(end)});
  return Contacts.size() > before;
}

void MeetEdge(const TVLine2D& E, const TVLine2D& F, TMeetings& Meetings) {
  if (BoxesApart(E, F)) return;
  if (RunsAlong(E, F) || RunsAlong(F, E)) {
    if (const auto piece = CommonPiece(E, F)) {
      Meetings.Pieces.push_back(*piece);
      return;
    }
  }
  if (AddEndContacts(E, F, Meetings.Contacts)) return;
  const TPoint2D e = E.EndPoint - E.StartPoint;
  const TPoint2D f = F.EndPoint - F.StartPoint;
  const TPoint2D between = F.StartPoint - E.StartPoint;
  const double cross = e.CrossMul(f);
  if (cross == 0) return;
  const double t = between.CrossMul(f) / cross;
  const double s = between.CrossMul(e) / cross;
  if (t > 0 && t < 1 && s > 0 && s < 1) Meetings.Contacts.push_back({t, E.EvalPoint(t)});
}

bool LiesOnPiece(const TPoint2D& Point, const TVLine2DList& Lines, std::size_t FirstLine) {
  double t = 0;
  for (std::size_t i = FirstLine; i < Lines.size(); ++i)
    if (Lines[i].SegmentDistanceTo(Point, t) <= kDefaultTol) return true;
  return false;
}

}  // namespace

void TVPolyline2D::CrossWith(const TVPolyline2D& Other, TVPoint2DList& Points, TVLine2DList& Lines) const {
  const std::size_t firstLine = Lines.size();
  const TVLine2DList otherEdges = EdgesOf(Other);
  const auto byParameter = [](const auto& A, const auto& B) { return Sign(A.T, B.T); };
  std::vector<TPoint2D> found;  // a contact at a vertex comes from several pairs of edges, one after the other
  for (const TVLine2D& edge : EdgesOf(*this)) {
    TMeetings meetings;
    for (const TVLine2D& other : otherEdges) MeetEdge(edge, other, meetings);
    SortBy(meetings.Contacts, byParameter);
    SortBy(meetings.Pieces, byParameter);
    for (const TContact& contact : meetings.Contacts)
      if (found.empty() || !(found.back() == contact.Point)) found.push_back(contact.Point);
    for (const TPiece& piece : meetings.Pieces) Lines.push_back(piece.Line);
  }
  if (found.size() > 1 && found.front() == found.back()) found.pop_back();
  for (const TPoint2D& point : found)
    if (!LiesOnPiece(point, Lines, firstLine)) Points.push_back(point);
}

}  // namespace platenest
