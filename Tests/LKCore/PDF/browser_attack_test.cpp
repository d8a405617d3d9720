#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "LKCore/Base/Base64.h"
#include "LKCore/PDF/PrintEngine.h"
#include "Support/BrowserTraces.h"
#include "Support/LoopbackListener.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSecret = "OPENSESAME";
constexpr const char* kDot =
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGP4z8AAAAMBAQDJ/pLvAAAAAElFTkSuQmCC";

struct Attack {
  const char* name;
  std::string html;  // "$SECRET" is the secret's path, "$HOST" the listener
};

std::vector<Attack> attacks() {
  return {
      {"file picture", R"_(<img src="file://$SECRET.txt"><img src="file://$SECRET.svg">)_"},
      {"dots", R"_(<img src="../secret.svg"><img src="attachments/../../secret.svg">)_"},
      {"encoded dots", R"_(<img src="%2e%2e/secret.svg"><img src="..%2fsecret.svg">)_"},
      {"asset dots", R"_(<img src="larkspire-asset:///..%2F..%2Fsecret.svg">)_"},
      {"absolute asset", R"_(<img src="larkspire-asset:///%2F$SECRET.svg">)_"},
      {"symbolic link", R"_(<img src="larkspire-asset:///attachments/out.svg">)_"},
      {"text as picture", R"_(<img src="larkspire-asset:///attachments/note.txt">)_"},
      {"object", R"_(<object data="file://$SECRET.txt"></object>
                    <object data="attachments/page.html"></object>)_"},
      {"embed", R"_(<embed src="file://$SECRET.txt"><embed src="attachments/page.html">)_"},
      {"iframe", R"_(<iframe src="file://$SECRET.txt"></iframe><iframe src="/"></iframe>
                    <iframe src="attachments/page.html"></iframe>
                    <iframe srcdoc="<script>document.write('SCRIPT' + 'RAN')</script>"></iframe>)_"},
      {"link", R"_(<link rel=stylesheet href="http://$HOST/a"><link rel=icon href="//$HOST/b">
                  <link rel=preload as=image href="http://$HOST/c">
                  <link rel=preconnect href="http://$HOST"><link rel=prefetch href="http://$HOST">
                  <link rel=stylesheet href="file://$SECRET.css">)_"},
      {"import", R"_(<style>@import url(http://$HOST/x); @import "file://$SECRET.css";</style>)_"},
      {"url", R"_(<p style="background:url(http://$HOST/y);list-style:url(file://$SECRET.svg)">
                 <style>@font-face{font-family:F;src:url(http://$HOST/f)} p{font-family:F}</style>)_"},
      {"svg entity", R"_(<!DOCTYPE x [<!ENTITY e SYSTEM "file://$SECRET.txt">]><svg><text>&e;</text>
                        <image href="file://$SECRET.svg"/><use href="http://$HOST/s#a"/></svg>)_"},
      {"svg picture with entity", R"_(<img src="larkspire-asset:///attachments/entity.svg">)_"},
      {"scripts", R"_(<script>document.body.append('SCRIPT' + 'RAN')</script>
                     <svg><script>document.body.append('SCRIPT' + 'RAN')</script></svg>)_"},
      {"handlers", R"_(<img src=x onerror="document.body.append('SCRIPT' + 'RAN')">
                      <body onload="document.body.append('SCRIPT' + 'RAN')">
                      <details open ontoggle="document.body.append('SCRIPT' + 'RAN')">)_"},
      {"form",
       R"_(<form action="http://$HOST/z"><input autofocus onfocus="form.submit()"></form>)_"},
      {"refresh", R"_(<meta http-equiv=refresh content="0;url=http://$HOST/">
                     <meta http-equiv=refresh content="0;url=about:blank">
                     <meta http-equiv=refresh content="0;url=javascript:document.write('SCRIPTRAN')">)_"},
      {"base", R"_(<base href="http://$HOST/"><img src="a.png">)_"},
      {"attachment", R"_(<a rel=attachment href="file://$SECRET.txt">a</a>
                        <link rel=attachment href="file://$SECRET.txt">)_"},
      {"remote pictures", R"_(<img src="http://$HOST/p.png" srcset="http://$HOST/2.png 2x">
                             <video src="http://$HOST/v" poster="http://$HOST/w"></video>
                             <picture><source srcset="http://$HOST/3.png"><img></picture>)_"},
  };
}

std::string filledIn(std::string html, std::string_view name, const std::string& value) {
  for (size_t at = 0; (at = html.find(name, at)) != std::string::npos; at += value.size()) {
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
  test::writeWhole(folder / "secret.css", "body::after{content:'" + std::string(kSecret) + "'}");
  const fs::path attachments = folder / "collection" / "attachments";
  fs::create_directories(attachments);
  fs::create_symlink(folder / "secret.svg", attachments / "out.svg");
  test::writeWhole(attachments / "note.txt", kSecret);
  test::writeWhole(attachments / "page.html",
                   "<script>document.write('SCRIPTRAN')</script>" + std::string(kSecret));
  test::writeWhole(attachments / "entity.svg",
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
  const test::LoopbackListener listener;
  const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
  for (const Attack& attack : attacks()) {
    SCOPED_TRACE(attack.name);
    std::string html = filledIn(attack.html, "$SECRET", (folder / "secret").string());
    html = filledIn(html, "$HOST", "127.0.0.1:" + listener.port());
    const std::string pdf = engine->print(
        {.html = "<!doctype html><html lang=en><body><p>before</p>" + html + "<p>after</p>",
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
  for (const char* source : {"larkspire-asset:///attachments/dot.png", "attachments/dot.png",
                             "larkspire-asset:///attachments/%64ot.png"}) {
    SCOPED_TRACE(source);
    const std::string pdf = engine->print(
        {.html = "<!doctype html><img width=50 height=50 src=\"" + std::string(source) + "\">",
         .collectionRoot = folder / "collection"},
        "", std::chrono::steady_clock::now() + std::chrono::seconds(30));
    EXPECT_EQ(picturesIn(pdf), 1U);
  }
}

}  // namespace
}  // namespace lk
