// The folder jobs of fs_compare.py, one per run, through the library's file-system
// operations:
//   fs_tool copy SRC DST        contents copy into an existing folder
//   fs_tool merge SRC DST       contents copy skipping every file that is already there
//   fs_tool remove DIR          removes the folder with everything in it
//   fs_tool recreate SRC DST    every folder of SRC below DST, no files
//   fs_tool scan-records DIR [ROUNDS]   the library's scan alone, for a profiler
//   fs_tool scan DIR [ROUNDS]   best time of directoryFilesAtPathCFI, of a bare readdir loop
//                               and of std::filesystem::directory_iterator, in this process
#include <dirent.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tarnvik/fs/directory_scanning.hpp"
#include "tarnvik/fs/directory_transfer.hpp"
#include "tarnvik/fs/folder_recreation.hpp"

using namespace tarnvik;

namespace {

int failed(const Error& error) {
  std::fprintf(stderr, "fs_tool: %s\n", error.description().utf8().c_str());
  return 1;
}

// A plain loop over readdir, as a C program would write it: the floor of any scan.
std::size_t readdirLoop(const char* path) {
  DIR* folder = opendir(path);
  if (!folder) return 0;
  std::size_t count = 0;
  while (const dirent* entry = readdir(folder)) {
    if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
      count += entry->d_type == DT_DIR ? 2 : 1;
    }
  }
  closedir(folder);
  return count;
}

// The standard library's way to the same records: each entry's path and folder flag.
std::vector<std::pair<std::filesystem::path, bool>> standardLoop(const char* path) {
  std::vector<std::pair<std::filesystem::path, bool>> records;
  for (const auto& entry : std::filesystem::directory_iterator(path)) {
    records.emplace_back(entry.path(), entry.is_directory());
  }
  return records;
}

// The best time of the job; what it returns is destroyed after the clock stopped.
template <class Job>
double bestSeconds(int rounds, Job job) {
  double best = 1e9;
  for (int i = 0; i < rounds; ++i) {
    const auto start = std::chrono::steady_clock::now();
    [[maybe_unused]] const auto result = job();
    best = std::min(
        best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  }
  return best;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: fs_tool copy|merge|remove|recreate|scan PATH [PATH]\n");
    return 2;
  }
  const std::string job = argv[1];
  FileManager& fm = FileManager::defaultManager();
  Error error;
  if (job == "scan") {
    const int rounds = argc > 3 ? std::atoi(argv[3]) : 10;
    const String path(argv[2]);
    const std::size_t records = directoryFilesAtPathCFI(path).count();
    const double ours = bestSeconds(rounds, [&] { return directoryFilesAtPathCFI(path); });
    const double bare = bestSeconds(rounds, [&] { return readdirLoop(argv[2]); });
    const double standard = bestSeconds(rounds, [&] { return standardLoop(argv[2]); });
    std::printf("%zu %.6f %.6f %.6f\n", records, ours, bare, standard);
    return 0;
  }
  if (job == "scan-records") {  // the library's scan alone, for profiling
    std::vector<Array> kept;
    for (int i = 0; i < (argc > 3 ? std::atoi(argv[3]) : 10); ++i) {
      kept.push_back(directoryFilesAtPathCFI(String(argv[2])));
    }
    return 0;
  }
  if (job == "remove") return fm.removeItemAtPath(String(argv[2]), &error) ? 0 : failed(error);
  if (argc < 4) return 2;
  const String source(argv[2]), destination(argv[3]);
  if (job == "copy") {
    return copyContentsOfDirectoryAtPath(fm, source, destination, &error) ? 0 : failed(error);
  }
  if (job == "merge") {
    TransferOptions options;
    options.conflict = TransferConflict::Skip;
    return transferContentsOfDirectoryAtPath(fm, source, destination, options, &error)
               ? 0
               : failed(error);
  }
  if (job == "recreate") {
    return recreateFoldersFromPath(fm, source, destination, true, &error) ? 0 : failed(error);
  }
  return 2;
}
