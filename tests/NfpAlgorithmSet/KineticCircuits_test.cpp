#include "platenest/NfpAlgorithmSet/KineticCircuits.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "AllocationCounter.h"
#include "ChipCollector.h"
#include "Contours.h"
#include "ForEachSeed.h"
#include "GraphFixtures.h"
#include "PathFixtures.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"
#include "platenest/foundation/Random.h"

namespace platenest {
namespace {

using testing::ElementsAre;

using TEdges = std::vector<std::pair<int, int>>;

struct TProbe : TKineticCircuits {
  using TKineticCircuits::blocked, TKineticCircuits::Stack, TKineticCircuits::curGraph, TKineticCircuits::EdgeVisited;
  using TKineticCircuits::DepthLimit, TKineticCircuits::FindLoop, TKineticCircuits::SpecCycles,
      TKineticCircuits::startVertex;
  using TKineticCircuits::TKineticCircuits, TKineticCircuits::CyclesFrom, TKineticCircuits::TryCalcOutline;
};

// Clockwise from the top, as the circuits of an outer convolution run.
std::vector<TPoint2D> OnCircle(int Count, double Radius = 100) {
  TVPolyline2D circle = test::Circle(Count, Radius);
  for (TPoint2D& point : circle) point = {point.Y, point.X};
  return {circle.begin(), circle.end()};
}

TVectorGraph OnCircleGraph(int Count, const TEdges& Edges) {
  return VectorGraphOf(OnCircle(Count), Edges);
}

TEST(KineticCircuits, ListsSmallerComponentsAfterTheMainOne) {
  const TVectorGraph graph = OnCircleGraph(8, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {3, 4}, {4, 5}, {5, 6}, {6, 7}, {7, 3}});
  TKineticCircuits search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(search), ElementsAre(ElementsAre(3, 4, 5, 6, 7), ElementsAre(0, 1, 2)));
  EXPECT_EQ(search.OuterCycleCounter(), 1);
  EXPECT_EQ(search.TotalOuterCyclePoints(), 5);

  const TVectorGraph ring = OnCircleGraph(6, {{0, 3}, {3, 1}, {1, 4}, {4, 0}});
  TKineticCircuits sole(ring, 2);
  EXPECT_TRUE(sole.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(sole), ElementsAre(ElementsAre(0, 3, 1, 4)));
  EXPECT_EQ(sole.LongestSccCount(), 4);
  EXPECT_EQ(sole.CycleCount(), 0) << "no walk is needed";
}

TEST(KineticCircuits, BoundsTheFirstWalkByTheSizeOfTheComponent) {
  const std::pair<int, int> limits[] = {{1, 35},     {1000, 35},  {1001, 35},  {2000, 70},
                                        {4499, 157}, {4500, 152}, {20000, 197}};
  for (const auto& [n, limit] : limits) EXPECT_EQ(TProbe::DepthLimit(n), limit) << n;
}

// One circuit closes at 3 on the first way into it, another beyond it, and one more when the walk comes to 3 again.
//   0 -> 1 -> 2 -> 3 -> 4 -> 0, 1 -> 3, 3 -> 0, 2 -> 1
TEST(KineticCircuits, WalksMeetCircuitsOverEveryWayIntoAVertex) {
  const TVectorGraph graph = OnCircleGraph(5, {{0, 1}, {1, 3}, {1, 2}, {2, 3}, {2, 1}, {3, 4}, {3, 0}, {4, 0}});
  TProbe search(graph, 2);
  search.curGraph = graph.CloneAdjcent();
  EXPECT_EQ(search.CyclesFrom(0, 2), 2) << "the limit";
  EXPECT_EQ(search.CyclesFrom(0, 9), 3);
  EXPECT_THAT(CircuitsOf(search),
              ElementsAre(ElementsAre(0, 1, 2, 3), ElementsAre(0, 1, 2, 3, 4), ElementsAre(0, 1, 2, 3),
                          ElementsAre(0, 1, 2, 3, 4), ElementsAre(0, 1, 3)));
  EXPECT_THAT(search.EdgeVisited[2], ElementsAre(1, 3)) << "the pair 1, 2 as well";
}

