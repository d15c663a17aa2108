#include "platenest/layoutcheck/NfpCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platenest/foundation/Errors.h"
#include "platenest/layoutcheck/NfpSvg.h"

namespace platenest {
namespace {

using testing::HasSubstr;

TPath Box(double Left, double Bottom, double Right, double Top, bool IsHole = false) {
  TPath path;
  for (const TPoint2D& p : {TPoint2D{Left, Bottom}, {Right, Bottom}, {Right, Top}, {Left, Top}})
    path.push_back(TPathUtils::CreateIntPoint(p, kPathScale));
  if (IsHole) ClipperLib::ReversePath(path);
  return path;
}

// A frame of 10 with a hole of 6 and a square of 2: 12 by 12 around, of which 4 by 4 in the hole are free.
const TNfpQuestion kFrame{{Box(0, 0, 10, 10), Box(2, 2, 8, 8, true)}, {Box(0, 0, 2, 2)}, false};

TEST(NfpCheck, TellsOverlapFromTouchAtTheTolerance) {
  EXPECT_EQ(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(2, 2, 6, 6, true)}), "");
  EXPECT_EQ(CheckNfp(kFrame, {Box(-2, -1.9992, 10, 10), Box(2, 2, 6, 6, true)}), "");
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -1.998, 10, 10), Box(2, 2, 6, 6, true)}), HasSubstr("the parts overlap at ["));
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(1.99, 2, 6, 6, true)}), HasSubstr("the parts overlap at ["));
}

TEST(NfpCheck, SeesALostHoleOnlyWhereFullOutlinesAreClaimed) {
  const TPaths smaller{Box(-2, -2, 10, 10), Box(3, 2, 6, 6, true)};
  EXPECT_THAT(CheckNfp(kFrame, smaller), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(kFrame, smaller, {.IsFull = false}), "");
  EXPECT_THAT(CheckNfp(kFrame, {Box(-2, -2, 10, 10), Box(2, 2, 6, 6)}), HasSubstr("wrong way"));
}

// With areas: a contour that is lost whole, a wrong piece between the samples, and a plate that has room.
TEST(NfpCheck, ComparesAreasOfSmallPairs) {
  const TNfpCheckOptions whole{.MostContacts = 100};
  const TNfpCheckOptions samples{.MostSamples = 2};
  const TPaths lost{Box(-2, -2, 10, 10)};
  EXPECT_EQ(CheckNfp(kFrame, lost, samples), "");
  EXPECT_THAT(CheckNfp(kFrame, lost, whole), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(kFrame, lost, {.IsFull = false, .MostContacts = 100}), "");
  const TPaths right{Box(-2, -2, 10, 10), Box(2, 2, 6, 6, true)};
  const TPaths wrong{right[0], Box(2, 2, 6, 7, true)};
  EXPECT_EQ(CheckNfp(kFrame, wrong, samples), "");
  EXPECT_THAT(CheckNfp(kFrame, wrong, {.MostSamples = 2, .MostContacts = 100}), HasSubstr("the parts overlap at ["));
  EXPECT_EQ(CheckNfp(kFrame, right, whole), "");
  EXPECT_EQ(CheckNfp({kFrame.Moving, kFrame.Fixed, false}, {Box(-10, -10, 2, 2), Box(-6, -6, -2, -2, true)}, whole), "")
      << "a hole of the moving shape";
  EXPECT_EQ(CheckNfp({kFrame.Moving, {Box(0, 0, 10, 10)}, false}, {Box(-10, -10, 2, 2)}, whole), "")
      << "the fixed shape within the moving one";
  const TNfpQuestion plate{kFrame.Fixed, {Box(0, 0, 1, 1)}, true};
  EXPECT_THAT(CheckNfp(plate, {}, whole), HasSubstr("would fit at ["));
  EXPECT_EQ(CheckNfp(plate, {}), "");
  EXPECT_EQ(CheckNfp(plate, {Box(0, 0, 9, 9), Box(1, 1, 8, 8, true)}, whole), "");
}

// The plate's hole of 2 keeps a square of 1 out of 3 by 3.
TEST(NfpCheck, JudgesRegionsFromWithin) {
  const TNfpQuestion plate{{Box(0, 0, 10, 10), Box(4, 4, 6, 6, true)}, {Box(0, 0, 1, 1)}, true};
  EXPECT_EQ(CheckNfp(plate, {Box(0, 0, 9, 9), Box(3, 3, 6, 6, true)}), "");
  EXPECT_THAT(CheckNfp(plate, {Box(0, 0, 9.01, 9), Box(3, 3, 6, 6, true)}), HasSubstr("sticks out at ["));
  EXPECT_THAT(CheckNfp(plate, {Box(0, 0, 8, 9), Box(3, 3, 6, 6, true)}), HasSubstr("would fit at ["));
}

TEST(NfpSvg, DrawsHostileTextsAndRefusesWhatCannotBeDrawn) {
  TNfpPicture picture{.Title = {},
                      .FixedId = "<script>",
                      .MovingId = "a\"b\x01",
                      .Units = "m",
                      .Fixed = {{{0, 0}, {10, 0}, {10, 5}}},
                      .Moving = {{{0, 0}, {1, 0}, {1, 1}}},
                      .Region = {{{-1, -1}, {10, -1}, {10, 5}}}};
  const std::string svg = NfpSvg(picture);
  EXPECT_THAT(svg, HasSubstr("data-part=\"&lt;script&gt;\""));
  EXPECT_THAT(svg, testing::ContainsRegex("<g transform=.matrix.1 0 0 -1 "));
  picture.Region = {{{0, 0}, {1e300, 0}, {1, 1}}};
  EXPECT_THROW(NfpSvg(picture), TArgumentError);
}

}  // namespace
}  // namespace platenest
