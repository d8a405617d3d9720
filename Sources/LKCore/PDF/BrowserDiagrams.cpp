#include <algorithm>
#include <chrono>
#include <memory>

#include "LKCore/Base/Base64.h"
#include "LKCore/PDF/BrowserPage.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/PDF/PrintEngine.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kDrawingTime{10};  // for one diagram
constexpr double kLargestSide = 20'000;           // CSS pixels
constexpr double kPictureScale = 3;               // dots a CSS pixel, sharp at 288 an inch
constexpr double kLargestPicture = 8192;          // dots a side

constexpr const char* kCanvas =
    "<!doctype html><html lang=\"en\"><meta charset=\"utf-8\"><style>html,body{margin:0;"
    "background:#fff}</style><body><div id=\"canvas\"></div></body></html>";

// Labels as SVG text, for readers of books know no HTML within a picture.
constexpr const char* kSettings = R"(mermaid.initialize({
  startOnLoad: false, securityLevel: 'strict', htmlLabels: false, flowchart: {htmlLabels: false},
  suppressErrorRendering: true, deterministicIds: true, theme: 'default'});)";

// Gives the drawing its natural size in place of the width of the window.
constexpr const char* kDraw = R"(async (name, source) => {
  const canvas = document.getElementById('canvas');
  canvas.innerHTML = '';
  canvas.innerHTML = (await mermaid.render(name, source)).svg;
  const svg = canvas.querySelector('svg');
  const box = svg.viewBox.baseVal;
  svg.removeAttribute('style');
  svg.setAttribute('width', box.width);
  svg.setAttribute('height', box.height);
  svg.style.display = 'block';
  return {svg: new XMLSerializer().serializeToString(svg), width: box.width, height: box.height};
})";

fs::path drawingScript() {
  std::error_code missing;
  const fs::path folder = fs::read_symlink("/proc/self/exe", missing).parent_path();
  for (const fs::path& script :
       {folder / "../lib/larkspire/mermaid.min.js", folder / "lib/larkspire/mermaid.min.js",
        folder / "mermaid.min.js"}) {
    if (fs::is_regular_file(script, missing)) return script;
  }
  return {};
}

// The value of the script text; throws BrowserError for what it throws.
Json evaluated(BrowserPage& page, const std::string& script, PrintEngine::Deadline deadline) {
  Json result = page.call("Runtime.evaluate",
                          {{"expression", script}, {"awaitPromise", true}, {"returnByValue", true}},
                          deadline);
  if (result.contains("exceptionDetails")) {
    throw BrowserError(result["exceptionDetails"].value("text", "the script failed"));
  }
  return result.at("result").value("value", Json());
}

class DiagramPage {
 public:
  DiagramPage(const fs::path& program, const std::string& script, PrintEngine::Deadline deadline)
      : page_(program, deadline) {
    page_.load({.html = kCanvas, .runsScripts = true, .pictures = {}}, deadline);
    evaluated(page_, script + "\n;0", deadline);
    evaluated(page_, std::string(kSettings) + "0", deadline);
  }

  // Throws BrowserError for a text that is no diagram, and LKBindPDFError `timeout`.
  LKBindDiagram draw(const std::string& source, PrintEngine::Deadline deadline) {
    const std::string name = "diagram" + std::to_string(++drawn_);
    const std::string text = Json(source).dump(-1, ' ', true, Json::error_handler_t::replace);
    const Json value =
        evaluated(page_, std::string("(") + kDraw + ")('" + name + "', " + text + ")", deadline);
    LKBindDiagram diagram{.svg = value.at("svg").get<std::string>(),
                          .width = value.at("width").get<double>(),
                          .height = value.at("height").get<double>()};
    const double side = std::max(diagram.width, diagram.height);
    if (!(std::min(diagram.width, diagram.height) > 0) || side > kLargestSide) {
      throw BrowserError("the diagram has no size that can be drawn");
    }
    diagram.png = picture(diagram, std::min(kPictureScale, kLargestPicture / side), deadline);
    return diagram;
  }

 private:
  std::string picture(const LKBindDiagram& diagram, double scale, PrintEngine::Deadline deadline) {
    const Json clip = {
        {"x", 0}, {"y", 0}, {"width", diagram.width}, {"height", diagram.height}, {"scale", scale}};
    const Json shot =
        page_.call("Page.captureScreenshot",
                   {{"format", "png"}, {"captureBeyondViewport", true}, {"clip", clip}}, deadline);
    return base64Bytes(shot.at("data").get<std::string>()).value_or("");
  }

  BrowserPage page_;
  int drawn_ = 0;
};

}  // namespace

LKBindDiagrams drawnDiagrams(const std::vector<std::string>& sources,
                             PrintEngine::Deadline deadline, std::string* message) {
  const auto explain = [&](const std::string& reason) {
    if (message != nullptr) *message = reason;
  };
  LKBindDiagrams diagrams;
  if (sources.empty()) return diagrams;
  const fs::path program = browserProgram();
  if (program.empty()) {
    explain("Diagrams need the browser: install the package chromium.");
    return diagrams;
  }
  const fs::path script = drawingScript();
  if (script.empty()) {
    explain(
        "Diagrams need the script mermaid.min.js in lib/larkspire beside the tool, where "
        "Packaging/install-diagrams puts it.");
    return diagrams;
  }
  std::unique_ptr<DiagramPage> page;
  std::string reason;
  for (const std::string& source : sources) {
    if (diagrams.contains(source)) continue;
    try {
      if (!page) page = std::make_unique<DiagramPage>(program, readFile(script), deadline);
      const auto now = std::chrono::steady_clock::now();
      diagrams[source] = page->draw(source, std::min(deadline, now + kDrawingTime));
    } catch (const LKBindPDFError& late) {
      // The page may be caught in this diagram for ever; the others get a new one.
      reason = late.description();
      page.reset();
      if (std::chrono::steady_clock::now() >= deadline) break;
    } catch (const std::exception& error) {
      reason = error.what();
      // Without a page it is the browser that cannot be had, for this diagram and the others.
      if (!page) break;
    }
  }
  if (diagrams.empty()) explain("No diagram could be drawn: " + reason);
  return diagrams;
}

}  // namespace lk
