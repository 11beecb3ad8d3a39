// Sorts the lines of a file in sequence order (compareForSequence) and writes them out, the
// job `sort -V` does for a shell user; text_compare.py times the two side by side. The text
// is decoded once and the lines are ordered as views into it with sequenceOrder, then
// written back as the original bytes.
//   sequence_sort IN OUT
#include <algorithm>
#include <cstdio>
#include <vector>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/string.hpp"
#include "tarnvik/text/sequence_order.hpp"

using namespace tarnvik;

namespace {}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: sequence_sort IN OUT\n");
    return 2;
  }
  const Data input = Data::dataWithContentsOfFile(argv[1], NSDataReadingMappedIfSafe);
  if (input.isNil()) return 1;
  const std::string_view bytes = input.asStringView();
  const String text = String::fromUTF8Lossy(bytes);
  const std::u16string_view units = text.units();
  std::vector<std::u16string_view> lines;
  std::vector<std::string_view> lineBytes;
  lines.reserve(bytes.size() / 12);
  lineBytes.reserve(bytes.size() / 12);
  // Lines end at the same "\n" in both forms; walk them side by side.
  for (std::size_t start = 0, unitStart = 0; start < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\n', start), bytes.size());
    const std::size_t unitEnd = std::min(units.find(u'\n', unitStart), units.size());
    lines.push_back(units.substr(unitStart, unitEnd - unitStart));
    lineBytes.push_back(bytes.substr(start, end - start));
    start = end + 1;
    unitStart = unitEnd + 1;
  }
  std::string out;
  out.reserve(bytes.size() + 1);
  for (const std::size_t i : sequenceOrder(lines)) {
    out += lineBytes[i];
    out += '\n';
  }
  return Data::withString(out).writeToFile(argv[2], false) ? 0 : 1;
}
