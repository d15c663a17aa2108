#include "platenest/NfpAlgorithmSet/NfpTypes.h"

#include <gtest/gtest.h>

#include <string>

namespace platenest {
namespace {

const TPaths kSquare{{{0, 0}, {10, 0}, {10, 10}, {0, 10}}};

TEST(NfpTypes, CopiesShareTheirPathsAndClonesDoNot) {
  const TNFP nfp(kSquare, ntComplete), copy = nfp, clone = nfp.Clone();
  EXPECT_EQ(copy, nfp);
  EXPECT_NE(clone, nfp) << "identity counts, not content";
  (*nfp.NFP)[0][2].X = 77;
  EXPECT_EQ((*copy.NFP)[0][2].X, 77);
  EXPECT_EQ(*clone.NFP, kSquare);
  EXPECT_NE(TNFP(nfp.NFP, ntConvexHull), nfp) << "same paths, other quality";
  EXPECT_EQ(TNFP(nullptr, ntComplete), TNFP(TPaths{}, ntComplete)) << "none is none";
  EXPECT_NE(TNFP(nullptr, ntComplete), TNFP(nullptr, ntNone));
  EXPECT_NE(TNFP(nullptr, ntComplete), nfp);
  EXPECT_TRUE(TNFP().Clone().IsEmpty());
}

TEST(NfpTypes, OrderCeilingAndNames) {
  EXPECT_TRUE(TNFPTypeUtils::DoesNFPTypeSatisfied(ntComplete, ntComplete));
  EXPECT_FALSE(TNFPTypeUtils::DoesNFPTypeSatisfied(ntExact, ntComplete));
  EXPECT_EQ(TNFPTypeUtils::BetterType(ntConvexHull, ntConcaveHull), ntConcaveHull);
  EXPECT_EQ(TNFPTypeUtils::WorseType(ntConvexHull, ntConcaveHull), ntConvexHull);
  std::string names;
  for (int ordinal = 0; ordinal <= 5; ++ordinal) names += TNFPTypeUtils::GetTypeNameStr(static_cast<TNFPType>(ordinal));
  EXPECT_EQ(names, "NOCVCCCPEXEX");
}

}  // namespace
}  // namespace platenest
