#include "platenest/NfpAlgorithmSet/KineticCircuits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <numeric>
#include <set>
#include <utility>

#include "AllocationCounter.h"
#include "ForEachSeed.h"
#include "GraphFixtures.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"

namespace platenest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TEdges = std::vector<std::pair<int, int>>;
using TCircuits = std::vector<std::vector<int>>;

struct TProbe : TKineticCircuits {
  using TKineticCircuits::blocked, TKineticCircuits::Stack, TKineticCircuits::startVertex, TKineticCircuits::curGraph;
  using TKineticCircuits::inCycle, TKineticCircuits::EdgeVisited, TKineticCircuits::loopFound;
  using TKineticCircuits::TKineticCircuits, TKineticCircuits::CyclesFrom, TKineticCircuits::FindLoop;
  using TKineticCircuits::TryCalcOutline, TKineticCircuits::FindCycle, TKineticCircuits::DepthLimit;
};

// Clockwise from the top, as the circuits of an outer convolution run.
std::vector<TPoint2D> OnCircle(int Count, double Radius = 100) {
  std::vector<TPoint2D> points;
  for (int i = 0; i < Count; ++i) {
    const double angle = 2 * std::numbers::pi * i / Count;
    points.push_back({Radius * std::sin(angle), Radius * std::cos(angle)});
  }
  return points;
}

TVectorGraph OnCircleGraph(int Count, const TEdges& Edges) {
  return VectorGraphOf(OnCircle(Count), Edges);
}

TCircuits CircuitsOf(const TKineticCircuits& Search) {
  TCircuits circuits;
  for (int i = 0; i < Search.CircuitCount(); ++i) circuits.push_back(Ids(Search.GetCircuit(i)));
  return circuits;
}

TEST(KineticCircuits, TakesASoleRingAsItIs) {
  const TVectorGraph graph = OnCircleGraph(6, {{0, 3}, {3, 1}, {1, 4}, {4, 0}});
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(search), ElementsAre(ElementsAre(0, 3, 1, 4)));
  EXPECT_EQ(search.OuterCycleCounter(), 1);
  EXPECT_EQ(search.LongestSccCount(), 4);
  EXPECT_EQ(search.CycleCount(), 0) << "no walk is needed";

  TPath along;
  search.TransCircuitToPath(0, along, false);
  ASSERT_EQ(along.size(), 4u);
  EXPECT_EQ(along[0], TPathUtils::CreateIntPoint(graph.GetVertex(0), kPathScale));
  EXPECT_EQ(along[1], TPathUtils::CreateIntPoint(graph.GetVertex(3), kPathScale));
  TPath against{{7, 7}};
  search.TransCircuitToPath(0, against);
  std::ranges::reverse(along);
  EXPECT_EQ(against, along);
}

TEST(KineticCircuits, ListsSmallerComponentsAfterTheMainOne) {
  const TVectorGraph graph = OnCircleGraph(8, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 7}, {7, 3}});
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(search), ElementsAre(ElementsAre(3, 4, 5, 6, 7), ElementsAre(0, 1, 2)));
  EXPECT_EQ(search.OuterCycleCounter(), 1);
  EXPECT_EQ(search.TotalOuterCyclePoints(), 5);
  EXPECT_EQ(search.SccAmount(), 2);
}

TEST(KineticCircuits, RaisesWithoutAnyCircuit) {
  for (const TVectorGraph& graph : {TVectorGraph(0), OnCircleGraph(3, {{0, 1}, {1, 2}, {0, 2}})}) {
    TKineticCircuits search(graph, 2);
    try {
      search.DFSLoops(false, ntComplete, 0);
      ADD_FAILURE() << "no error";
    } catch (const TNestError& error) {
      EXPECT_STREQ(error.what(), "Empty Sccs.");
    }
  }
}

