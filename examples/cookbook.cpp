// The everyday chores of a media application, each in a few lines (the README's cookbook).
// Run with a scratch folder: cookbook /tmp/scratch
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <vector>

#include "tarnvik/tarnvik.hpp"

namespace tv = tarnvik;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: cookbook SCRATCH_FOLDER\n";
    return 2;
  }
  const std::string scratch = argv[1];

  // The next clip, before the extension.
  std::cout << tv::incrementLastSegmentOfFileName(u"A001C009.mov") << '\n';  // A001C010.mov

  // File names in the order a person reads them, with std::sort.
  std::vector<tv::String> clips{u"clip10.mov", u"clip9.MOV", u"clip9.mov"};
  std::sort(clips.begin(), clips.end(), [](const tv::String& a, const tv::String& b) {
    return tv::compareFileNamesForSequence(a, b) == tv::NSOrderedAscending;
  });
  for (const tv::String& clip : clips) std::cout << clip << ' ';  // clip9.MOV clip9.mov clip10.mov
  std::cout << '\n';

  // A name no rival has taken.
  std::cout << tv::uniqueStringWithRivals(u"Clip", tv::Array{u"Clip", u"Clip 2"}) << '\n';

  // Query strings in and out; strings and standard types mix freely.
  const tv::Dictionary query =
      tv::URLQueryParameters(u"https://example.com/clips?reel=A001&fps=25");
  const std::string reel = query.objectForKey(u"reel").asString().toStdString();
  std::map<tv::String, int> counts{{u"A001", 3}};
  std::cout << reel << ' ' << counts[tv::String(reel)] << '\n';  // A001 3

  // A digest of a file of any size, in constant memory, and errors that say what went wrong.
  const std::string clip = scratch + "/A001C001.mov";
  tv::FileManager::defaultManager().writeDataToPath(tv::Data::withString("frames"),
                                                    tv::String(clip), true);
  tv::Error error;
  std::cout << tv::digestOfFileAtPath(tv::String(clip), tv::DigestAlgorithm::SHA256, &error)
            << '\n';
  if (tv::digestOfFileAtPath(u"/nowhere/clip.mov", tv::DigestAlgorithm::MD5, &error).isNil()) {
    std::cout << error.localizedDescription()
              << '\n';  // The file “clip.mov” couldn’t be opened ...
  }

  // gzip from file to file, streamed.
  if (!tv::gzipPackFileAtPath(tv::String(clip), tv::String(clip + ".gz"), &error)) {
    std::cout << error.localizedDescription() << '\n';
  }

  // Durations, dates and timecodes.
  std::cout << tv::humanReadableStringForDuration(5400.0f) << '\n';  // 1:30:00 h
  const auto tc = tv::Timecode(17982, tv::FrameRate::fps29_97DropFrame());
  std::cout << tc.toStdString() << ' ' << (tc + 2).toStdString()
            << '\n';  // 00:10:00;00 00:10:00;02
  if (!tv::Timecode::fromString("00:01:00;00", tv::FrameRate::fps29_97DropFrame(), &error)) {
    std::cout << error.localizedDescription() << '\n';  // ... skips frames 00 to 01 ...
  }

  // Key-value queries over collections.
  const tv::Array takes{tv::Dictionary{{u"name", u"A001C001"}, {u"good", true}},
                        tv::Dictionary{{u"name", u"A001C002"}, {u"good", false}}};
  std::cout << tv::objectsWithValueForKey(takes, true, u"good").count() << " good take\n";
  return 0;
}
