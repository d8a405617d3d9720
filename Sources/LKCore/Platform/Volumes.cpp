#include "LKCore/Platform/Volumes.h"

#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <fstream>
#include <string>

namespace lk {

bool isOnRemovableVolume(const std::filesystem::path& path) {
  struct stat info {};
  if (stat(path.c_str(), &info) != 0) return false;
  const std::string device = "/sys/dev/block/" + std::to_string(major(info.st_dev)) + ":" +
                             std::to_string(minor(info.st_dev));
  // A disk tells it itself, a partition leaves it to the disk above it.
  for (const char* place : {"/removable", "/../removable"}) {
    std::ifstream in(device + place);
    char flag = '0';
    if (in.get(flag)) return flag == '1';
  }
  return false;
}

std::optional<uint64_t> availableCapacity(const std::filesystem::path& path) {
  struct statvfs volume {};
  if (statvfs(path.c_str(), &volume) != 0) return std::nullopt;
  return uint64_t{volume.f_bavail} * volume.f_frsize;
}

}  // namespace lk
