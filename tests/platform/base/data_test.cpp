#include "tarnvik/platform/base/data.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/temp_dir.hpp"
#include "tarnvik/platform/foundation.hpp"

namespace tarnvik {
namespace {

TEST(Data, SubrangesWithoutCopyKeepTheirParentAlive) {
  Data sub;
  {
    const Data parent = Data::withString("0123456789");
    sub = parent.subdataWithRangeNoCopy({2, 3});
    EXPECT_EQ(sub.bytes(), parent.bytes() + 2);
  }
  EXPECT_EQ(sub.asStringView(), "234");
  Data changed = sub;
  changed.appendBytes("X", 1);
  EXPECT_EQ(changed.asStringView(), "234X");
  EXPECT_EQ(sub.asStringView(), "234");
  EXPECT_THROW((void)sub.subdataWithRange({2, 2}), Exception);
  Data self = Data::withString("ab");
  self.appendData(self);
  EXPECT_EQ(self.asStringView(), "abab");
  EXPECT_TRUE(Data().isNil());
  EXPECT_EQ(Data::data(), Data::withBytes(nullptr, 0));
}

TEST(Data, AdoptedBytesAreReleasedOnceWithTheLastView) {
  static char bytes[] = "adopted";
  int released = 0;
  {
    Data view;
    {
      const Data data = Data::withBytesNoCopy(bytes, 7, [&](const void* p, UInteger n) {
        EXPECT_EQ(p, bytes);
        EXPECT_EQ(n, 7u);
        ++released;
      });
      view = data.subdataWithRangeNoCopy({2, 3});
      Data changed = data;
      changed.mutableBytes()[0] = 'A';  // a change copies; the adopted bytes stay as they are
      EXPECT_EQ(bytes[0], 'a');
    }
    EXPECT_EQ(released, 0);
    EXPECT_EQ(view.asStringView(), "opt");
  }
  EXPECT_EQ(released, 1);
}

TEST(Data, FilesReadMappedOrCopiedAndWriteAtomically) {
  testing::TempDir dir;
  const String path(dir.write("clip.bin", std::string("\x00\x01payload", 9)).string());
  for (UInteger options : {UInteger{0}, UInteger{NSDataReadingMappedIfSafe}}) {
    Error error;
    const Data read = Data::dataWithContentsOfFile(path, options, &error);
    ASSERT_FALSE(read.isNil());
    EXPECT_EQ(read.asStringView(), std::string_view("\x00\x01payload", 9));
    EXPECT_TRUE(error.isNil());
  }
  const String copy(String(dir.path().string()).stringByAppendingString(u"/copy.bin"));
  Error error;
  ASSERT_TRUE(Data::withString("new").writeToFile(copy, true, &error));
  EXPECT_EQ(Data::dataWithContentsOfFile(copy).asStringView(), "new");
  struct stat info {};
  ASSERT_EQ(::stat(copy.utf8().c_str(), &info), 0);
  EXPECT_NE(info.st_mode & 0044, 0u);  // not left with mkstemp's private mode
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.path()), {}), 2);  // no leftovers
  EXPECT_EQ(Data::dataWithContentsOfFile(String(dir.write("empty", "").string()),
                                         NSDataReadingMappedIfSafe),
            Data::data());
}

TEST(Data, FileErrorsSayWhatWentWrong) {
  Error error;
  EXPECT_TRUE(Data::dataWithContentsOfFile(u"/no/such/file", 0, &error).isNil());
  EXPECT_EQ(error.domain(), String(NSCocoaErrorDomain));
  EXPECT_EQ(error.code(), 260);
  EXPECT_EQ(error.underlyingError().code(), ENOENT);
  EXPECT_FALSE(Data::withString("x").writeToFile(u"/no/such/dir/file", true, &error));
  EXPECT_EQ(error.code(), 512);
  testing::TempDir dir;
  EXPECT_TRUE(
      Data::dataWithContentsOfFile(String(dir.path().string()), 0, &error).isNil());  // a folder
}

}  // namespace
}  // namespace tarnvik
