// Data: a copy-on-write byte buffer. Its bytes may live in a growable buffer of its own, in
// memory it adopted, or in a mapped file; sub-ranges taken without copying share the
// parent's bytes and keep them alive.
//
//   Data d = Data::withBytes("abc", 3);
//   Data file = Data::dataWithContentsOfFile(u"/tmp/clip.mov", NSDataReadingMappedIfSafe);
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "tarnvik/platform/base/types.hpp"

namespace tarnvik {

class Error;
class String;

// An allocator that leaves new bytes uninitialised, so that growing a buffer that is about
// to be overwritten costs no memset.
template <class T>
struct DefaultInitAllocator : std::allocator<T> {
  template <class U>
  struct rebind {
    using other = DefaultInitAllocator<U>;
  };
  DefaultInitAllocator() = default;
  template <class U>
  DefaultInitAllocator(const DefaultInitAllocator<U>&) noexcept {}  // NOLINT
  template <class U>
  void construct(U* p) noexcept(std::is_nothrow_default_constructible_v<U>) {
    ::new (static_cast<void*>(p)) U;
  }
  template <class U, class... Args>
  void construct(U* p, Args&&... args) {
    ::new (static_cast<void*>(p)) U(std::forward<Args>(args)...);
  }
};

// A growable byte buffer whose resize() does not zero the new bytes.
using ByteBuffer = std::vector<std::uint8_t, DefaultInitAllocator<std::uint8_t>>;

// What a Data handle sees: a window of bytes and whatever keeps them alive. `buffer` is set
// when the owner is a ByteBuffer holding exactly these bytes, which may then grow in place.
struct DataStorage {
  std::shared_ptr<const void> owner;
  ByteBuffer* buffer = nullptr;
  const std::uint8_t* bytes = nullptr;
  UInteger length = 0;
};

enum DataReadingOptions : UInteger {
  NSDataReadingMappedIfSafe = 1,
  NSDataReadingUncached = 2,
  NSDataReadingMappedAlways = 8,
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
  static Data withBuffer(ByteBuffer bytes);
  static Data withLength(UInteger length);  // zero-filled
  // Adopts the bytes; the deallocator runs once the last handle or view is gone.
  static Data withBytesNoCopy(const void* bytes, UInteger length,
                              std::function<void(const void*, UInteger)> deallocator);
  // The file's bytes, mapped into memory with NSDataReadingMappedIfSafe or
  // NSDataReadingMappedAlways (a mapped file must not be truncated while the Data lives),
  // read otherwise. nil on failure, with an Error in NSCocoaErrorDomain (260: no such file,
  // 257: no permission, 256: other) whose underlying error is the POSIX one.
  static Data dataWithContentsOfFile(const String& path, UInteger options = 0,
                                     Error* error = nullptr);

  bool isNil() const { return !storage_; }
  UInteger length() const { return storage_ ? storage_->length : 0; }
  bool isEmpty() const { return length() == 0; }
  // Never null, also for nil and empty data.
  const std::uint8_t* bytes() const;
  std::span<const std::uint8_t> span() const { return {bytes(), length()}; }
  std::string_view asStringView() const {
    return {reinterpret_cast<const char*>(bytes()), length()};
  }

  // NSRangeException when the range lies outside the data.
  Data subdataWithRange(Range range) const;
  // The same bytes without a copy; the result keeps the receiver's bytes alive.
  Data subdataWithRangeNoCopy(Range range) const;

  bool isEqualToData(const Data& other) const;
  std::size_t hash() const;
  bool isIdenticalTo(const Data& other) const { return storage_ == other.storage_; }
  Data copy() const;

  // Writes the bytes to the file (atomically: to a temporary file renamed into place).
  // false on failure, with an Error as for reading (code 512 for write failures, 640 for a
  // full disk).
  bool writeToFile(const String& path, bool atomically, Error* error = nullptr) const;

  // Changing the bytes detaches them from every other handle and view.
  std::uint8_t* mutableBytes();
  void appendBytes(const void* bytes, UInteger length);
  void appendData(const Data& other);
  // New bytes are zero.
  void setLength(UInteger length);
  void replaceBytesInRange(Range range, const void* bytes, UInteger length);

  friend bool operator==(const Data& a, const Data& b) { return a.isEqualToData(b); }

 private:
  friend class Value;
  explicit Data(std::shared_ptr<DataStorage> storage) : storage_(std::move(storage)) {}
  ByteBuffer& detach();
  void syncWithBuffer();
  std::shared_ptr<DataStorage> storage_;
};

using MutableData = Data;

}  // namespace tarnvik
