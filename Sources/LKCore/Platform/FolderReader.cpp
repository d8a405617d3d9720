#include "LKCore/Platform/FolderReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "LKCore/Platform/Descriptor.h"
#include "LKCore/Platform/Files.h"

namespace lk {

FolderReader::FolderReader(const std::filesystem::path& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (folder_ < 0) throw FileError(folder, errno);
}

FolderReader::~FolderReader() {
  ::close(folder_);
}

std::optional<std::string_view> FolderReader::read(const std::string& path) {
  // O_NONBLOCK: opening a FIFO would wait for a writer.
  const Descriptor file(uninterrupted([&] {
    return ::openat(folder_, path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  }));
  struct stat info {};
  if (!file || fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  // One byte more than the file had tells whether it has grown, without a further call.
  const size_t expected = static_cast<size_t>(info.st_size) + 1;
  if (buffer_.size() < expected) buffer_.resize(expected);
  size_t size = 0;
  while (true) {
    const ssize_t count = uninterrupted(
        [&] { return ::read(file.get(), buffer_.data() + size, buffer_.size() - size); });
    if (count < 0) return std::nullopt;
    size += static_cast<size_t>(count);
    if (size < buffer_.size()) return std::string_view(buffer_).substr(0, size);
    buffer_.resize(buffer_.size() * 2);
  }
}

}  // namespace lk
