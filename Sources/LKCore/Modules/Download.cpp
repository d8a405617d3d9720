#include "LKCore/Modules/Download.h"

#include <algorithm>
#include <limits>

#include "LKCore/Base/Text.h"
#include "LKCore/Modules/OpenPart.h"

namespace lk {

namespace {

const OpenPart& networkPart() {
  static const OpenPart part(kNetworkPart, partsFolder());
  return part;
}

// "Image/PNG; q=1" is "image/png".
std::string bareContentType(std::string_view type) {
  return text::lowercased(text::trimmed(type.substr(0, type.find(';'))));
}

}  // namespace

Download download(const std::string& url, std::chrono::seconds timeout, size_t limit,
                  const std::string& ownServer) {
  static const auto get = networkPart().function<decltype(larkspireDownload)>("larkspireDownload");
  constexpr int64_t kLongest = std::numeric_limits<int32_t>::max() / 1000;
  const int64_t seconds = std::clamp<int64_t>(timeout.count(), 1, kLongest);
  const PartDownload request = {url.c_str(), static_cast<long>(seconds * 1000), limit,
                                ownServer.c_str()};
  Download result;
  std::string type;
  std::string error;
  if (get(&request, partSink(result.bytes), partSink(type), partSink(error)) != PartResult::done) {
    throw DownloadError("Downloading " + url + " failed: " + error);
  }
  result.contentType = bareContentType(type);
  return result;
}

bool isPublicAddress(const std::string& address) {
  static const auto isPublic =
      networkPart().function<decltype(larkspireIsPublicAddress)>("larkspireIsPublicAddress");
  return isPublic(address.c_str());
}

}  // namespace lk
