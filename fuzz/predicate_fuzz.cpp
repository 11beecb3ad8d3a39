// Predicate formats (queries typed by users or read from saved searches): parsing, evaluating
// against a record, describing, and the empty-string extension of the fetch helpers.
#include "fuzz_input.hpp"
#include "tarnvik/platform/store/predicate.hpp"
#include "tarnvik/store/fetch_helpers.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnvik;
  fuzz::Input in(data, size);
  const String format = in.text();
  std::vector<Value> arguments;
  for (int n = in.byte() % 4; n > 0; --n) {
    switch (in.byte() % 4) {
      case 0:
        arguments.emplace_back(in.number<std::int32_t>());
        break;
      case 1:
        arguments.emplace_back(in.number<double>());
        break;
      case 2:
        arguments.emplace_back();
        break;
      default:
        arguments.emplace_back(in.text());
        break;
    }
  }
  const Dictionary record{{u"name", in.text()},
                          {u"flags", in.number<std::int32_t>()},
                          {u"tags", Array{Value(in.text()), Value(in.number<double>())}}};
  std::shared_ptr<Predicate> predicate;
  fuzz::guarded([&] { predicate = Predicate::predicateWithFormat(format, arguments); });
  if (!predicate) return 0;
  fuzz::guarded([&] { (void)predicate->evaluateWithObject(Value(record)); });
  (void)predicate->predicateFormat();
  const auto extended = ke_predicateByExtendingEmptyStringWithNilComparison(predicate);
  fuzz::guarded([&] { (void)extended->evaluateWithObject(Value(record)); });
  (void)extended->predicateFormat();
  return 0;
}
