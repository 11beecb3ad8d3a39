#include "tarnvik/platform/base/data.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>

#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/internal/file_errors.hpp"
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
                    message::build("*** ", operation, ": range {", range.location, ", ",
                                   range.length, "} exceeds data length ", length));
  }
}

// The process's file-creation mask, read once (reading it means setting it).
mode_t processUmask() {
  static const mode_t mask = [] {
    const mode_t m = ::umask(022);
    ::umask(m);
    return m;
  }();
  return mask;
}

// Closes the descriptor when it goes out of scope.
struct FileDescriptor {
  int fd;
  ~FileDescriptor() {
    if (fd >= 0) ::close(fd);
  }
};

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
  FileDescriptor file{::open(path.utf8().c_str(), O_RDONLY | O_CLOEXEC)};
  struct stat info {};
  if (file.fd < 0 || ::fstat(file.fd, &info) != 0) {
    if (error) *error = file_errors::reading(path, errno);
    return Data();
  }
  const bool mapped = (options & (NSDataReadingMappedIfSafe | NSDataReadingMappedAlways)) &&
                      S_ISREG(info.st_mode) && info.st_size > 0;
  if (mapped) {
    const auto size = static_cast<std::size_t>(info.st_size);
    // Populating the mapping up front costs one pass instead of a page fault per page.
    void* address = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file.fd, 0);
    if (address != MAP_FAILED) {
      ::madvise(address, size, MADV_SEQUENTIAL);
      return withBytesNoCopy(address, size, [](const void* p, UInteger n) {
        ::munmap(const_cast<void*>(p), static_cast<std::size_t>(n));
      });
    }
  }
  // Read what stat promised, then keep reading in small steps in case the file grew.
  ByteBuffer bytes(S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) : 0);
  std::size_t filled = 0;
  std::uint8_t step[16384];
  for (;;) {
    const bool intoBuffer = filled < bytes.size();
    std::uint8_t* target = intoBuffer ? bytes.data() + filled : step;
    const std::size_t room = intoBuffer ? bytes.size() - filled : sizeof step;
    const ssize_t n = ::read(file.fd, target, room);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      if (error) *error = file_errors::reading(path, errno);
      return Data();
    }
    if (n == 0) break;
    if (!intoBuffer) {
      bytes.resize(filled);
      bytes.insert(bytes.end(), step, step + n);
    }
    filled += static_cast<std::size_t>(n);
  }
  bytes.resize(filled);
  return withBuffer(std::move(bytes));
}

bool Data::writeToFile(const String& path, bool atomically, Error* error) const {
  const std::string target = path.utf8();
  std::string written = target;
  int fd = -1;
  if (atomically) {
    written = target + ".tarnvik-XXXXXX";
    fd = ::mkstemp(written.data());
  } else {
    fd = ::open(target.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  }
  auto fail = [&](int posixError) {
    if (atomically && fd >= 0) ::unlink(written.c_str());
    if (fd >= 0) ::close(fd);
    if (error) *error = file_errors::writing(path, posixError);
    return false;
  };
  if (fd < 0) return fail(errno);
  if (atomically) ::fchmod(fd, 0666 & ~processUmask());
  for (std::size_t done = 0; done < length();) {
    const ssize_t n = ::write(fd, bytes() + done, length() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return fail(errno);
    done += static_cast<std::size_t>(n);
  }
  if (atomically && ::fsync(fd) != 0) return fail(errno);
  if (::close(fd) != 0) {
    fd = -1;
    return fail(errno);
  }
  if (atomically && ::rename(written.c_str(), target.c_str()) != 0) {
    const int e = errno;
    ::unlink(written.c_str());
    fd = -1;
    return fail(e);
  }
  return true;
}

const std::uint8_t* Data::bytes() const {
  static const std::uint8_t none = 0;
  return storage_ && storage_->bytes ? storage_->bytes : &none;
}

Data Data::subdataWithRange(Range range) const {
  requireRange(range, length(), "-[NSData subdataWithRange:]");
  return withBytes(bytes() + range.location, range.length);
}

Data Data::subdataWithRangeNoCopy(Range range) const {
  requireRange(range, length(), "-[NSData subdataWithRange:]");
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
  requireRange(range, this->length(), "-[NSMutableData replaceBytesInRange:withBytes:length:]");
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
