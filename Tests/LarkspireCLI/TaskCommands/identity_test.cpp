// Every task keeps its id, whoever changes its note: a random run of commands and outside edits is
// followed by a model that knows nothing of hashes. LARKSPIRE_TASK_OPERATIONS makes it longer.

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <random>
#include <set>

#include "LarkspireCLI/Reading/ReadingFixture.h"

namespace lk {
namespace {

struct ModelTask {
  std::optional<UUID> id;  // nothing until the tool has written the note
  std::string words;       // what follows the mark, metadata apart
  char mark = ' ';
};

struct ModelNote {
  std::string title;
  std::vector<ModelTask> tasks;
};

class TaskIdentity : public test::Reading {
 protected:
  TaskIdentity() {
    for (const char* title : {"One", "Two", "Three"}) {
      note(title, "Words. #t0\n\n- [ ] Anchor context:c0 project:p0\n");
      model_.push_back({title, {{std::nullopt, "Anchor"}}});
      run("edit|" + std::string(title) + "|--append|More words.");
    }
    for (ModelNote& each : model_) compare(each);
  }

  size_t upTo(size_t count) { return random_() % count; }
  std::string number() { return std::to_string(generation_); }

  test::ProcessResult run(const std::string& line) {
    test::ProcessResult result = lk(line + "|--quiet");
    EXPECT_EQ(result.status, 0) << line << ": " << result.err;
    return result;
  }

  // The note's file against the model, which learns the ids of tasks that came from outside.
  void compare(ModelNote& wanted) {
    const LKParsedDocument document = parseDocument(test::readWhole(file(wanted.title)));
    const auto lines = text::split(document.body, '\n');
    size_t task = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
      if (!lines[i].starts_with("- [")) continue;
      ASSERT_LT(task, wanted.tasks.size()) << document.body;
      ModelTask& expected = wanted.tasks[task];
      EXPECT_TRUE(lines[i].starts_with(std::string("- [") + expected.mark + "] " + expected.words))
          << lines[i] << " for " << expected.words;
      ASSERT_LT(task, document.frontMatter.taskEntries.size());
      const TaskEntry& entry = document.frontMatter.taskEntries[task++];
      EXPECT_EQ(entry.paragraphIndex, static_cast<int>(i));
      if (!expected.id) {
        EXPECT_TRUE(seen_.insert(entry.id).second) << "an id given twice";
        expected.id = entry.id;
      }
      EXPECT_EQ(entry.id, *expected.id) << lines[i];
    }
    EXPECT_EQ(task, wanted.tasks.size()) << document.body;
  }

  void add(ModelNote& to) {
    const std::vector<std::string> texts = {"Water", "Order seeds #t" + number(),
                                            "Task " + std::to_string(++made_)};
    const std::string& words = texts[upTo(texts.size())];
    std::string line = "tasks|add|" + words + "|--json|--note|" + to.title;
    if (upTo(2) == 0) line += "|--due|2026-05-0" + std::to_string(1 + upTo(9));
    const Json result = parseJson(run(line).out);
    const auto id = UUID::parse(result.at("id").get<std::string>());
    ASSERT_TRUE(id && seen_.insert(*id).second);
    to.tasks.push_back({id, words});
  }

  void changeOne(ModelNote& in) {
    const size_t chosen = upTo(in.tasks.size());
    ModelTask& task = in.tasks[chosen];
    const bool isAnchor = task.words == "Anchor";  // has a name for each of the renames
    std::string which = "|--id|" + task.id->text();
    if (upTo(2) == 0) which += "|--note|" + in.title;
    const std::vector<std::pair<std::string, char>> moves = {
        {"complete", 'x'}, {"cancel", '-'}, {"progress", '/'}, {"reset", ' '}};
    const std::vector<std::string> settings = {"--due|tomorrow",           "--clear-due",
                                               "--priority|high",          "--clear-priority",
                                               "--clear-project",          "--project|p" + number(),
                                               "--context|a,c" + number(), "--clear-context"};
    const size_t choice = upTo(10);
    if (choice < moves.size()) {
      run("tasks|" + moves[choice].first + which);
      task.mark = moves[choice].second;
    } else if (isAnchor) {
      run("tasks|set|--priority|low" + which);
    } else if (choice < 8) {
      run("tasks|set|" + settings[upTo(settings.size())] + which);
    } else {
      run("tasks|remove" + which);
      in.tasks.erase(in.tasks.begin() + static_cast<std::ptrdiff_t>(chosen));
    }
  }

