#include "LKCore/Base/Notices.h"

#include <gtest/gtest.h>

#include <string>

namespace lk {
namespace {

TEST(Notices, ReachTheirObserversWhileTheyLast) {
  std::string heard;
  notices::Observation first = notices::observe("a", [&] { heard += '1'; });
  {
    const notices::Observation second = notices::observe("a", [&] { heard += '2'; });
    const notices::Observation other = notices::observe("b", [&] { heard += 'b'; });
    notices::post("a");
    EXPECT_EQ(heard, "12");
  }
  notices::Observation moved = std::move(first);
  notices::post("a");
  EXPECT_EQ(heard, "121");
  moved = notices::Observation();
  notices::post("a");
  EXPECT_EQ(heard, "121");
}

TEST(Notices, AnObserverMayPostAndEndItself) {
  int heard = 0;
  notices::Observation self;
  const notices::Observation other = notices::observe("second", [&] { ++heard; });
  self = notices::observe("first", [&] {
    self = notices::Observation();
    notices::post("second");
  });
  notices::post("first");
  notices::post("first");
  EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace lk
