// A file manager whose volume list a test chooses, so the volume rules can be tested
// without real mounts. Everything else is the real file manager.
#pragma once

#include "tarnvik/platform/base/file_manager.hpp"

namespace tarnvik::testing {

class FixedVolumesFileManager : public FileManager {
 public:
  explicit FixedVolumesFileManager(Array volumes) : volumes_(std::move(volumes)) {}
  Array mountedVolumePaths() override { return volumes_; }

 private:
  Array volumes_;
};

}  // namespace tarnvik::testing
