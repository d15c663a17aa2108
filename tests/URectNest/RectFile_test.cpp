#include "platenest/URectNest/RectFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace platenest {
namespace {

using ::testing::HasSubstr;

struct RectFile : ::testing::Test {
  std::string FileName = ::testing::TempDir() + "platenest_rects_" + std::to_string(::getpid()) + ".txt";
  TNestRectList List;
  TVRect2D Plate;

  ~RectFile() override { std::filesystem::remove(FileName); }

  std::string Content() const {
    std::ostringstream text;
    text << std::ifstream(FileName).rdbuf();
    return text.str();
  }
  std::string ErrorOf(std::string_view Text) {
    try {
      ReadRectsFromText(Text, "job.txt", List, Plate);
    } catch (const TInputError& error) {
      return error.Text();
    }
    return {};
  }
};

TNestRect Rect(double Width, double Height, double Area, int Amount) {
  TNestRect rect(Amount, 0, TVRect2D::FromSize(Width, Height).Translate({3, 4}));
  rect.Area = Area;
  return rect;
}

TEST_F(RectFile, WritesSixDecimalsOverWhateverWasThere) {
  std::ofstream(FileName) << std::string(1000, 'x');
  WriteRectsToFile({Rect(30, 20, 600, 5), Rect(0.25, 1e22, -1.5, -1)}, TVRect2D::FromSize(1000.1234567, 500), FileName);
  EXPECT_EQ(Content(),
            "1000.123457 500.000000 1\n30.000000 20.000000 600.000000 5\n"
            "0.250000 10000000000000000000000.000000 -1.500000 -1\n");
}

TEST_F(RectFile, AWrittenFileDoesNotReadBack) {
  WriteRectsToFile({Rect(30, 20, 600, 5)}, TVRect2D::FromSize(1000, 500), FileName);
  EXPECT_EQ(ErrorOf(Content()), "[Error] job.txt, line 2: expected a whole number for an amount, found \"600.000000\"");
  EXPECT_TRUE(List.empty() && Plate.Width() == 0);
  EXPECT_THROW(ReadFromFile(FileName, List, Plate), TInputError);
}

TEST_F(RectFile, ReadsTheTwoNumberFormAndAppends) {
  std::ofstream(FileName) << "1000 500\r\n30 20 600.5 +5\n\t1e1 2.5 25 7\n\n";
  List = {Rect(1, 1, 1, 1)};
  ReadFromFile(FileName, List, Plate);
  EXPECT_EQ(std::pair(Plate.Width(), Plate.Height()), std::pair(1000.0, 500.0));
  ASSERT_EQ(List.size(), 3u);
  EXPECT_EQ(std::pair(List[1].Area, List[1].Amount), std::pair(600.5, 5));
  EXPECT_EQ(List[2].BoundBox.Width(), 10);
}

TEST_F(RectFile, AZeroSideLosesTwoNumbersOnlyAndNumbersMissingAtTheEndAreZero) {
  ReadRectsFromText("9 9  0 7  30 20 600 5  4 0  1 2 3 4  8 9", "", List, Plate);
  ASSERT_EQ(List.size(), 3u);
  EXPECT_EQ(List[0].BoundBox.Width(), 30);
  EXPECT_EQ(List[1].Amount, 4);
  EXPECT_EQ(List[2].Amount, 0);
  ReadRectsFromText("9 9 30", "", List, Plate);
  EXPECT_EQ(List.size(), 3u);
}

TEST_F(RectFile, RefusesWhatIsNotWhollyANumber) {
  EXPECT_EQ(ErrorOf("9 9\n30 20x 600 5"), "[Error] job.txt, line 2: expected a number for a height, found \"20x\"");
  EXPECT_THAT(ErrorOf("9 9\n\n30 20 600 5.0"),
              HasSubstr("line 3: expected a whole number for an amount, found \"5.0\""));
  for (const char* bad : {"nan 9", "9 inf", "1e999 9", "1,5 9", "0x10 9", "+-3 9", "- 9"})
    EXPECT_THAT(ErrorOf(bad), HasSubstr("line 1: expected a number")) << bad;
  EXPECT_THAT(ErrorOf("9 9 1 1 1 4294967296"), HasSubstr("4294967296"));
  EXPECT_LT(ErrorOf(std::string(100000, 'z')).size(), 200u);
  EXPECT_TRUE(List.empty());
}

TEST_F(RectFile, FilesThatCannotBeUsed) {
  Plate = TVRect2D::FromSize(1, 1);
  ReadFromFile(FileName, List, Plate);
  EXPECT_EQ(Plate.Width(), 1) << "a missing file changes nothing";
  const std::string folder = std::filesystem::temp_directory_path().string();
  EXPECT_THROW(ReadFromFile(folder, List, Plate), TFileError);
  EXPECT_THROW(WriteRectsToFile({}, Plate, folder), TFileError);
  EXPECT_THROW(WriteRectsToFile({}, Plate, "/dev/full"), TFileError);
  EXPECT_THROW(WriteRectsToFile({}, Plate, FileName + "/below"), TFileError);
}

TEST_F(RectFile, SizesThatAreNoneAreRefusedBeforeTheFileIsTouched) {
  for (const TNestRect& bad : {Rect(std::nan(""), 1, 1, 1), Rect(1, -1, 1, 1), Rect(1, 1, std::nan(""), 1)})
    EXPECT_THROW(WriteRectsToFile({bad}, TVRect2D::FromSize(1, 1), FileName), TArgumentError);
  EXPECT_FALSE(std::filesystem::exists(FileName));
}

}  // namespace
}  // namespace platenest
