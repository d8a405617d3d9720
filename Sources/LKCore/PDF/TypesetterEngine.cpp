// The typesetter: a Python program that takes the document and its pictures on its standard input
// and asks nobody for anything else.

#include <algorithm>
#include <map>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/PDF/PrintEngine.h"
#include "LKCore/Pictures/CollectionPicture.h"
#include "LKCore/Platform/ChildProcess.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/ProcessStart.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk {

namespace {

// Input: parts, each a line "KIND LENGTH" and so many bytes. The first is the document, with the
// wanted pages for its kind; the others are pictures, named "larkspire-asset:NUMBER" in it.
constexpr std::string_view kTypesetterScript = R"(import sys
from weasyprint import HTML, default_url_fetcher
parts = []
while line := sys.stdin.buffer.readline():
    kind, size = line.split()
    parts.append((kind.decode(), sys.stdin.buffer.read(int(size))))
def fetch(url, *arguments, **options):
    scheme, _, rest = url.partition(':')
    if scheme == 'larkspire-asset' and rest.isascii() and rest.isdigit() and 0 < int(rest) < len(parts):
        return {'string': parts[int(rest)][1], 'mime_type': parts[int(rest)][0]}
    if scheme == 'data':
        return default_url_fetcher(url)
    raise ValueError('nothing is fetched')
pages, document = parts[0]
book = HTML(string=document.decode(), base_url='larkspire-book:/', url_fetcher=fetch).render()
if pages != 'all':
    first, last = map(int, pages.split('-'))
    book = book.copy(book.pages[first - 1:last])
pdf = book.write_pdf()
sys.stdout.buffer.write(pdf)
)";

bool isAssetSource(std::string_view value) {
  return value.starts_with("larkspire-asset:");
}

std::string inputPart(std::string_view kind, std::string_view bytes) {
  return std::string(kind) + " " + std::to_string(bytes.size()) + "\n" + std::string(bytes);
}

// The document and the pictures of the collection that it shows, each once.
std::string typesetterInput(const PrintJob& job, const std::string& pages) {
  std::map<std::string, size_t, std::less<>> numbers;  // by source; 0 for what is no picture
  std::string pictures;
  size_t count = 0;
  const auto numbered = [&](const html::TagMatch& tag) -> std::optional<std::string> {
    const std::string source = html::unescaped(tag.value.of(job.html));
    const auto [place, isNew] = numbers.try_emplace(source, 0);
    if (isNew) {
      if (const auto picture = collectionPicture(source, job.collectionRoot)) {
        place->second = ++count;
        pictures.append(inputPart(mediaType(picture->format), picture->bytes));
      }
    }
    std::string rewritten(tag.whole.of(job.html));
    return rewritten.replace(tag.value.start - tag.whole.start, tag.value.length(),
                             "larkspire-asset:" + std::to_string(place->second));
  };
  const std::string document = html::rewriteImages(job.html, "src=\"", isAssetSource, numbered);
  return inputPart(pages.empty() ? "all" : pages, document) + pictures;
}

// What the engine said last: the reason, behind the lines of its trace.
std::string lastLine(std::string_view errors) {
  const std::vector<std::string_view> lines = text::split(text::trimmed(errors), '\n');
  return text::escapedInvalid(text::trimmed(lines.back()));
}

class TypesetterEngine : public PrintEngine {
 public:
  // `python` is the interpreter with its own arguments.
  explicit TypesetterEngine(std::vector<std::string> python) : python_(std::move(python)) {}

  std::string print(const PrintJob& job, const std::string& pages, Deadline deadline) override {
    ChildCommand command{.program = python_.front(),
                         .arguments = {python_.begin() + 1, python_.end()},
                         .input = typesetterInput(job, pages)};
    // Isolated: nothing of the environment or the working folder is taken for a part of it.
    for (const std::string_view argument :
         {std::string_view("-I"), std::string_view("-c"), kTypesetterScript}) {
      command.arguments.emplace_back(argument);
    }
    try {
      return printed(runChild(command, deadline));
    } catch (const FileError& error) {
      throw LKBindPDFError::pdfGenerationFailed(error.description());
    }
  }

  bool fillsPageNumbers() const override { return true; }

 private:
  static std::string printed(ChildRun run) {
    if (run.end == ChildEnd::late) throw LKBindPDFError::timeout();
    if (run.end == ChildEnd::exited && run.status == 0 && run.out.starts_with("%PDF-")) {
      return std::move(run.out);
    }
    std::string reason = lastLine(run.err);
    if (!reason.empty()) reason = ": " + reason;
    if (run.end == ChildEnd::signalled) {
      reason = " by signal " + std::to_string(run.status) + reason;
    } else {
      reason = " with status " + std::to_string(run.status) + " and no pages" + reason;
    }
    throw LKBindPDFError::pdfGenerationFailed("The typesetter ended" + reason);
  }

  std::vector<std::string> python_;
};

}  // namespace

std::unique_ptr<PrintEngine> typesetterPrintEngine() {
  const auto program = programOnPath("weasyprint");
  if (!program) return nullptr;
  // Its first line names the Python that has it: "#!/usr/bin/python3".
  std::string start;
  try {
    start = readFileStart(*program, 512);
  } catch (const FileError&) {
    return nullptr;
  }
  if (!start.starts_with("#!/")) return nullptr;
  std::vector<std::string> python;
  const std::string first = start.substr(2, start.find('\n') - 2);
  for (const std::string_view word : text::split(first, ' ')) {
    if (!text::trimmed(word).empty()) python.emplace_back(text::trimmed(word));
  }
  return std::make_unique<TypesetterEngine>(std::move(python));
}

}  // namespace lk
