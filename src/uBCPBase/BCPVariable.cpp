#include "platenest/uBCPBase/BCPVariable.h"

namespace platenest {

TBCPVariable::~TBCPVariable() = default;

}  // namespace platenest
