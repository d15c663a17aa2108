#pragma once

// The no-fit polygon kernel.
#include "platenest/NfpAlgorithmSet/BoolArray.h"
#include "platenest/NfpAlgorithmSet/Chip.h"
#include "platenest/NfpAlgorithmSet/DirectedGraph.h"
#include "platenest/NfpAlgorithmSet/JhonsonCircuits.h"
#include "platenest/NfpAlgorithmSet/KineticCircuits.h"
#include "platenest/NfpAlgorithmSet/KineticConvolution.h"
#include "platenest/NfpAlgorithmSet/KineticLoop.h"
#include "platenest/NfpAlgorithmSet/NfpStatistics.h"
#include "platenest/NfpAlgorithmSet/NfpTypes.h"
#include "platenest/NfpAlgorithmSet/PartNfp.h"
#include "platenest/NfpAlgorithmSet/TarjanComponents.h"
#include "platenest/NfpAlgorithmSet/VectorGraph.h"
#include "platenest/NfpAlgorithmSet/VertexIdList.h"
