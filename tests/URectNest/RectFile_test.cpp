#include "platenest/URectNest/RectFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Rects.h"

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

TEST_F(RectFile, WritesSixDecimalsOverWhateverWasThereWhichDoNotReadBack) {
  std::ofstream(FileName) << std::string(1000, 'x');
  WriteRectsToFile({Part(5, 30, 20, 600), Part(-1, 0.25, 1e22, -1.5)}, TVRect2D::FromSize(1000.1234567, 500), FileName);
  EXPECT_EQ(Content(),
            "1000.123457 500.000000 1\n30.000000 20.000000 600.000000 5\n"
            "0.250000 10000000000000000000000.000000 -1.500000 -1\n");
  EXPECT_EQ(ErrorOf(Content()), "[Error] job.txt, line 2: expected a whole number for an amount, found \"600.000000\"");
  EXPECT_TRUE(List.empty() && Plate.Width() == 0);
  EXPECT_THROW(ReadFromFile(FileName, List, Plate), TInputError);
}

TEST_F(RectFile, ReadsTheTwoNumberFormWhereAZeroSideLosesTwoNumbersOnlyAndMissingOnesAreZero) {
  std::ofstream(FileName) << "1000 500\r\n30 20 600.5 +5\n0 7\n\t1e1 2.5 25 7  4 0  1 2 3 4  8 9";
  List = {Part(1, 1, 1, 1)};
  ReadFromFile(FileName, List, Plate);
  EXPECT_EQ(std::pair(Plate.Width(), Plate.Height()), std::pair(1000.0, 500.0));
  for (const char* noMore : {"9 9\n", "9 9 30\n"}) ReadRectsFromText(noMore, "", List, Plate);
  std::ostringstream read;
  for (const TNestRect& rect : List)
    read << rect.BoundBox.Width() << ' ' << rect.BoundBox.Height() << ' ' << rect.Area << ' ' << rect.Amount << ", ";
  EXPECT_EQ(read.str(), "1 1 1 1, 30 20 600.5 5, 10 2.5 25 7, 1 2 3 4, 8 9 0 0, ");
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
  for (const std::string& file : {folder, std::string("/dev/full"), FileName + "/below"})
    EXPECT_THROW(WriteRectsToFile({}, Plate, file), TFileError);
  for (const TNestRect& bad : {Part(1, std::nan(""), 1, 1), Part(1, 1, -1, 1), Part(1, 1, 1, std::nan(""))})
    EXPECT_THROW(WriteRectsToFile({bad}, Plate, FileName), TArgumentError);
  EXPECT_FALSE(std::filesystem::exists(FileName)) << "refused before the file is touched";
}

}  // namespace
}  // namespace platenest
