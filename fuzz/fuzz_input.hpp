// What every harness shares: reading the fuzzer's bytes as texts and numbers, and running
// an operation so that the library's own failure form (an Exception with a name and a
// reason, which the default assertion handler also raises) counts as a defined result.
// Anything else (a crash, a sanitizer report, another exception, a hang) is a finding.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/string.hpp"

namespace tarnvik::fuzz {

// Consumes the input front to back.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : rest_(reinterpret_cast<const char*>(data), size) {}

  bool empty() const { return rest_.empty(); }
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto b = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return b;
  }
  template <class T>
  T number() {
    T value{};
    const std::size_t n = std::min(sizeof value, rest_.size());
    std::memcpy(&value, rest_.data(), n);
    rest_.remove_prefix(n);
    return value;
  }
  // The bytes up to the next NUL (or the end), as UTF-8 text; invalid sequences become
  // U+FFFD, so every input reaches the operations as some text.
  String text() { return String::fromUTF8Lossy(bytes()); }
  std::string_view bytes() {
    const std::size_t end = std::min(rest_.find('\0'), rest_.size());
    const std::string_view piece = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return piece;
  }
  std::string_view remaining() {
    const std::string_view all = rest_;
    rest_ = {};
    return all;
  }

 private:
  std::string_view rest_;
};

// Runs the operation; an Exception is one of its documented outcomes.
template <class Operation>
void guarded(Operation operation) {
  try {
    operation();
  } catch (const Exception&) {
  }
}

}  // namespace tarnvik::fuzz
