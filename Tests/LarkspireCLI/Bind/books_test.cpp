// `lk bind` in its four formats: what the files hold, what no note can make them hold, and what
// happens without an engine, with one that hangs, and without room.

#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <thread>

#include "LKCore/Base/Base64.h"
#include "LarkspireCLI/Reading/ReadingFixture.h"
#include "Support/LoopbackListener.h"
#include "Support/PseudoTerminal.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

// A picture of one dot that a text follows; whoever copies the file copies the text.
std::string pictureWith(const std::string& text) {
  return base64Bytes(
             "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNoAAAAggCBd81ytgAAAABJRU5E"
             "rkJggg==")
             .value_or("") +
         text;
}

fs::path programPath(const std::string& name) {
  const char* path = std::getenv("PATH");
  for (const std::string_view folder : text::split(path == nullptr ? "" : path, ':')) {
    fs::path program = fs::path(folder) / name;
    if (access(program.c_str(), X_OK) == 0) return program;
  }
  return {};
}

// Which program makes the book; empty: none is needed.
struct BookCase {
  const char* format;
  const char* engine;
};

constexpr BookCase kBookCases[] = {
    {"html", ""}, {"docx", ""}, {"epub", ""}, {"pdf", "chromium"}, {"pdf", "weasyprint"}};

// False, with a word on it, where the engine is not installed.
bool canMake(const BookCase& book) {
  if (*book.engine == '\0' || !programPath(book.engine).empty()) return true;
  std::cout << "not tried: " << book.format << ", for there is no " << book.engine << '\n';
  return false;
}

class Books : public test::Reading {
 protected:
  void chapter(const std::string& title, const std::string& body, const std::string& role = "") {
    note(title, "# " + title + "\n\n" + body + "\n\n#novel\n", 0, [&](LKFileFrontMatter& block) {
      block.tagRanks["novel"] = "a" + std::to_string(100 + chapters_++);
      if (!role.empty()) block.userProperties["manuscript-role"] = role;
    });
  }

  void attachment(const std::string& name, const std::string& bytes) const {
    fs::create_directories(notes() / ".attachments");
    test::writeWhole(notes() / ".attachments" / name, bytes);
  }

  // A folder with nothing but links to these programs.
  std::string pathWith(const std::vector<std::string>& programs) const {
    const fs::path folder = sandbox.home() / "bin";
    fs::remove_all(folder);
    fs::create_directory(folder);
    for (const std::string& name : programs) {
      fs::create_symlink(programPath(name), folder / name);
    }
    return folder.string();
  }

  // Where the case's engine is the one that is found.
  std::string pathFor(const BookCase& book) const {
    const bool isSecondChoice = book.engine == std::string_view("weasyprint");
    return isSecondChoice ? pathWith({book.engine, "python3"}) : std::getenv("PATH");
  }

  // All that the file holds: the members of an archive, the text of a PDF.
  std::string contentOf(const fs::path& book) const {
    if (book.extension() == ".html") return test::readWhole(book);
    const bool isPDF = book.extension() == ".pdf";
    const ProcessResult content = isPDF ? sandbox.run("pdftotext", {book.string(), "-"})
                                        : sandbox.run("unzip", {"-p", book.string()});
    EXPECT_EQ(content.status, 0) << book << content.err;
    return content.out;
  }

  std::vector<std::string> namesIn(const fs::path& folder) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      names.push_back(entry.path().filename());
    }
    return names;
  }

  // The command lines of the processes that were told of something in the sandbox.
  std::vector<std::string> processes() const {
    std::vector<std::string> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
      if (entry.path().filename().string().find_first_not_of("0123456789") != std::string::npos) {
        continue;
      }
      try {
        std::string line = test::readWhole(entry.path() / "cmdline");
        if (line.find(sandbox.home().string()) != std::string::npos) found.push_back(line);
      } catch (const std::runtime_error&) {
        continue;  // it has ended
      }
    }
    return found;
  }

  fs::path made(const std::string& name) const { return sandbox.home() / name; }

 private:
  int chapters_ = 0;
};

