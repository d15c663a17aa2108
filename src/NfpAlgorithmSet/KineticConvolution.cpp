#include "platenest/NfpAlgorithmSet/KineticConvolution.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <utility>

#include "ChipCollector.h"
#include "ConvexPair.h"
#include "KineticConvolutionRules.h"
#include "SpareBuffers.h"
#include "StandIns.h"
#include "TrailUnion.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/foundation/Errors.h"
#include "platenest/foundation/Host.h"
#include "platenest/foundation/Rounding.h"

namespace platenest {

using namespace detail;

namespace {

const TChipBudget& BudgetOf(TNFPType Required) {
  const auto row = std::ranges::find(kChipBudgets, Required, &TChipBudget::Required);
  return row == std::end(kChipBudgets) ? kChipBudgetOtherwise : *row;
}

bool UsesReducedOutlines(TNFPType Required) {
  return Required == ntConcaveHull || Required == ntComplete;
}

Int64 Product(int A, int B) {
  return Int64{A} * B;
}

Int64 EdgeProduct(const TKMPLoop& A, const TKMPLoop& B) {
  return Product(A.FCount(), B.FCount());
}

double EdgesPerDirection(const TKMPLoop& Loop) {
  return static_cast<double>(Loop.FCount()) / Loop.Count();
}

bool HasParallels(const TKMPLoop& Loop) {
  return Loop.Count() < Loop.FCount();
}

// The graph of a small convolution, which the thread keeps for the next one, since its memory costs more than itself.
class TSpareGraph {
 public:
  static TVectorGraph Take() {
    if (!FSpare) return TVectorGraph(0);
    TVectorGraph graph = std::move(*FSpare);
    FSpare.reset();
    return graph;
  }
  static void Give(TVectorGraph&& Graph) {
    if (Graph.VertexCount() <= kMostVertices) FSpare.emplace(std::move(Graph));
  }

 private:
  static constexpr int kMostVertices = 4000;

