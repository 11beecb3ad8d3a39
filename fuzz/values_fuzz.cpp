// Key paths into nested values, and typed readings of stored dictionary values (settings
// files hold anything).
#include "fuzz_input.hpp"
#include "tarnvik/collections/dictionaries.hpp"
#include "tarnvik/platform/base/key_value_coding.hpp"

namespace {

// A small nested value built from the input: numbers, texts, arrays and dictionaries.
tarnvik::Value valueFrom(tarnvik::fuzz::Input& in, int depth) {
  using namespace tarnvik;
  switch (in.byte() % 7) {
    case 0:
      return in.number<std::int64_t>();
    case 1:
      return in.number<double>();
    case 2:
      return in.number<std::uint64_t>();
    case 3: {
      if (depth > 3) return kNull;
      Array array = Array::array();
      for (int n = in.byte() % 4; n > 0; --n) array.addObject(valueFrom(in, depth + 1));
      return array;
    }
    case 4: {
      if (depth > 3) return kNull;
      Dictionary dictionary = Dictionary::dictionary();
      for (int n = in.byte() % 4; n > 0; --n) {
        dictionary.setObject(valueFrom(in, depth + 1), in.text());
      }
      return dictionary;
    }
    case 5:
      return kNull;
    default:
      return in.text();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const String keyPath = in.text();
  const Value root = valueFrom(in, 0);
  fuzz::guarded([&] { (void)valueForKeyPath(root, keyPath); });
  const Dictionary settings = root.asDictionary();
  if (settings.isNil()) return 0;
  for (const auto& entry : settings) {
    const Value& key = entry.first;  // (clang 14 cannot capture a structured binding)
    fuzz::guarded([&] { (void)indexSetForKey(settings, key); });
    fuzz::guarded([&] { (void)NSSizeForKey(settings, key); });
    fuzz::guarded([&] { (void)NSPointForKey(settings, key); });
    fuzz::guarded([&] { (void)integerForKey(settings, key); });
    fuzz::guarded([&] { (void)stringForKey(settings, key); });
    fuzz::guarded([&] {
      Dictionary copy = settings;
      setIndexSet(copy, indexSetForKey(settings, key), u"again");
    });
  }
  fuzz::guarded([&] { (void)urlEncodedParameters(settings); });
  return 0;
}