TEST_F(Books, HoldTheManuscriptInEveryFormat) {
  chapter("Cover", "![|hide](.attachments/cover.png)\n\nbyline", "title-page");
  chapter("Dawn",
          "firstwords[^1]\n\n| a | b |\n| - | - |\n| cellone | celltwo |\n\n![Sea](attachments/"
          "cover.png)\n\n```python\nprint('codeword')\n```\n\n[^1]: underneath");
  chapter("Dusk", "lastwords ![](attachments/gone.png)");
  attachment("cover.png", pictureWith("picturezz"));
  for (const BookCase& each : kBookCases) {
    if (!canMake(each)) continue;
    const std::string format = each.format;
    const std::string path = pathFor(each);
    const fs::path book = made("novel." + format);
    const ProcessResult result =
        lk("bind|--tag|novel|--json|--author|Ann Green|--output|novel." + format, {{"PATH", path}});
    ASSERT_EQ(result.status, 0) << format << result.err;
    EXPECT_EQ(parseJson(result.out),
              Json({{"format", format}, {"noteCount", 3}, {"path", book.string()}}));
    EXPECT_NE(result.err.find("gone.png"), std::string::npos) << format << result.err;
    const std::string content = contentOf(book);
    for (const char* word : {"byline", "Dawn", "firstwords", "cellone", "codeword", "underneath",
                             "Dusk", "lastwords"}) {
      EXPECT_NE(content.find(word), std::string::npos) << format << each.engine << " " << word;
    }
    if (format == "docx" || format == "epub") {
      EXPECT_NE(content.find("picturezz"), std::string::npos) << format;
    }
    EXPECT_EQ(content.find("cover-image") != std::string::npos, format == "epub");
    EXPECT_EQ(lk("bind|--tag|novel|--quiet|--output|novel." + format, {{"PATH", path}}).err, "");
  }
}

TEST_F(Books, AreTheSameBytesInAnyTimeZone) {
  chapter("Dawn", "words ![](attachments/a.png)");
  attachment("a.png", pictureWith(""));
  for (const std::string format : {"docx", "epub"}) {
    const auto bytes = [&](const std::string& zone, const std::string& date) {
      const ProcessResult result = lk("bind|--tag|novel|--quiet|--output|-|--format|" + format,
                                      {{"TZ", zone}, {"SOURCE_DATE_EPOCH", date}});
      EXPECT_EQ(result.err, "");
      return result.out;
    };
    const std::string east = bytes("JST-9", "1773445000");  // midnight lies between the two
    EXPECT_TRUE(east.starts_with("PK")) << format;
    EXPECT_TRUE(east == bytes("EST5EDT", "1773445000")) << format;
    EXPECT_FALSE(east == bytes("JST-9", "1773845000")) << format;
  }
}

// What notes try, with SECRET for the folder of the secrets and PORT for the server's.
struct Attack {
  const char* name;
  const char* body;
};

