// Clip names, counters, sequence order, affixes, unique names and backup names.
#include "fuzz_input.hpp"
#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/text/affixes.hpp"
#include "tarnvik/text/backup_names.hpp"
#include "tarnvik/text/name_segments.hpp"
#include "tarnvik/text/number_forms.hpp"
#include "tarnvik/text/sequence_order.hpp"
#include "tarnvik/text/unique_names.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const auto index = in.number<std::uint16_t>();
  const String name = in.text(), other = in.text();
  fuzz::guarded([&] { (void)incrementLastSegment(name); });
  fuzz::guarded([&] { (void)decrementLastSegment(name); });
  fuzz::guarded([&] { (void)resetLastSegmentToIndex(name, index); });
  fuzz::guarded([&] { (void)compareForSequence(name, other); });
  fuzz::guarded([&] { (void)caseInsensitiveNumericalCompare(name, other); });
  fuzz::guarded([&] { (void)integerValueOfHexString(name); });
  fuzz::guarded([&] { (void)stringByDeletingPrefix(name, other); });
  fuzz::guarded([&] { (void)decimalDigitSuffixOfAction(name); });
  fuzz::guarded([&] { (void)nonDecimalDigitSuffixIgnoringFileExtensions(name); });
  fuzz::guarded([&] { (void)uniqueStringWithRivals(name, Array{other, name}); });
  fuzz::guarded([&] { (void)backupDate(name); });
  fuzz::guarded([&] { (void)backupVersion(name); });
  fuzz::guarded([&] { (void)backupType(name); });
  return 0;
}
