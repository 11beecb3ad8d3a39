// The zip jobs of zip_compare.py, one per run, through the facade:
//   zip_tool unzip ARCHIVE DEST        the facade's extraction
//   zip_tool unzip-hardened ARCHIVE DEST   the hardened extraction (the tool's default)
//   zip_tool zip ARCHIVE FOLDER        every file below the folder, under its relative path
#include <cstdio>
#include <string>

#include "tarnvik/platform/base/directory_enumerator.hpp"
#include "tarnvik/zip/zip_archive.hpp"

using namespace tarnvik;

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: zip_tool unzip|unzip-hardened|zip ARCHIVE FOLDER\n");
    return 2;
  }
  const std::string job = argv[1];
  const String archive(argv[2]), folder(argv[3]);
  Error error;
  bool done = false;
  if (job == "unzip") {
    done = KUZipArchive::unzipFileAtPath(archive, folder, true, String(), &error);
  } else if (job == "unzip-hardened") {
    done = KUZipArchive::unzipFileAtPathWithOptions(archive, folder, UnzipOptions(), &error);
  } else if (job == "zip") {
    KUZipArchive zip(archive);
    done = zip.open();
    DirectoryEnumerator walk(FileManager::defaultManager(), folder);
    DirectoryItem item;
    while (done && walk.nextItem(&item)) {
      if (item.type == FileType::Regular) done = zip.writeFile(item.path, item.relativePath);
    }
    zip.close();
  }
  if (!done) std::fprintf(stderr, "zip_tool: %s\n", error.description().utf8().c_str());
  return done ? 0 : 1;
}
