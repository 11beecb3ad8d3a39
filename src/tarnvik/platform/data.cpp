#include "tarnvik/platform/data.hpp"

#include <cstring>
#include <functional>

#include "tarnvik/platform/error.hpp"
#include "tarnvik/platform/format.hpp"

namespace tarnvik {

namespace {

std::shared_ptr<DataStorage> makeStorage(std::vector<std::uint8_t> bytes) {
  auto buffer = std::make_shared<std::vector<std::uint8_t>>(std::move(bytes));
  const UInteger length = buffer->size();
  return std::make_shared<DataStorage>(DataStorage{std::move(buffer), 0, length});
}

void requireRange(Range range, UInteger length, const char* operation) {
  if (range.location > length || range.length > length - range.location) {
    throw Exception(NSRangeException,
                    stringWithFormat(u"*** %s: range {%lu, %lu} exceeds data length %lu", operation,
                                     range.location, range.length, length));
  }
}

}  // namespace

Data Data::data() { return Data(makeStorage({})); }

Data Data::withBytes(const void* bytes, UInteger length) {
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  return Data(makeStorage(length ? std::vector<std::uint8_t>(first, first + length)
                                 : std::vector<std::uint8_t>()));
}
Data Data::withBytes(std::span<const std::uint8_t> bytes) {
  return withBytes(bytes.data(), bytes.size());
}
Data Data::withString(std::string_view bytes) { return withBytes(bytes.data(), bytes.size()); }
Data Data::withVector(std::vector<std::uint8_t> bytes) {
  return Data(makeStorage(std::move(bytes)));
}
Data Data::withLength(UInteger length) {
  return Data(makeStorage(std::vector<std::uint8_t>(length, 0)));
}
Data Data::fromStorage(const std::shared_ptr<void>& storage) {
  return Data(std::static_pointer_cast<DataStorage>(storage));
}

UInteger Data::length() const { return storage_ ? storage_->length : 0; }

const std::uint8_t* Data::bytes() const {
  static const std::uint8_t none = 0;
  if (!storage_ || storage_->buffer->empty()) return &none;
  return storage_->buffer->data() + storage_->offset;
}

Data Data::subdataWithRange(Range range) const {
  requireRange(range, length(), "-[NSData subdataWithRange:]");
  return withBytes(bytes() + range.location, range.length);
}

Data Data::subdataWithRangeNoCopy(Range range) const {
  requireRange(range, length(), "-[NSData subdataWithRange:]");
  if (isNil()) return Data();
  return Data(std::make_shared<DataStorage>(
      DataStorage{storage_->buffer, storage_->offset + range.location, range.length}));
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

std::vector<std::uint8_t>& Data::detach() {
  if (!storage_) {
    storage_ = makeStorage({});
  } else if (storage_.use_count() > 1 || storage_->buffer.use_count() > 1 ||
             storage_->offset != 0 || storage_->length != storage_->buffer->size()) {
    storage_ = makeStorage(std::vector<std::uint8_t>(bytes(), bytes() + length()));
  }
  return *storage_->buffer;
}

std::uint8_t* Data::mutableBytes() {
  auto& buffer = detach();
  return buffer.data();
}

void Data::appendBytes(const void* bytes, UInteger length) {
  if (length == 0) {
    detach();
    return;
  }
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  // The bytes may lie inside the receiver's own buffer: copy them first.
  std::vector<std::uint8_t> incoming(first, first + length);
  auto& buffer = detach();
  buffer.insert(buffer.end(), incoming.begin(), incoming.end());
  storage_->length = buffer.size();
}

void Data::appendData(const Data& other) {
  const Data keep = other;
  appendBytes(keep.bytes(), keep.length());
}

void Data::setLength(UInteger length) {
  auto& buffer = detach();
  buffer.resize(length, 0);
  storage_->length = length;
}

void Data::replaceBytesInRange(Range range, const void* bytes, UInteger length) {
  requireRange(range, this->length(), "-[NSMutableData replaceBytesInRange:withBytes:length:]");
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  std::vector<std::uint8_t> incoming(first, first + length);
  auto& buffer = detach();
  const auto at = buffer.begin() + static_cast<std::ptrdiff_t>(range.location);
  buffer.erase(at, at + static_cast<std::ptrdiff_t>(range.length));
  buffer.insert(buffer.begin() + static_cast<std::ptrdiff_t>(range.location), incoming.begin(),
                incoming.end());
  storage_->length = buffer.size();
}

}  // namespace tarnvik
