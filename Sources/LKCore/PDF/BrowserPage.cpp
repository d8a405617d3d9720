#include "LKCore/PDF/BrowserPage.h"

#include <utility>

#include "LKCore/Base/Base64.h"
#include "LKCore/Pictures/CollectionPicture.h"

namespace lk {

namespace {

// No name below "invalid" ever exists.
constexpr std::string_view kOrigin = "https://book.larkspire.invalid/";
constexpr std::string_view kAssetScheme = "larkspire-asset:///";

// "sandbox" also keeps the page from sending itself elsewhere.
constexpr const char* kPrintPolicy =
    "default-src 'none'; img-src https://book.larkspire.invalid data:; style-src 'unsafe-inline'; "
    "font-src data:; form-action 'none'; base-uri 'none'; frame-src 'none'; object-src 'none'; "
    "sandbox";
constexpr const char* kDrawingPolicy =
    "default-src 'none'; img-src data:; style-src 'unsafe-inline'; font-src data:; "
    "form-action 'none'; base-uri 'none'; sandbox allow-scripts";

Json header(const char* name, std::string_view value) {
  return {{"name", name}, {"value", value}};
}

// The addresses of pictures as ones that the browser asks for.
std::string withServedPictures(std::string_view html) {
  const std::string from = "src=\"" + std::string(kAssetScheme);
  std::string result;
  result.reserve(html.size() + html.size() / 16);
  size_t start = 0;
  for (size_t found = html.find(from); found != std::string_view::npos;
       found = html.find(from, start)) {
    result.append(html.substr(start, found - start)).append("src=\"").append(kOrigin);
    start = found + from.size();
  }
  return result.append(html.substr(start));
}

}  // namespace

BrowserPage::BrowserPage(const std::filesystem::path& program, Deadline deadline)
    : connection_(program) {
  const Json target =
      connection_.call("Target.createTarget", {{"url", "about:blank"}}, "", deadline);
  const Json attached =
      connection_.call("Target.attachToTarget",
                       {{"targetId", target.at("targetId")}, {"flatten", true}}, "", deadline);
  session_ = attached.at("sessionId").get<std::string>();
  connection_.onEvent([this](const std::string& name, const Json& parameters, Deadline until) {
    hear(name, parameters, until);
  });
  const Json everything = {{"urlPattern", "*"}, {"requestStage", "Request"}};
  call("Fetch.enable", {{"patterns", Json::array({everything})}}, deadline);
  call("Inspector.enable", Json::object(), deadline);
  call("Page.enable", Json::object(), deadline);
}

Json BrowserPage::call(const std::string& method, Json parameters, Deadline deadline) {
  return connection_.call(method, std::move(parameters), session_, deadline);
}

void BrowserPage::load(BrowserDocument document, Deadline deadline) {
  document_ = std::move(document);
  document_.html = withServedPictures(document_.html);
  isServed_ = false;
  isLoaded_ = false;
  call("Emulation.setScriptExecutionDisabled", {{"value", !document_.runsScripts}}, deadline);
  const Json navigation = call("Page.navigate", {{"url", kOrigin}}, deadline);
  if (const std::string failure = navigation.value("errorText", ""); !failure.empty()) {
    throw BrowserError("the page did not load: " + failure);
  }
  while (!isLoaded_) connection_.receive(deadline);
}

void BrowserPage::hear(const std::string& name, const Json& parameters, Deadline deadline) {
  if (name == "Fetch.requestPaused") answer(parameters, deadline);
  // The page that was there before may still report its own end of loading.
  if (name == "Page.loadEventFired" && isServed_) isLoaded_ = true;
  if (name == "Inspector.targetCrashed") throw BrowserError("the page crashed");
}

void BrowserPage::answer(const Json& request, Deadline deadline) {
  const auto number = request.at("requestId").get<std::string>();
  const auto kind = request.at("resourceType").get<std::string>();
  const auto address = request.at("request").at("url").get<std::string>();
  const bool isDocument = kind == "Document";
  if (isDocument && address == kOrigin && !isServed_) {
    isServed_ = true;
    fulfil(
        number,
        {header("Content-Type", "text/html; charset=utf-8"),
         header("Content-Security-Policy", document_.runsScripts ? kDrawingPolicy : kPrintPolicy)},
        document_.html, deadline);
    return;
  }
  if (kind == "Image" && answersPicture(number, address, deadline)) return;
  // A refused document that counts as blocked would be shown as an error in place of the book.
  connection_.send(
      "Fetch.failRequest",
      {{"requestId", number}, {"errorReason", isDocument ? "Aborted" : "BlockedByClient"}},
      session_, deadline);
}

bool BrowserPage::answersPicture(const std::string& request, std::string_view address,
                                 Deadline deadline) {
  if (document_.pictures.empty() || !address.starts_with(kOrigin)) return false;
  const std::string_view path = address.substr(kOrigin.size());
  const std::string source = std::string(kAssetScheme).append(path.substr(0, path.find('?')));
  const std::optional<CollectionPicture> picture = collectionPicture(source, document_.pictures);
  if (!picture) return false;
  fulfil(request,
         {header("Content-Type", mediaType(picture->format)),
          header("X-Content-Type-Options", "nosniff")},
         picture->bytes, deadline);
  return true;
}

void BrowserPage::fulfil(const std::string& request, Json headers, std::string_view body,
                         Deadline deadline) {
  connection_.send("Fetch.fulfillRequest",
                   {{"requestId", request},
                    {"responseCode", 200},
                    {"responseHeaders", std::move(headers)},
                    {"body", base64Text(body)}},
                   session_, deadline);
}

}  // namespace lk