TEST(KineticCircuits, APairOfOppositeEdgesCoversItsEndsButIsNoCircuit) {
  const TVectorGraph pair = OnCircleGraph(2, {{0, 1}, {1, 0}});
  TKineticCircuits noCircuit(pair, 2);
  EXPECT_TRUE(noCircuit.DFSLoops(false, ntComplete, 0) && noCircuit.CircuitCount() == 0);

  // 0 -> 2 -> 3 -> 0 and 0 <-> 1 -> 3: the walk meets 1 on the pair, comes to 3 from 2 only, and never asks for a loop
  // through 1. Outside a plate the unused edge from 1 to 3 brings it back, as a special cycle.
  const TVectorGraph graph = OnCircleGraph(4, {{0, 1}, {0, 2}, {2, 3}, {3, 0}, {1, 0}, {1, 3}});
  TKineticCircuits inside(graph, 2), outside(graph, 2);
  EXPECT_TRUE(inside.DFSLoops(true, ntComplete, 0) && outside.DFSLoops(false, ntComplete, 0));
  EXPECT_THAT(CircuitsOf(inside), ElementsAre(ElementsAre(0, 2, 3)));
  EXPECT_THAT(CircuitsOf(outside), ElementsAre(ElementsAre(0, 2, 3), ElementsAre(1, 3, 0)));
  EXPECT_TRUE(!outside.IsSpecCycle(0) && outside.IsSpecCycle(1));
}

