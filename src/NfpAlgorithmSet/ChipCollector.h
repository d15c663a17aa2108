#pragma once

#include "platenest/NfpAlgorithmSet/Chip.h"
#include "platenest/NfpAlgorithmSet/KineticLoop.h"

namespace platenest::detail {

// The whole convolution of two loops: chips at the vertices of A, then at those of B. Chips loses what it held and
// keeps its memory. Edges of A and B whose directions differ by less than about 1e-8 radian can make the tolerant tests
// contradict each other; then a vertex is left more often than entered, which is noticed, and the chips are laid again
// by the order of the integer angles alone. Cost: O(edges log edges + chips).
void CollectConvolution(const TKMPLoop& A, const TKMPLoop& B, TChipList& Chips);

// Whether each point is the start of as many chips as it is the end of, by the exact bits of its coordinates. Decided
// by a checksum of 64 bits, so a wrong yes has a chance of about 5e-20.
bool IsBalanced(const TChipList& Chips);

}  // namespace platenest::detail