  // Another program adds a line of its own, or a date to a task; then the tool writes the note.
  void editOutside(ModelNote& in) {
    const std::string bytes = test::readWhole(file(in.title));
    const size_t bodyStart = bytes.find("\n---\n") + 5;
    std::vector<std::string> lines;
    for (const std::string_view line :
         text::split(std::string_view(bytes).substr(bodyStart), '\n')) {
      lines.emplace_back(line);
    }
    const size_t at = 1 + upTo(lines.size());
    const auto tasksBefore =
        std::count_if(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(at),
                      [](const std::string& line) { return line.starts_with("- ["); });
    const bool addsTask = upTo(2) == 0;
    const std::string words = addsTask ? "Outside " + std::to_string(++made_) : "plain";
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(at),
                 addsTask ? "- [ ] " + words : words);
    if (addsTask) in.tasks.insert(in.tasks.begin() + tasksBefore, ModelTask{std::nullopt, words});
    std::string changed = bytes.substr(0, bodyStart);
    for (size_t i = 0; i < lines.size(); ++i) {
      const bool isDated = lines[i].starts_with("- [") && upTo(4) == 0;
      changed += (i == 0 ? "" : "\n") + lines[i] + (isDated ? " due:2026-07-07" : "");
    }
    test::writeWhole(file(in.title), changed);
    run("edit|" + in.title + "|--append|Line");
  }

  void renameEverywhere() {
    const std::string from = number();
    ++generation_;
    run("tags|rename|t" + from + "|t" + number());
    run("contexts|rename|c" + from + "|c" + number());
    run("projects|rename|p" + from + "|p" + number());
    for (ModelNote& each : model_) {
      for (ModelTask& task : each.tasks) {
        if (task.words.ends_with("#t" + from)) task.words = "Order seeds #t" + number();
      }
    }
  }

  void renameNote(ModelNote& which) {
    const std::string title = "Note " + std::to_string(++made_);
    run("rename|" + which.title + "|" + title);
    which.title = title;
  }

  void step() {
    ModelNote& chosen = model_[upTo(model_.size())];
    const size_t choice = upTo(20);
    if (choice < 6) {
      add(chosen);
    } else if (choice < 15) {
      changeOne(chosen);
    } else if (choice < 18) {
      editOutside(chosen);
    } else if (choice == 18) {
      renameNote(chosen);
    } else {
      renameEverywhere();
    }
    for (ModelNote& each : model_) compare(each);
  }

  std::mt19937 random_{20260314};  // the same run each time
  std::vector<ModelNote> model_;
  std::set<UUID> seen_;
  size_t generation_ = 0;
  size_t made_ = 0;
};

TEST_F(TaskIdentity, SurvivesWhateverHappensToTheNotes) {
  const char* wanted = std::getenv("LARKSPIRE_TASK_OPERATIONS");
  const int count = wanted != nullptr ? std::atoi(wanted) : 200;
  for (int i = 0; i < count && !HasFailure(); ++i) {
    SCOPED_TRACE("operation " + std::to_string(i));
    step();
  }
}

class ProjectRenaming : public test::Reading {};

TEST_F(ProjectRenaming, TellsWhichFilesFailedAndFinishesTheRestLater) {
  namespace fs = std::filesystem;
  note("A", "#projects/acme\n- [ ] a project:acme");
  note("Deep/B", "- [ ] b project:acme");
  test::writeWhole(file("Plain"), "- [ ] c project:acme");
  for (fs::path path = notes(); path != sandbox.home().parent_path(); path = path.parent_path()) {
    if (fs::status(path).permissions() == fs::perms::owner_all) {
      fs::permissions(path, fs::perms{0755});
    }
  }
  for (const char* name : {"", "A.md", "Deep/B.md"})
    fs::permissions(notes() / name, fs::perms{0777});
  fs::permissions(notes() / "Deep", fs::perms{0555});
  const auto asNobody = [&] {
    return sandbox.lkAsOrdinaryUser(
        {"projects", "rename", "acme", "nimbus", "--collection", notes().string()});
  };
  const test::ProcessResult first = asNobody();
  EXPECT_EQ(first.status, 4);
  EXPECT_EQ(first.out, "Renamed project “acme” → “nimbus” in 1 note (1 tag, 1 task).\n");
  EXPECT_NE(first.err.find("Note: " + file("Plain").string() + " stays as it is"),
            std::string::npos)
      << first.err;
  EXPECT_NE(first.err.find("1 note keeps project “acme”:\n  " + file("Deep/B").string()),
            std::string::npos)
      << first.err;
  fs::permissions(notes() / "Deep", fs::perms{0777});
  EXPECT_EQ(asNobody().out, "Renamed project “acme” → “nimbus” in 1 note (0 tags, 1 task).\n");
  EXPECT_EQ(parseDocument(test::readWhole(file("Deep/B"))).body, "- [ ] b project:nimbus");
  EXPECT_EQ(asNobody().status, 1);
}

}  // namespace
}  // namespace lk