// Random graphs without opposite edges, some of them in several components.
TVectorGraph RandomVectorGraph(std::mt19937& Random) {
  const auto below = [&](int count) { return static_cast<int>(Random() % static_cast<unsigned>(count)); };
  const int count = 3 + below(57), parts = 1 + below(3);
  TVectorGraph graph = OnCircleGraph(count, {});
  for (int i = count + below(2 * count); i > 0; --i) {
    const int start = below(count), dest = below(count);
    if ((start - dest) % parts == 0 && !graph.HasEdge(dest, start)) graph.AddEdge(start, dest);
  }
  return graph;
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
    for (const std::vector<int>& circuit : CircuitsOf(search)) {
      ASSERT_GE(circuit.size(), 3u);
      ASSERT_EQ(std::set<int>(circuit.begin(), circuit.end()).size(), circuit.size()) << "a vertex comes twice";
      for (std::size_t i = 0; i < circuit.size(); ++i)
        ASSERT_TRUE(graph.HasEdge(circuit[i], circuit[(i + 1) % circuit.size()]));
      covered.insert(circuit.begin(), circuit.end());
    }
    for (const std::vector<int>& component : Lists(lists))
      for (const int id : component) ASSERT_TRUE(covered.count(id)) << "vertex " << id;
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

TEST(KineticCircuits, ChipsGraphAndWalksTakeNoMemoryOnceWarm) {
  const TVectorGraph walked = EaredRing(300, 200);
  TProbe search(walked, 2);
  search.DFSLoops(true, ntComplete, 0);
  search.curGraph = walked.CloneAdjcent();
  int found = 0;
  const auto walkAll = [&] {
    for (int& id = search.startVertex = 0; id < 500; ++id) found += search.FindLoop(id).empty() ? 0 : 1;
  };
  const auto allocations = [](const auto& action) {
    action();
    const TAllocationCounter counter;
    action();
    return counter.Count();
  };
  const TRandomScope seed(5);
  const TKMPLoop a = LoopOf(test::Star(60, 100, 0.3)), b = LoopOf(test::Star(45, 60, 0.3));
  TChipList chips;
  TVectorGraph graph(0);
  EXPECT_EQ(allocations([&] { detail::CollectConvolution(a, b, chips); }), 0);
  EXPECT_EQ(allocations([&] { graph.Restart(chips, true); }), 0);
  EXPECT_EQ(allocations(walkAll), 0);
  EXPECT_GT(std::min(Size(chips), graph.VertexCount()), 1000);
  EXPECT_GT(found, 500);
}

// Petals 0 -> a -> b -> c -> 0, each with a short cut from a to c that the loops leave out.
TEST(KineticCircuits, EndsAfter260SpecialCycles) {
  TVectorGraph graph = OnCircleGraph(1201, {});
  for (int a = 1; a < 1201; a += 3)
    for (const auto& [start, dest] : TEdges{{0, a}, {a, a + 2}, {a, a + 1}, {a + 1, a + 2}, {a + 2, 0}})
      graph.AddEdge(start, dest);
  TProbe search(graph, 2);
  EXPECT_TRUE(search.DFSLoops(true, ntComplete, 0));
  EXPECT_EQ(search.SpecCycles.size(), 260U);
}

// Two giant rings of 2500 and 2000 vertices among small ones, the shorter one as far across as told.
TEST(KineticCircuits, PrefersTheWiderOfTwoGiantsInALargeGraphOfManyComponents) {
  for (const auto& [radius, smallRings, vertices] :
       {std::tuple{101, 80, 66667}, std::tuple{99, 80, 66667}, {101, 79, 66667}, {101, 80, 66666}}) {
    std::vector<TPoint2D> points = OnCircle(2500, 100);
    for (const TPoint2D& point : OnCircle(2000, radius)) points.push_back(point);
    points.resize(static_cast<std::size_t>(vertices));
    TVectorGraph graph = VectorGraphOf(points, {});
    AddRing(graph, 0, 2500);
    AddRing(graph, 2500, 2000);
    for (int i = 0; i < smallRings; ++i) AddRing(graph, 4500 + 3 * i, 3);
    TKineticCircuits search(graph, 2);
    search.DFSLoops(false, ntComplete, 0);
    EXPECT_EQ(search.LongestSccCount(), radius > 100 && smallRings == 80 && vertices == 66667 ? 2000 : 2500);
  }
}

TEST(KineticCircuits, GivesUpOnTooManyPoints) {
  for (const auto& [ring, ears, circuits] :
       {std::tuple{1000, 60, 1 + 45},       // inside a plate the first walk does not count: 45 loops of 1001 pass 45000
        std::tuple{400, 390, 1 + 68 + 82},  // 68 loops and 82 special cycles of 401 pass 60000
        std::tuple{10000, 60, 1 + 4}}) {    // the fifth loop of 10001 is dropped, yet its points count and pass 45000
    const TVectorGraph graph = EaredRing(ring, ears);
    TKineticCircuits search(graph, 2);
    EXPECT_FALSE(search.DFSLoops(true, ntComplete, 0));
    EXPECT_EQ(search.CircuitCount(), circuits);
    EXPECT_EQ(search.OuterCycleCounter(), circuits) << "counted although the search was broken off";
    EXPECT_FALSE(search.IsSpecCycle(std::min(68, circuits - 1)));
    EXPECT_EQ(search.IsSpecCycle(std::min(69, circuits - 1)), circuits > 69) << "68 loops at most";
  }
}

// Every Step-th point of a circle in turn, Count vertices that go round Step times; further vertices without edges
// before and after them.
TVectorGraph StarPolygon(int Count, int Step, int Before = 0, int After = 0, double Radius = 100) {
  std::vector<TPoint2D> points = OnCircle(Count, Radius);
  points.insert(points.begin(), static_cast<std::size_t>(Before), {7 * Radius, 7 * Radius});
  points.insert(points.end(), static_cast<std::size_t>(After), {7 * Radius, 7 * Radius});
  TVectorGraph graph = VectorGraphOf(points, {});
  for (int i = 0; i < Count; ++i) graph.AddEdge(Before + i, Before + (i + Step) % Count);
  return graph;
}

TVPolyline2D OutlineOf(const TVectorGraph& Graph) {
  std::vector<int> component;
  for (int id = 0; id <= Graph.MaxVertexId(); ++id)
    if (!Graph.Successors(id).empty()) component.push_back(id);
  TProbe search(Graph, 2);
  const bool made = search.TryCalcOutline(Graph.Construct(component));
  EXPECT_EQ(made, !search.SccOutline().empty());
  return search.SccOutline();
}

TEST(CircuitOutline, IsTheBoundaryCounterClockwise) {
  const TVPolyline2D outline = OutlineOf(StarPolygon(7, 3, 9));
  EXPECT_EQ(outline.Count(), 14) << "tips and the outermost crossings";
  const double inner = 100 * std::cos(std::numbers::pi * 3 / 7) / std::cos(std::numbers::pi * 2 / 7);
  EXPECT_NEAR(outline.Area(), 7 * 100 * inner * std::sin(std::numbers::pi / 7), 1e-3);
}

TEST(CircuitOutline, NeedsAsManyCrossingsAsVerticesAndAThirdOfTheGraph) {
  EXPECT_TRUE(OutlineOf(StarPolygon(5, 1)).empty()) << "no crossing";
  EXPECT_TRUE(OutlineOf(VectorGraphOf({{0, 0}, {4, 3}, {4, 0}, {0, 3}}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}})).empty())
      << "one crossing, four vertices";
  EXPECT_FALSE(OutlineOf(StarPolygon(5, 2, 9, 12)).empty()) << "5 crossings, 0.32 * 17 rounds to 5";
  EXPECT_TRUE(OutlineOf(StarPolygon(5, 2, 0, 13)).empty()) << "0.32 * 18 rounds to 6";
}