  inline static thread_local std::optional<TVectorGraph> FSpare;
};

template <std::size_t N>
int LevelOf(const TLevelRow (&Rows)[N], Int64 Size) {
  for (const TLevelRow& row : Rows)
    if (Size > row.Above) return row.Level;
  return Rows[N - 1].Level;
}

int LevelOf(const TLevelBySize& Rule, const TKMPLoop& Loop) {
  return Round<int>(Loop.FCount() / Rule.EdgesPerLevel + Rule.Base);
}

// The share of its edges that a loop has gained or lost.
double ChangeOf(const TKMPLoop& Reduced, const TKMPLoop& Loop) {
  return static_cast<double>(std::abs(Reduced.FCount() - Loop.FCount())) / Loop.FCount();
}

}  // namespace

TKineticConvolution::TKineticConvolution(TNFPType required, bool innerCheck)
    : _required(required),
      _innerCheck(innerCheck),
      FMaxConvolutionEdges(BudgetOf(required).Outer),
      FInnerConvolutionEdges(BudgetOf(required).Inner),
      FChips(TSpareBuffers<TChip>::Take(0)) {}

TKineticConvolution::~TKineticConvolution() {
  TSpareBuffers<TChip>::Give(std::move(FChips));
}

TVectorGraph TKineticConvolution::Convolve(const TKMPLoop& staticLoop, const TKMPLoop& dynamicLoop, bool putInside,
                                           int& level) {
  _stLoop = &staticLoop;
  _dyLoop = &dynamicLoop;
  FChips.reserve(kChipsPerDirection * static_cast<std::size_t>(staticLoop.Count() + dynamicLoop.Count()));
  level = putInside ? LayInnerChips(staticLoop, dynamicLoop) : LayOuterChips(staticLoop, dynamicLoop);
  const bool dxor = putInside && HasParallels(staticLoop) && HasParallels(dynamicLoop);
  TVectorGraph graph = TSpareGraph::Take();
  graph.Restart(FChips, dxor);
  graph.EliminateEdges(dxor || (!putInside && IsPairOfBoxLikes(staticLoop, dynamicLoop)));
  return graph;
}

bool TKineticConvolution::IsPairOfBoxLikes(const TKMPLoop& S, const TKMPLoop& D) const {
  return _selfNfp >= kBoxLikeSimilarFrom && S.Count() == kBoxLikeDirections && D.Count() == kBoxLikeDirections &&
         D.FCount() >= kBoxLikeDynamicEdgesFrom && D.FCount() <= kBoxLikeDynamicEdgesUpTo &&
         EdgesPerDirection(D) < kBoxLikeEdgesPerDirectionBelow;
}

int TKineticConvolution::LayInnerChips(const TKMPLoop& S, const TKMPLoop& D) {
  TStandIns standIns(true);
  if (UsesReducedOutlines(_required) && D.FCount() > kInnerDynamicEdgesAbove) {
    const TKMPLoop& dynamic = ReducedInner(D, standIns);
    CollectConvolution(S, dynamic, FChips);
    if (Size(FChips) <= FInnerConvolutionEdges) return kLevelReduced;
    const int level = Round<int>(S.FCount() / kInnerStaticEdgesPerLevel);
    CollectConvolution(S.Area() < 0 ? standIns.Cavity(S, kInnerCavityLevel) : standIns.Reduced(S, level, ntConcaveHull),
                       dynamic, FChips);
    return kLevelReduced;
  }
  CollectConvolution(S, D, FChips);
  if (Size(FChips) <= FInnerConvolutionEdges || _required == ntExact) return kLevelFull;
  const TKMPLoop& dynamic = D.Area() > 0 ? standIns.Hull(D) : standIns.Cavity(D, kInnerCavityLevel);
  if (_required != ntConvexHull)
    CollectConvolution(S, dynamic, FChips);
  else
    CollectConvolution(S.Area() < 0 ? standIns.Cavity(S, kInnerCavityLevel) : standIns.Hull(S), dynamic, FChips);
  return kLevelReduced;
}

const TKMPLoop& TKineticConvolution::ReducedInner(const TKMPLoop& D, TStandIns& StandIns) const {
  if (!(D.Area() > 0)) {
    const int level = Round<int>(D.FCount() / kInnerDynamicEdgesPerLevel);
    return StandIns.Cavity(D, std::min(level, kInnerDynamicMostLevel));
  }
  if (D.FCount() > kInnerHullEdgesAbove) return StandIns.Hull(D);
  return StandIns.Reduced(D, LevelOf(kInnerDynamicLevels, D.FCount()), _required);
}

int TKineticConvolution::LayOuterChips(const TKMPLoop& S, const TKMPLoop& D) {
  CollectConvolution(S, D, FChips);
  const Int64 product = EdgeProduct(S, D);
  const bool modest = product <= kModestProduct || Product(S.Count(), D.Count()) <= kModestDirectionsProduct;
  if (_required == ntExact || (Size(FChips) <= FMaxConvolutionEdges && modest)) return kLevelFailed;
  TStandIns standIns(false);
  if (product > kHugeProductAbove && _required == ntComplete) {
    const bool asHull = product > kHugeHullProductAbove;
    CollectConvolution(S, asHull ? standIns.Hull(D) : standIns.Reduced(D, kHugeLevel, ntConcaveHull), FChips);
    return asHull ? kLevelHull : kLevelReduced;
  }
  if (_required == ntConvexHull) {
    CollectConvolution(standIns.Hull(S), D, FChips);
    return kLevelHull;
  }
  if (_required < ntConcaveHull || Size(FChips) <= MIN_CONVOLUTION_EDGES) return kLevelFailed;
  if (S.FCount() > kBothLargeEdgesAbove && D.FCount() > kBothLargeEdgesAbove)
    LayBothReduced(S, D, standIns);
  else
    LayLargerReduced(S, D, standIns);
  return kLevelReduced;
}

void TKineticConvolution::LayBothReduced(const TKMPLoop& S, const TKMPLoop& D, TStandIns& StandIns) {
  const bool concave = _required == ntConcaveHull;
  int level = LevelOf(kBothLargeLevels, EdgeProduct(S, D));
  if (concave && _selfNfp == kBothLargeTwins) ++level;
  const double unlikeness = static_cast<double>(std::abs(D.Count() - S.Count())) / S.Count();
  const int extra = unlikeness >= kBothLargeUnlikeFrom ? kBothLargeUnlikeExtra
                    : concave                          ? kBothLargeConcaveExtra
                                                       : kBothLargeOtherExtra;
  const TKMPLoop& reduced = StandIns.Reduced(S, level, ntConcaveHull);
  CollectConvolution(reduced, StandIns.Reduced(D, level + extra, ntConcaveHull), FChips);
}

// The dynamic loop and the static one are not treated alike: their second tries and the last level differ.
void TKineticConvolution::LayLargerReduced(const TKMPLoop& S, const TKMPLoop& D, TStandIns& StandIns) {
  const bool concave = _required == ntConcaveHull;
  const Int64 product = EdgeProduct(S, D);
  int level = LevelOf(kOneLargeLevels, product);
  if (concave && product > kOneLargeSimilarProductAbove && _selfNfp > kOneLargeSimilarAbove) ++level;
  if (S.FCount() == D.FCount()) {
    const TKMPLoop& dynamic = StandIns.Reduced(D, level, ntConcaveHull);
    const bool both = concave || level == kEqualBothFromLevel;
    CollectConvolution(both ? StandIns.Reduced(S, level, ntConcaveHull) : S, dynamic, FChips);
    return;
  }
  const bool dynamicIsLarger = D.FCount() > S.FCount();
  const TKMPLoop& smaller = dynamicIsLarger ? S : D;
  const int hardly = dynamicIsLarger ? kDynamicHardlyShrunkLevel : level + kStaticHardlyShrunkExtra;
  const int little = dynamicIsLarger ? kDynamicLittleShrunkLevel : level + kStaticLittleShrunkExtra;
  const TKMPLoop& larger = ReducedLarger(dynamicIsLarger ? D : S, smaller, {level, hardly, little}, StandIns);
  const TKMPLoop* other = &smaller;
  if (EdgeProduct(larger, smaller) > kModestProduct) {
    if (smaller.FCount() > kOtherEdgesAbove) ++level;
    other = &StandIns.Reduced(smaller, dynamicIsLarger ? level : level + kOtherDynamicExtra, ntConcaveHull);
  }
  CollectConvolution(dynamicIsLarger ? *other : larger, dynamicIsLarger ? larger : *other, FChips);
}

const TKMPLoop& TKineticConvolution::ReducedLarger(const TKMPLoop& Larger, const TKMPLoop& Smaller,
                                                   const TTryLevels& Levels, TStandIns& StandIns) const {
  const TKMPLoop& reduced = StandIns.Reduced(Larger, Levels.First, ntConcaveHull);
  const double change = ChangeOf(reduced, Larger);
  if (change >= kShrunkFrom) return reduced;
  const bool sameEdges = Larger.FCount() - Smaller.FCount() < kSameEdgesBelow;
  if (_required == ntConcaveHull && sameEdges && change < kNotShrunkBelow) return StandIns.Hull(Larger);
  return StandIns.Reduced(Larger, change < kHardlyShrunkBelow ? Levels.HardlyShrunk : Levels.LittleShrunk,
                          ntConcaveHull);
}

// One convolution: the first try, and what follows where it does not do.
class TKineticConvolution::TRun {
 public:
  TRun(TKineticConvolution& Owner, const TKMPLoop& D, const TKMPLoop& S, bool PutInside, TPaths& Paths)
      : FOwner(Owner),
        FS(S),
        FD(D),
        FRequired(Owner._required),
        FInside(PutInside),
        FPaths(Paths),
        FStandIns(FInside) {}

