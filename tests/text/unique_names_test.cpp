#include "tarnvik/text/unique_names.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

struct RivalsCase {
  const char* name;
  const char16_t* base;
  Array rivals;
  bool removeNumbers;
  const char* expected;
};

void PrintTo(const RivalsCase& c, std::ostream* out) { *out << c.name; }

class Numbering : public ::testing::TestWithParam<RivalsCase> {};

TEST_P(Numbering, PicksOneAboveTheHighestClash) {
  const auto& c = GetParam();
  EXPECT_EQ(uniqueStringWithRivals(c.base, c.rivals, c.removeNumbers).utf8(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Rivals, Numbering,
    ::testing::Values(
        RivalsCase{"no_rivals", u"Clip", Array::array(), false, "Clip"},
        RivalsCase{"nil_rivals", u"Clip", Array(), false, "Clip"},
        RivalsCase{"first_clash", u"Clip", Array{u"Clip"}, false, "Clip 1"},
        RivalsCase{"highest_plus_one", u"Clip", Array{u"Clip", u"Clip 1", u"Clip 5"}, false,
                   "Clip 6"},
        RivalsCase{"no_gap_filling", u"Clip", Array{u"Clip 2"}, false, "Clip 3"},
        RivalsCase{"prefix_is_no_rival", u"Clip", Array{u"Clipper", u"Clip2"}, false, "Clip"},
        RivalsCase{"copy_clashes_without_number", u"Clip", Array{u"Clip copy"}, false, "Clip 1"},
        RivalsCase{"case_and_leading_blanks", u"Clip", Array{u"  clip 2"}, false, "Clip 3"},
        RivalsCase{"negative_counts_as_zero", u"Clip", Array{u"Clip -4"}, false, "Clip 1"},
        RivalsCase{"remove_numbers", u"Clip 3", Array{u"Clip 3"}, true, "Clip 4"},
        RivalsCase{"remove_numbers_alone", u"Clip 3", Array::array(), true, "Clip"},
        RivalsCase{"keep_numbers", u"Clip 3", Array{u"Clip 3"}, false, "Clip 3 1"},
        RivalsCase{"percent_in_base", u"50% off", Array{u"50% off 2"}, false, "50% off 3"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Numbering, RemovingTheNumber) {
  EXPECT_EQ(stringByRemovingUniqueNumber(u"Clip 12").utf8(), "Clip");
  EXPECT_EQ(stringByRemovingUniqueNumber(u"Clip   7").utf8(), "Clip");
  EXPECT_EQ(stringByRemovingUniqueNumber(u"Clip12").utf8(), "Clip12");
  EXPECT_EQ(stringByRemovingUniqueNumber(u"12").utf8(), "12");
  EXPECT_EQ(stringByRemovingUniqueNumber(u"").utf8(), "");
  EXPECT_EQ(stringByRemovingUniqueNumber(u"a\nb").utf8(), "");
}

TEST(Numbering, LinearInLongRivalLists) {
  Array rivals = Array::arrayWithCapacity(1000);
  for (int i = 0; i < 1000; ++i)
    rivals.addObject(String(u"Clip ").stringByAppendingString(String(std::to_string(i))));
  EXPECT_EQ(uniqueStringWithRivals(u"Clip", rivals).utf8(), "Clip 1000");
}

TEST(FilesInAFolder, NumberGoesBeforeTheExtension) {
  testing::TempDir dir;
  const String folder(dir.path().string());
  dir.write("Clip.mov", "");
  dir.write("CLIP 1.MOV", "");
  dir.write("Clip.mxf", "");
  std::filesystem::create_directories(dir.path() / "Day01");
  EXPECT_EQ(uniquifyFileNameInFolder(u"Clip.mov", folder).utf8(), "Clip 2.mov");
  EXPECT_EQ(uniquifyFileNameInFolder(u"Clip.mov", folder, Array{u"clip 7.Mov"}).utf8(),
            "Clip 8.mov");
  EXPECT_EQ(uniquifyFileNameInFolder(u"Clip.wav", folder).utf8(), "Clip.wav");
  EXPECT_EQ(uniquifyFileNameInFolder(u"Day01", folder).utf8(), "Day01 1");  // a folder clashes
  EXPECT_EQ(uniquifyFileNameInFolder(u"Clip.mov", folder.stringByAppendingPathComponent(u"missing"))
                .utf8(),
            "Clip.mov");
  EXPECT_EQ(uniquifyFilePath(folder.stringByAppendingPathComponent(u"Clip.mxf")),
            folder.stringByAppendingPathComponent(u"Clip 1.mxf"));
}

TEST(DisplayPaths, TrimmedInTheMiddle) {
  EXPECT_EQ(trimFilePathInMiddleToRoughlyMaxSize(u"/Volumes/Media/Project/Day01/Clips/A001.mov", 30)
                .utf8(),
            "/Volumes/Media/.../Clips/A001.mov");
  EXPECT_EQ(trimFilePathInMiddleToRoughlyMaxSize(u"/short", 30).utf8(), "/short");
  const String longName(std::u16string(100, u'x'));
  EXPECT_EQ(trimFilePathInMiddleToRoughlyMaxSize(longName, 10), longName);
  EXPECT_EQ(trimFilePathInMiddleToRoughlyMaxSize(u"/aaaa/bbbb/cccc", 2).utf8(), "/...");
}

TEST(CommonParts, PrefixesAndAncestors) {
  EXPECT_TRUE(commonPrefixOfStrings(Array::array(), 0).isNil());
  EXPECT_EQ(commonPrefixOfStrings(Array{u"A001C001", u"A001C002", u"A001D"}, 0).utf8(), "A001");
  EXPECT_EQ(commonPrefixOfStrings(Array{u"Clip", u"cLIPS"}, NSCaseInsensitiveSearch).utf8(),
            "cLIP");
  EXPECT_EQ(commonPrefixOfStrings(Array{u"x", u"y", u"x"}, 0).utf8(), "");
  EXPECT_TRUE(commonAncestorDirectoryFromPaths(Array::array()).isNil());
  EXPECT_EQ(commonAncestorDirectoryFromPaths(Array{u"/a/b/"}).utf8(), "/a/b/");
  EXPECT_EQ(commonAncestorDirectoryFromPaths(Array{u"/a/b/c.mov"}).utf8(), "/a/b");
  EXPECT_EQ(commonAncestorDirectoryFromPaths(Array{u"/a/b/c.mov", u"/a/b/d.mov"}).utf8(), "/a/b");
  EXPECT_EQ(commonAncestorDirectoryFromPaths(Array{u"/a/b/c.mov", u"/a/b/c.mov"}).utf8(),
            "/a/b/c.mov");
  EXPECT_EQ(commonAncestorDirectoryFromPaths(Array{u"/a/x", u"/b/y"}).utf8(), "/");
  EXPECT_TRUE(commonAncestorDirectoryFromPaths(Array{u"a/x", u"b/y"}).isNil());
}

}  // namespace
}  // namespace tarnvik
