// The surgeon on real files: whom it finds, what it writes, whom it tells.

#include <gtest/gtest.h>

#include <future>

#include "LKCore/Base/Notices.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/LKTaskEditQueue.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

const UUID kNote = *UUID::parse("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F");
const UUID kSow = *UUID::parse("3B9A0C11-7A2D-4C2F-8D10-5C6B7A8F9E01");
const UUID kDig = *UUID::parse("3B9A0C11-7A2D-4C2F-8D10-5C6B7A8F9E02");
const Instant kNow = *parseISO8601("2026-03-14T12:00:00Z");

std::string entry(int index, const UUID& id, const std::string& words) {
  return std::to_string(index) + ":" + id.text() + (words.empty() ? "" : ":" + taskHash(words));
}

std::string noteOf(const std::string& tasks, const std::string& body,
                   const std::string& folded = "0,1,3") {
  return "---\nid: " + kNote.text() +
         "\nlk-tag-rank:\n  lk-tasks: m\n  id: n\nlk-folded: " + folded + "\nlk-tasks: " + tasks +
         "\nlk-hash: 00\n---\n" + body;
}

class Cache : public LKTaskCache {
 public:
  fs::path url;
  std::string told;
  bool isBroken = false;

  std::optional<fs::path> urlOfNote(const UUID& noteID) override {
    if (noteID != kNote) return std::nullopt;
    return url;
  }
  std::optional<Place> placeOfTask(const UUID& noteID, const UUID& taskID,
                                   const UUID& /*collectionID*/) override {
    if (noteID != kNote || taskID != kSow) return std::nullopt;
    return Place{url, 0};
  }
  void updateStatus(const UUID& /*taskID*/, TaskStatus status,
                    std::optional<Instant> dateCompleted) override {
    tell("status " + std::to_string(static_cast<int>(status)) +
         (dateCompleted ? " " + formatISO8601(*dateCompleted) : ""));
  }
  void updateDue(const UUID& /*taskID*/, std::optional<Day> due) override {
    tell("due " + (due ? LKDateOnly::text(*due) : ""));
  }
  void updatePriority(const UUID& /*taskID*/, int raw) override {
    tell("priority " + std::to_string(raw));
  }
  void updateProject(const UUID& /*taskID*/, const std::optional<std::string>& name) override {
    tell("project " + name.value_or(""));
  }
  void updateText(const UUID& /*taskID*/, const std::string& text) override { tell(text); }

 private:
  void tell(const std::string& what) {
    if (isBroken) throw Error("no disk");
    told = what;
  }
};

class Surgeon : public testing::Test {
 protected:
  void write(const std::string& text) { test::writeWhole(cache_.url, text); }
  std::string text() const { return test::readWhole(cache_.url); }

  test::TempFolder folder_{test::memoryFolder()};
  Cache cache_;
  LKTaskFileSurgeon surgeon_{&cache_, [] { return kNow; }};
  LKTaskReference sow_{kNote, kSow, 99};

  void SetUp() override { cache_.url = folder_ / "Note.md"; }
};

TEST_F(Surgeon, FindsATaskByIndexThenByHashOrNotAtAll) {
  struct Case {
    const char* name;
    std::string tasks;
    std::string body;
    std::string after;  // of the body; empty: refused
  };
  const std::string hashed = entry(1, kSow, "Sow");
  const std::string bare = entry(1, kSow, "");
  const std::vector<Case> cases = {
      {"at its index", hashed, "- [ ] Sow\n- [ ] Sow p", "- [/] Sow\n- [ ] Sow p"},
      {"twins", hashed, "- [ ] Sow\n- [ ] Sow", "- [ ] Sow\n- [/] Sow"},
      {"moved", hashed, "\n\n- [ ] Sow id:7", "\n\n- [/] Sow id:7"},
      {"moved and edited", hashed, "- [ ] Sow it\n- [ ] Dig", ""},
      {"bare index", bare, "\n- [ ] Any", "\n- [/] Any"},
      {"bare index off", bare, "- [ ] Sow", ""},
      {"other bullet", hashed, "* [ ] Sow", ""},
      {"index too large", "99999999999:" + kSow.text() + "," + entry(2147483647, kDig, ""),
       "- [ ] Sow", ""},
      {"negative index", entry(-2, kSow, ""), "- [ ] Sow", ""},
      {"hash of an older file",
       "0:" + kSow.text() + ":" + legacyContextTaskHash("- [ ] Sow context:a"),
       "- [ ] Sow context:a", "- [/] Sow context:a"},
      {"short hash", "0:" + kSow.text() + ":" + taskHash("Sow").substr(0, 3), "\n- [ ] Sow",
       "\n- [/] Sow"},
  };
  for (const Case& row : cases) {
    const std::string before = noteOf(row.tasks, row.body);
    write(before);
    EXPECT_EQ(surgeon_.setStatus(sow_, 1), !row.after.empty()) << row.name;
    EXPECT_EQ(text(), row.after.empty() ? before : noteOf(row.tasks, row.after)) << row.name;
  }
  write("---\n- [ ] Sow\r\n");  // a block that is not closed is no block
  EXPECT_TRUE(surgeon_.setStatus({cache_.url, kSow, 1}, 1));
  EXPECT_EQ(text(), "---\n- [/] Sow\r\n");
}

