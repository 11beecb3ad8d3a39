// The file-type catalogue against its table, and the file-system queries on this machine.
#include "tarnvik/fs/file_types.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "support/file_helpers.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/core/errors.hpp"

namespace tarnvik {
namespace {

std::string joined(const Array& array) {
  std::string text;
  for (const Value& item : array) text += (text.empty() ? "" : " ") + item.asString().utf8();
  return text;
}

TEST(FileTypes, CatalogueListsInStoredOrder) {
  EXPECT_EQ(joined(imageFileTypes()),
            "exr xbm fpx pntg pict icns qtif sgi tga bmp ico raf raw mrw orf srf cr2 crw tiff "
            "dng arw pef mos nef jp2 png gif jpeg jpg rgb rmf crm tif");
  EXPECT_EQ(imageFileTypes().count(), 33u);
  EXPECT_EQ(joined(ariFileTypes()), "ari arx");
  EXPECT_EQ(joined(dpxFileTypes()), "dpx cin cdx vrw");
  EXPECT_EQ(joined(directoryFilenames()), "dmaginfo_fcp.xml index.xml");
  EXPECT_EQ(sequenceFileTypes().count(), 39u);
  EXPECT_EQ(joined(sequenceFileTypes()).substr(0, 4), "exr ");
  EXPECT_TRUE(joined(sequenceFileTypes()).ends_with("tif dpx cin cdx vrw ari arx"));
  EXPECT_EQ(joined(movieFileTypes()), "mov avi mp4 mxf r3d");
  // The base lists are built once and shared; the combined ones anew on every call.
  EXPECT_TRUE(Value(imageFileTypes()).isIdenticalTo(Value(imageFileTypes())));
  EXPECT_FALSE(Value(movieFileTypes()).isIdenticalTo(Value(movieFileTypes())));
}

TEST(FileTypes, FileSystemTypeAndOpenFiles) {
  testing::TempDir dir;
  Error error;
  EXPECT_FALSE(fileSystemTypeAtPath(testing::str(dir.path()), &error).isEmpty());
  EXPECT_TRUE(fileSystemTypeAtPath(u"/no/such/path", &error).isNil());
  EXPECT_EQ(error.domain(), String(KFErrorDomainTarnvikExtensions));
  EXPECT_EQ(error.code(), -1);
  EXPECT_EQ(error.userInfo().objectForKey(NSLocalizedFailureReasonErrorKey).asString(),
            String(u"Could not aquire file system"));
  EXPECT_TRUE(error.userInfo().objectForKey(NSLocalizedDescriptionKey).isNil());

  const auto file = dir.write("open.mov", "x");
  const int descriptor = ::open(file.c_str(), O_RDONLY);
  ASSERT_GE(descriptor, 0);
  const String path = testing::str(file);
  EXPECT_TRUE(listOpenFiles().containsObject(path));
  EXPECT_TRUE(listOpenFilesOnVolumeAtPath(testing::str(dir.path())).containsObject(path));
  EXPECT_FALSE(listOpenFilesOnVolumeAtPath(u"/proc").containsObject(path));
  EXPECT_EQ(listOpenFilesOnVolumeAtPath(u"/no/such/volume").count(), 0u);
  ::close(descriptor);
  EXPECT_FALSE(listOpenFiles().containsObject(path));
}

}  // namespace
}  // namespace tarnvik