TEST(KineticCircuits, APairOfOppositeEdgesCoversItsEndsButIsNoCircuit) {
  const TVectorGraph pair = OnCircleGraph(2, {{0, 1}, {1, 0}});
  TKineticCircuits noCircuit(pair, 2);
  EXPECT_TRUE(noCircuit.DFSLoops(false, ntComplete, 0));
  EXPECT_EQ(noCircuit.CircuitCount(), 0);

  // 0 -> 2 -> 3 -> 0 and 0 <-> 1 -> 3: the walk meets 1 on the pair, comes to 3 from 2 only, and never asks for a loop
  // through 1. Outside a plate the unused edge from 1 to 3 brings it back.
  const TVectorGraph graph = OnCircleGraph(4, {{0, 1}, {0, 2}, {2, 3}, {3, 0}, {1, 0}, {1, 3}});
  TKineticCircuits inside(graph, 2);
  EXPECT_TRUE(inside.DFSLoops(true, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(inside), ElementsAre(ElementsAre(0, 2, 3)));
  TKineticCircuits outside(graph, 2);
  EXPECT_TRUE(outside.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(outside), ElementsAre(ElementsAre(0, 2, 3), ElementsAre(1, 3, 0)));
  EXPECT_FALSE(outside.IsSpecCycle(0));
  EXPECT_TRUE(outside.IsSpecCycle(1));
}

TEST(KineticCircuits, BoundsTheFirstWalkByTheSizeOfTheComponent) {
  const std::pair<int, int> limits[] = {{1, 35},     {1000, 35},  {1001, 35},  {2000, 70},
                                        {4499, 157}, {4500, 152}, {20000, 197}};
  for (const auto& [n, limit] : limits) EXPECT_EQ(TProbe::DepthLimit(n), limit) << n;
}

// One circuit closes at 3 on the first way into it, another beyond it, and one more when the walk comes to 3 again.
//   0 -> 1 -> 2 -> 3 -> 4 -> 0, 1 -> 3, 3 -> 0, 2 -> 1
class CircuitWalk : public testing::Test {
 protected:
  CircuitWalk() { FSearch.curGraph = FGraph.CloneAdjcent(); }

  int Masked(int Limit, int Count) {
    FSearch.Stack.clear();
    FSearch.blocked.Clear();
    return FSearch.CyclesFrom(0, Limit, FMask, Count);
  }

  const TVectorGraph FGraph = OnCircleGraph(5, {{0, 1}, {1, 3}, {1, 2}, {2, 3}, {2, 1}, {3, 4}, {3, 0}, {4, 0}});
  TProbe FSearch{FGraph, 2};
  TBoolArray FMask{5};
};

TEST_F(CircuitWalk, MeetsCircuitsOverEveryWayIntoAVertex) {
  EXPECT_EQ(FSearch.CyclesFrom(0, 9), 3);
  EXPECT_THAT(CircuitsOf(FSearch),
              ElementsAre(ElementsAre(0, 1, 2, 3), ElementsAre(0, 1, 2, 3, 4), ElementsAre(0, 1, 3)));
  EXPECT_THAT(FSearch.EdgeVisited[1], ElementsAre(2, 3));
  EXPECT_THAT(FSearch.EdgeVisited[2], ElementsAre(1, 3)) << "the pair 1, 2 as well";
  EXPECT_TRUE(FSearch.inCycle[4]);
}

TEST_F(CircuitWalk, StopsAtTheLimit) {
  EXPECT_EQ(FSearch.CyclesFrom(0, 2), 2);
  EXPECT_EQ(FSearch.CircuitCount(), 2);
}

TEST_F(CircuitWalk, KeepsToTheMaskAndAsksForALongCircuit) {
  for (int id = 0; id < 4; ++id) FMask.Set(id);
  EXPECT_EQ(Masked(9, 5), 2);
  EXPECT_FALSE(FSearch.inCycle[4]);
  EXPECT_THAT(FSearch.EdgeVisited[0], IsEmpty());
  FMask.Set(4);
  EXPECT_EQ(Masked(1, 5), 1);
  EXPECT_EQ(Masked(1, 10), 2) << "more than 4 of 10";
  EXPECT_EQ(Masked(1, 14), 3) << "more than 5 of 14, which there is not";
}

TEST_F(CircuitWalk, FindsALoopAndACircuitOverAnEdge) {
  FSearch.startVertex = 4;
  // Nothing is in hand yet, so no vertex may be entered but the first.
  EXPECT_THAT(FSearch.FindLoop(4), IsEmpty());
  EXPECT_FALSE(FSearch.loopFound);
  EXPECT_THAT(FSearch.DFSLoops(true, ntComplete, 0), true);
  const int before = FSearch.CircuitCount();
  FSearch.curGraph = FGraph.CloneAdjcent();
  FSearch.startVertex = 4;
  EXPECT_THAT(FSearch.FindLoop(4), ElementsAre(4, 0, 1, 2, 3));
  FSearch.FindCycle(1, 3);
  EXPECT_TRUE(FSearch.loopFound);
  EXPECT_THAT(FSearch.GetCircuit(before), ElementsAre(1, 3, 0));
  FSearch.FindCycle(1, 2);
  EXPECT_FALSE(FSearch.loopFound) << "the pair of opposite edges is met first";
  EXPECT_EQ(FSearch.CircuitCount(), before + 1);
}

TEST(KineticCircuits, WalksTakeNoMemoryOnceWarm) {
  std::mt19937 random(3);
  TVectorGraph graph = OnCircleGraph(500, {});
  for (int i = 0; i < 500; ++i) graph.AddEdge(i, (i + 1) % 500);
  for (int i = 0; i < 1500; ++i) graph.AddEdge(static_cast<int>(random() % 500), static_cast<int>(random() % 500));
  TProbe search(graph, 2);
  search.DFSLoops(true, ntComplete, 0);
  search.curGraph = graph.CloneAdjcent();
  const auto walkAll = [&] {
    for (search.startVertex = 0; search.startVertex < 500; ++search.startVertex) search.FindLoop(search.startVertex);
  };
  walkAll();
  const TAllocationCounter counter;
  walkAll();
  EXPECT_EQ(counter.Count(), 0);
}

// Random graphs without opposite edges, some of them in several components.
TVectorGraph RandomVectorGraph(std::mt19937& Random) {
  const int count = 3 + static_cast<int>(Random() % 57);
  const int parts = 1 + static_cast<int>(Random() % 3);
  TVectorGraph graph = OnCircleGraph(count, {});
  const int edges = count + static_cast<int>(Random() % static_cast<unsigned>(2 * count));
  for (int i = 0; i < edges; ++i) {
    const int start = static_cast<int>(Random() % static_cast<unsigned>(count));
    const int dest = static_cast<int>(Random() % static_cast<unsigned>(count));
    if (start % parts == dest % parts && !graph.HasEdge(dest, start)) graph.AddEdge(start, dest);
  }
  return graph;
}

void CheckCircuit(const TVectorGraph& Graph, std::span<const int> Circuit) {
  ASSERT_GE(Circuit.size(), 3u);
  ASSERT_EQ(std::set<int>(Circuit.begin(), Circuit.end()).size(), Circuit.size()) << "a vertex comes twice";
  for (std::size_t i = 0; i < Circuit.size(); ++i)
    ASSERT_TRUE(Graph.HasEdge(Circuit[i], Circuit[(i + 1) % Circuit.size()]));
}

TEST(KineticCircuits, CoverEveryVertexThatIsOnACircuit) {
  ForEachSeed(600, [](unsigned seed) {
    std::mt19937 random(seed);
    const TVectorGraph graph = RandomVectorGraph(random);
    const TIdGraph ids = graph.CloneAdjcent();
    TTarjanComponents components(ids, 2);
    const TVertexIdLists& lists = components.GetStrongConnectedCompnents();
    if (lists.empty()) return;
    TKineticCircuits search(graph, 2);
    ASSERT_TRUE(search.DFSLoops(seed % 2 == 0, ntComplete, static_cast<int>(seed % 5)));
    std::set<int> covered;
    for (int i = 0; i < search.CircuitCount(); ++i) {
      const std::span<const int> circuit = search.GetCircuit(i);
      CheckCircuit(graph, circuit);
      covered.insert(circuit.begin(), circuit.end());
    }
    for (int i = 0; i < lists.Count(); ++i)
      for (const int id : lists[i]) ASSERT_TRUE(covered.count(id)) << "component " << i << ", vertex " << id;
    EXPECT_EQ(search.LongestSccCount(), Size(lists[TTarjanComponents::GetLongestComponent(lists)]));
  });
}

// A ring with ears: way i -> Ring + i -> i + 1 beside the edge i -> i + 1, which the first walk takes.
TVectorGraph EaredRing(int Ring, int Ears) {
  TVectorGraph graph = OnCircleGraph(Ring + Ears, {});
  for (int i = 0; i < Ears; ++i) {
    graph.AddEdge(i, Ring + i);
    graph.AddEdge(Ring + i, i + 1);
  }
  for (int i = 0; i < Ring; ++i) graph.AddEdge(i, (i + 1) % Ring);
  return graph;
}

TEST(KineticCircuits, LeavesTheRestToSpecialCyclesAfter68Loops) {
  const TVectorGraph graph = EaredRing(100, 80);
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(true, ntComplete, 0));
  EXPECT_EQ(search.CircuitCount(), 1 + 80);
  for (int i = 0; i <= 80; ++i) EXPECT_EQ(search.IsSpecCycle(i), i > 68) << i;
  EXPECT_EQ(search.TotalOuterCyclePoints(), 100 + 80 * 101);
}

