#pragma once

#include <functional>
#include <span>
#include <vector>

#include "JobAnswer.h"
#include "JobTrials.h"

namespace platenest::detail {

// What an exchange is judged by, in this order.
struct TExchangeMerit {
  double Asked = 0;      // area of placed copies that are asked for; more is better, as below
  double Unlimited = 0;  // of others
  double Cost = 0;       // less is better, as below
  Int64 Plates = 0;
  double Fullness = 0;  // sum of squared part areas; more is better, as full plates beside an empty one are
};

// An answer whose plates are taken off one to three at a time and filled anew with their parts and with what is not
// placed. Chance comes from the generator of this thread.
class TExchange {
 public:
  TExchange(const TJobSizes& Sizes, TSkyTrials& Trials, TJobLayouts Layouts);

  enum class Outcome { Nothing, Fuller, Better };
  // One trial: Better where something but the fullness has gained. What is as good as before is taken too.
  Outcome Step();

  const TJobLayouts& Layouts() const { return FLayouts; }
  Int64 Plates() const;

 private:
  struct TChosen {
    std::vector<int> Groups;  // positions in FLayouts, one for each plate
    bool TakesPool = false;
  };

  TChosen Choose() const;
  int Emptiest() const;
  std::vector<int> Kinds(const TChosen& Chosen) const;
  std::vector<int> PartsOf(const TChosen& Chosen) const;
  TJobLayouts Refill(const std::vector<int>& Kinds, std::vector<int>& Left);
  bool RefillCheaper(const std::vector<int>& Kinds, int From, std::vector<int>& Left, TJobLayouts& Filled);
  TExchangeMerit MeritOf(std::span<const TJobLayout> Plates) const;
  int Times(const TChosen& Chosen, const TJobLayouts& Filled) const;
  void Apply(const TChosen& Chosen, TJobLayouts Filled, int Times);

  const TJobSizes& FSizes;
  TSkyTrials& FTrials;
  TJobLayouts FLayouts;
  std::vector<double> FAreas;  // of each layout
  std::vector<int> FPool;      // what is not placed
  std::vector<int> FStock;
};

}  // namespace platenest::detail
