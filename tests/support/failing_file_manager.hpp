// The one sanctioned fake: the real file manager, except that a chosen primitive fails on
// cue with a chosen POSIX error, either at its Nth call or at every call on a chosen path.
// A failure is reported exactly as the real primitive reports one (FileManager::errorFor),
// so tests can prove that an operation which fails half-way loses nothing.
//
//   FailingFileManager fm;
//   fm.failCall(FailingFileManager::Step::Synchronize, 1, EIO);
//   fm.writeDataToPath(data, path, true, &error);  // false; the old file is untouched
#pragma once

#include <cerrno>
#include <map>
#include <utility>
#include <vector>

#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik::testing {

class FailingFileManager : public FileManager {
 public:
  enum class Step {
    Attributes,
    ContentsOfDirectory,
    EntriesOfDirectory,
    CreateDirectory,
    ContentsAtPath,
    OpenForReading,
    ReadBytes,
    CreateTemporaryFile,
    OpenForWriting,
    WriteBytes,
    Synchronize,
    Close,
    Rename,
    Move,
    Copy,
    Remove,
    CreateSymbolicLink,
    DestinationOfSymbolicLink,
    SetModificationDate,
    SetPermissions,
    RealPath,
  };

  // The nth call (1 for the first) of the step fails with the POSIX error.
  void failCall(Step step, int nth, int posixError) { calls_[step].failures[nth] = posixError; }
  // Every call of the step on the path fails with the POSIX error.
  void failPath(Step step, const String& path, int posixError) {
    calls_[step].paths.emplace_back(path, posixError);
  }
  // How often the step was called.
  int calls(Step step) const {
    const auto found = calls_.find(step);
    return found == calls_.end() ? 0 : found->second.count;
  }

