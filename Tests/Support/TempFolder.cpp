#include "Support/TempFolder.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace lk::test {

namespace fs = std::filesystem;

TempFolder::TempFolder(const fs::path& parent) {
  std::string pattern = (parent / "larkspire-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
  path_ = fs::canonical(pattern);
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  for (fs::recursive_directory_iterator it(path_, ignored), end; it != end; it.increment(ignored)) {
    if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
      fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
    }
  }
  fs::remove_all(path_, ignored);
}

fs::path memoryFolder() {
  const fs::path shared = "/dev/shm";
  return access(shared.c_str(), W_OK) == 0 ? shared : fs::temp_directory_path();
}

std::string readWhole(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + file.string());
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeWhole(const fs::path& file, std::string_view bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace lk::test
