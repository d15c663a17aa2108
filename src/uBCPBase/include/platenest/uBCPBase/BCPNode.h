#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platenest/foundation/Fifo.h"
#include "platenest/uBCPBase/BCPSolverManager.h"
#include "platenest/uBCPBase/BCPStopWatch.h"
#include "platenest/uBCPBase/CbcLPSolver.h"
#include "platenest/uBCPBase/VarPool.h"

namespace platenest {

// One node of the search tree of branch-and-price (Vance 1998): the master LP over the columns of the pool that fit the
// demand of the node. It minimises cost * x over x at or above 0, each row in its sense, and grows by the columns that
// the pricing heuristics find. Branching adds no row: the up-branch takes copies of one column out of the LP as fixed
// and lowers the demand, the down-branch bounds that column from above.
//
// Pricing is heuristic, so the bounds of a node are estimates: a better column may have been missed.
//
// LP columns count from 1, as in ColDict and LPSolVec, where 0 stands for the right-hand side; the lists VarUB and
// CostVec and the LP solver itself hold LP column k at k - 1. One thread at a time. What the heuristics, the clock, the
// LP library or T throw leaves a node that can only be freed.
template <BCPVariable T>
class TBCPNode {
 public:
  // How many more copies of the column Idx of the pool this subtree may use.
  struct TIntULBConstraint {
    int Idx = 0;
    int UB = 0;
    int LB = 0;
  };
  using TBoundList = std::vector<TIntULBConstraint>;  // by ascending Idx
  using TSolutionFifo = TFifo<TBCPSolution<T>>;
  using TSolutionList = std::vector<TBCPSolution<T>>;

  // Main rows, which ascend, with the demand that is left in them, and the objective that is fixed already. The
  // manager, its main problem, the pool and the parent (null at the root) belong to the caller and outlive the node.
  // CGFlag: the node generates columns. TAssertionError for lists of different lengths.
  TBCPNode(TIntegerDynArray ARowDict, TDoubleDynArray ABVec, const TBCPSolverManager<T>* ASolverManager,
           TVarPool<T>* AVarPool, TBCPNode* AParent, double ABoundBase, bool CGFlag);
  TBCPNode(const TBCPNode&) = delete;
  TBCPNode& operator=(const TBCPNode&) = delete;

  // Builds the LP and solves it, over and over as long as pricing finds columns that matter. The clock and Stop are
  // polled before each LP. True if one LP at least was solved; then LLB is its value with all that is fixed, otherwise
  // infinity.
  bool Solve(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop);
  // The same for the root, while others may push whole solutions into AFIFOSolutions (null: none): before each LP, and
  // once more when pricing ends, they are taken from there, their columns enter the LP and they themselves ASolutions.
  // When the LP cannot even be started, what stands in the queue stays there.
  bool SolveWithFIFOSolutions(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop, TSolutionFifo* AFIFOSolutions,
                              TSolutionList& ASolutions);

  // The LP solution is whole within ATol.
  bool Fathom(double ATol) const;
  // The LP solution rounded to whole numbers, with the fixed columns. Nothing says that it meets the demand.
  TBCPSolution<T> GetIntSolution(double& ACost);
  // The LP solution rounded down to what fits, with the fixed columns and the best answer of the residual heuristics
  // for the demand that is left. Without such an answer the demand stays open.
  TBCPSolution<T> SolveResidual(double& ACost);

  // Makes up to two children, the one of the lower LP value first. False if there is no column to branch on, and if the
  // up-branch is impossible and the down-branch has no solution. True without a child is possible: both branches were
  // tried in vain. Only the up-branch takes over CGFlag; below a down-branch no columns are generated.
  bool Branch(bool CGFlag) { return BranchMostInfeasible(CGFlag); }

  // Frees the LP and all that belongs to it. The fixed columns, the bounds and the links stay.
  void ClearGarbage();

  double LPSol() const { return FLPSol; }
  int Depth() const { return FDepth; }  // 0 at the root
  int Idx() const { return FIdx; }      // 0; the last tie-break of the search
  // The state of the last LP.
  const TDoubleDynArray& LPSolVec() const { return FLPSolVec; }
  const TIntegerDynArray& ColDict() const { return FColDict; }
  const TDoubleDynArray& VarUB() const { return FVarUB; }
  const TDoubleDynArray& CostVec() const { return FCostVec; }
  const TSparseColumns& Constraint() const { return FConstraint; }
  const TCbcLPSolver* LPSolver() const { return FCBCSolver.get(); }  // null before the first and after ClearGarbage
  // What the node stands for.
  const TDoubleDynArray& BVec() const { return FBVec; }
  const TIntegerDynArray& RowDict() const { return FRowDict; }
  const TBoundList& IntConstraint() const { return FIntConstraint; }
  const TIntegerDynArray& ParentSolVec() const { return FParentSolVec; }  // fixed copies by pool index
  double BoundBase() const { return FBoundBase; }
  bool CGRequired() const { return FCGRequired; }
  int LPRounds() const { return FLPRounds; }  // LPs solved here, those of branching included
  int Pricings() const { return FPricings; }  // calls of pricing heuristics

  std::vector<std::unique_ptr<TBCPNode>> ChildNodes;
  TBCPNode* Parent;
  double LLB = kBCPInfinity;  // lower bound of the subtree, as far as pricing goes
  double LUB = kBCPInfinity;  // cost of the last whole solution made here
  bool Calced = false;        // closed