  bool attributesOfItemAtPath(const String& path, bool followLinks, FileAttributes* out,
                              Error* error = nullptr) override {
    return unlessFailing(Step::Attributes, FileOperation::Read, path, error, [&] {
      return FileManager::attributesOfItemAtPath(path, followLinks, out, error);
    });
  }
  Array contentsOfDirectoryAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::ContentsOfDirectory, FileOperation::Read, path, error,
                         [&] { return FileManager::contentsOfDirectoryAtPath(path, error); });
  }
  bool entriesOfDirectoryAtPath(const String& path, std::vector<DirectoryEntry>* out,
                                Error* error = nullptr) override {
    if (out) out->clear();
    return unlessFailing(Step::EntriesOfDirectory, FileOperation::Read, path, error,
                         [&] { return FileManager::entriesOfDirectoryAtPath(path, out, error); });
  }
  bool createDirectoryAtPath(const String& path, bool intermediates,
                             Error* error = nullptr) override {
    return unlessFailing(Step::CreateDirectory, FileOperation::Create, path, error, [&] {
      return FileManager::createDirectoryAtPath(path, intermediates, error);
    });
  }
  Data contentsAtPath(const String& path, UInteger options = 0, Error* error = nullptr) override {
    return unlessFailing(Step::ContentsAtPath, FileOperation::Read, path, error,
                         [&] { return FileManager::contentsAtPath(path, options, error); });
  }
  FileHandle openFileForReadingAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::OpenForReading, FileOperation::Read, path, error,
                         [&] { return FileManager::openFileForReadingAtPath(path, error); });
  }
  bool readBytes(FileHandle& file, void* buffer, UInteger capacity, UInteger* bytesRead,
                 Error* error = nullptr) override {
    *bytesRead = 0;
    return unlessFailing(Step::ReadBytes, FileOperation::Read, file.path(), error, [&] {
      return FileManager::readBytes(file, buffer, capacity, bytesRead, error);
    });
  }
  FileHandle createTemporaryFileNearPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::CreateTemporaryFile, FileOperation::Write, path, error,
                         [&] { return FileManager::createTemporaryFileNearPath(path, error); });
  }
  FileHandle openFileForWritingAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::OpenForWriting, FileOperation::Write, path, error,
                         [&] { return FileManager::openFileForWritingAtPath(path, error); });
  }
  bool writeBytes(FileHandle& file, const void* bytes, UInteger length,
                  Error* error = nullptr) override {
    return unlessFailing(Step::WriteBytes, FileOperation::Write, file.path(), error,
                         [&] { return FileManager::writeBytes(file, bytes, length, error); });
  }
  bool synchronizeFile(FileHandle& file, Error* error = nullptr) override {
    return unlessFailing(Step::Synchronize, FileOperation::Write, file.path(), error,
                         [&] { return FileManager::synchronizeFile(file, error); });
  }
  bool closeFile(FileHandle& file, Error* error = nullptr) override {
    return unlessFailing(Step::Close, FileOperation::Write, file.path(), error,
                         [&] { return FileManager::closeFile(file, error); });
  }
  bool renameItemAtPath(const String& path, const String& toPath, Error* error = nullptr) override {
    return unlessFailing(Step::Rename, FileOperation::Move, path, error,
                         [&] { return FileManager::renameItemAtPath(path, toPath, error); });
  }
  bool moveItemAtPath(const String& path, const String& toPath, Error* error = nullptr) override {
    return unlessFailing(Step::Move, FileOperation::Move, path, error,
                         [&] { return FileManager::moveItemAtPath(path, toPath, error); });
  }
  bool copyItemAtPath(const String& path, const String& toPath, Error* error = nullptr) override {
    return unlessFailing(Step::Copy, FileOperation::Copy, path, error,
                         [&] { return FileManager::copyItemAtPath(path, toPath, error); });
  }
  bool removeItemAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::Remove, FileOperation::Remove, path, error,
                         [&] { return FileManager::removeItemAtPath(path, error); });
  }
  bool createSymbolicLinkAtPath(const String& path, const String& destination,
                                Error* error = nullptr) override {
    return unlessFailing(Step::CreateSymbolicLink, FileOperation::Link, path, error, [&] {
      return FileManager::createSymbolicLinkAtPath(path, destination, error);
    });
  }
  String destinationOfSymbolicLinkAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::DestinationOfSymbolicLink, FileOperation::Read, path, error,
                         [&] { return FileManager::destinationOfSymbolicLinkAtPath(path, error); });
  }
  bool setModificationDate(const String& path, Date date, Error* error = nullptr) override {
    return unlessFailing(Step::SetModificationDate, FileOperation::Write, path, error,
                         [&] { return FileManager::setModificationDate(path, date, error); });
  }
  bool setPosixPermissions(const String& path, std::uint32_t permissions,
                           Error* error = nullptr) override {
    return unlessFailing(Step::SetPermissions, FileOperation::Write, path, error, [&] {
      return FileManager::setPosixPermissions(path, permissions, error);
    });
  }
  String realPathOfItemAtPath(const String& path, Error* error = nullptr) override {
    return unlessFailing(Step::RealPath, FileOperation::Read, path, error,
                         [&] { return FileManager::realPathOfItemAtPath(path, error); });
  }

 private:
  struct Plan {
    int count = 0;
    std::map<int, int> failures;  // call number -> POSIX error
    std::vector<std::pair<String, int>> paths;
  };

  // Counts the call; when it is one to fail, writes the error the real primitive would
  // write for that POSIX error and answers the primitive's failure value (false, nil or a
  // closed handle); otherwise answers what the real primitive does.
  template <class Real>
  auto unlessFailing(Step step, FileOperation operation, const String& path, Error* error,
                     Real real) -> decltype(real()) {
    Plan& plan = calls_[step];
    ++plan.count;
    int posixError = 0;
    if (const auto found = plan.failures.find(plan.count); found != plan.failures.end()) {
      posixError = found->second;
    }
    for (const auto& [failing, code] : plan.paths) {
      if (failing == path) posixError = code;
    }
    if (posixError == 0) return real();
    if (error) *error = errorFor(operation, path, posixError);
    return decltype(real())();
  }

  std::map<Step, Plan> calls_;
};

}  // namespace tarnvik::testing
