#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "support/temp_dir.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

TEST(PathPrimitives, ComponentsFollowTheMarkerRules) {
  EXPECT_EQ(String(u"/a/b").pathComponents(), (Array{u"/", u"a", u"b"}));
  EXPECT_EQ(String(u"a//b/").pathComponents(), (Array{u"a", u"b", u"/"}));
  EXPECT_EQ(String(u"/").pathComponents(), (Array{u"/"}));
  EXPECT_EQ(String(u"").pathComponents(), Array::array());
  EXPECT_EQ(String::pathWithComponents(Array{u"/", u"a", u"b"}).utf8(), "/a/b");
  EXPECT_EQ(String::pathWithComponents(Array{u"a", u"b", u"/"}).utf8(), "a/b/");
}

struct PathCase {
  const char* label;
  const char16_t* path;
  const char* last;
  const char* parent;
  const char* extension;
  const char* withoutExtension;
};

void PrintTo(const PathCase& c, std::ostream* out) { *out << String(c.path).utf8(); }

class PathParts : public ::testing::TestWithParam<PathCase> {};

TEST_P(PathParts, SplitAsThePlatformDoes) {
  const auto& c = GetParam();
  const String path(c.path);
  EXPECT_EQ(path.lastPathComponent().utf8(), c.last);
  EXPECT_EQ(path.stringByDeletingLastPathComponent().utf8(), c.parent);
  EXPECT_EQ(path.pathExtension().utf8(), c.extension);
  EXPECT_EQ(path.stringByDeletingPathExtension().utf8(), c.withoutExtension);
}

INSTANTIATE_TEST_SUITE_P(
    Paths, PathParts,
    ::testing::Values(PathCase{"AbsoluteWithExtension", u"/a/b.mov", "b.mov", "/a", "mov", "/a/b"},
                      PathCase{"TopLevel", u"/a", "a", "/", "", "/a"},
                      PathCase{"Root", u"/", "/", "/", "", "/"},
                      PathCase{"Empty", u"", "", "", "", ""},
                      PathCase{"DoubleExtension", u"clip.tar.gz", "clip.tar.gz", "", "gz",
                               "clip.tar"},
                      PathCase{"TrailingSlash", u"a/b/", "b", "a", "", "a/b"},
                      PathCase{"HiddenFileInDottedFolder", u"/x.d/.hidden", ".hidden", "/x.d", "",
                               "/x.d/.hidden"},
                      PathCase{"RepeatedSlashes", u"//a//b.c//", "b.c", "/a", "c", "/a/b"}),
    [](const auto& info) { return std::string(info.param.label); });

TEST(PathPrimitives, AppendingAndStandardising) {
  EXPECT_EQ(String(u"a").stringByAppendingPathComponent(u"b").utf8(), "a/b");
  EXPECT_EQ(String(u"").stringByAppendingPathComponent(u"b").utf8(), "b");
  EXPECT_EQ(String(u"/").stringByAppendingPathComponent(u"b/").utf8(), "/b");
  EXPECT_EQ(String(u"a/").stringByAppendingPathComponent(u"/b").utf8(), "a/b");
  EXPECT_EQ(String(u"clip").stringByAppendingPathExtension(u"mov").utf8(), "clip.mov");
  EXPECT_TRUE(String(u"/").stringByAppendingPathExtension(u"mov").isNil());
  EXPECT_EQ(String(u"/a/./b/../c//").stringByStandardizingPath().utf8(), "/a/c");
  EXPECT_EQ(String(u"/../..").stringByStandardizingPath().utf8(), "/");
  EXPECT_EQ(String(u"a/../b").stringByStandardizingPath().utf8(), "a/../b");  // relative: kept
  setenv("HOME", "/home/editor", 1);
  EXPECT_EQ(String(u"~/clips").stringByExpandingTildeInPath().utf8(), "/home/editor/clips");
  EXPECT_EQ(String(u"~").stringByStandardizingPath().utf8(), "/home/editor");
  EXPECT_EQ(String(u"~no-such-user-here/x").stringByExpandingTildeInPath().utf8(),
            "~no-such-user-here/x");
  EXPECT_TRUE(String(u"~/x").isAbsolutePath());
  EXPECT_FALSE(String(u"x/y").isAbsolutePath());
}

TEST(PathPrimitives, SymlinksResolvedInTheExistingPart) {
  testing::TempDir dir;
  std::filesystem::create_directories(dir.path() / "real" / "day");
  std::filesystem::create_symlink(dir.path() / "real", dir.path() / "link");
  const std::string real = std::filesystem::canonical(dir.path() / "real").string();
  const String viaLink((dir.path() / "link" / "day" / "new" / "clip.mov").string());
  EXPECT_EQ(viaLink.stringByResolvingSymlinksInPath().utf8(), real + "/day/new/clip.mov");
  EXPECT_EQ(String(u"rel/../x").stringByResolvingSymlinksInPath().utf8(), "rel/../x");
}

TEST(Encodings, LossyASCIIAndRoundTrips) {
  EXPECT_EQ(String(u"Tärnvik ß").dataUsingEncoding(NSASCIIStringEncoding, true).asStringView(),
            "Tarnvik ss");
  EXPECT_TRUE(String(u"Tärnvik").dataUsingEncoding(NSASCIIStringEncoding).isNil());
  EXPECT_EQ(String(u"é").dataUsingEncoding(NSISOLatin1StringEncoding).asStringView(), "\xE9");
  EXPECT_EQ(String::withData(Data::withString("\xE9"), NSISOLatin1StringEncoding).utf8(), "é");
  EXPECT_TRUE(String::withData(Data::withString("\xE9"), NSASCIIStringEncoding).isNil());
  EXPECT_TRUE(String::withData(Data::withString("\xE9"), NSUTF8StringEncoding).isNil());
  const Data utf16 = String(u"a\U0001F3AC").dataUsingEncoding(NSUTF16StringEncoding);
  EXPECT_EQ(utf16.length(), 6u);
  EXPECT_EQ(String::withData(utf16, NSUTF16StringEncoding).utf8(), "a\U0001F3AC");
  EXPECT_TRUE(String().dataUsingEncoding(NSUTF8StringEncoding).isNil());
}

}  // namespace
}  // namespace tarnvik
