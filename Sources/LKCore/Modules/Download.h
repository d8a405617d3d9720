#pragma once

// One file from the network, for a picture that a note names by its address.

#include <chrono>
#include <cstddef>
#include <string>

#include "LKCore/Base/Error.h"

namespace lk {

struct Download {
  std::string bytes;
  std::string contentType;  // as the server says, lower-cased, without parameters; may be empty
};

class DownloadError : public Error {
  using Error::Error;
};

// Gets an "http" or "https" address. Every host on the way, redirects (at most 5) among them, must
// have public addresses: none that is private, loopback, link-local, multicast or reserved. No
// cookies, no credentials, no proxies of the environment for such addresses. Throws DownloadError
// with the reason, for any status but 200, after `timeout` over the whole, and beyond `limit` bytes;
// ModuleError. `ownServer`: one numeric address that may be reached all the same, for a server of
// the caller's own; no note and no book names it.
Download download(const std::string& url, std::chrono::seconds timeout, size_t limit,
                  const std::string& ownServer = "");

// Whether a numeric address, IPv4 or IPv6, is one that `download` may reach; nothing else is.
// Throws ModuleError.
bool isPublicAddress(const std::string& address);

}  // namespace lk