  int Level();

 private:
  // The loops that are convolved, and the least reduction level of what comes of them.
  struct TLoops {
    const TKMPLoop* Static;
    const TKMPLoop* Dynamic;
    int Level;
  };
  struct TSearch {
    explicit TSearch(TVectorGraph AGraph) : Graph(std::move(AGraph)), Circuits(Graph, kSmallestComponent) {}
    ~TSearch() { TSpareGraph::Give(std::move(Graph)); }
    TSearch(const TSearch&) = delete;
    TSearch& operator=(const TSearch&) = delete;

    TVectorGraph Graph;
    TKineticCircuits Circuits;
  };
  static constexpr int kSmallestComponent = 2;

  TLoops Full() const { return {&FS, &FD, kLevelFailed}; }
  bool TakeConvexPair();
  bool Search(const TLoops& Loops, TNFPType Required, int Similar);
  bool Unite(bool Forced);
  bool IsTooHeavy();
  bool RetryOnReducedLoops();
  void Climb();
  bool TryRung(int Rung);
  void RecheckInside();
  bool IsWorthRecheck() const;
  bool TrailsInstead();
  bool Differs(const TPaths& Trails) const;
  bool HoldsAllWithoutChoice() const;

  TLoops RungLoops(int Rung);
  TLoops FirstRungOutside();
  TLoops FirstRungInside();
  TLoops SecondRung();
  TLoops ThirdRung();
  TLoops FourthRung();
  TLoops FifthRung();

