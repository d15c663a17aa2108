#pragma once

// Everything that a host may use: the facade run(job) and the core classes below it.
#include "platenest/NfpAlgorithmSet/NfpAlgorithmSet.h"
#include "platenest/UCircleNest/UCircleNest.h"
#include "platenest/URectNest/URectNest.h"
#include "platenest/colgen/colgen.h"
#include "platenest/job/Convert.h"
#include "platenest/job/Job.h"
#include "platenest/job/JobErrors.h"
#include "platenest/job/Result.h"
#include "platenest/job/Run.h"
#include "platenest/layoutcheck/LayoutCheck.h"
#include "platenest/layoutcheck/NfpCheck.h"
#include "platenest/layoutcheck/PartCheck.h"
#include "platenest/services/NFP.h"
#include "platenest/services/arrayInfo.h"
#include "platenest/version.h"
