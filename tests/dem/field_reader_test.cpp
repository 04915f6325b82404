// Opening, block accounting, and the readers of single fields.

#include <clocale>
#include <cstdlib>
#include <limits>
#include <locale>
#include <sstream>

#include "dem/dem_writer.h"
#include "kzgis/dem.h"
#include "support/capture.h"
#include "support/named_pipe.h"

namespace {

/// Opens the protected part of a reader.
struct Reader : DEM_LRA {
  using DEM_LRA::addByteCount;
  using DEM_LRA::DEM_LRA;
  using DEM_LRA::fetchByteCount;
  using DEM_LRA::incByteCount;
  using DEM_LRA::moveToNextBlock;
  using DEM_LRA::readFile;
  using DEM_LRA::resetByteCount;
  using DEM_LRA::skipFile;

  /// Puts the stream and the counter at `count` within the first block.
  Reader& stand_at(int count) {
    seekg(count);
    resetByteCount();
    addByteCount(count);
    return *this;
  }
  long position() { return static_cast<long>(tellg()); }
};

constexpr int kMaxInt = std::numeric_limits<int>::max();

class FieldTest : public DemTest {
 protected:
  /// Blocks of which each byte is a digit: that of its offset, modulo 10.
  static std::string digits(std::size_t size) {
    std::string bytes;
    for (std::size_t i = 0; i < size; ++i) bytes += static_cast<char>('0' + i % 10);
    return bytes;
  }
};

// Opening and closing.

using OpenDemFile = FieldTest;

TEST_F(OpenDemFile, StartsClosedAndEmpty) {
  const Reader reader;
  EXPECT_FALSE(reader.is_open());
  EXPECT_TRUE(reader.good());
  EXPECT_TRUE(reader.fetchFileName().empty());
  EXPECT_EQ(reader.fetchLRAIngest(), 0);
}

TEST_F(OpenDemFile, GivesOneAndStandsAtTheFirstByte) {
  Reader reader;
  reader.addByteCount(7);
  reader.setLRAIngest(1);
  const std::string path = write("abc");
  EXPECT_EQ(reader.setFN(path), 1);
  EXPECT_TRUE(reader.is_open());
  EXPECT_TRUE(reader.good());
  EXPECT_TRUE(reader.fetchFileName() == path.c_str());
  EXPECT_EQ(reader.position(), 0);
  EXPECT_EQ(reader.fetchByteCount(), 0);
  EXPECT_EQ(reader.fetchLRAIngest(), 0);
}

TEST_F(OpenDemFile, IsWhatTheConstructorDoes) {
  Reader reader{UtString(write("abc"))};
  EXPECT_TRUE(reader.is_open());
  EXPECT_EQ(reader.fetchByteCount(), 0);
}

TEST_F(OpenDemFile, OfAMissingFileNamesItAsTheCallerDid) {
  setenv("KZ_DEM_TEST", directory().c_str(), 1);
  Reader reader;
  reader.setLRAIngest(1);
  StderrCapture err;
  EXPECT_EQ(reader.setFN("$KZ_DEM_TEST<0>/none.dem"), -1);
  EXPECT_EQ(err.text(), "DEM_LRA::setFN(): Could not open $KZ_DEM_TEST<0>/none.dem\n");
  EXPECT_TRUE(reader.fail());
  EXPECT_FALSE(reader.is_open());
  EXPECT_EQ(reader.fetchLRAIngest(), 0);
  EXPECT_EQ(reader.fetchFileName().str(), directory() + "/none.dem");
}

TEST_F(OpenDemFile, ExpandsPathVariables) {
  setenv("KZ_DEM_TEST", ("/nowhere:" + directory()).c_str(), 1);
  write("abc", "a.dem");
  Reader reader;
  EXPECT_EQ(reader.setFN("$KZ_DEM_TEST<1>/a.dem"), 1);
  EXPECT_EQ(reader.fetchFileName().str(), directory() + "/a.dem");
}

TEST_F(OpenDemFile, RefusesANameTooLongForAPath) {
  const std::string name(2000, 'x');
  Reader reader;
  StderrCapture err;
  EXPECT_EQ(reader.setFN(name), -1);
  EXPECT_EQ(err.text(), "DEM_LRA::setFN(): Could not open " + name + "\n");
  EXPECT_TRUE(reader.fetchFileName().empty());
}

TEST_F(OpenDemFile, ClosesTheFormerFileAndItsFailure) {
  Reader reader{UtString(write("a"))};
  char c = 0;
  while (reader.readFile(&c) == 1) {
  }
  EXPECT_TRUE(reader.eof());
  EXPECT_EQ(reader.setFN(write("xyz", "other.dem")), 1);
  EXPECT_EQ(reader.readFile(&c), 1);
  EXPECT_EQ(c, 'x');
}

TEST_F(OpenDemFile, KeepsTheCounterWhenItFails) {
  Reader reader{UtString(write("abc"))};
  reader.addByteCount(7);
  StderrCapture err;
  EXPECT_EQ(reader.setFN("/nowhere/none"), -1);
  EXPECT_EQ(reader.fetchByteCount(), 7);
}

TEST_F(OpenDemFile, TakesADirectoryThatNoReaderGetsAnythingFrom) {
  Reader reader;
  ASSERT_EQ(reader.setFN(directory()), 1);
  char c = 'q';
  EXPECT_EQ(reader.readFile(&c), -1);
  EXPECT_EQ(c, 'q');
  EXPECT_EQ(reader.skipFile(1), -1);
}

TEST_F(OpenDemFile, RefusesANamedPipeWithoutWaiting) {
  const std::string path = directory() + "/pipe.dem";
  const NamedPipe pipe(path);
  Reader reader;
  StderrCapture err;
  EXPECT_EQ(reader.setFN(path), -1);
  EXPECT_EQ(err.text(), "DEM_LRA::setFN(): Could not open " + path + "\n");
  EXPECT_TRUE(reader.fail());
  EXPECT_FALSE(reader.is_open());
  EXPECT_EQ(reader.fetchFileName().str(), path);
  EXPECT_EQ(reader.setFN(write("abc")), 1);
  char c = 0;
  EXPECT_EQ(reader.readFile(&c), 1);
  EXPECT_EQ(c, 'a');
}

TEST_F(OpenDemFile, IsUndoneByClose) {
  Reader reader{UtString(write("abc"))};
  reader.setLRAIngest(1);
  char c = 0;
  while (reader.readFile(&c) == 1) {
  }
  EXPECT_EQ(reader.closeFN(), 1);
  EXPECT_FALSE(reader.is_open());
  EXPECT_TRUE(reader.good());
  EXPECT_EQ(reader.fetchLRAIngest(), 0);
  EXPECT_EQ(reader.closeFN(), 1);
  EXPECT_TRUE(reader.good());
}

TEST_F(OpenDemFile, LetsTheCallerMarkTheHeader) {
  Reader reader;
  reader.setLRAIngest(5);
  EXPECT_EQ(reader.fetchLRAIngest(), 5);
}

// Block accounting.

using ByteCount = FieldTest;

TEST_F(ByteCount, CountsUpTo1020) {
  Reader reader{UtString(write(digits(3000)))};
  EXPECT_EQ(reader.addByteCount(1020), 1020);
  EXPECT_EQ(reader.fetchByteCount(), 1020);
  EXPECT_EQ(reader.position(), 0);
}

TEST_F(ByteCount, LeavesTheBlockAt1021AndForgetsTheBytes) {
  Reader reader{UtString(write(digits(3000)))};
  reader.stand_at(1000);
  EXPECT_EQ(reader.addByteCount(21), 0);
  EXPECT_EQ(reader.fetchByteCount(), 0);
  EXPECT_EQ(reader.position(), 1024);
}

TEST_F(ByteCount, LeavesTheBlockForOneByte) {
  Reader reader{UtString(write(digits(3000)))};
  EXPECT_EQ(reader.stand_at(1019).incByteCount(), 1020);
  EXPECT_EQ(reader.position(), 1019);
  EXPECT_EQ(reader.stand_at(1020).incByteCount(), 0);
  EXPECT_EQ(reader.position(), 1024);
}

TEST_F(ByteCount, StaysWhileTheFileIsClosed) {
  Reader reader;
  EXPECT_EQ(reader.addByteCount(1000), 1000);
  EXPECT_EQ(reader.addByteCount(21), 1000);
  EXPECT_EQ(reader.addByteCount(kMaxInt), 1000);
  EXPECT_EQ(reader.incByteCount(), 1001);
  reader.moveToNextBlock();
  EXPECT_EQ(reader.fetchByteCount(), 1001);
  EXPECT_TRUE(reader.good());
}

TEST_F(ByteCount, SurvivesAbsurdNumbers) {
  Reader reader{UtString(write(digits(3000)))};
  for (int i = 0; i < 4; ++i) reader.addByteCount(std::numeric_limits<int>::min());
  EXPECT_LT(reader.fetchByteCount(), 0);
  UtString s;
  EXPECT_EQ(reader.readFile(&s, 2000), 1);
  EXPECT_EQ(s.str(), digits(2000) + '\0');
  reader.moveToNextBlock();  // by two milliards: past the end
  EXPECT_EQ(reader.fetchByteCount(), 0);
  EXPECT_TRUE(reader.eof());
}

TEST_F(ByteCount, IsResetAlone) {
  Reader reader{UtString(write(digits(3000)))};
  reader.stand_at(500).resetByteCount();
  EXPECT_EQ(reader.fetchByteCount(), 0);
  EXPECT_EQ(reader.position(), 500);
}

using NextBlock = FieldTest;

TEST_F(NextBlock, Is1024LessTheCounterOn) {
  Reader reader{UtString(write(digits(3000)))};
  reader.stand_at(900).moveToNextBlock();
  EXPECT_EQ(reader.position(), 1024);
  EXPECT_EQ(reader.fetchByteCount(), 0);
  reader.moveToNextBlock();
  EXPECT_EQ(reader.position(), 2048);
}

TEST_F(NextBlock, MayBeginAtTheEndOfTheFile) {
  Reader reader{UtString(write(digits(1024)))};
  reader.moveToNextBlock();
  EXPECT_FALSE(reader.eof());
  EXPECT_TRUE(reader.good());
  EXPECT_EQ(reader.position(), 1024);
  char c = 'q';
  EXPECT_EQ(reader.readFile(&c), -1);
  EXPECT_EQ(c, 'q');
}

TEST_F(NextBlock, PastTheEndIsTheEndOfTheFile) {
  Reader reader{UtString(write(digits(1023)))};
  reader.moveToNextBlock();
  EXPECT_TRUE(reader.eof());
  EXPECT_FALSE(reader.fail());
  EXPECT_EQ(reader.fetchByteCount(), 0);
  // For good: no later move brings the stream back to life.
  reader.moveToNextBlock();
  EXPECT_TRUE(reader.eof());
  EXPECT_EQ(reader.skipFile(0), -1);
  int v = 5;
  EXPECT_EQ(reader.readFile(&v, 6), -1);
  EXPECT_EQ(v, 5);
}

// Skipping.

using SkipFile = FieldTest;

TEST_F(SkipFile, MovesAndCounts) {
  Reader reader{UtString(write(digits(3000)))};
  EXPECT_EQ(reader.skipFile(55), 1);
  EXPECT_EQ(reader.position(), 55);
  EXPECT_EQ(reader.fetchByteCount(), 55);
}

TEST_F(SkipFile, MovesTwiceAtTheEndOfABlock) {
  Reader reader{UtString(write(digits(3000)))};
  reader.stand_at(1000);
  EXPECT_EQ(reader.skipFile(21), 1);
  EXPECT_EQ(reader.position(), 1000 + 21 + 24);
  EXPECT_EQ(reader.fetchByteCount(), 0);
}

TEST_F(SkipFile, OverTheLastByteGoesWell) {
  Reader reader{UtString(write(digits(100)))};
  EXPECT_EQ(reader.skipFile(100), 1);
  EXPECT_TRUE(reader.good());
  EXPECT_EQ(reader.position(), 100);
}

TEST_F(SkipFile, PastTheEndCountsNothing) {
  Reader reader{UtString(write(digits(100)))};
  EXPECT_EQ(reader.skipFile(60), 1);
  EXPECT_EQ(reader.skipFile(41), -1);
  EXPECT_TRUE(reader.eof());
  EXPECT_EQ(reader.fetchByteCount(), 60);
}

TEST_F(SkipFile, BackwardsIsASeek) {
  Reader reader{UtString(write(digits(100)))};
  reader.stand_at(60);
  EXPECT_EQ(reader.skipFile(-20), 1);
  EXPECT_EQ(reader.position(), 40);
  EXPECT_EQ(reader.fetchByteCount(), 40);
}

TEST_F(SkipFile, OfAClosedFileFails) {
  Reader reader;
  EXPECT_EQ(reader.skipFile(55), -1);
}

// Characters.

using ReadCharacter = FieldTest;

TEST_F(ReadCharacter, ReadsAndCounts) {
  Reader reader{UtString(write("ab"))};
  char c = 0;
  EXPECT_EQ(reader.readFile(&c), 1);
  EXPECT_EQ(c, 'a');
  EXPECT_EQ(reader.fetchByteCount(), 1);
  // The last one of the file too: its end has not been met yet.
  EXPECT_EQ(reader.readFile(&c), 1);
  EXPECT_EQ(c, 'b');
  EXPECT_EQ(reader.readFile(&c), -1);
  EXPECT_EQ(c, 'b');
}

TEST_F(ReadCharacter, At1020ReadsTheFirstByteOfTheNextBlock) {
  Reader reader{UtString(write(std::string(1024, '.') + "Z" + std::string(100, '.')))};
  char c = 0;
  EXPECT_EQ(reader.stand_at(1020).readFile(&c), 1);
  EXPECT_EQ(c, 'Z');
  EXPECT_EQ(reader.fetchByteCount(), 0);
  EXPECT_EQ(reader.position(), 1025);
}

TEST_F(ReadCharacter, OfAClosedFileFails) {
  Reader reader;
  char c = 'q';
  EXPECT_EQ(reader.readFile(&c), -1);
  EXPECT_EQ(c, 'q');
}

// Texts.

using ReadText = FieldTest;

TEST_F(ReadText, KeepsBlanksAndAppendsANul) {
  Reader reader{UtString(write("  AB  CD"))};
  UtString s = "old";
  EXPECT_EQ(reader.readFile(&s, 6), 1);
  EXPECT_EQ(s.str(), std::string("  AB  \0", 7));
  EXPECT_EQ(reader.fetchByteCount(), 6);
}

TEST_F(ReadText, OfNoWidthIsANul) {
  Reader reader{UtString(write("AB"))};
  UtString s = "old";
  EXPECT_EQ(reader.readFile(&s, 0), 1);
  EXPECT_EQ(s.str(), std::string(1, '\0'));
  EXPECT_EQ(reader.fetchByteCount(), 0);
}

TEST_F(ReadText, OfNegativeWidthFailsAndEmptiesTheText) {
  Reader reader{UtString(write("AB"))};
  UtString s = "old";
  EXPECT_EQ(reader.readFile(&s, -1), -1);
  EXPECT_TRUE(s.empty());
  EXPECT_TRUE(reader.good());
}

TEST_F(ReadText, KeepsWhatTheFileStillHad) {
  Reader reader{UtString(write("ABC"))};
  UtString s;
  EXPECT_EQ(reader.readFile(&s, 6), -1);
  EXPECT_EQ(s.str(), "ABC");
  EXPECT_EQ(reader.fetchByteCount(), 4);  // the one that is missing was asked for
  EXPECT_EQ(reader.readFile(&s, 4), -1);
  EXPECT_EQ(s.str(), "");
}

TEST_F(ReadText, OfAWidthThatNoFileHasEndsWithTheFile) {
  Reader reader{UtString(write("ABC"))};
  UtString s;
  EXPECT_EQ(reader.readFile(&s, kMaxInt), -1);
  EXPECT_EQ(s.str(), "ABC");
  int v = 5;
  Reader other{UtString(write("ABC"))};
  EXPECT_EQ(other.readFile(&v, kMaxInt), -1);
  EXPECT_EQ(v, 5);
}

// The byte that is read behind a move is not counted, so that later moves go one too far.
TEST_F(ReadText, DoesNotCountTheByteThatCausedAMove) {
  std::string bytes = digits(3 * 1024);
  bytes.replace(1024, 4, "WXYZ");
  Reader reader{UtString(write(bytes))};
  UtString s;
  EXPECT_EQ(reader.stand_at(1018).readFile(&s, 6), 1);
  EXPECT_TRUE(s == "89WXYZ");  // offsets 1018, 1019, then the next block
  EXPECT_EQ(reader.fetchByteCount(), 3);
  EXPECT_EQ(reader.position(), 1028);
  reader.moveToNextBlock();
  EXPECT_EQ(reader.position(), 2049);
}

TEST_F(ReadText, OfAClosedFileFails) {
  Reader reader;
  UtString s = "old";
  EXPECT_EQ(reader.readFile(&s, 3), -1);
  EXPECT_TRUE(s.empty());
}

TEST_F(ReadText, OfAFileThatCouldNotBeOpenedFails) {
  StderrCapture err;
  Reader reader{UtString("/nowhere/none")};
  UtString s = "old";
  EXPECT_EQ(reader.readFile(&s, 3), -1);
  EXPECT_TRUE(s.empty());
}

// Integers.

using ReadInteger = FieldTest;

TEST_F(ReadInteger, ReadsAsAtoiDoes) {
  Reader reader{UtString(write("    12-32767  1a4 +7       "))};
  int v = 5;
  for (const int expected : {12, -32767, 1}) {
    EXPECT_EQ(reader.readFile(&v, 6), 1);
    EXPECT_EQ(v, expected);
  }
  EXPECT_EQ(reader.readFile(&v, 2), 1);
  EXPECT_EQ(v, 7);
  EXPECT_EQ(reader.readFile(&v, 6), 1);
  EXPECT_EQ(v, 0);
}

TEST_F(ReadInteger, InPlaceUpTo1020) {
  Reader reader{UtString(write(digits(3000)))};
  int v = 0;
  EXPECT_EQ(reader.stand_at(1014).readFile(&v, 6), 1);
  EXPECT_EQ(v, 456789);
  EXPECT_EQ(reader.fetchByteCount(), 1020);
  EXPECT_EQ(reader.position(), 1020);
}

TEST_F(ReadInteger, MovesToTheNextBlockBeforehandAt1021) {
  Reader reader{UtString(write(digits(3000)))};
  int v = 0;
  EXPECT_EQ(reader.stand_at(1015).readFile(&v, 6), 1);
  EXPECT_EQ(v, 456789);  // offsets 1024 to 1029
  EXPECT_EQ(reader.fetchByteCount(), 6);
  EXPECT_EQ(reader.position(), 1030);
}

TEST_F(ReadInteger, LeavesTheValueWhenTheFileEnds) {
  for (std::size_t size = 0; size < 6; ++size) {
    Reader reader{UtString(write(digits(size)))};
    int v = 5;
    EXPECT_EQ(reader.readFile(&v, 6), -1) << size;
    EXPECT_EQ(v, 5) << size;
  }
  Reader reader{UtString(write("123456"))};
  int v = 5;
  EXPECT_EQ(reader.readFile(&v, 6), 1);
  EXPECT_EQ(v, 123456);
}

TEST_F(ReadInteger, OfNegativeWidthFails) {
  Reader reader{UtString(write("123456"))};
  int v = 5;
  EXPECT_EQ(reader.readFile(&v, -6), -1);
  EXPECT_EQ(v, 5);
}

TEST_F(ReadInteger, OfAClosedFileFails) {
  Reader reader;
  reader.addByteCount(1018);
  int v = 5;
  EXPECT_EQ(reader.readFile(&v, 6), -1);
  EXPECT_EQ(v, 5);
}

// Real numbers.

using ReadReal = FieldTest;

TEST_F(ReadReal, ReadsAsAtofDoes) {
  Reader reader{
      UtString(write("   0.150000000000000D+03   0.150000000000000E+03                        "))};
  double v = -1.0;
  EXPECT_EQ(reader.readFile(&v, 24), 1);
  EXPECT_EQ(v, 0.15);
  EXPECT_EQ(reader.readFile(&v, 24), 1);
  EXPECT_EQ(v, 150.0);
  EXPECT_EQ(reader.readFile(&v, 24), 1);
  EXPECT_EQ(v, 0.0);
}

TEST_F(ReadReal, CrossesIntoTheNextBlockInMidField) {
  std::string bytes(2048, ' ');
  bytes.replace(1000, 24, "12345678901234567.89XXXX");
  bytes.replace(1024, 6, "0125YY");
  Reader reader{UtString(write(bytes))};
  double v = 0.0;
  EXPECT_EQ(reader.stand_at(1000).readFile(&v, 24), 1);
  EXPECT_EQ(v, 12345678901234567.890125);
  EXPECT_EQ(reader.fetchByteCount(), 3);
  EXPECT_EQ(reader.position(), 1028);
}

TEST_F(ReadReal, LeavesTheValueWhenTheFileEnds) {
  Reader reader{UtString(write("1.5e2"))};
  double v = -1.0;
  EXPECT_EQ(reader.readFile(&v, 6), -1);
  EXPECT_EQ(v, -1.0);
}

/// A locale whose decimal point is a comma, as the German one's.
struct CommaPoint : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

TEST_F(ReadReal, KnowsNoLocale) {
  const std::locale before = std::locale::global(std::locale(std::locale(), new CommaPoint));
  const std::string c_before = std::setlocale(LC_ALL, nullptr);
  std::setlocale(LC_ALL, "de_DE.UTF-8");  // where the host has it
  Reader reader{UtString(write("1.5e2 2,5e2 "))};
  double point = 0.0;
  double comma = 0.0;
  EXPECT_EQ(reader.readFile(&point, 6), 1);
  EXPECT_EQ(reader.readFile(&comma, 6), 1);
  std::setlocale(LC_ALL, c_before.c_str());
  std::locale::global(before);
  EXPECT_EQ(point, 150.0);
  EXPECT_EQ(comma, 2.0);
}

// Dates.

struct DateCase {
  const char* text;
  const char* date;
};

using ReadDate = FieldTest;

TEST_F(ReadDate, TakesTheDifferenceNotTheRemainder) {
  for (const DateCase& c :
       {DateCase{"1987", "19/1968/1"}, DateCase{"0000", "0/1/1"}, DateCase{"8704", "87/8617/1"},
        DateCase{"    ", "0/1/1"}, DateCase{"-150", "-1/-149/1"}, DateCase{"0099", "0/99/1"}}) {
    Reader reader{UtString(write(c.text))};
    UtDate d(7, 7, 7);
    EXPECT_EQ(reader.readFile(&d, 4), 1);
    std::ostringstream os;
    os << d;
    EXPECT_EQ(os.str(), c.date) << c.text;
  }
}

// 16 bits: 70000 is 4464, 700 is itself.
TEST_F(ReadDate, ComputesTheDifferenceIn16Bits) {
  Reader reader{UtString(write("070000"))};
  UtDate d(7, 7, 7);
  EXPECT_EQ(reader.readFile(&d, 6), 1);
  EXPECT_EQ(d.year(), 700);
  EXPECT_EQ(d.month(), 3764);
}

TEST_F(ReadDate, MovesToTheNextBlockBeforehand) {
  std::string bytes(2048, ' ');
  bytes.replace(1024, 4, "1987");
  Reader reader{UtString(write(bytes))};
  UtDate d(7, 7, 7);
  EXPECT_EQ(reader.stand_at(1017).readFile(&d, 4), 1);
  EXPECT_EQ(d.year(), 19);
  EXPECT_EQ(reader.fetchByteCount(), 4);
}

TEST_F(ReadDate, LeavesTheDateWhenTheFileEnds) {
  Reader reader{UtString(write("198"))};
  UtDate d(7, 8, 9);
  EXPECT_EQ(reader.readFile(&d, 4), -1);
  EXPECT_EQ(d.year(), 7);
  EXPECT_EQ(d.month(), 8);
  EXPECT_EQ(d.day(), 9);
}

}  // namespace
