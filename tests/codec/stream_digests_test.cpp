// Streaming digests against the command-line tools that print the same forms.
#include "tarnvik/codec/stream_digests.hpp"

#include <gtest/gtest.h>

#include "support/failing_file_manager.hpp"
#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

TEST(StreamDigests, MatchMd5sumSha1sumAndXxhsumWholeAndInPieces) {
  testing::TempDir dir;
  std::string bytes;
  for (std::uint64_t i = 0; i < 3000017; ++i) bytes += static_cast<char>(i * 131 % 253);
  const auto file = dir.write("clip.mov", bytes);
  const std::pair<DigestAlgorithm, const char*> tools[] = {{DigestAlgorithm::MD5, "md5sum"},
                                                           {DigestAlgorithm::SHA1, "sha1sum"},
                                                           {DigestAlgorithm::SHA256, "sha256sum"},
                                                           {DigestAlgorithm::XXH64, "xxhsum -H1"},
                                                           {DigestAlgorithm::XXH128, "xxhsum -H2"}};
  for (const auto& [algorithm, tool] : tools) {
    SCOPED_TRACE(tool);
    ASSERT_EQ(testing::sh(dir.path(), std::string(tool) + " clip.mov | cut -d' ' -f1 > expected"),
              0);
    std::string expected = testing::slurp(dir.path() / "expected");
    expected.pop_back();
    EXPECT_EQ(digestOfFileAtPath(testing::str(file), algorithm).utf8(), expected);
    StreamingDigest pieces(algorithm);
    for (std::size_t at = 0; at < bytes.size(); at += 65537) {
      pieces.update(bytes.data() + at, std::min<std::size_t>(65537, bytes.size() - at));
      if (at == 0) (void)pieces.hexDigest();  // reading it midway changes nothing
    }
    EXPECT_EQ(pieces.finish(), expected);
    // finish starts the digest over: fed the same bytes again, it gives the same digest.
    pieces.update(bytes.data(), bytes.size());
    EXPECT_EQ(pieces.finish(), expected);
  }
  Error error;
  EXPECT_TRUE(
      digestOfFileAtPath(testing::str(dir.path() / "none"), DigestAlgorithm::MD5, &error).isNil());
  EXPECT_EQ(error.code(), NSFileReadNoSuchFileError);
}

TEST(StreamDigests, AFileThatFailsMidwayGivesNilAndTheReadError) {
  testing::TempDir dir;
  const auto file = dir.write("clip.mov", std::string(3 << 20, 'x'));  // three blocks
  testing::FailingFileManager fm;
  fm.failCall(testing::FailingFileManager::Step::ReadBytes, 2, EIO);
  Error error;
  EXPECT_TRUE(digestOfFileAtPath(testing::str(file), DigestAlgorithm::SHA256, &error, fm).isNil());
  EXPECT_EQ(error.domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error.code(), 256);  // a read that failed for another reason
  EXPECT_EQ(error.userInfo().objectForKey(NSFilePathErrorKey).asString(), testing::str(file));
  EXPECT_EQ(fm.calls(testing::FailingFileManager::Step::ReadBytes), 2);
}

}  // namespace
}  // namespace tarnvik
