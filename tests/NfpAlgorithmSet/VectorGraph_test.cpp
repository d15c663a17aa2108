#include "platenest/NfpAlgorithmSet/VectorGraph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "GraphFixtures.h"
#include "platenest/foundation/PolygonBasicAlgo.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {
namespace {

using testing::ElementsAre;

using TEdges = std::vector<std::pair<int, int>>;

TEdges Edges(const TVectorGraph& Graph) {
  TEdges edges;
  for (int id = 0; id <= Graph.MaxVertexId(); ++id)
    for (const int end : Graph.Successors(id)) edges.emplace_back(id, end);
  return edges;
}

int EdgeCount(const TVectorGraph& Graph) {
  return Size(Edges(Graph));
}

// The chips of a closed way through the points.
TChipList Loop(const std::vector<TPoint2D>& Points) {
  TChipList chips;
  for (std::size_t i = 0; i < Points.size(); ++i) chips.push_back({Points[i], Points[(i + 1) % Points.size()]});
  return chips;
}

TChipList operator+(TChipList A, const TChipList& B) {
  A.insert(A.end(), B.begin(), B.end());
  return A;
}

TEST(Chip, ComparesBothEndsWithTheOthersStart) {
  const TChip chip{{1, 1}, {2, 2}}, point{{1, 1}, {1, 1 + 5e-7}};
  EXPECT_FALSE(chip.EqualWith(&chip) || chip.EqualWith(&point)) << "a chip of some length is not equal to itself";
  EXPECT_TRUE(point.EqualWith(&chip)) << "a mere point is, to whatever starts there";
}

TEST(PointCode, RoundsToElevenDecimalsAndCutsTowardZero) {
  const TVectorGraph graph(0);
  EXPECT_EQ(graph.GetPointCode({1.23456789, -0.5}), -5000000226544);
  EXPECT_EQ(graph.GetPointCode({-0.000019, 0}), -1) << "not the floor";
  EXPECT_EQ(graph.GetPointCode({0.000009, -0.000009}), 0) << "nor the nearest";
  EXPECT_EQ(graph.GetPointCode({0.3 - 1e-13, 0}), 30000) << "below the last decimal";
  EXPECT_EQ(graph.GetPointCode({0.3 - 1e-10, 0}), 29999);
  EXPECT_THROW(graph.GetPointCode({std::nan(""), 0}), TRangeError);
  EXPECT_NO_THROW(graph.GetPointCode({4e13, -4e13})) << "codes wrap around";
  // Line cells are ten units wide and shifted by one.
  TVectorGraph ofLines(TVLine2DList{});
  const std::pair<double, Int64> lineCells[] = {{0.0019, 2},   {0.0018, 1},   {0.00185, 1}, {0.00095, 1},
                                                {-0.0018, -1}, {-0.0019, -2}, {-0.0009, -1}};
  for (const auto& [x, cell] : lineCells) {
    EXPECT_EQ(ofLines.GetPointCode2({x, 0}), cell) << x;
    EXPECT_EQ(ofLines.GetPointCode2({0, x}), cell * TVectorGraph::KeyCoef) << x;
  }
}

TEST(VectorGraph, StartsAnewWithTheBoldFactorBetweenItsBounds) {
  TVectorGraph used(0);
  for (const auto& [bold, factor] : {std::pair{10, 100000}, {11, 11}, {99999, 99999}, {100001, 100000}}) {
    const TBoldPointPrecScope scope(bold);
    used.Restart(Loop({{0, 0}, {1, 0}}), bold == 11);
    EXPECT_EQ(used.VertexCount(), 2);
    EXPECT_EQ(EdgeCount(used), bold == 11 ? 0 : 2) << "opposite chips cancel as asked for last";
    EXPECT_EQ(used.PointFactor(), factor);
    EXPECT_EQ(TVectorGraph(0).PointFactor(), factor);
    EXPECT_EQ(TVectorGraph(TVLine2DList{}).PointFactor(), 10000) << "lines ignore it";
  }
}

// A stride of cells further right and one row lower is another point with the same code.
TEST(VectorGraph, FarPointsWithOneCodeAreTwoVertices) {
  const TPoint2D near{0.5, 3.5}, far{0.5 + TVectorGraph::KeyCoef * 1e-5 + 2e-6, 3.5 - 1e-5}, other{7, 7};
  const TVectorGraph graph({{near, other}, {far, other}, {other, near}, {other, far}}, false);
  ASSERT_EQ(graph.GetPointCode(near), graph.GetPointCode(far));
  EXPECT_EQ(Edges(graph), (TEdges{{0, 1}, {1, 0}, {1, 2}, {2, 1}}));
}

TEST(VectorGraph, ChipsCancelOnlyWithDxorAndCountOnce) {
  const TChipList chips = Loop({{0, 0}, {1, 0}});
  EXPECT_EQ(EdgeCount(TVectorGraph(chips, true)), 0);
  EXPECT_EQ(EdgeCount(TVectorGraph(chips, false)), 2);
  for (const bool dxor : {false, true}) {
    EXPECT_EQ(EdgeCount(TVectorGraph({chips[0], chips[0]}, dxor)), 1) << "multiplicity is lost";
    EXPECT_EQ(EdgeCount(TVectorGraph({chips[0], chips[0], chips[1]}, dxor)), dxor ? 0 : 2);
    EXPECT_EQ(EdgeCount(TVectorGraph({chips[0], chips[1], chips[1]}, dxor)), dxor ? 1 : 2);
    const TVectorGraph inOneCell({{{0.000001, 0}, {0.000009, 0}}}, dxor);
    EXPECT_EQ(inOneCell.VertexCount(), 1);
    EXPECT_EQ(EdgeCount(inOneCell), 0);
  }
}

// One line from Vertex, one from P: does P find Vertex?
bool FindsVertex(const TPoint2D& Vertex, const TPoint2D& P) {
  return TVectorGraph(TVLine2DList{{Vertex, {5, 5}}, {P, {9, 9}}}).VertexCount() == 3;
}

TEST(VectorGraph, LinesFindVerticesAcrossCellBorders) {
  const TPoint2D vertex{0.00182, 0.00184};
  const std::pair<TPoint2D, bool> cases[] = {
      {{0.00186, 0.0017}, true},    // next column, 4e-5 away
      {{0.0019, 0.0017}, false},    // next column, 8e-5 away
      {{0.00186, 0.0011}, true},    // next column: only x is compared, so a y far away is accepted
      {{0.00188, 0.00188}, false},  // next column and row, 6e-5 away in x
      {{0.00186, 0.0019}, false},   // near in x only
      {{0.00186, 0.00188}, true},   // next column and row, near in both
      {{0.0011, 0.00188}, true},    // next row: only y is compared
      {{0.0011, 0.00192}, false},
  };
  for (const auto& [x, y] : {std::pair{1, 1}, {1, -1}, {-1, 1}, {-1, -1}}) {
    for (const auto& [p, found] : cases) {
      const TPoint2D first{vertex.X * x, vertex.Y * y}, second{p.X * x, p.Y * y};
      EXPECT_EQ(FindsVertex(first, second), found) << second.X << ' ' << second.Y;
      // The point that comes first makes the vertex; the search goes both ways over the border.
      EXPECT_EQ(FindsVertex(second, first), found) << second.X << ' ' << second.Y;
    }
  }
  const TVectorGraph twice(TVLine2DList{{vertex, {5, 5}}, {{5, 5}, vertex}, {vertex, {5, 5}}, {vertex, vertex}});
  EXPECT_EQ(EdgeCount(twice), 2);
}

TEST(VectorGraph, StraightRunsAndDiamondsCloseUp) {
  const TChipList ring = Loop({{0, 0}, {5, 0}, {10, 0}, {5, 8}});  // 0, 1 and 2 on one line
  const TPoint2D v{0, 0}, a{4, 0}, b{6, 0}, c{10, 0}, top{5, 8}, aside{4, 1};
  const auto left = [](const TChipList& chips) {
    TVectorGraph graph(chips, false);
    graph.EliminateEdges(false);
    return Edges(graph);
  };
  EXPECT_EQ(left(ring), (TEdges{{0, 2}, {2, 3}, {3, 0}}));
  EXPECT_EQ(left({ring[0], ring[1]}), (TEdges{{0, 1}, {1, 2}})) << "the last vertex has no successor";
  EXPECT_EQ(left(Loop({{0, 0}, {5, 0}})), (TEdges{{0, 1}, {1, 0}})) << "there and back";
  EXPECT_EQ(left(Loop({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {3, 5}})), (TEdges{{0, 3}, {3, 4}, {4, 5}, {5, 0}}))
      << "twice";
  EXPECT_EQ(left(ring + TChipList{{v, c}}), (TEdges{{0, 2}, {2, 3}, {3, 0}})) << "the shortcut is there already";
  EXPECT_EQ(left(ring + TChipList{{top, {3, 0}}, {{3, 0}, {5, 0}}}), (TEdges{{0, 2}, {2, 3}, {3, 0}, {3, 4}, {4, 2}}))
      << "1 is on two straight ways";
  EXPECT_EQ(left({{v, a}, {a, c}, {v, b}, {b, c}, {c, top}, {top, v}}), (TEdges{{0, 2}, {2, 4}, {4, 0}}))
      << "diamond, then run";
  EXPECT_EQ(left({{v, aside}, {aside, c}, {v, b}, {b, c}, {c, top}, {top, v}}),
            (TEdges{{0, 1}, {0, 3}, {1, 2}, {2, 4}, {3, 2}, {4, 0}}))
      << "diamond with an area";
}

// Edges From -> To that have a way into From and out of To, the return over a point of their own each.
TVectorGraph WithReturns(const TChipList& Chips) {
  TVectorGraph graph(0);
  double y = -100;
  for (const TChip& chip : Chips) {
    graph.AddChip(chip);
    graph.AddChip({chip.Second(), {0.1 * y, y}});
    graph.AddChip({{0.1 * y, y}, chip.First()});
    y -= 37;
  }
  graph.EliminateEdges(true);
  return graph;
}

bool HasEdge(const TVectorGraph& Graph, const TPoint2D& From, const TPoint2D& To) {
  const auto edges = Edges(Graph);
  return std::ranges::any_of(edges, [&](const auto& edge) {
    return Graph.GetVertex(edge.first) == From && Graph.GetVertex(edge.second) == To;
  });
}

// a ------> b
//      d <------ c      a tenth of a thousandth apart at most
TEST(VectorGraph, OverlapsAreFoundWithinTheToleranceOfALine) {
  for (const double lift : {0.0, 0.00009, -0.00009, 0.00012}) {
    const TPoint2D a{0, 0}, b{10, 0}, c{15, lift}, d{5, lift};
    const TVectorGraph graph = WithReturns({{a, b}, {c, d}});
    const bool oneLine = std::fabs(lift) <= 0.0001;
    EXPECT_EQ(HasEdge(graph, a, d), oneLine) << lift;
    EXPECT_EQ(HasEdge(graph, c, b), oneLine) << lift;
    EXPECT_EQ(HasEdge(graph, a, b), !oneLine) << lift;
    EXPECT_FALSE(HasEdge(graph, b, d) || HasEdge(graph, d, b)) << "the common part cancels";
  }
  // Three units of angle apart is one direction, four is not.
  for (const double angle : {3e-8, 4e-8}) {
    const TPoint2D a{0, 0}, b{1000, 0}, c{1500, 1500 * angle}, d{500, 500 * angle};
    EXPECT_EQ(HasEdge(WithReturns({{a, b}, {c, d}}), a, d), angle == 3e-8);
  }
}

TEST(VectorGraph, ExtremesAreFourteenPerSideAndTheTangentsOfTwoInnerPoints) {
  std::vector<TPoint2D> points;
  for (int i = 0; i < 20; ++i)
    points.push_back({1.0 * i, i == 7 ? 0.1 : 0.004 * i});  // bottom, all but one within 0.09
  for (const TPoint2D& p : {TPoint2D{25, 5}, {25.05, 7}, {25.02, 8}, {12, 8}, {10, 9}, {-3, 4}}) points.push_back(p);
  const TVectorGraph graph(Loop(points), false);
  std::vector<int> scc(points.size());
  std::iota(scc.begin(), scc.end(), 0);
  const TVRect2D box = TVPolyline2D(points).BoundBox();
  EXPECT_TRUE(graph.GetBound(scc).SizeEquals(box, 0));
  TVertexIdList extrema;
  graph.GetExtrema(scc, extrema);
  std::vector<int> expected{0, 1, 2, 3, 4, 5, 6, 8, 9, 10, 11, 12, 13, 14, 24, 20, 21, 22, 25};
  // Seen from a third of the way between 22 and 25, and from two thirds.
  for (const double share : {1 / 3.0, 2 / 3.0}) {
    int right = -1, left = -1;
    TPolygonBasicAlgo::PointTangants(graph.Vertices(), points[22] + (points[25] - points[22]) * share, right, left);
    expected.insert(expected.end(), {right, left});
  }
  EXPECT_THAT(std::vector<int>(extrema.begin(), extrema.end()), testing::ElementsAreArray(expected));
}

}  // namespace
}  // namespace platenest