// Two giant rings of 2500 and 2000 vertices among small ones, the shorter one as far across as told.
int MainComponentAmongGiants(double Radius, int SmallRings, int Vertices) {
  std::vector<TPoint2D> points = OnCircle(2500, 100);
  for (const TPoint2D& point : OnCircle(2000, Radius)) points.push_back(point);
  points.resize(static_cast<std::size_t>(Vertices));
  TVectorGraph graph = VectorGraphOf(points, {});
  int first = 0;
  const auto addRing = [&](int length) {
    for (int i = 0; i < length; ++i) graph.AddEdge(first + i, first + (i + 1) % length);
    first += length;
  };
  addRing(2500);
  addRing(2000);
  for (int i = 0; i < SmallRings; ++i) addRing(3);
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_EQ(Size(search.GetCircuit(0)), search.LongestSccCount());
  return search.LongestSccCount();
}

TEST(KineticCircuits, PrefersTheWiderOfTwoGiantsInALargeGraphOfManyComponents) {
  EXPECT_EQ(MainComponentAmongGiants(101, 80, 66667), 2000);
  EXPECT_EQ(MainComponentAmongGiants(99, 80, 66667), 2500);
  EXPECT_EQ(MainComponentAmongGiants(101, 79, 66667), 2500);
  EXPECT_EQ(MainComponentAmongGiants(101, 80, 66666), 2500);
}

