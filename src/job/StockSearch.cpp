#include "StockSearch.h"

namespace platenest::detail {

TTimeShare::TTimeShare(std::optional<double> Seconds) : FToken(CurrentStopToken()), FScope(&FToken) {
  if (Seconds) FTimer.emplace(*Seconds, [this] { FToken.RequestStop(); });
}

}  // namespace platenest::detail
