#include "tarnvik/codec/gzip.hpp"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <functional>
#include <istream>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tarnvik/platform/base/internal/prefault.hpp"

namespace tarnvik {

namespace {

// The version handed to zlib's initialisers, as the library was first built against.
constexpr const char* kZlibVersion = "1.2.5";
constexpr std::size_t kPackIncrement = 16384;
// The platform's code for data that is not in the format it should be (NSCocoaErrorDomain).
constexpr Integer kCorruptDataError = 259;
// zlib's window bits: 15 (a 32 KiB window) plus 16 writes a gzip wrapper, plus 32 reads
// either a zlib or a gzip wrapper, whichever the data has.
constexpr int kGzipWindowBits = 15 + 16;
constexpr int kAutoDetectWindowBits = 15 + 32;
// The deflate memory level zlib uses by default (a 128 KiB hash state).
constexpr int kDefaultMemoryLevel = 8;
// The smallest gzip member: a 10-byte header and an 8-byte trailer.
constexpr std::size_t kGzipMinimumSize = 18;
constexpr std::uint8_t kGzipMagic[2] = {0x1F, 0x8B};
// Deflate can shrink data by at most about 1032:1; a trailer that states more than that
// lies, and reserving what it states would only waste memory.
constexpr std::size_t kDeflateMaximumRatio = 1032;

// zlib counts in 32-bit units; larger buffers are fed in slices.
constexpr std::size_t kMaxChunk = UINT_MAX;

uInt clampChunk(std::size_t n) { return static_cast<uInt>(std::min(n, kMaxChunk)); }

}  // namespace

namespace {

int startPacking(z_stream& stream) {
  return deflateInit2_(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindowBits,
                       kDefaultMemoryLevel, Z_DEFAULT_STRATEGY, kZlibVersion,
                       static_cast<int>(sizeof(z_stream)));
}

int startUnpacking(z_stream& stream) {
  return inflateInit2_(&stream, kAutoDetectWindowBits, kZlibVersion,
                       static_cast<int>(sizeof(z_stream)));
}

}  // namespace

Data gzipPackedData(const Data& data) {
  if (data.isEmpty()) return data;
  z_stream stream{};
  if (startPacking(stream) != Z_OK) return Data();
  // The output grows by 16 KiB whenever it is full; std::vector keeps the reallocations
  // themselves geometric, so the growth costs amortised linear time.
  ByteBuffer out(kPackIncrement);
  const std::uint8_t* in = data.bytes();
  std::size_t consumed = 0, produced = 0;
  for (;;) {
    if (produced == out.size()) out.resize(out.size() + kPackIncrement);
    const std::size_t remaining = data.length() - consumed;
    stream.next_in = const_cast<Bytef*>(in + consumed);
    stream.avail_in = clampChunk(remaining);
    stream.next_out = out.data() + produced;
    stream.avail_out = clampChunk(out.size() - produced);
    const uInt inBefore = stream.avail_in, outBefore = stream.avail_out;
    const int flush = stream.avail_in == remaining ? Z_FINISH : Z_NO_FLUSH;
    const int status = deflate(&stream, flush);
    consumed += inBefore - stream.avail_in;
    produced += outBefore - stream.avail_out;
    if (status == Z_STREAM_END) break;
    if (stream.avail_out != 0 && status != Z_OK) break;  // zlib refused: stop with what we have
  }
  deflateEnd(&stream);
  out.resize(produced);
  return Data::withBuffer(std::move(out));
}

Data gzipUnpackedData(const Data& data) { return gzipUnpackedData(data, nullptr); }

namespace {

// The reason zlib gives for a stream it stopped on, or ours when it gave none; the path of
// the input, when it is a file.
void reportUnpackFailure(Error* error, const z_stream& stream, int status,
                         const String& path = String()) {
  if (!error) return;
  String reason;
  if (stream.msg) {
    reason = String(std::string("zlib: ") + stream.msg);
  } else if (status == Z_BUF_ERROR || status == Z_OK) {
    reason = String(u"The stream ends before its end: the data is cut short.");
  } else {
    reason = String("zlib: error " + std::to_string(status));
  }
  Dictionary userInfo{{NSLocalizedDescriptionKey,
                       u"The data couldn’t be unpacked because it isn’t a complete gzip or "
                       u"zlib stream."},
                      {NSLocalizedFailureReasonErrorKey, reason}};
  if (!path.isNil()) userInfo.setObject(path, NSFilePathErrorKey);
  *error = Error(NSCocoaErrorDomain, kCorruptDataError, userInfo);
}

}  // namespace

Data gzipUnpackedData(const Data& data, Error* error) {
  if (data.isEmpty()) return data;
  // The buffer starts at the input's length plus half of it and grows by that half; the
  // half comes from the low 32 bits of the length.
  const std::size_t half = static_cast<std::uint32_t>(data.length()) >> 1;
  ByteBuffer out(data.length() + half);
  // A gzip trailer states the unpacked size (modulo 2^32): starting with room for it (the
  // bytes are not touched until zlib writes them) spares the copies of growing and lets one
  // inflate call do the work. It is only a hint, bounded by deflate's largest ratio, and never
  // changes the result.
  if (data.length() >= kGzipMinimumSize && data.bytes()[0] == kGzipMagic[0] &&
      data.bytes()[1] == kGzipMagic[1]) {
    const std::uint8_t* tail = data.bytes() + data.length() - 4;
    const std::size_t stated =
        tail[0] | tail[1] << 8 | tail[2] << 16 | static_cast<std::size_t>(tail[3]) << 24;
    if (stated > out.size() && stated / kDeflateMaximumRatio <= data.length()) {
      out.resize(stated + half);
      memory::prefaultForWriting(out.data(), stated);
    }
  }
  z_stream stream{};
  const std::uint8_t* in = data.bytes();
  stream.next_in = const_cast<Bytef*>(in);
  stream.avail_in = clampChunk(data.length());
  if (const int started = startUnpacking(stream); started != Z_OK) {
    reportUnpackFailure(error, stream, started);
    return Data();
  }
  std::size_t consumed = 0, produced = 0;
  int status = Z_OK;
  while (status == Z_OK) {
    if (produced == out.size()) out.resize(out.size() + half);
    if (stream.avail_in == 0 && consumed < data.length()) {
      stream.next_in = const_cast<Bytef*>(in + consumed);
      stream.avail_in = clampChunk(data.length() - consumed);
    }
    stream.next_out = out.data() + produced;
    stream.avail_out = clampChunk(out.size() - produced);
    const uInt inBefore = stream.avail_in, outBefore = stream.avail_out;
    status = inflate(&stream, Z_SYNC_FLUSH);
    consumed += inBefore - stream.avail_in;
    produced += outBefore - stream.avail_out;
  }
  if (status != Z_STREAM_END) {
    reportUnpackFailure(error, stream, status);
    inflateEnd(&stream);
    return Data();
  }
  if (const int ended = inflateEnd(&stream); ended != Z_OK) {
    reportUnpackFailure(error, stream, ended);
    return Data();
  }
  out.resize(produced);
  return Data::withBuffer(std::move(out));
}

// ---- Streamed packing and unpacking ----

namespace {

constexpr std::size_t kStreamBlockSize = 256 * 1024;

// Reads up to capacity bytes, setting *length (0 at the end); false with the error on failure.
using BlockReader = std::function<bool(std::uint8_t* buffer, std::size_t capacity,
                                       std::size_t* length, Error* error)>;
// Writes all the bytes; false with the error on failure.
using BlockWriter =
    std::function<bool(const std::uint8_t* bytes, std::size_t length, Error* error)>;

// Deflates everything the reader gives. The whole-buffer form hands zlib its input and room
// in different slices, but deflate's output depends only on the bytes and the final
// Z_FINISH, so the two agree byte for byte.
bool packBlocks(const BlockReader& read, const BlockWriter& write, Error* error) {
  const auto in = std::make_unique_for_overwrite<std::uint8_t[]>(kStreamBlockSize);
  const auto out = std::make_unique_for_overwrite<std::uint8_t[]>(kStreamBlockSize);
  std::size_t length = 0;
  if (!read(in.get(), kStreamBlockSize, &length, error)) return false;
  if (length == 0) return true;  // like gzipPackedData, nothing for nothing
  z_stream stream{};
  if (startPacking(stream) != Z_OK) throw std::bad_alloc();
  const std::unique_ptr<z_stream, int (*)(z_stream*)> ending(&stream, deflateEnd);
  for (;;) {
    const int flush = length == 0 ? Z_FINISH : Z_NO_FLUSH;
    stream.next_in = in.get();
    stream.avail_in = static_cast<uInt>(length);
    int status = Z_OK;
    do {
      stream.next_out = out.get();
      stream.avail_out = static_cast<uInt>(kStreamBlockSize);
      status = deflate(&stream, flush);
      const std::size_t produced = kStreamBlockSize - stream.avail_out;
      if (produced > 0 && !write(out.get(), produced, error)) return false;
    } while (stream.avail_out == 0 || (flush == Z_FINISH && status == Z_OK));
    if (status == Z_STREAM_END) return true;
    if (flush == Z_FINISH) throw std::logic_error("gzipPackStream: zlib did not finish the stream");
    if (!read(in.get(), kStreamBlockSize, &length, error)) return false;
  }
}

// Inflates the reader's bytes up to the end of the first stream; what follows it is not read
// further than the block it is in.
bool unpackBlocks(const BlockReader& read, const BlockWriter& write, Error* error,
                  const String& path) {
  const auto in = std::make_unique_for_overwrite<std::uint8_t[]>(kStreamBlockSize);
  const auto out = std::make_unique_for_overwrite<std::uint8_t[]>(kStreamBlockSize);
  std::size_t length = 0;
  if (!read(in.get(), kStreamBlockSize, &length, error)) return false;
  if (length == 0) return true;  // like gzipUnpackedData, nothing for nothing
  z_stream stream{};
  if (const int started = startUnpacking(stream); started != Z_OK) {
    reportUnpackFailure(error, stream, started, path);
    return false;
  }
  const std::unique_ptr<z_stream, int (*)(z_stream*)> ending(&stream, inflateEnd);
  stream.next_in = in.get();
  stream.avail_in = static_cast<uInt>(length);
  for (;;) {
    stream.next_out = out.get();
    stream.avail_out = static_cast<uInt>(kStreamBlockSize);
    const int status = inflate(&stream, Z_NO_FLUSH);
    const std::size_t produced = kStreamBlockSize - stream.avail_out;
    if (produced > 0 && !write(out.get(), produced, error)) return false;
    if (status == Z_STREAM_END) return true;
    if (status != Z_OK && status != Z_BUF_ERROR) {
      reportUnpackFailure(error, stream, status, path);
      return false;
    }
    if (stream.avail_in == 0 && stream.avail_out != 0) {
      if (!read(in.get(), kStreamBlockSize, &length, error)) return false;
      if (length == 0) {  // the input ended inside the stream
        reportUnpackFailure(error, stream, Z_BUF_ERROR, path);
        return false;
      }
      stream.next_in = in.get();
      stream.avail_in = static_cast<uInt>(length);
    }
  }
}

// Runs the packer or unpacker from one file into the other, written atomically.
bool transformFile(const String& path, const String& toPath, Error* error, FileManager& fileManager,
                   bool pack) {
  FileHandle input = fileManager.openFileForReadingAtPath(path, error);
  if (!input.isOpen()) return false;
  const BlockReader read = [&](std::uint8_t* buffer, std::size_t capacity, std::size_t* length,
                               Error* failure) {
    UInteger got = 0;
    const bool ok = fileManager.readBytes(input, buffer, capacity, &got, failure);
    *length = static_cast<std::size_t>(got);
    return ok;
  };
  return fileManager.writeFileToPath(
      toPath, true,
      [&](FileHandle& output, Error* failure) {
        const BlockWriter write = [&](const std::uint8_t* bytes, std::size_t length,
                                      Error* writeFailure) {
          return fileManager.writeBytes(output, bytes, length, writeFailure);
        };
        return pack ? packBlocks(read, write, failure) : unpackBlocks(read, write, failure, path);
      },
      error);
}

BlockReader streamReader(std::istream& in) {
  return [&in](std::uint8_t* buffer, std::size_t capacity, std::size_t* length, Error* error) {
    in.read(reinterpret_cast<char*>(buffer), static_cast<std::streamsize>(capacity));
    *length = static_cast<std::size_t>(in.gcount());
    if (!in.bad()) return true;
    if (error) {
      *error = Error(NSCocoaErrorDomain, NSFileReadUnknownError,
                     Dictionary{{NSLocalizedDescriptionKey, u"The stream couldn’t be read."}});
    }
    return false;
  };
}

BlockWriter streamWriter(std::ostream& out) {
  return [&out](const std::uint8_t* bytes, std::size_t length, Error* error) {
    if (out.write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(length))) {
      return true;
    }
    if (error) {
      *error = Error(NSCocoaErrorDomain, NSFileWriteUnknownError,
                     Dictionary{{NSLocalizedDescriptionKey, u"The stream couldn’t be written."}});
    }
    return false;
  };
}

}  // namespace

bool gzipPackFileAtPath(const String& path, const String& toPath, Error* error,
                        FileManager& fileManager) {
  return transformFile(path, toPath, error, fileManager, true);
}

bool gzipUnpackFileAtPath(const String& path, const String& toPath, Error* error,
                          FileManager& fileManager) {
  return transformFile(path, toPath, error, fileManager, false);
}

bool gzipPackStream(std::istream& in, std::ostream& out, Error* error) {
  return packBlocks(streamReader(in), streamWriter(out), error) && static_cast<bool>(out.flush());
}

bool gzipUnpackStream(std::istream& in, std::ostream& out, Error* error) {
  return unpackBlocks(streamReader(in), streamWriter(out), error, String()) &&
         static_cast<bool>(out.flush());
}

}  // namespace tarnvik