// Thirty thousand edges across one disc would cross some hundred million times.
TEST(CircuitOutline, IsNotTriedWhereItWouldNotEnd) {
  std::mt19937 random(1);
  TVectorGraph graph = OnCircleGraph(5000, {});
  for (int i = 0; i < 30'000; ++i) graph.AddEdge(i % 5000, static_cast<int>(random() % 5000));
  TKineticCircuits search(graph, 2);
  EXPECT_FALSE(search.DFSLoops(false, ntComplete, 0));
  EXPECT_TRUE(search.SccOutline().empty() && search.CircuitCount() > 5);
}

// Going round many times, with short cuts home near the end: few circuits, each almost as long as the graph.
TVectorGraph StarWithShortCuts(int Count, int Step, int ShortCuts, double Radius = 100) {
  TVectorGraph graph = StarPolygon(Count, Step, 0, 0, Radius);
  for (int i = 2; i < 2 + ShortCuts; ++i) graph.AddEdge((Count - i) * Step % Count, 0);
  return graph;
}

TEST(CircuitOutline, IsTheLastResortForFewLongCircuitsOfSimilarOutlines) {
  const auto isTaken = [](bool inside, int similar, int shortCuts) {
    const TVectorGraph graph = StarWithShortCuts(301, 3, shortCuts);
    TKineticCircuits search(graph, 2);
    EXPECT_TRUE(search.DFSLoops(inside, ntComplete, similar));
    return !search.SccOutline().empty();
  };
  EXPECT_TRUE(isTaken(false, 3, 13));
  EXPECT_FALSE(isTaken(false, 2, 13));
  EXPECT_FALSE(isTaken(true, 3, 13));
  EXPECT_FALSE(isTaken(false, 3, 10)) << "11 circuits go round less than 12 times";
}

TEST(KineticCircuits, ErrorsHaveATextForTheirPlace) {
  const std::pair<TVectorGraph, const char*> cases[] = {
      {TVectorGraph(0), "Empty Sccs."},
      {OnCircleGraph(3, {{0, 1}, {1, 2}, {0, 2}}), "Empty Sccs."},
      {StarWithShortCuts(301, 3, 13, 1e17), "Error in Circuit"}};  // coordinates that no cell can hold
  for (const auto& row : cases)
    EXPECT_THAT([&] { TKineticCircuits(row.first, 2).DFSLoops(false, ntComplete, 3); },
                testing::ThrowsMessage<TNestError>(row.second));
}

}  // namespace
}  // namespace platenest
