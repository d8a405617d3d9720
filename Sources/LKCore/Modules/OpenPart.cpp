#include "LKCore/Modules/OpenPart.h"

#include <dlfcn.h>

#include <system_error>

namespace lk {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void throwPartError(const PartFile& part, const std::string& reason,
                                 const std::string& advice) {
  throw ModuleError("The part of Larkspire called “" + std::string(part.name) + "” is needed to " +
                    part.work + " and " + reason + ". " + advice);
}

std::string dynamicLinkError() {
  const char* const text = dlerror();
  return text != nullptr ? text : "unknown error";
}

}  // namespace

OpenPart::OpenPart(const PartFile& part, const fs::path& folder) : part_(part) {
  const fs::path file = folder / (std::string(part.name) + ".so");
  std::error_code ignored;
  if (!fs::exists(file, ignored)) {
    throwPartError(part, "is not installed (" + file.string() + ")",
                   "Install Larkspire again with all its parts, and these packages: " +
                       std::string(part.packages) + ".");
  }
  handle_ = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    throwPartError(part, "cannot be opened (" + dynamicLinkError() + ")",
                   "Install these packages: " + std::string(part.packages) + ".");
  }
  if (function<decltype(larkspirePartVersion)>("larkspirePartVersion")() != kPartVersion) {
    throwPartError(part, "belongs to another version of Larkspire (" + file.string() + ")",
                   "Install Larkspire again.");
  }
}

void* OpenPart::symbol(const char* name) const {
  void* const address = dlsym(handle_, name);
  if (address == nullptr) {
    throwPartError(part_, "lacks a function (" + dynamicLinkError() + ")",
                   "Install Larkspire again.");
  }
  return address;
}

fs::path partsFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (error) throw ModuleError("Larkspire cannot tell where it is installed: " + error.message());
  return program.parent_path().parent_path() / "lib/larkspire";
}

PartSink partSink(std::string& text) {
  return {&text, [](void* target, const char* data, size_t size) noexcept {
            return cameThrough([&] { static_cast<std::string*>(target)->append(data, size); });
          }};
}

}  // namespace lk