// Petals 0 -> a -> b -> c -> 0, each with a short cut from a to c that the loops leave out.
TEST(KineticCircuits, EndsAfter260SpecialCycles) {
  constexpr int petals = 400;
  TVectorGraph graph = OnCircleGraph(1 + 3 * petals, {});
  for (int a = 1; a < 1 + 3 * petals; a += 3)
    for (const auto& [start, dest] : TEdges{{0, a}, {a, a + 2}, {a, a + 1}, {a + 1, a + 2}, {a + 2, 0}})
      graph.AddEdge(start, dest);
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(true, ntComplete, 0));
  int special = 0;
  for (int i = 0; i < search.CircuitCount(); ++i) special += search.IsSpecCycle(i) ? 1 : 0;
  EXPECT_EQ(special, 260);
}

TEST(KineticCircuits, GivesUpOnTooManyPoints) {
  // Loops of 1001: inside a plate the circuits of the first walk do not count, so it takes 45 to pass 45000.
  const TVectorGraph graph = EaredRing(1000, 60);
  TKineticCircuits loops(graph, 2);
  EXPECT_FALSE(loops.DFSLoops(true, ntComplete, 0));
  EXPECT_EQ(loops.CircuitCount(), 1 + 45);
  EXPECT_EQ(loops.OuterCycleCounter(), 1 + 45) << "counted although the search was broken off";

  // Loops of 401: 68 of them and 82 special cycles pass 60000.
  const TVectorGraph more = EaredRing(400, 390);
  TKineticCircuits special(more, 2);
  EXPECT_FALSE(special.DFSLoops(true, ntComplete, 0));
  EXPECT_EQ(special.CircuitCount(), 1 + 68 + 82);

  // Loops of 10001: the fifth is dropped, yet its points count and pass 45000.
  const TVectorGraph big = EaredRing(10000, 60);
  TKineticCircuits bigLoops(big, 2);
  EXPECT_FALSE(bigLoops.DFSLoops(true, ntComplete, 0));
  EXPECT_EQ(bigLoops.CircuitCount(), 1 + 4);
}

