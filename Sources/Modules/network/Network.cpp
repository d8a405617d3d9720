// Downloads by libcurl, from public addresses alone.

#include <curl/curl.h>
#include <unistd.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>

#include "Modules/PartGuard.h"
#include "Modules/network/Addresses.h"

namespace lk::part {

namespace {

constexpr long kMostRedirects = 5;

struct Cleanup {
  void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

// What one transfer knows while it runs; libcurl hands it to the functions below.
struct Transfer {
  const PartDownload& request;
  PartSink content;
  size_t size = 0;
  bool isTooLarge = false;
  std::string refused;  // an address that must not be reached
};

// Asked for each connection, after names are resolved: no name, no redirect and no spelling of an
// address gets past it.
curl_socket_t openSocket(void* closure, curlsocktype purpose, curl_sockaddr* address) {
  auto& transfer = *static_cast<Transfer*>(closure);
  try {
    const std::string numeric = numericAddress(address->addr);
    const bool isOwn = !numeric.empty() && numeric == transfer.request.ownServer;
    if (purpose != CURLSOCKTYPE_IPCXN || !(isOwn || isPublicAddress(address->addr))) {
      transfer.refused = numeric.empty() ? "the address" : numeric;
      return CURL_SOCKET_BAD;
    }
  } catch (...) {
    return CURL_SOCKET_BAD;
  }
  return socket(address->family, address->socktype | SOCK_CLOEXEC, address->protocol);
}

size_t takeContent(char* data, size_t width, size_t count, void* closure) {
  auto& transfer = *static_cast<Transfer*>(closure);
  const size_t size = width * count;
  transfer.isTooLarge = size > transfer.request.limit - transfer.size;
  if (transfer.isTooLarge) return 0;
  transfer.size += size;
  return transfer.content.take(transfer.content.target, data, size) ? size : 0;
}

template <typename Value>
void set(CURL* handle, CURLoption option, Value value) {
  const CURLcode code = curl_easy_setopt(handle, option, value);
  if (code != CURLE_OK) throw std::runtime_error(curl_easy_strerror(code));
}

void prepare(CURL* handle, Transfer& transfer, char* errorText) {
  set(handle, CURLOPT_ERRORBUFFER, errorText);
  set(handle, CURLOPT_URL, transfer.request.url);
  set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  set(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
  set(handle, CURLOPT_FOLLOWLOCATION, 1L);
  set(handle, CURLOPT_MAXREDIRS, kMostRedirects);
  set(handle, CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);
  set(handle, CURLOPT_NETRC, static_cast<long>(CURL_NETRC_IGNORED));
  // A proxy would resolve and connect on its own.
  set(handle, CURLOPT_PROXY, "");
  set(handle, CURLOPT_OPENSOCKETFUNCTION, openSocket);
  set(handle, CURLOPT_OPENSOCKETDATA, &transfer);
  set(handle, CURLOPT_WRITEFUNCTION, takeContent);
  set(handle, CURLOPT_WRITEDATA, &transfer);
  set(handle, CURLOPT_TIMEOUT_MS, transfer.request.milliseconds);
  set(handle, CURLOPT_NOSIGNAL, 1L);
  set(handle, CURLOPT_USERAGENT, "Larkspire");
}

std::string reasonOf(CURLcode code, const Transfer& transfer, const char* errorText) {
  if (transfer.isTooLarge) {
    return "larger than " + std::to_string(transfer.request.limit) + " bytes";
  }
  if (code == CURLE_COULDNT_CONNECT && !transfer.refused.empty()) {
    return transfer.refused + " is not a public address";
  }
  return *errorText != '\0' ? errorText : curl_easy_strerror(code);
}

PartResult download(const PartDownload& request, PartSink content, PartSink contentType,
                    PartSink error) {
  static const CURLcode prepared = curl_global_init(CURL_GLOBAL_DEFAULT);
  if (prepared != CURLE_OK) return failed(error, curl_easy_strerror(prepared));
  const std::unique_ptr<CURL, Cleanup> handle(curl_easy_init());
  if (handle == nullptr) return failed(error, "out of memory");
  std::array<char, CURL_ERROR_SIZE> errorText = {};
  Transfer transfer{request, content, 0, false, {}};
  prepare(handle.get(), transfer, errorText.data());
  const CURLcode code = curl_easy_perform(handle.get());
  if (code != CURLE_OK) return failed(error, reasonOf(code, transfer, errorText.data()));

  long status = 0;
  curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
  if (status != 200) return failed(error, "the server answered " + std::to_string(status));
  const char* type = nullptr;
  curl_easy_getinfo(handle.get(), CURLINFO_CONTENT_TYPE, &type);
  if (type != nullptr) put(contentType, type);
  return PartResult::done;
}

}  // namespace

}  // namespace lk::part

PartResult larkspireDownload(const PartDownload* request, PartSink content, PartSink contentType,
                             PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] { return download(*request, content, contentType, error); });
}
