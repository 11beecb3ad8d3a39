#include "tarnvik/text/paths.hpp"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>

#include "support/fake_volumes.hpp"
#include "support/raised.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {
namespace {

using testing::FixedVolumesFileManager;

TEST(Volumes, TheFirstListedPrefixClaimsThePath) {
  FixedVolumesFileManager volumes(Array{u"/", u"/Volumes/Media", u"/Volumes/Media2"});
  EXPECT_EQ(volumePath(u"/Volumes/Media/Day01/clip.mov", volumes).utf8(), "/Volumes/Media");
  EXPECT_EQ(volumePath(u"/Volumes/Media2/clip.mov", volumes).utf8(),
            "/Volumes/Media");  // boundary-blind
  EXPECT_EQ(volumePath(u"/Volumes/Media", volumes).utf8(), "/Volumes/Media");
  EXPECT_EQ(volumePath(u"/Users/editor/clip.mov", volumes).utf8(), "/");
  EXPECT_EQ(volumePath(u"/Volumes/Other/../Media/x", volumes).utf8(),
            "/Volumes/Media");  // standardised
  FixedVolumesFileManager reversed(Array{u"/Volumes/Media2", u"/Volumes/Media"});
  EXPECT_EQ(volumePath(u"/Volumes/Media2/clip.mov", reversed).utf8(), "/Volumes/Media2");
}

TEST(Volumes, StrippingRemovesTheVolumesLength) {
  FixedVolumesFileManager volumes(Array{u"/", u"/Volumes/Media"});
  EXPECT_EQ(stringByStrippingVolumesFromPath(u"/Volumes/Media/Day01/clip.mov", volumes).utf8(),
            "/Day01/clip.mov");
  EXPECT_EQ(stringByStrippingVolumesFromPath(u"/Users/editor/clip.mov", volumes).utf8(),
            "Users/editor/clip.mov");
  EXPECT_EQ(stringByStrippingVolumesFromPath(u"/", volumes).utf8(), "/");
  EXPECT_EQ(stringByStrippingVolumesFromPath(u"/Volumes/Media", volumes).utf8(), "/");
}

TEST(Volumes, MountPointsAreResolvedThroughSymlinks) {
  testing::TempDir dir;
  std::filesystem::create_directories(dir.path() / "real");
  std::filesystem::create_symlink(dir.path() / "real", dir.path() / "link");
  const String real(std::filesystem::canonical(dir.path() / "real").string());
  FixedVolumesFileManager volumes(Array{String((dir.path() / "link").string())});
  EXPECT_EQ(volumePath(real.stringByAppendingPathComponent(u"clip.mov"), volumes), real);
}

TEST(PathStrings, ComponentsFromEitherEnd) {
  EXPECT_TRUE(firstPathComponent(u"").isNil());
  EXPECT_EQ(firstPathComponent(u"/a/b").utf8(), "/");
  EXPECT_EQ(firstPathComponent(u"a/b").utf8(), "a");
  EXPECT_EQ(relativePathByPreservingPathDepth(u"/a/b/c/clip.mov", 2).utf8(), "b/c/clip.mov");
  EXPECT_EQ(relativePathByPreservingPathDepth(u"/a/b/c/clip.mov", 0).utf8(), "clip.mov");
  EXPECT_EQ(relativePathByPreservingPathDepth(u"b/clip.mov", 5).utf8(), "b/clip.mov");
  EXPECT_EQ(stringByDeletingLastPathComponents(u"/a/b/c", 2).utf8(), "/a");
  EXPECT_EQ(stringByDeletingLastPathComponents(u"/", 1).utf8(), "");
  EXPECT_EQ(stringByDeletingLastPathComponents(u"/a", 5).utf8(), "");
  EXPECT_EQ(stringByDeletingLastPathComponents(u"/a/b", -1).utf8(), "/a/b");
  EXPECT_EQ(stringByPreservingLastPathComponents(u"/a/b/", 2).utf8(), "a/b");
  EXPECT_EQ(stringByPreservingLastPathComponents(u"/a/b", 3).utf8(), "/a/b");
  EXPECT_EQ(stringByPreservingLastPathComponents(u"/a/b", 4).utf8(), "");
  EXPECT_EQ(stringByPreservingLastPathComponents(u"/a/b", 0).utf8(), "");
  EXPECT_EQ(stringByDeletingFirstPathComponents(u"/a/b/c", 1).utf8(), "a/b/c");
  EXPECT_EQ(stringByDeletingFirstPathComponents(u"/a/b/c", 2).utf8(), "b/c");
  EXPECT_EQ(stringByDeletingFirstPathComponents(u"/a/b/c", 9).utf8(), "");
  EXPECT_EQ(stringByReplacingLastPathComponent(u"/a/b.mov", u"c.mxf").utf8(), "/a/c.mxf");
  EXPECT_EQ(stringOneFolderUp(u"/a/b/c/clip.mov").utf8(), "c");
  EXPECT_EQ(stringTwoFolderUp(u"/a/b/c/clip.mov").utf8(), "b");
  EXPECT_EQ(stringThreeFolderUp(u"/a/b/c/clip.mov").utf8(), "a");
}

TEST(PathStrings, AbsoluteAndRelative) {
  EXPECT_EQ(absolutePathFromBaseDirPath(u"../x", u"/a/b").utf8(), "/a/x");
  EXPECT_EQ(absolutePathFromBaseDirPath(u"./x", u"/a/b").utf8(), "/a/b/x");
  EXPECT_EQ(absolutePathFromBaseDirPath(u"x/y", u"/a/b").utf8(), "/a/b/x/y");
  EXPECT_EQ(absolutePathFromBaseDirPath(u"/x", u"/a/b").utf8(), "/a/b/x");  // joined, not replaced
  EXPECT_TRUE(absolutePathFromBaseDirPath(u"../../../x", u"/a").isNil());
  setenv("HOME", "/home/editor", 1);
  EXPECT_EQ(absolutePathFromBaseDirPath(u"~/clips", u"/a").utf8(), "/home/editor/clips");
  EXPECT_EQ(relativePathFromBaseDirPath(u"/a/b/c/clip.mov", u"/a/b/x/y").utf8(),
            "../../c/clip.mov");
  EXPECT_EQ(relativePathFromBaseDirPath(u"/a/b", u"/a/b").utf8(), "");
  EXPECT_EQ(relativePathFromBaseDirPath(u"/a/B/c", u"/a/b").utf8(), "../B/c");  // case-sensitive
}

TEST(PathStrings, SeparatorsColonsAndSlashes) {
  EXPECT_EQ(
      stringByReplacingOccurencesOfFileSystemPathSeparators(u"ignored", u"a/b:c\\d~e#f").utf8(),
      "a_b_c_d_e_f");
  EXPECT_EQ(stringByReplacingColons(u"10:00:00").utf8(), "10;00;00");
  EXPECT_EQ(stringByReplacingColonsInString(u"ignored", u"a:b").utf8(), "a;b");
  EXPECT_EQ(stringWithTrailingSlash(u"/a").utf8(), "/a/");
  EXPECT_EQ(stringWithTrailingSlash(u"/a/").utf8(), "/a/");
  EXPECT_THROW(stringWithTrailingSlash(u""), Exception);
}

TEST(PathStrings, RealPathOfExistingFilesOnly) {
  testing::TempDir dir;
  dir.write("f/clip.mov", "x");
  const std::string canonical = std::filesystem::canonical(dir.path() / "f" / "clip.mov").string();
  EXPECT_EQ(realPath(String((dir.path() / "f" / ".." / "f" / "clip.mov").string())).utf8(),
            canonical);
  EXPECT_TRUE(realPath(String((dir.path() / "missing").string())).isNil());
}

TEST(KeyPaths, JoinAndSplitAtDots) {
  EXPECT_EQ(stringByAppendingKeyPathComponent(u"", u"b").utf8(), "b");
  EXPECT_EQ(stringByAppendingKeyPathComponent(u"a", u"").utf8(), "a");
  EXPECT_EQ(stringByAppendingKeyPathComponent(u"a", u"b").utf8(), "a.b");
  EXPECT_EQ(stringByDeletingLastKeyPathComponent(u"a.b.c").utf8(), "a.b");
  EXPECT_EQ(stringByDeletingLastKeyPathComponent(u"a").utf8(), "");
  EXPECT_EQ(stringByDeletingFirstKeyPathComponent(u"a.b.c").utf8(), "b.c");
  EXPECT_EQ(stringByDeletingFirstKeyPathComponent(u"a").utf8(), "");
  EXPECT_EQ(lastKeyPathComponent(u"a.b.c").utf8(), "c");
  EXPECT_EQ(lastKeyPathComponent(u"").utf8(), "");
  EXPECT_EQ(firstKeyPathComponent(u"a.b.c").utf8(), "a");
}

TEST(ParenthesisedPaths, ReadUpToTheLastClosingParenthesis) {
  Scanner scanner(u"(/Volumes/A (1)/clip.mov) trailing");
  String path;
  EXPECT_TRUE(scanPathInParenthesesIntoString(scanner, &path));
  EXPECT_EQ(path.utf8(), "/Volumes/A (1)/clip.mov");  // what follows the last ")" is dropped
  EXPECT_TRUE(scanner.isAtEnd());
  Scanner exact(u"  (/Volumes/A (1)/clip.mov)");
  const CharacterSet skip = CharacterSet::whitespaceAndNewlineCharacterSet();
  exact.setCharactersToBeSkipped(&skip);
  exact.setScanLocation(2);
  EXPECT_TRUE(scanPathInParenthesesIntoString(exact, &path));
  EXPECT_EQ(path.utf8(), "/Volumes/A (1)/clip.mov");
  EXPECT_TRUE(exact.isAtEnd());
  ASSERT_NE(exact.charactersToBeSkipped(), nullptr);  // the skip set is back
  Scanner noOut(u"(x)");
  EXPECT_FALSE(scanPathInParenthesesIntoString(noOut, nullptr));
  Scanner unclosed(u"(x");
  EXPECT_EQ(testing::raised([&] { scanPathInParenthesesIntoString(unclosed, &path); }),
            "NSInvalidArgumentException: ) is not a suffix");
}

}  // namespace
}  // namespace tarnvik
