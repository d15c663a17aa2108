#pragma once

// The vocabulary of branch-and-price: columns, solutions, covering problems, the heuristics of a search, its clock.
// Desrosiers, Lübbecke, A Primer in Column Generation, 2005; Barnhart et al., Branch-and-Price, 1998.
#include "platenest/uBCPBase/BCPProblem.h"
#include "platenest/uBCPBase/BCPSolution.h"
#include "platenest/uBCPBase/BCPSolverManager.h"
#include "platenest/uBCPBase/BCPStopWatch.h"
#include "platenest/uBCPBase/BCPTypes.h"
#include "platenest/uBCPBase/BCPVariable.h"