TEST_F(Surgeon, KeepsIndicesWithTheirLines) {
  const std::string sow = entry(0, kSow, "Sow");
  write(noteOf(sow + ",2:junk," + entry(2, kDig, ""), "- [ ] Sow\n\t> one\n- [ ] Dig\n"));
  EXPECT_TRUE(surgeon_.addComment(sow_, "two"));
  EXPECT_EQ(text(), noteOf(sow + "," + entry(3, kDig, ""), "- [ ] Sow\n\t> one\n> two\n- [ ] Dig\n",
                           "0,1,4"));
  EXPECT_EQ(surgeon_.comments(sow_), (std::vector<std::string>{"one", "two"}));
  EXPECT_EQ(surgeon_.commentMap(cache_.url).at(kSow).size(), 2U);
  EXPECT_EQ(surgeon_.commentLinesPreservingIndent(sow_),
            (std::vector<std::string>{"\tone", "two"}));
  EXPECT_FALSE(surgeon_.setComments(sow_, surgeon_.commentLinesPreservingIndent(sow_)));
  EXPECT_FALSE(surgeon_.setComment(sow_, 0, "one"));
  EXPECT_FALSE(surgeon_.setComment(sow_, 2, "three"));
  EXPECT_FALSE(surgeon_.addComment(sow_, "a\nb"));
  EXPECT_TRUE(surgeon_.setComment(sow_, 0, ""));
  EXPECT_TRUE(surgeon_.setComments(sow_, {"    \t a", "b", ""}));
  EXPECT_EQ(text(), noteOf(sow + "," + entry(4, kDig, ""),
                           "- [ ] Sow\n\t\t> a\n> b\n> \n- [ ] Dig\n", "0,1,5"));
  EXPECT_TRUE(surgeon_.setComments(sow_, {}));
  EXPECT_EQ(text(), noteOf(sow + "," + entry(1, kDig, ""), "- [ ] Sow\n- [ ] Dig\n", "0,1,2"));
  EXPECT_TRUE(surgeon_.setTaskText(sow_, "Reap"));
  EXPECT_EQ(text(), noteOf(entry(0, kSow, "Reap") + "," + entry(1, kDig, ""),
                           "- [ ] Reap\n- [ ] Dig\n", "0,1,2"));
}

TEST_F(Surgeon, TellsTheCacheAndWhoeverShowsTheTask) {
  write(noteOf(entry(0, kSow, "Sow"), "- [ ] Sow\n"));
  int notices = 0;
  std::optional<LKTaskLiveChange> change;
  const auto watch = notices::observe(lkTasksChanged, [&] { ++notices; });
  surgeon_.onLiveChange = [&](const LKTaskLiveChange& what) { change = what; };
  EXPECT_TRUE(surgeon_.markDone(kNote, kSow, UUID()));
  EXPECT_EQ(cache_.told, "status 2 2026-03-14T12:00:00Z");
  EXPECT_EQ(change, (LKTaskLiveChange{kSow, kNote, {2, {}, 0}, {}, {}}));
  EXPECT_TRUE(surgeon_.setStatus(sow_, LKTaskFileSurgeon::nextStatus(2)));
  EXPECT_EQ(cache_.told, "status 3");
  EXPECT_TRUE(surgeon_.setDueDate({cache_.url, kSow}, Day{2026, 4, 1}));
  EXPECT_EQ(cache_.told, "due 2026-04-01");
  EXPECT_EQ(change->noteID, kNote);
  EXPECT_TRUE(surgeon_.setPriority(sow_, 3));
  EXPECT_EQ(change->state, (LKTaskDiscreteState{3, Day{2026, 4, 1}, 3}));
  EXPECT_TRUE(surgeon_.setProject(sow_, "Beds"));
  EXPECT_EQ(cache_.told, "project Beds");
  EXPECT_TRUE(surgeon_.setTaskText(sow_, "Reap context:a"));
  EXPECT_EQ(cache_.told, "Reap");
  EXPECT_EQ(change->text, "Reap");
  EXPECT_TRUE(surgeon_.addComment(sow_, "soon"));
  EXPECT_EQ(change->comments, std::vector<std::string>{"soon"});
  EXPECT_EQ(notices, 7);
  EXPECT_FALSE(surgeon_.setPriority(sow_, -1)) << "has none";
  cache_.isBroken = true;
  EXPECT_TRUE(surgeon_.setStatus(sow_, 0)) << "the file is the truth";
  EXPECT_EQ(notices, 8);
  EXPECT_EQ(LKTaskFileSurgeon::nextStatus(3), 0);
}

