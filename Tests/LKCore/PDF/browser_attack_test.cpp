#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "LKCore/Base/Base64.h"
#include "LKCore/PDF/PrintEngine.h"
#include "Support/BrowserTraces.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSecret = "OPENSESAME";
constexpr const char* kDot =
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElFTkSuQmCC";

// A server of this machine that counts who comes.
class Listener {
 public:
  Listener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* general = reinterpret_cast<sockaddr*>(&address);
    if (bind(socket_, general, size) != 0 || listen(socket_, 16) != 0 ||
        getsockname(socket_, general, &size) != 0) {
      throw std::runtime_error("no listener");
    }
    port_ = ntohs(address.sin_port);
  }
  ~Listener() { close(socket_); }
  Listener(const Listener&) = delete;
  Listener& operator=(const Listener&) = delete;

  std::string address() const { return "127.0.0.1:" + std::to_string(port_); }

  int visitors() const {
    int count = 0;
    for (int guest = 0; (guest = accept(socket_, nullptr, nullptr)) >= 0; ++count) close(guest);
    return count;
  }

 private:
  int socket_;
  int port_ = 0;
};

struct Attack {
  const char* name;
  std::string html;  // "$SECRET" is the secret's path, "$HOST" the listener
};

std::vector<Attack> attacks() {
  return {
    {"file picture", R"(<img src="file://$SECRET.txt"><img src="file://$SECRET.svg">)"},
        {"dots", R"(<img src="../secret.svg"><img src="attachments/../../secret.svg">)"},
        {"encoded dots", R"(<img src="%2e%2e/secret.svg"><img src="..%2fsecret.svg">)"},
        {"asset dots", R"(<img src="larkspire-asset:///..%2F..%2Fsecret.svg">)"},
        {"absolute asset", R"(<img src="larkspire-asset:///%2F$SECRET.svg">)"},
        {"symbolic link", R"(<img src="larkspire-asset:///attachments/out.svg">)"},
        {"text as picture", R"(<img src="larkspire-asset:///attachments/note.txt">)"},
        {"object", R"(<object data="file://$SECRET.txt"></object>
                    <object data="attachments/page.html"></object>)"},
        {"embed", R"(<embed src="file://$SECRET.txt"><embed src="attachments/page.html">)"},
        {"iframe", R"(<iframe src="file://$SECRET.txt"></iframe><iframe src="/"></iframe>
                    <iframe src="attachments/page.html"></iframe>
                    <iframe srcdoc="<script>document.write('SCRIPT' + 'RAN')</script>"></iframe>)"},
        {"link", R"(<link rel=stylesheet href="http://$HOST/a"><link rel=icon href="//$HOST/b">
                  <link rel=preload as=image href="http://$HOST/c">
                  <link rel=preconnect href="http://$HOST"><link rel=prefetch href="http://$HOST">
                  <link rel=stylesheet href="file://$SECRET.css">)"},
        {"import", R"(<style>@import url(http://$HOST/x); @import "file://$SECRET.css";</style>)"},
    {
      "url", R"(<p style="background:url(http://$HOST/y);list-style:url(file://$SECRET.svg)" >
                 <style> @font - face {
        font - family : F;
      src:url(http://$HOST/f)} p{font-family:F}</style>)"},
      {"svg entity", R"(<!DOCTYPE x [<!ENTITY e SYSTEM "file://$SECRET.txt">]><svg><text>&e;</text>
                        <image href="file://$SECRET.svg"/><use href="http://$HOST/s#a"/></svg>)"},
      {"svg picture with entity", R"(<img src="larkspire-asset:///attachments/entity.svg">)"},
      {"scripts", R"(<script>document.body.append('SCRIPT' + 'RAN')</script>
                     <svg><script>document.body.append('SCRIPT' + 'RAN')</script></svg>)"},
      {"handlers", R"(<img src=x onerror="document.body.append('SCRIPT' + 'RAN')">
                      <body onload="document.body.append('SCRIPT' + 'RAN')">
                      <details open ontoggle="document.body.append('SCRIPT' + 'RAN')">)"},
      {"form", R"(<form action="http://$HOST/z"><input autofocus onfocus="form.submit()"></form>)"},
      {"refresh", R"(<meta http-equiv=refresh content="0;url=http://$HOST/">
                     <meta http-equiv=refresh content="0;url=about:blank">
                     <meta http-equiv=refresh content="0;url=javascript:document.write('SCRIPTRAN')">)"},
      {"base", R"(<base href="http://$HOST/"><img src="a.png">)"},
      {"attachment", R"(<a rel=attachment href="file://$SECRET.txt">a</a>
                        <link rel=attachment href="file://$SECRET.txt">)"},
      {"remote pictures", R"(<img src="http://$HOST/p.png" srcset="http://$HOST/2.png 2x">
                             <video src="http://$HOST/v" poster="http://$HOST/w"></video>
                             <picture><source srcset="http://$HOST/3.png"><img></picture>)"},
  };
          }

          std::string filledIn(std::string html, std::string_view name, const std::string& value) {
            for (size_t at = 0; (at = html.find(name, at)) != std::string::npos;
                 at += value.size()) {
              html.replace(at, name.size(), value);
            }
            return html;
          }

          // A collection with a secret beside it and ways that seem to lead there.
          void plant(const fs::path& folder) {
            const std::string picture =
                "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"300\" height=\"30\">"
                "<text y=\"20\">" +
                std::string(kSecret) + "</text></svg>";
            test::writeWhole(folder / "secret.txt", kSecret);
            test::writeWhole(folder / "secret.svg", picture);
            test::writeWhole(folder / "secret.css",
                             "body::after{content:'" + std::string(kSecret) + "'}");
            const fs::path attachments = folder / "collection" / "attachments";
            fs::create_directories(attachments);
            fs::create_symlink(folder / "secret.svg", attachments / "out.svg");
            test::writeWhole(attachments / "note.txt", kSecret);
            test::writeWhole(attachments / "page.html",
                             "<script>document.write('SCRIPTRAN')</script>" + std::string(kSecret));
            test::writeWhole(
                attachments / "entity.svg",
                "<!DOCTYPE svg [<!ENTITY e SYSTEM \"file://" + (folder / "secret.txt").string() +
                    "\">]><svg xmlns=\"http://www.w3.org/2000/svg\" width=\"300\" height=\"30\">"
                    "<text y=\"20\">&e;</text></svg>");
            test::writeWhole(attachments / "dot.png", base64Bytes(kDot).value());
          }

          size_t picturesIn(const std::string& pdf) {
            const test::Sandbox sandbox;
            test::writeWhole(sandbox.home() / "book.pdf", pdf);
            const std::string list = sandbox.run("pdfimages", {"-list", "book.pdf"}).out;
            const auto lines = static_cast<size_t>(std::count(list.begin(), list.end(), '\n'));
            return lines < 2 ? 0 : lines - 2;  // below a heading of two lines
          }

          TEST(BrowserAttacks, ReachNothing) {
            if (test::browser().empty()) GTEST_SKIP() << "chromium is not installed";
            const test::BrowserTraces traces;
            const test::TempFolder folder;
            plant(folder.path());
            const Listener listener;
            const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
            for (const Attack& attack : attacks()) {
              SCOPED_TRACE(attack.name);
              std::string html = filledIn(attack.html, "$SECRET", (folder / "secret").string());
              html = filledIn(html, "$HOST", listener.address());
              const std::string pdf =
                  engine->print({.html = "<!doctype html><html lang=en><body><p>before</p>" + html +
                                         "<p>after</p>",
                                 .collectionRoot = folder / "collection"},
                                "", std::chrono::steady_clock::now() + std::chrono::seconds(30));
              const std::string text = test::textOf(pdf);
              EXPECT_NE(text.find("before"), std::string::npos) << text;
              EXPECT_EQ(text.find(kSecret), std::string::npos) << text;
              EXPECT_EQ(text.find("SCRIPTRAN"), std::string::npos) << text;
              EXPECT_EQ(listener.visitors(), 0);
            }
          }

          TEST(BrowserAttacks, LeavePicturesOfTheCollectionAlone) {
            if (test::browser().empty()) GTEST_SKIP() << "chromium is not installed";
            const test::TempFolder folder;
            plant(folder.path());
            const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
            for (const char* source :
                 {"larkspire-asset:///attachments/dot.png", "attachments/dot.png",
                  "larkspire-asset:///attachments/%64ot.png"}) {
              SCOPED_TRACE(source);
              const std::string pdf =
                  engine->print({.html = "<!doctype html><img width=50 height=50 src=\"" +
                                         std::string(source) + "\">",
                                 .collectionRoot = folder / "collection"},
                                "", std::chrono::steady_clock::now() + std::chrono::seconds(30));
              EXPECT_EQ(picturesIn(pdf), 1U);
            }
          }

}  // namespace
      }  // namespace lk