 protected:
  bool InitializeSolve(const TBCPStopWatch& ASW, const TBCPStopFunc& Stop);
  void FinalizeSolve(bool Solved);
  bool InitLP();
  void CreateCBCSolver();
  bool AddULBConstraint();
  bool AddCuttingPlane() { return true; }  // a place for cuts; there are none
  bool CheckNoEmptyRow();
  bool StopByNoEmptyRow();
  bool StopByCostValue() const;
  bool CheckFIFO(TSolutionFifo& AFIFOSolutions, TSolutionList& ASolutions);
  bool SolveSubProblem(const TDoubleDynArray& AWVec, double Amp, const TBCPStopFunc& AStop);
  double SolveByCBC(bool& Status, TDoubleDynArray& Duals, TDoubleDynArray& Solution);
  bool AddVartoConstraint(std::unique_ptr<T> AVar);
  bool AddVartoConstraint(const T& AVar);
  void UpdateVarBound();
  TBCPSolution<T> RoundingLargeFracPrior(TDoubleDynArray& AResidual) const;
  bool BranchMostInfeasible(bool CGFlag);

 private:
  // A column to branch on, by its LP column number, and the highest count of the down-branch.
  struct TBranching {
    int Column = 0;  // 0: none
    Int64 Floor = 0;
  };
  // Frees the pricing problem of a solve on every way out.
  struct TPricingScope {
    std::unique_ptr<TBCPProblem<T>>& Problem;
    ~TPricingScope() { Problem.reset(); }
  };

  bool SolveMaster(TDoubleDynArray& Duals);
  bool PriceMaster(const TDoubleDynArray& Duals);
  TDoubleDynArray DefaultDuals() const;
  void FindEmptyRows(TDoubleDynArray& W);
  void DropEmptyRows(TDoubleDynArray& W);
  void EnterColumn(int PoolIdx);
  void DeleteColumn(int Column);
  std::vector<std::pair<int, double>> FractionalColumns() const;
  void AddParentSolution(TBCPSolution<T>& Solution) const;
  TBCPSolution<T> BestResidual(const TBCPProblem<T>& SubProblem, const TBCPSolution<T>& Partial) const;
  TBranching ChooseBranching() const;
  TBoundList UpBounds(const TBranching& Branching) const;
  TBoundList DownBounds(const TBranching& Branching) const;
  double BranchUp(const TBranching& Branching, bool CGFlag);
  double BranchDown(const TBranching& Branching);
  TBCPNode& AddChild(TIntegerDynArray RowDict, TDoubleDynArray BVec, double BoundBase, bool CGFlag);
  T const& VarOf(int Column) const { return (*FVarPool)[FColDict[Column]]; }

  double FCostValue = 0;            // of the column priced last, per unit of the objective
  double FMinCost = kBCPInfinity;   // least objective coefficient of the LP
  TIntegerDynArray FEmptyRowIdxes;  // local rows that no column covers, while these are looked for
  TIntegerDynArray FDeleteList;     // positions in FEmptyRowIdxes that the newest column covers
  std::unique_ptr<TBCPProblem<T>> FSubProblem;
  std::unique_ptr<TCbcLPSolver> FCBCSolver;
  TDoubleDynArray FBVec;       // demand by local row
  TDoubleDynArray FVarUB;      // how often the demand allows a column
  TSparseColumns FConstraint;  // local rows; LP column k at k - 1
  TDoubleDynArray FCostVec;
  TIntegerDynArray FIneqVec;
  TIntegerDynArray FParentSolVec;
  TIntegerDynArray FRowDict;  // main row by local row
  TIntegerDynArray FColDict;  // pool index by LP column; -1 at 0
  TBoundList FIntConstraint;
  TVarPool<T>* FVarPool;
  TDoubleDynArray FLPSolVec;  // by LP column; 0.0 at 0
  const TBCPSolverManager<T>* FSolverManager;
  double FLPSol = 0;
  double FBoundBase;
  int FDepth = 0;
  int FIdx = 0;
  int FLPRounds = 0;
  int FPricings = 0;
  bool FCGRequired;
};

template <BCPVariable T>
TBCPNode<T>::TBCPNode(TIntegerDynArray ARowDict, TDoubleDynArray ABVec, const TBCPSolverManager<T>* ASolverManager,
                      TVarPool<T>* AVarPool, TBCPNode* AParent, double ABoundBase, bool CGFlag)
    : Parent(AParent),
      FBVec(std::move(ABVec)),
      FRowDict(std::move(ARowDict)),
      FVarPool(AVarPool),
      FSolverManager(ASolverManager),
      FBoundBase(ABoundBase),
      FCGRequired(CGFlag) {
  NestAssert(FRowDict.size() == FBVec.size());
}

template <BCPVariable T>
void TBCPNode<T>::ClearGarbage() {
  FCBCSolver.reset();
  FRowDict = {};
  FColDict = {};
  FVarUB = {};
  FIntConstraint = {};
  FBVec = {};
  FConstraint = {};
  FCostVec = {};
  FIneqVec = {};
  FLPSolVec = {};
}

}  // namespace platenest

#include "platenest/uBCPBase/BCPNodeBranch.h"
#include "platenest/uBCPBase/BCPNodeLP.h"
#include "platenest/uBCPBase/BCPNodeRounding.h"
#include "platenest/uBCPBase/BCPNodeSolve.h"
