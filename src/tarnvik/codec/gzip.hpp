// gzip packing and unpacking through zlib: of whole buffers, and streamed from file to file
// or stream to stream in constant memory.
//
//   Data packed = gzipPackedData(data);       // starts with 1F 8B
//   Data back = gzipUnpackedData(packed);     // == data
//   gzipPackFileAtPath(u"report.xml", u"report.xml.gz", &error);
#pragma once

#include <iosfwd>

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik {

// A gzip stream (default level, 32 KiB window). Empty data returns the receiver itself; nil
// only when zlib cannot start a stream.
Data gzipPackedData(const Data& data);
// The bytes of a gzip- or zlib-wrapped stream (detected from its header); input after the
// first stream's end is ignored. Empty data returns the receiver itself; nil for raw
// deflate data, a truncated or corrupt stream, or one whose output outgrows its buffer: the
// buffer starts at the input's length plus half of it and grows by that half, the half
// taken from the length modulo 2^32, so an input whose length modulo 2^32 is 0 or 1 cannot
// unpack to more than its own length.
Data gzipUnpackedData(const Data& data);
// The same, and on failure an error (NSCocoaErrorDomain, 259) whose failure reason is
// zlib's message ("zlib: incorrect header check") or says that the stream is cut short.
Data gzipUnpackedData(const Data& data, Error* error);

// The streamed forms read and write 256 KiB at a time, whatever the size of the input. They
// produce exactly the bytes of the whole-buffer forms: packing writes what gzipPackedData
// returns (nothing for empty input), and unpacking stops at the end of the first stream.
//
// Packs or unpacks the file at path into toPath. The output is written to a temporary file
// beside toPath and renamed into place only when it is complete, so a failure leaves
// toPath as it was (a file already there is replaced on success). On failure the error is
// the file manager's (naming the file and the cause) or, for data that does not unpack,
// gzipUnpackedData's with the input's path under NSFilePathErrorKey.
bool gzipPackFileAtPath(const String& path, const String& toPath, Error* error = nullptr,
                        FileManager& fileManager = FileManager::defaultManager());
bool gzipUnpackFileAtPath(const String& path, const String& toPath, Error* error = nullptr,
                          FileManager& fileManager = FileManager::defaultManager());
// The same between standard streams, read to their end. A stream that fails gives
// NSFileReadUnknownError or NSFileWriteUnknownError; the output may then hold part of the
// result.
bool gzipPackStream(std::istream& in, std::ostream& out, Error* error = nullptr);
bool gzipUnpackStream(std::istream& in, std::ostream& out, Error* error = nullptr);

}  // namespace tarnvik
