#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "LKCore/PDF/BrowserHyphenation.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/PDF/PrintEngine.h"
#include "LKCore/Platform/Files.h"
#include "Support/BrowserTraces.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::BrowserTraces;
using test::ChangedVariable;
using Kind = LKBindPDFError::Kind;

PrintEngine::Deadline within(int seconds) {
  return std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
}

struct Failure {
  Kind kind = Kind::noEngine;
  std::string words;
};

Failure failureOf(PrintEngine& engine, int seconds) {
  try {
    engine.print({.html = "<p>Hello</p>", .collectionRoot = "/"}, "", within(seconds));
  } catch (const LKBindPDFError& error) {
    return {error.kind(), error.description()};
  }
  return {};
}

TEST(BrowserEngine, IsNoneWithoutABrowser) {
  const test::TempFolder empty;
  const ChangedVariable path("PATH", empty.path().string());
  EXPECT_EQ(browserPrintEngine(), nullptr);
  std::string message;
  EXPECT_TRUE(drawnDiagrams({"graph TD\nA-->B"}, within(5), &message).empty());
  EXPECT_NE(message.find("chromium"), std::string::npos) << message;
}

TEST(BrowserEngine, SaysWhatWentWrongAndLeavesNothing) {
  struct Case {
    const char* name;
    const char* script;
    int seconds;
    Kind kind;
    const char* words;
  };
  const Case cases[] = {
      {"hangs", "sleep 60", 1, Kind::timeout, ""},
      {"hangs with children of its own", "setsid sleep 60 & sleep 60", 1, Kind::timeout, ""},
      {"talks for ever", "while :; do printf '{}\\000' >&4; done", 2, Kind::timeout, ""},
      {"dies", "echo no display >&2; exit 3", 20, Kind::webViewLoadFailed,
       "the browser ended: no display"},
      {"says nothing", "exit 0", 20, Kind::webViewLoadFailed, "the browser ended"},
      {"talks nonsense", "printf 'what?\\000' >&4; sleep 60", 20, Kind::webViewLoadFailed, ""},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    const test::TempFolder programs;
    const BrowserTraces traces;
    test::writeWhole(programs / "chromium", std::string("#!/bin/sh\n") + row.script + "\n");
    fs::permissions(programs / "chromium", fs::perms::owner_all);
    const ChangedVariable path("PATH", programs.path().string() + ":" + std::getenv("PATH"));
    const auto start = std::chrono::steady_clock::now();
    {
      const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
      ASSERT_NE(engine, nullptr);
      const Failure failure = failureOf(*engine, row.seconds);
      EXPECT_EQ(failure.kind, row.kind) << failure.words;
      EXPECT_NE(failure.words.find(row.words), std::string::npos) << failure.words;
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(row.seconds + 40));
    EXPECT_EQ(traces.left(), "");
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a watcher is left";
  }
}

TEST(BrowserEngine, PrintsEveryPageAndSomeOfThem) {
  if (test::browser().empty()) GTEST_SKIP() << "chromium is not installed";
  const BrowserTraces traces;
  {
    const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
    const PrintJob job{
        .html =
            "<!doctype html><html lang=en><style>@page{size:5in 8in;margin:.5in}"
            "h1{break-before:page} div{width:1.1in;hyphens:auto}</style>"
            "<h1>One</h1><div>an internationalization</div><h1>Two</h1><h1>Three</h1>",
        .collectionRoot = "/"};
    const std::string whole = engine->print(job, "", within(60));
    const std::string text = test::textOf(whole);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\f'), 3) << text;
    const bool hasPatterns = fs::exists("/usr/share/hyphen/hyph_en_US.dic");
    EXPECT_EQ(text.find("internationalization") == std::string::npos, hasPatterns) << text;

    const std::string part = test::textOf(engine->print(job, "2-3", within(60)));
    EXPECT_EQ(part.find("One"), std::string::npos) << part;
    EXPECT_NE(part.find("Three"), std::string::npos) << part;

    const auto beyond = [&] { engine->print(job, "7", within(60)); };
    EXPECT_THROW(beyond(), LKBindPDFError);
    EXPECT_TRUE(engine->print(job, "1", within(60)).starts_with("%PDF-"));
  }
  EXPECT_EQ(traces.left(), "");
}

TEST(BrowserEngine, DiesWithItsOwner) {
  if (test::browser().empty()) GTEST_SKIP() << "chromium is not installed";
  const BrowserTraces traces;
  test::Child owner([] {
    const std::unique_ptr<PrintEngine> engine = browserPrintEngine();
    engine->print({.html = "<p>Hello</p>", .collectionRoot = "/"}, "", within(60));
    std::this_thread::sleep_for(std::chrono::seconds(60));
    return std::string();
  });
  for (int i = 0; i < 600 && traces.processes().empty(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  ASSERT_NE(traces.left(), "") << "the browser never started";
  owner.kill();
  for (int i = 0; i < 500 && !traces.left().empty(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  EXPECT_EQ(traces.left(), "");
}

TEST(BrowserDiagrams, DrawWhatCanBeDrawn) {
  if (test::browser().empty()) GTEST_SKIP() << "chromium is not installed";
  const std::string good = "graph TD\nA[Sow] --> B[Water & wait]";
  std::string message;
  const LKBindDiagrams drawn =
      drawnDiagrams({good, "no diagram at all", good}, within(60), &message);
  if (message.find("install-diagrams") != std::string::npos) GTEST_SKIP() << message;
  ASSERT_EQ(drawn.size(), 1U) << message;
  const LKBindDiagram& diagram = drawn.at(good);
  EXPECT_TRUE(diagram.svg.starts_with("<svg")) << diagram.svg.substr(0, 80);
  EXPECT_NE(diagram.svg.find("Water"), std::string::npos);
  EXPECT_EQ(diagram.svg.find("foreignObject"), std::string::npos);
  EXPECT_EQ(diagram.png.substr(1, 3), "PNG");
  EXPECT_GT(diagram.width, 20);
  EXPECT_GT(diagram.height, diagram.width / 2);
}

TEST(BrowserHyphenation, TakesPatternsAlone) {
  const std::string none = hyphenationDictionary("");
  EXPECT_EQ(hyphenationDictionary("UTF-8\nLEFTHYPHENMIN 2\n%x\n\xC3\xA9"
                                  "1t\n"),
            none);
  const std::string some = hyphenationDictionary("UTF-8\n.ach4\nhy3ph\n");
  EXPECT_GT(some.size(), none.size());
  EXPECT_EQ(some.substr(0, 4), "\x68\x79\xAD\x62");
}

}  // namespace
}  // namespace lk
