// Data: a copy-on-write byte buffer. Sub-ranges taken without copying share the parent's
// bytes and keep them alive.
//
//   Data d = Data::withBytes("abc", 3);
//   d.length();  // 3
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "tarnvik/platform/types.hpp"

namespace tarnvik {

// The bytes a Data handle sees: a window onto a buffer that sub-ranges may share.
struct DataStorage {
  std::shared_ptr<std::vector<std::uint8_t>> buffer;
  UInteger offset = 0;
  UInteger length = 0;
};

// A default-constructed Data is nil; Data::data() is empty.
class Data {
 public:
  Data() = default;
  static Data data();
  static Data withBytes(const void* bytes, UInteger length);
  static Data withBytes(std::span<const std::uint8_t> bytes);
  static Data withString(std::string_view bytes);
  static Data withVector(std::vector<std::uint8_t> bytes);
  static Data withLength(UInteger length);  // zero-filled
  static Data fromStorage(const std::shared_ptr<void>& storage);
  const std::shared_ptr<DataStorage>& storage() const { return storage_; }

  bool isNil() const { return !storage_; }
  UInteger length() const;
  bool isEmpty() const { return length() == 0; }
  const std::uint8_t* bytes() const;
  std::span<const std::uint8_t> span() const { return {bytes(), length()}; }
  std::string_view asStringView() const {
    return {reinterpret_cast<const char*>(bytes()), length()};
  }

  // NSRangeException when the range lies outside the data.
  Data subdataWithRange(Range range) const;
  // The same bytes without a copy; the result keeps the receiver's buffer alive.
  Data subdataWithRangeNoCopy(Range range) const;

  bool isEqualToData(const Data& other) const;
  std::size_t hash() const;
  bool isIdenticalTo(const Data& other) const { return storage_ == other.storage_; }
  Data copy() const;

  std::uint8_t* mutableBytes();
  void appendBytes(const void* bytes, UInteger length);
  void appendData(const Data& other);
  void setLength(UInteger length);
  void replaceBytesInRange(Range range, const void* bytes, UInteger length);

  friend bool operator==(const Data& a, const Data& b) { return a.isEqualToData(b); }

 private:
  explicit Data(std::shared_ptr<DataStorage> storage) : storage_(std::move(storage)) {}
  std::vector<std::uint8_t>& detach();
  std::shared_ptr<DataStorage> storage_;
};

using MutableData = Data;

}  // namespace tarnvik