// Every Step-th point of a circle in turn, Count vertices that go round Step times; further vertices without edges
// before and after them.
TVectorGraph StarPolygon(int Count, int Step, int Before = 0, int After = 0, double Radius = 100) {
  const TPoint2D lonely{7 * Radius, 7 * Radius};
  std::vector<TPoint2D> points(static_cast<std::size_t>(Before), lonely);
  for (const TPoint2D& point : OnCircle(Count, Radius)) points.push_back(point);
  points.resize(points.size() + static_cast<std::size_t>(After), lonely);
  TVectorGraph graph = VectorGraphOf(points, {});
  for (int i = 0; i < Count; ++i) graph.AddEdge(Before + i, Before + (i + Step) % Count);
  return graph;
}

bool HasOutline(const TVectorGraph& Graph, TVPolyline2D* Outline = nullptr) {
  std::vector<int> component;
  for (int id = 0; id <= Graph.MaxVertexId(); ++id)
    if (!Graph.Successors(id).empty()) component.push_back(id);
  TProbe search(Graph, 2);
  const bool made = search.TryCalcOutline(Graph.Construct(component));
  EXPECT_EQ(made, !search.SccOutline().empty());
  if (Outline != nullptr) *Outline = search.SccOutline();
  return made;
}

TEST(CircuitOutline, IsTheBoundaryCounterClockwise) {
  for (const int step : {2, 3}) {
    TVPolyline2D outline;
    ASSERT_TRUE(HasOutline(StarPolygon(7, step, 9), &outline));
    EXPECT_EQ(outline.Count(), 14) << "tips and the outermost crossings";
    const double inner = 100 * std::cos(std::numbers::pi * step / 7) / std::cos(std::numbers::pi * (step - 1) / 7);
    EXPECT_NEAR(outline.Area(), 7 * 100 * inner * std::sin(std::numbers::pi / 7), 1e-3);
  }
}

TEST(CircuitOutline, NeedsAsManyCrossingsAsVerticesAndAThirdOfTheGraph) {
  EXPECT_FALSE(HasOutline(StarPolygon(5, 1))) << "no crossing";
  EXPECT_FALSE(HasOutline(VectorGraphOf({{0, 0}, {4, 3}, {4, 0}, {0, 3}}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}})))
      << "one crossing, four vertices";
  EXPECT_TRUE(HasOutline(StarPolygon(5, 2, 9, 12))) << "5 crossings, 0.32 * 17 rounds to 5";
  EXPECT_FALSE(HasOutline(StarPolygon(5, 2, 0, 13))) << "0.32 * 18 rounds to 6";
}

// How far apart the arms of a pentagram end up in height, whose level edge from the left arm to the right one rises by
// Rise; upside down that edge runs from right to left.
double RiseOfArms(double Rise, bool UpsideDown) {
  constexpr int leftArm = 4;
  constexpr int rightArm = 1;
  std::vector<TPoint2D> points = OnCircle(5, 10);
  points[rightArm].Y = points[leftArm].Y + Rise;
  if (UpsideDown)
    for (TPoint2D& point : points) point = -point;
  TVPolyline2D outline;
  EXPECT_TRUE(HasOutline(VectorGraphOf(points, {{0, 2}, {2, 4}, {4, 1}, {1, 3}, {3, 0}}), &outline));
  const auto byX = [](const TPoint2D& a, const TPoint2D& b) { return a.X < b.X; };
  const auto [left, right] = std::ranges::minmax_element(outline, byX);
  return right->Y - left->Y;
}