  const TKMPLoop& Reduced(const TKMPLoop& Loop, int Level) { return FStandIns.Reduced(Loop, Level, FRequired); }
  bool EqualEdges() const { return FS.FCount() == FD.FCount(); }

  TKineticConvolution& FOwner;
  const TKMPLoop& FS;
  const TKMPLoop& FD;
  const TNFPType FRequired;
  const bool FInside;
  TPaths& FPaths;
  TStandIns FStandIns;
  std::optional<TSearch> FSearch;
  bool FUsable = false;
  int FLevel = kLevelFailed;
  int FRung = 0;
  int FRetryLevel = 0;  // 0 if there was no retry
  TLoops FThirdRung{};
};

int TKineticConvolution::TRun::Level() {
  if (TakeConvexPair()) return kLevelFull;
  FUsable = Search(Full(), FRequired, FOwner._selfNfp);
  const bool heavy = IsTooHeavy();
  if (!heavy) FUsable = FUsable && Unite(false);
  if (TrailsInstead()) {
    ++NfpStatistics.Rungs[0];
    return kLevelFull;
  }
  if (heavy) FUsable = RetryOnReducedLoops() && Unite(false);
  const bool firstTryDid = FUsable && !heavy;
  if (!FUsable) Climb();
  if (firstTryDid && IsWorthRecheck()) RecheckInside();
  if (!FUsable || !FOwner.NormorlizePaths(FPaths, FInside)) return kLevelFailed;
  ++NfpStatistics.Rungs[FRung];
  return std::max(FLevel, kLevelFull);
}

// Two convex outlines need neither graph nor search.
bool TKineticConvolution::TRun::TakeConvexPair() {
  const int chips = FS.FCount() + FD.FCount();
  if (FInside || BoldPointPrec != 0 || chips > kConvexPairChips) return false;
  TPath ring;
  if (!MergeConvexLoops(FS, FD, ring)) return false;
  FOwner._stLoop = &FS;
  FOwner._dyLoop = &FD;
  FPaths.clear();
  FPaths.push_back(std::move(ring));
  if (!FOwner.NormorlizePaths(FPaths, false)) return false;
  NfpStatistics.Chips += chips;
  ++NfpStatistics.Circuits;
  ++NfpStatistics.Rungs[0];
  return true;
}

bool TKineticConvolution::TRun::Search(const TLoops& Loops, TNFPType Required, int Similar) {
  FSearch.reset();
  FSearch.emplace(FOwner.Convolve(*Loops.Static, *Loops.Dynamic, FInside, FLevel));
  FLevel = std::max(FLevel, Loops.Level);
  const bool usable = FSearch->Circuits.DFSLoops(FInside, Required, Similar);
  NfpStatistics.Circuits += FSearch->Circuits.CircuitCount();
  return usable;
}

bool TKineticConvolution::TRun::Unite(bool Forced) {
  FPaths.clear();
  return FOwner.UnionCircuits(FSearch->Circuits, FPaths, Forced);
}

// An outline is a single contour, so only circuits weigh.
bool TKineticConvolution::TRun::IsTooHeavy() {
  const TKineticCircuits& circuits = FSearch->Circuits;
  if (FInside || !circuits.SccOutline().empty() || !UsesReducedOutlines(FRequired)) return false;
  const Int64 points = FOwner._edgeCount = circuits.TotalOuterCyclePoints();
  if (!FUsable || points > kHeavyPointsAbove) return true;
  const int vertices = circuits.LongestSccCount();
  if (points > kHeavySmallPointsAbove && vertices < kHeavySmallBelow) return true;
  return FOwner._selfNfp >= kHeavySimilarFrom && points > kHeavySimilarPointsAbove &&
         static_cast<double>(points) / vertices > kHeavySimilarRatioAbove;
}

bool TKineticConvolution::TRun::RetryOnReducedLoops() {
  ++NfpStatistics.Retries;
  const double points = static_cast<double>(FOwner._edgeCount);
  TLoops loops{&FS, &FD, kLevelReduced};
  if (FRequired == ntConcaveHull) {
    FRetryLevel = Round<int>(points / kRetryConcavePointsPerLevel + kRetryConcaveBase);
    if (!FUsable) FRetryLevel += kRetryConcaveUnusable;
    loops.Dynamic = &Reduced(FD, FRetryLevel);
    if (EqualEdges()) loops.Static = &Reduced(FS, std::max(kRetryStaticLeastLevel, FRetryLevel - 1));
  } else {
    FRetryLevel = Round<int>(points / kRetryCompletePointsPerLevel) + kRetryCompleteBase;
    if (!FUsable) FRetryLevel += kRetryCompleteUnusable;
    const bool asHull = FRetryLevel > kRetryHullLevelAbove ||
                        (FRetryLevel > kRetryRegularHullLevelAbove && EdgesPerDirection(FD) > kRetryRegularAbove);
    loops.Dynamic = asHull ? &FStandIns.Hull(FD) : &Reduced(FD, FRetryLevel);
    if (asHull) loops.Level = kLevelHull;
  }
  return Search(loops, FRequired, 0);
}

void TKineticConvolution::TRun::Climb() {
  for (FRung = 1; FRung <= static_cast<int>(std::size(kRungs)); ++FRung) {
    FUsable = TryRung(FRung);
    if (FUsable) return;
  }
}

bool TKineticConvolution::TRun::TryRung(int Rung) {
  const TRung& rung = kRungs[Rung - 1];
  const bool usable = Search(RungLoops(Rung), rung.SearchAsComplete ? ntComplete : FRequired, 0);
  if (!usable && rung.LastResort) throw TNestError("Error In Func[dfs]");
  return usable && Unite(rung.Forced);
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::RungLoops(int Rung) {
  switch (Rung) {
    case 1:
      return FInside ? FirstRungInside() : FirstRungOutside();
    case 2:
      return SecondRung();
    case 3:
      return FThirdRung = ThirdRung();
    case 4:
      return FourthRung();
    default:
      return FifthRung();
  }
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::FirstRungOutside() {
  if (FRequired != ntConcaveHull) return {&FS, &Reduced(FD, LevelOf(kOtherDynamic, FD)), kLevelReduced};
  int level = LevelOf(kConcaveDynamic, FD);
  if (FRetryLevel > 0) level = std::max(FRetryLevel, level) + 1;
  TLoops loops{&FS, &Reduced(FD, level), kLevelReduced};
  if (EqualEdges())
    loops.Static = &Reduced(FS, level);
  else if (loops.Dynamic->FCount() > kConcaveStaticEdgesAbove)
    loops.Static = &Reduced(FS, LevelOf(kConcaveStatic, FS));
  return loops;
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::FirstRungInside() {
  const auto isLargeSolid = [](const TKMPLoop& loop) {
    return loop.Area() > 0 && loop.Count() > kInnerHullDirectionsAbove;
  };
  if (isLargeSolid(FD)) return {&FS, &FStandIns.Hull(FD), kLevelHull};
  if (isLargeSolid(FS)) return {&FStandIns.Hull(FS), &FD, kLevelHull};
  const TKMPLoop& cavity = FS.Area() < 0 ? FS : FD;
  const TKMPLoop& smaller = FStandIns.Cavity(cavity, std::max(LevelOf(kInnerLadder, cavity), kInnerLadderLeastLevel));
  return FS.Area() < 0 ? TLoops{&smaller, &FD, kLevelReduced} : TLoops{&FS, &smaller, kLevelReduced};
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::SecondRung() {
  if (FRequired == ntComplete) {
    return {&FS, &FStandIns.Reduced(FD, kSecondRungLevel, ntConcaveHull), kLevelReduced};
  }
  TLoops loops{&FS, &FStandIns.Hull(FD), kLevelHull};
  if (loops.Dynamic->FCount() == FD.FCount()) loops.Dynamic = &FStandIns.Box(FD);
  if (!FInside && FRequired == ntConcaveHull && EqualEdges()) loops.Static = &FStandIns.Hull(FS);
  return loops;
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::ThirdRung() {
  const TKMPLoop& dynamic = Reduced(FD, kThirdRungDynamicLevel);
  if (!(FS.Area() < 0)) return {&Reduced(FS, kThirdRungStaticLevel), &dynamic, kLevelReduced};
  const int level = std::max(LevelOf(kThirdRungCavity, FS), kThirdRungCavityLeastLevel);
  return {&FStandIns.Cavity(FS, level), &dynamic, kLevelReduced};
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::FourthRung() {
  TLoops loops = FThirdRung;
  loops.Level = kLevelHull;
  if (FS.Area() < 0) {
    loops.Dynamic = &FStandIns.Hull(FD);
    if (loops.Dynamic->Count() > kSimpleHullDirections &&
        std::abs(loops.Dynamic->FCount() - FD.FCount()) < kSameEdgesBelow)
      loops.Dynamic = &FStandIns.Box(FD);
    return loops;
  }
  loops.Static = &FStandIns.Hull(FS);
  if (loops.Dynamic->FCount() > kDenseEdgesAbove && EdgesPerDirection(*loops.Dynamic) > kDenseEdgesPerDirectionAbove)
    loops.Dynamic = &FStandIns.Hull(*loops.Dynamic);
  return loops;
}

TKineticConvolution::TRun::TLoops TKineticConvolution::TRun::FifthRung() {
  if (!(FS.Area() < 0)) return {&FStandIns.Box(FS), &FD, kLevelHull};
  TLoops loops{&FS, &FStandIns.Box(FD), kLevelHull};
  const int level = std::max(LevelOf(kLastRungCavity, FS), kLastRungCavityLeastLevel);
  if (FS.FCount() > kLastRungCavityEdgesAbove) loops.Static = &FStandIns.Cavity(FS, level);
  return loops;
}

bool TKineticConvolution::TRun::IsWorthRecheck() const {
  if (!FInside || !FPaths.empty() || FS.FCount() <= kRecheckStaticEdgesAbove) return false;
  if (FSearch->Circuits.OuterCycleCounter() > kRecheckCircuitsAbove) return true;
  return FS.FCount() > kRecheckLargeStaticEdgesAbove && FD.FCount() > kRecheckDynamicEdgesAbove &&
         static_cast<double>(EdgeProduct(FS, FD)) / FD.Count() / FS.Count() > kRecheckParallelsAbove && !FS.IsConvex();
}

// What is found with a hull fits with the true shape, too; what is not found changes nothing.
void TKineticConvolution::TRun::RecheckInside() {
  const int level = FLevel;
  const bool solidDynamic = FD.Area() > 0;
  const TLoops loops{solidDynamic ? &FS : &FStandIns.Hull(FS), solidDynamic ? &FStandIns.Hull(FD) : &FD, kLevelHull};
  if (!Search(loops, ntComplete, 0) || !Unite(false)) FPaths.clear();
  if (FPaths.empty()) FLevel = level;
}

// A second opinion on the choice of circuits: the union of all closed trails. It is taken where it differs from the
// circuits' one, or where there is none, if it passes the same judgement. Inside it matters as much: a circuit missed
// there is a place where parts overlap.
bool TKineticConvolution::TRun::TrailsInstead() {
  const bool parallels = std::min(EdgesPerDirection(FS), EdgesPerDirection(FD)) >= kTrailParallelsFrom;
  const int chips = parallels ? kTrailChipsOfParallels : kTrailChips;
  if (FLevel > kLevelFull || Size(FOwner.FChips) > chips || !NfpTrailCheckEnabled) return false;
  if (FUsable && HoldsAllWithoutChoice()) return false;
  ++NfpStatistics.TrailChecks;
  TPaths trails;
  if (!UnionOfTrails(FOwner.FChips, (FS.Area() < 0) == (FD.Area() < 0), trails)) return false;
  if (FUsable && !Differs(trails)) return false;
  if (!FOwner.NormorlizePaths(trails, FInside)) return false;
  FPaths = std::move(trails);
  ++NfpStatistics.TrailHits;
  return true;
}

bool TKineticConvolution::TRun::Differs(const TPaths& Trails) const {
  const double area = TPathUtils::Area(Trails);
  const double allowed = kTrailAreaShare * std::fabs(area);
  return std::fabs(TPathUtils::Area(FPaths) - area) > (FInside ? std::max(allowed, kTrailAreaInside) : allowed);
}

// Whether the graph is a set of rings without a common vertex, all of them were united, and together they wind around
// the same area as all chips; then there was no choice.
bool TKineticConvolution::TRun::HoldsAllWithoutChoice() const {
  const TKineticCircuits& circuits = FSearch->Circuits;
  if (!circuits.SccOutline().empty()) return false;
  const TVectorGraph& graph = FSearch->Graph;
  int edges = 0;
  for (int id = graph.LowestId(); id <= graph.MaxVertexId(); ++id) {
    if (Size(graph.Successors(id)) > 1) return false;
    edges += Size(graph.Successors(id));
  }
  const TPoint2D origin = FOwner.FChips.front().FStartPoint;
  int points = 0;
  double ofCircuits = 0;
  for (int i = 0; i < circuits.CircuitCount(); ++i) {
    const std::span<const int> circuit = circuits.GetCircuit(i);
    points += Size(circuit);
    TPoint2D before = graph.GetVertex(circuit.back());
    for (const int id : circuit) {
      const TPoint2D vertex = graph.GetVertex(id);
      ofCircuits += (before - origin).CrossMul(vertex - origin);
      before = vertex;
    }
  }
  if (points != edges || FOwner._edgeCount != edges) return false;
  double ofChips = 0;
  for (const TChip& chip : FOwner.FChips) ofChips += (chip.FStartPoint - origin).CrossMul(chip.FEndPoint - origin);
  return std::fabs(std::fabs(ofCircuits) - std::fabs(ofChips)) <= kTrailAreaShare * std::fabs(ofChips);
}

int TKineticConvolution::Convolution(const TKMPLoop& dynamicLoop, const TKMPLoop& staticLoop, bool putInside,
                                     TPaths& nfpPaths) {
  ++NfpStatistics.Convolutions;
  nfpPaths.clear();
  if (_innerCheck && putInside && !BoundCheck(staticLoop, dynamicLoop)) return kLevelFailed;
  _selfNfp = putInside ? 0 : LoopSimilar(staticLoop, dynamicLoop);
  int level = kLevelFailed;
  try {
    level = TRun(*this, dynamicLoop, staticLoop, putInside, nfpPaths).Level();
  } catch (const std::exception&) {
    TCerr::W("NFP Error for Points Count: %d # %d, Edge Count: %d # %d", staticLoop.FCount(), dynamicLoop.FCount(),
             staticLoop.Count(), dynamicLoop.Count());
  }
  _stLoop = _dyLoop = nullptr;
  if (level == kLevelFailed) {
    ++NfpStatistics.Failures;
    nfpPaths.clear();
  }
  return level;
}

}  // namespace platenest
