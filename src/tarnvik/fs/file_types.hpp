// The media file-type catalogue (lower-case extensions by media class) and two
// file-system queries: the type of the file system holding a path, and the files this
// process holds open on a volume.
//
//   bool still = imageFileTypes().containsObject(ext.lowercaseString());
//   String type = fileSystemTypeAtPath(u"/media/CARD", &error);   // "exfat"
#pragma once

#include "tarnvik/platform/base/array.hpp"
#include "tarnvik/platform/base/error.hpp"
#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik {

// Built on first use and then shared: each call answers the same immutable array.
Array imageFileTypes();      // 33 still-image extensions, exr first
Array ariFileTypes();        // ari, arx
Array dpxFileTypes();        // dpx, cin, cdx, vrw
Array quicktimeFileTypes();  // mov, avi, mp4
Array r3dFileTypes();        // r3d
Array mxfFileTypes();        // mxf
// Whole file names that mark a clip folder: "dmaginfo_fcp.xml", "index.xml".
Array directoryFilenames();
// Built anew on each call: image + dpx + ari types.
Array sequenceFileTypes();
// Built anew on each call: quicktime + mxf + r3d types.
Array movieFileTypes();

// The type name of the file system holding the path, as the mount table gives it ("ext4",
// "exfat", "nfs4"); nil with code -1 in KFErrorDomainTarnvikExtensions ("Could not aquire
// file system") when the path cannot be examined.
String fileSystemTypeAtPath(const String& path, Error* error = nullptr,
                            FileManager& fileManager = FileManager::defaultManager());

// The paths of the files, folders and devices this process holds open (its own descriptor
// table, in descriptor order; pipes, sockets and anonymous descriptors are left out), with
// a path only those on the same file system as it. An empty array when the path cannot be
// examined or the table cannot be read.
Array listOpenFilesOnVolumeAtPath(const String& path);
Array listOpenFiles();

}  // namespace tarnvik
