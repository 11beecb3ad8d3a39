// Running other tools from tests: a shell command, or a Python script, in a folder.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace tarnvik::testing {

// Runs the command with sh in the folder; its exit status (0 for success).
inline int sh(const std::filesystem::path& folder, const std::string& command) {
  const std::string line = "cd '" + folder.string() + "' && " + command;
  return std::system(line.c_str());
}

// Runs the Python 3 script (given as text) in the folder; its exit status.
inline int python(const std::filesystem::path& folder, const std::string& script) {
  const auto file = folder / ".script.py";
  std::ofstream(file) << script;
  const int status = sh(folder, "python3 .script.py");
  std::filesystem::remove(file);
  return status;
}

}  // namespace tarnvik::testing
