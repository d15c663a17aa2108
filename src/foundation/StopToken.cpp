#include "platenest/foundation/StopToken.h"

namespace platenest {

namespace {
thread_local const TStopToken* currentToken = nullptr;
}

const TStopToken* CurrentStopToken() noexcept {
  return currentToken;
}

TStopTokenScope::TStopTokenScope(const TStopToken* Token) noexcept : FFormer(currentToken) {
  currentToken = Token;
}
TStopTokenScope::~TStopTokenScope() {
  currentToken = FFormer;
}

}  // namespace platenest
