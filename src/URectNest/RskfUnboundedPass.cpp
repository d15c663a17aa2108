#include "RskfPass.h"
#include "RskfWalk.h"

namespace platenest::detail {

namespace {

// Nothing is known of the pieces, and no cut breaks a limit.
struct TNoPieces {
  void BeginRow(int, int, int) {}
  void TakeSingle(int) {}
  void TakeLeft(int) {}
  void TakeBelow(int) {}
  void TakeCandidate(int) {}
  void KeepCandidate(int) {}
  void StoreLeft(int, int) {}
  void Store(int) {}
  void CopyCell(int, int, int) {}
  bool JoinAlongLength(int, int, int) { return true; }
  bool JoinAlongWidth(int, int, int) { return true; }
};

}  // namespace

bool RunUnboundedPass(const TRskfProblem& Problem, TRskfBudget& Budget, TRskfTables& Tables, TRskfCell& Best) {
  Tables = {};
  TNoPieces pieces;
  return TRskfWalk<TNoPieces>(Problem, Budget, Tables, pieces).Run(Best);
}

}  // namespace platenest::detail