TEST(CircuitOutline, LevelsEdgesThatRiseByNextToNothing) {
  for (const bool upsideDown : {false, true}) {
    EXPECT_EQ(RiseOfArms(4e-6, upsideDown), 0);
    EXPECT_NEAR(RiseOfArms(-4e-6, upsideDown), -4e-6, 1e-14) << "falling edges stay";
    EXPECT_NEAR(RiseOfArms(6e-6, upsideDown), 6e-6, 1e-14);
  }
}

// Going round many times, with short cuts home near the end: few circuits, each almost as long as the graph.
TVectorGraph StarWithShortCuts(int Count, int Step, int ShortCuts, double Radius = 100) {
  TVectorGraph graph = StarPolygon(Count, Step, 0, 0, Radius);
  for (int i = 2; i < 2 + ShortCuts; ++i) graph.AddEdge((Count - i) * Step % Count, 0);
  return graph;
}

TEST(CircuitOutline, IsTheLastResortForFewLongCircuitsOfSimilarOutlines) {
  const auto outlineOf = [](bool inside, int similar, int shortCuts) {
    const TVectorGraph graph = StarWithShortCuts(301, 3, shortCuts);
    TKineticCircuits search(graph, 2);
    EXPECT_TRUE(search.DFSLoops(inside, ntComplete, similar));
    EXPECT_EQ(search.OuterCycleCounter(), search.CircuitCount());
    return !search.SccOutline().empty();
  };
  EXPECT_TRUE(outlineOf(false, 3, 13));
  EXPECT_FALSE(outlineOf(false, 2, 13));
  EXPECT_FALSE(outlineOf(true, 3, 13));
  EXPECT_FALSE(outlineOf(false, 3, 10)) << "11 circuits go round less than 12 times";
}

// Far more points than any stop allows. Those for loops come after the trial of an outline, but the hopeless case of
// unlike outlines before it.
TEST(CircuitOutline, SavesADenseGraphOfSimilarOutlinesOnly) {
  constexpr int count = 9001;
  TVectorGraph graph = StarWithShortCuts(count, 3, 150, 20000);
  // An ear that the first walk leaves out and that is no extreme.
  graph.AddVertex({1, 1});
  const int before = 3 * 4000 % count;
  TVectorGraph eared(count + 1);
  for (const TPoint2D& vertex : graph.Vertices()) eared.AddVertex(vertex);
  eared.AddEdge(before, count);
  eared.AddEdge(count, (before + 3) % count);
  for (int id = 0; id < count; ++id)
    for (const int successor : graph.Successors(id)) eared.AddEdge(id, successor);

  TKineticCircuits similar(eared, 2);
  EXPECT_TRUE(similar.DFSLoops(false, ntComplete, 3));
  EXPECT_FALSE(similar.SccOutline().empty());
  TKineticCircuits unlike(eared, 2);
  EXPECT_FALSE(unlike.DFSLoops(false, ntComplete, 2));
  EXPECT_TRUE(unlike.SccOutline().empty());
}

// Thirty thousand edges across one disc would cross some hundred million times.
TEST(CircuitOutline, IsNotTriedWhereItWouldNotEnd) {
  constexpr int count = 5000;
  std::mt19937 random(1);
  TVectorGraph graph = OnCircleGraph(count, {});
  for (int i = 0; i < 6 * count; ++i) graph.AddEdge(i % count, static_cast<int>(random() % count));
  TKineticCircuits search(graph, 2);
  EXPECT_FALSE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_TRUE(search.SccOutline().empty());
  EXPECT_GT(search.CircuitCount(), 5);
  for (int i = 0; i < search.CircuitCount(); ++i) CheckCircuit(graph, search.GetCircuit(i));
}

TEST(KineticCircuits, GuardsTheSearchOfTheMainComponent) {
  const TVectorGraph graph = StarWithShortCuts(301, 3, 13, 1e17);
  TKineticCircuits search(graph, 2);
  try {
    search.DFSLoops(false, ntComplete, 3);
    ADD_FAILURE() << "coordinates that no cell can hold";
  } catch (const TNestError& error) {
    EXPECT_STREQ(error.what(), "Error in Circuit");
  }
}

}  // namespace
}  // namespace platenest