constexpr Attack kAttacks[] = {
    {"a system file", R"_(<img src="/etc/passwd"><iframe src="file:///etc/passwd"></iframe>)_"},
    {"a path", "![](SECRET/secret.png) ![](/SECRET/secret.png) <img src=\"SECRET/secret.svg\">"},
    {"two dots",
     "![](../secret.png) ![](attachments/../../secret.png) ![](.attachments/../../secret.svg)"},
    {"two dots encoded",
     "![](%2e%2e/secret.png) ![](attachments/%2e%2e/%2e%2e/secret.png) "
     "![](attachments/..%2f..%2fsecret.svg)"},
    {"two dots encoded twice", "![](attachments/%252e%252e/%252e%252e/secret.png)"},
    {"an asset's address",
     R"_(<img src="larkspire-asset:///../secret.png"> <img src="larkspire-asset:///%2e%2e/secret.svg">)_"},
    {"a link out",
     "![](attachments/link.png) ![](attachments/out/secret.png) ![](attachments/link.svg)"},
    {"a file's address", "![](file://SECRET/secret.png) <img src=\"FILE:SECRET/secret.svg\">"},
    {"an object", R"_(<object data="file://SECRET/secret.svg" type="image/svg+xml">x</object>)_"},
    {"an embed",
     R"_(<embed src="file://SECRET/secret.txt"><embed src="http://127.0.0.1:PORT/e">)_"},
    {"a frame",
     R"_(<iframe src="http://127.0.0.1:PORT/f"></iframe><iframe srcdoc="<img src='http://127.0.0.1:PORT/g'>"></iframe>)_"},
    {"a style sheet", R"_(<link rel="stylesheet" href="http://127.0.0.1:PORT/s.css">)_"},
    {"an attachment",
     R"_(<link rel="attachment" href="file://SECRET/secret.txt"><a rel="attachment" href="file://SECRET/secret.txt">a</a>)_"},
    {"an import",
     R"_(<style>@import url("http://127.0.0.1:PORT/i.css"); @import "file://SECRET/secret.txt";</style>)_"},
    {"a background",
     R"_(<p style="background: url(http://127.0.0.1:PORT/b.png)">b</p><p style="background: url('file://SECRET/secret.svg')">c</p>)_"},
    {"a font",
     R"_(<style>@font-face { font-family: F; src: url(http://127.0.0.1:PORT/f.woff) } p { font-family: F, serif }</style>)_"},
    {"a drawing in the text",
     R"_(<svg width="90" height="90"><image href="file://SECRET/secret.svg" width="9" height="9"/><script>document.body.append("script" + "ranzz")</script></svg>)_"},
    {"a drawing with entities", "![](attachments/evil.svg)"},
    {"a script",
     R"_(<script>document.body.append("script" + "ranzz"); fetch("http://127.0.0.1:PORT/s")</script>)_"},
    {"events",
     R"_(<img src="none.png" onerror="document.body.append('script' + 'ranzz')"><p onload="x()">p</p>)_"},
    {"a form",
     R"_(<form action="http://127.0.0.1:PORT/form"><input autofocus onfocus="this.form.submit()"><button>b</button></form>)_"},
    {"a refresh",
     R"_(<meta http-equiv="refresh" content="0; url=http://127.0.0.1:PORT/m"><base href="http://127.0.0.1:PORT/">)_"},
    {"remote pictures",
     R"_(![](http://127.0.0.1:PORT/r.png) <img src="http://localhost:PORT/l.png" srcset="http://127.0.0.1:PORT/t.png 2x"> ![](http://[::1]:PORT/6.png))_"},
    {"links",
     R"_([a](file://SECRET/secret.txt) [b](javascript:document.title) <a href="javascript:x()">c</a>)_"},
};

TEST_F(Books, GiveNoNoteAFileAScriptOrASocket) {
  const test::LoopbackListener listener;
  const auto filled = [&](std::string text) {
    text = text::replacingAll(text, "SECRET", sandbox.home().string());
    return text::replacingAll(text, "PORT", listener.port());
  };
  test::writeWhole(made("secret.txt"), "topsecretzz");
  test::writeWhole(made("secret.png"), pictureWith("topsecretzz"));
  test::writeWhole(made("secret.svg"),
                   "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"200\" height=\"50\"><text "
                   "y=\"20\">topsecretzz</text></svg>");
  attachment("fine.png", pictureWith("allowedzz"));
  attachment("evil.svg",
             filled("<!DOCTYPE svg [<!ENTITY s SYSTEM \"file://SECRET/secret.txt\">]><svg xmlns=\""
                    "http://www.w3.org/2000/svg\" width=\"90\" height=\"90\"><text y=\"20\">&s;"
                    "</text><image href=\"http://127.0.0.1:PORT/x.png\" width=\"9\" height=\"9\"/>"
                    "<script>document.title = 'x'</script></svg>"));
  fs::create_symlink(made("secret.png"), notes() / ".attachments/link.png");
  fs::create_symlink(made("secret.svg"), notes() / ".attachments/link.svg");
  fs::create_directory_symlink(sandbox.home(), notes() / ".attachments/out");
  for (const Attack& attack : kAttacks) chapter(attack.name, filled(attack.body));
  chapter("The end", "lastchapterzz ![](attachments/fine.png)");

  for (const BookCase& each : kBookCases) {
    if (!canMake(each)) continue;
    const std::string format = each.format;
    SCOPED_TRACE(format + " " + each.engine);
    const std::string path = pathFor(each);
    const ProcessResult result =
        lk("bind|--tag|novel|--quiet|--output|novel." + format, {{"PATH", path}});
    ASSERT_EQ(result.status, 0) << result.err;
    std::string content = contentOf(made("novel." + format));
    EXPECT_NE(content.find("lastchapterzz"), std::string::npos);
    // So the check would see a file that was copied.
    if (format == "docx" || format == "epub") {
      EXPECT_NE(content.find("allowedzz"), std::string::npos);
    }
    if (format == "pdf" && !programPath("qpdf").empty()) {
      content +=
          sandbox
              .run("qpdf", {"--qdf", "--object-streams=disable", made("novel.pdf").string(), "-"})
              .out;
      for (const char* action :
           {"(file:", "(javascript:", "/Launch", "/JavaScript", "/EmbeddedFile"}) {
        EXPECT_EQ(content.find(action), std::string::npos) << action;
      }
    }
    for (const char* never : {"topsecretzz", "root:x:0:0", "scriptranzz"}) {
      EXPECT_EQ(content.find(never), std::string::npos) << never;
    }
    EXPECT_EQ(listener.visitors(), 0);
    EXPECT_EQ(namesIn(sandbox.home() / "tmp"), std::vector<std::string>());
  }
}

TEST_F(Books, SayWhatToInstallWhereNothingCanPrint) {
  chapter("Dawn", "```mermaid\ngraph TD\n```\n\n````mermaid\n```\n````\n\n```text\nx\n```");
  const std::map<std::string, std::string> bare = {{"PATH", pathWith({})}};
  const ProcessResult pdf = lk("bind|--tag|novel|--format|pdf|--quiet", bare);
  EXPECT_EQ(pdf.status, 1);
  EXPECT_EQ(pdf.out, "");
  for (const char* package : {"Error: ", "chromium", "weasyprint"}) {
    EXPECT_NE(pdf.err.find(package), std::string::npos) << pdf.err;
  }
  EXPECT_EQ(parseJson(lk("bind|--tag|novel|--format|pdf|--quiet|--json", bare).err).at("error"),
            "error");
  EXPECT_FALSE(fs::exists(made("novel.pdf")));
  const ProcessResult docx = lk("bind|--tag|novel|--format|docx", bare);
  EXPECT_EQ(docx.status, 0);
  EXPECT_NE(docx.err.find("Rendering mermaid (2 diagrams).\nWarning: A placeholder stands for each "
                          "diagram. "),
            std::string::npos)
      << docx.err;
  EXPECT_NE(docx.err.find("chromium"), std::string::npos) << docx.err;
}

TEST_F(Books, TellTheirStageAtATerminalAndLeaveNothingWhenInterrupted) {
  chapter("Dawn", "words");
  const std::string path = pathWith({"sleep"});
  const fs::path browser = fs::path(path) / "chromium";
  test::writeWhole(browser, "#!/bin/sh\nwhile :; do sleep 1; done\n");
  fs::permissions(browser, fs::perms{0755});
  test::writeWhole(made("novel.pdf"), "old");
  {
    test::PseudoTerminal terminal(
        sandbox, LK_TOOL_PATH,
        {"bind", "--tag", "novel", "--format", "pdf", "--collection", notes().string()},
        {.environment = {{"PATH", path}}});
    const auto isOfBrowser = [&](const std::string& line) {
      return line.find(browser.string()) != std::string::npos;
    };
    terminal.readUntil("Laying out pages ...");
    const auto isStarted = [&] { return std::ranges::any_of(processes(), isOfBrowser); };
    for (int tenth = 0; tenth < 100 && !isStarted(); ++tenth) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_TRUE(isStarted());
    terminal.type("\x03");
    // The tool itself stays as a process without a command line until it is waited for.
    const auto isClean = [&] {
      return processes().empty() && namesIn(sandbox.home() / "tmp").empty();
    };
    for (int tenth = 0; tenth < 100 && !isClean(); ++tenth) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    EXPECT_EQ(processes(), std::vector<std::string>());
    EXPECT_EQ(namesIn(sandbox.home() / "tmp"), std::vector<std::string>());
  }
  EXPECT_EQ(test::readWhole(made("novel.pdf")), "old");
  test::PseudoTerminal terminal(sandbox, LK_TOOL_PATH,
                                {"bind", "--tag", "novel", "--format", "epub", "--output", "-",
                                 "--collection", notes().string()});
  terminal.readUntil("Error: A book as EPUB is nothing to show on a terminal.");
}

TEST_F(Books, AFullDiskKeepsTheOldBook) {
  chapter("Dawn", "![](attachments/large.png)");
  std::minstd_rand numbers;
  std::string noise(300'000, '\0');  // that no archive makes smaller
  for (char& c : noise) c = static_cast<char>(numbers() >> 8U);
  attachment("large.png", pictureWith(noise));
  const fs::path disk = made("Disk");
  fs::create_directory(disk);
  if (mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=64k") != 0) {
    GTEST_SKIP() << "no right to mount a small disk";
  }
  test::writeWhole(disk / "novel.epub", "old");
  const ProcessResult result = lk("bind|--tag|novel|--quiet|--output|Disk/novel.epub");
  EXPECT_EQ(result.err, "Error: Could not write " + (disk / "novel.epub").string() +
                            ": No space left on device\n");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(test::readWhole(disk / "novel.epub"), "old");
  EXPECT_EQ(namesIn(disk), std::vector<std::string>{"novel.epub"});
  umount2(disk.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace lk
