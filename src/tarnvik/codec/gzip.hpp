// gzip packing and unpacking of whole buffers through zlib.
//
//   Data packed = gzipPackedData(data);       // starts with 1F 8B
//   Data back = gzipUnpackedData(packed);     // == data
#pragma once

#include "tarnvik/platform/base/data.hpp"
#include "tarnvik/platform/base/error.hpp"

namespace tarnvik {

// A gzip stream (default level, 32 KiB window). Empty data returns the receiver itself; nil
// only when zlib cannot start a stream.
Data gzipPackedData(const Data& data);
// The bytes of a gzip- or zlib-wrapped stream (detected from its header); input after the
// first stream's end is ignored. Empty data returns the receiver itself; nil for raw
// deflate data, a truncated or corrupt stream, or one whose output outgrows the buffer
// rule (see the source).
Data gzipUnpackedData(const Data& data);
// The same, and on failure an error (NSCocoaErrorDomain, 259) whose failure reason is
// zlib's message ("zlib: incorrect header check") or says that the stream is cut short.
Data gzipUnpackedData(const Data& data, Error* error);

}  // namespace tarnvik
