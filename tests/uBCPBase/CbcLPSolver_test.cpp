#include "platenest/uBCPBase/CbcLPSolver.h"

#include <gmock/gmock.h>
