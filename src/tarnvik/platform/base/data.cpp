#include "tarnvik/platform/base/data.hpp"

#include <cstring>
#include <functional>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"
#include "tarnvik/platform/base/internal/message.hpp"

namespace tarnvik {

namespace {

std::shared_ptr<DataStorage> bufferStorage(ByteBuffer bytes) {
  auto buffer = std::make_shared<ByteBuffer>(std::move(bytes));
  auto storage = std::make_shared<DataStorage>();
  storage->buffer = buffer.get();
  storage->bytes = buffer->data();
  storage->length = buffer->size();
  storage->owner = std::move(buffer);
  return storage;
}

void requireRange(Range range, UInteger length, const char* operation) {
  if (!rangeFitsInLength(range, length)) {
    throw Exception(NSRangeException,
                    message::build(operation, ": range {", range.location, ", ", range.length,
                                   "} exceeds data length ", length));
  }
}

}  // namespace

Data Data::data() { return Data(bufferStorage({})); }

Data Data::withBytes(const void* bytes, UInteger length) {
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  return Data(bufferStorage(length ? ByteBuffer(first, first + length) : ByteBuffer()));
}
Data Data::withBytes(std::span<const std::uint8_t> bytes) {
  return withBytes(bytes.data(), bytes.size());
}
Data Data::withString(std::string_view bytes) { return withBytes(bytes.data(), bytes.size()); }
Data Data::withBuffer(ByteBuffer bytes) { return Data(bufferStorage(std::move(bytes))); }

Data Data::withVector(std::vector<std::uint8_t> bytes) {
  auto vector = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
  auto storage = std::make_shared<DataStorage>();
  storage->bytes = vector->data();
  storage->length = vector->size();
  storage->owner = std::move(vector);
  return Data(std::move(storage));
}

Data Data::withLength(UInteger length) { return Data(bufferStorage(ByteBuffer(length, 0))); }

Data Data::withBytesNoCopy(const void* bytes, UInteger length,
                           std::function<void(const void*, UInteger)> deallocator) {
  auto storage = std::make_shared<DataStorage>();
  storage->owner = std::shared_ptr<const void>(
      bytes, [length, deallocator = std::move(deallocator)](const void* p) {
        if (deallocator) deallocator(p, length);
      });
  storage->bytes = static_cast<const std::uint8_t*>(bytes);
  storage->length = length;
  return Data(std::move(storage));
}

Data Data::dataWithContentsOfFile(const String& path, UInteger options, Error* error) {
  return FileManager::defaultManager().contentsAtPath(path, options, error);
}

bool Data::writeToFile(const String& path, bool atomically, Error* error) const {
  return FileManager::defaultManager().writeDataToPath(*this, path, atomically, error);
}

const std::uint8_t* Data::bytes() const {
  static const std::uint8_t none = 0;
  return storage_ && storage_->bytes ? storage_->bytes : &none;
}

Data Data::subdataWithRange(Range range) const {
  requireRange(range, length(), "Data::subdataWithRange");
  return withBytes(bytes() + range.location, range.length);
}

Data Data::subdataWithRangeNoCopy(Range range) const {
  requireRange(range, length(), "Data::subdataWithRange");
  if (isNil()) return Data();
  auto view = std::make_shared<DataStorage>();
  view->owner = storage_->owner;
  view->bytes = bytes() + range.location;
  view->length = range.length;
  return Data(std::move(view));
}

bool Data::isEqualToData(const Data& other) const {
  if (isNil() || other.isNil()) return isNil() == other.isNil();
  return length() == other.length() &&
         (length() == 0 || std::memcmp(bytes(), other.bytes(), length()) == 0);
}

std::size_t Data::hash() const {
  // The first 80 bytes are enough to tell most buffers apart, as on the platform.
  const auto view = asStringView();
  return std::hash<std::string_view>{}(view.substr(0, 80)) ^ length();
}

Data Data::copy() const { return isNil() ? Data() : withBytes(bytes(), length()); }

ByteBuffer& Data::detach() {
  const bool inPlace = storage_ && storage_.use_count() == 1 && storage_->buffer &&
                       storage_->owner.use_count() == 1 &&
                       storage_->bytes == storage_->buffer->data() &&
                       storage_->length == storage_->buffer->size();
  if (!inPlace) storage_ = bufferStorage(ByteBuffer(bytes(), bytes() + length()));
  return *storage_->buffer;
}

void Data::syncWithBuffer() {
  storage_->bytes = storage_->buffer->data();
  storage_->length = storage_->buffer->size();
}

std::uint8_t* Data::mutableBytes() {
  ByteBuffer& buffer = detach();
  return buffer.data();
}

void Data::appendBytes(const void* bytes, UInteger length) {
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  // The bytes may lie inside the receiver's own buffer: copy them first.
  const ByteBuffer incoming(first, first + length);
  ByteBuffer& buffer = detach();
  buffer.insert(buffer.end(), incoming.begin(), incoming.end());
  syncWithBuffer();
}

void Data::appendData(const Data& other) {
  const Data keep = other;
  appendBytes(keep.bytes(), keep.length());
}

void Data::setLength(UInteger length) {
  ByteBuffer& buffer = detach();
  buffer.resize(length, 0);
  syncWithBuffer();
}

void Data::replaceBytesInRange(Range range, const void* bytes, UInteger length) {
  requireRange(range, this->length(), "Data::replaceBytesInRange");
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  const ByteBuffer incoming(first, first + length);
  ByteBuffer& buffer = detach();
  const auto at = buffer.begin() + static_cast<std::ptrdiff_t>(range.location);
  buffer.erase(at, at + static_cast<std::ptrdiff_t>(range.length));
  buffer.insert(buffer.begin() + static_cast<std::ptrdiff_t>(range.location), incoming.begin(),
                incoming.end());
  syncWithBuffer();
}

}  // namespace tarnvik