TEST_F(Surgeon, RefusesAFileThatItCannotReadOrWrite) {
  EXPECT_FALSE(surgeon_.setStatus(sow_, 1)) << "not there";
  EXPECT_FALSE(surgeon_.setStatus({UUID(), kSow}, 1)) << "not known";
  fs::create_directory(cache_.url);
  EXPECT_FALSE(surgeon_.setStatus(sow_, 1)) << "a folder";
  EXPECT_TRUE(surgeon_.comments(sow_).empty());
  fs::remove(cache_.url);
  const std::string damaged = noteOf(entry(0, kSow, "Sow"), "- [ ] Sow\n\xFF");
  write(damaged);
  EXPECT_FALSE(surgeon_.setStatus(sow_, 1)) << "not UTF-8";
  EXPECT_TRUE(surgeon_.commentMap(cache_.url).empty());
  EXPECT_EQ(text(), damaged);
  write(noteOf(entry(0, kSow, "Sow"), "- [ ] Sow"));
  fs::permissions(folder_.path(), fs::perms::all);
  fs::permissions(cache_.url, fs::perms(0444));
  EXPECT_EQ(test::asOrdinaryUser([&] { return surgeon_.setStatus(sow_, 1) ? "yes" : "no"; }), "no");
  fs::permissions(cache_.url, fs::perms(0640));
  EXPECT_TRUE(surgeon_.setStatus(sow_, 1));
  EXPECT_EQ(fs::status(cache_.url).permissions(), fs::perms(0640));
}

TEST_F(Surgeon, AsksBeforeItWritesAndEditsWhatThenIsThere) {
  write(noteOf(entry(0, kSow, "Sow"), "- [ ] Sow"));
  int asked = 0;
  surgeon_.prepareForWrite = [&](const fs::path&) { return ++asked > 1; };
  EXPECT_FALSE(surgeon_.setPriority(sow_, 0)) << "nothing to write, nobody asked";
  EXPECT_EQ(asked, 0);
  EXPECT_FALSE(surgeon_.setStatus(sow_, 1));
  surgeon_.prepareForWrite = [&](const fs::path& url) {
    LKTaskFileSurgeon(&cache_).setTaskText({url, kSow}, "Sow beans");  // takes the same lock
    return true;
  };
  EXPECT_TRUE(surgeon_.setStatus(sow_, 1));
  EXPECT_EQ(text(), noteOf(entry(0, kSow, "Sow beans"), "- [/] Sow beans"));
  // The live text knows a task that `lk-tasks` does not.
  surgeon_.prepareForWrite = nullptr;
  surgeon_.openNoteSnapshot = [](const fs::path&) {
    return OpenNoteSnapshot{"- [ ] Dig\n- [/] Sow beans", {kDig, kSow}};
  };
  write(noteOf("", "- [ ] Dig\n- [/] Sow beans"));
  EXPECT_TRUE(surgeon_.addComment({kNote, kDig}, "deep"));
  EXPECT_EQ(text(), noteOf(entry(0, kDig, "Dig") + "," + entry(2, kSow, "Sow beans"),
                           "- [ ] Dig\n> deep\n- [/] Sow beans", "0,2,4"));
}

TEST_F(Surgeon, LosesNothingBesideAnotherProcess) {
  write(noteOf(entry(0, kSow, "Sow") + "," + entry(1, kDig, "Dig"), "- [ ] Sow\n- [ ] Dig\n"));
  constexpr int kComments = 100;
  const auto comment = [&](const UUID& task) {
    int written = 0;
    for (int i = 0; i < kComments; ++i) {
      written += surgeon_.addComment({cache_.url, task}, std::to_string(i)) ? 1 : 0;
    }
    return std::to_string(written);
  };
  test::Child other([&] { return comment(kDig); });
  EXPECT_EQ(comment(kSow), "100");
  EXPECT_EQ(other.word(), "100");
  const auto comments = surgeon_.commentMap(cache_.url);
  for (const UUID& task : {kSow, kDig}) {
    ASSERT_EQ(comments.at(task).size(), 100U);
    EXPECT_EQ(comments.at(task).back(), "99");
  }
}

TEST_F(Surgeon, WorksThroughItsQueueInOrder) {
  write(noteOf(entry(0, kSow, "Sow"), "- [ ] Sow"));
  auto done = std::make_shared<std::promise<bool>>();
  {
    LKTaskEditQueue queue(std::make_shared<LKTaskFileSurgeon>(&cache_));
    for (int i = 0; i < 20; ++i) {
      queue.post([=, this](LKTaskFileSurgeon& surgeon) {
        return surgeon.setTaskText(sow_, std::to_string(i));
      });
    }
    queue.post([this](LKTaskFileSurgeon& surgeon) { return surgeon.setPriority(sow_, 1); },
               [done](bool wasChanged) { done->set_value(wasChanged); });
  }
  EXPECT_TRUE(done->get_future().get());
  EXPECT_EQ(text(), noteOf(entry(0, kSow, "19"), "- [ ] 19 priority:low"));
}

}  // namespace
}  // namespace lk
