// ZIP64: an archive of more than 65,535 entries made by Python, and an entry over 4 GiB
// written and read back by the facade.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/file_helpers.hpp"
#include "support/shell.hpp"
#include "support/temp_dir.hpp"
#include "tarnvik/zip/zip_archive.hpp"

namespace tarnvik {
namespace {

namespace fs = std::filesystem;
using testing::str;

TEST(Zip64, MoreThan65535Entries) {
  testing::TempDir dir;
  ASSERT_EQ(testing::python(dir.path(), R"(
import zipfile
with zipfile.ZipFile("many.zip", "w") as z:
    for i in range(70000):
        z.writestr(f"frames/{i // 1000:02d}/f{i:05d}.dng", str(i))
)"),
            0);
  ASSERT_TRUE(KUZipArchive::unzipFileAtPath(str(dir.path() / "many.zip"), str(dir.path() / "out")));
  std::size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(dir.path() / "out")) {
    files += entry.is_regular_file() ? 1 : 0;
  }
  EXPECT_EQ(files, 70000u);
  EXPECT_EQ(testing::slurp(dir.path() / "out/frames/69/f69999.dng"), "69999");
}

TEST(Zip64, AnEntryOver4GiB) {
  testing::TempDir dir;
  const std::uint64_t size = (std::uint64_t{1} << 32) + 4096;
  {
    std::ofstream sparse(dir.path() / "huge.bin", std::ios::binary);
    sparse.seekp(static_cast<std::streamoff>(size - 3));
    sparse << "end";
  }
  KUZipArchive archive(str(dir.path() / "huge.zip"));
  ASSERT_TRUE(archive.open());
  ASSERT_TRUE(archive.writeFile(str(dir.path() / "huge.bin")));
  archive.close();
  fs::remove(dir.path() / "huge.bin");
  ASSERT_EQ(testing::python(
                dir.path(),
                "import zipfile\n"
                "open('size', "
                "'w').write(str(zipfile.ZipFile('huge.zip').getinfo('huge.bin').file_size))\n"),
            0);
  EXPECT_EQ(testing::slurp(dir.path() / "size"), std::to_string(size));
  Error error;
  UnzipOptions zeros;  // 4 GiB of zeros is exactly what the ratio cap is for
  zeros.maxCompressionRatio = 0;
  ASSERT_TRUE(KUZipArchive::unzipFileAtPathWithOptions(str(dir.path() / "huge.zip"),
                                                       str(dir.path() / "out"), zeros, &error))
      << error.description();
  EXPECT_EQ(fs::file_size(dir.path() / "out/huge.bin"), size);
  std::ifstream back(dir.path() / "out/huge.bin", std::ios::binary);
  back.seekg(static_cast<std::streamoff>(size - 3));
  std::string tail(3, '\0');
  back.read(tail.data(), 3);
  EXPECT_EQ(tail, "end");
}

}  // namespace
}  // namespace tarnvik
