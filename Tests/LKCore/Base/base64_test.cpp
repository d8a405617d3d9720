#include "LKCore/Base/Base64.h"

#include <gtest/gtest.h>

namespace lk {
namespace {

TEST(Base64, RoundTripsEveryLength) {
  std::string bytes;
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(base64Bytes(base64Text(bytes)), bytes);
    bytes.push_back(static_cast<char>(i * 37));
  }
  EXPECT_EQ(base64Text("Lark"), "TGFyaw==");
}

TEST(Base64, ReadsNothingElse) {
  for (const char* text :
       {"TGFyaw", "TGFyaw=", "TGFyaw==\n", " TGFy", "TGFyax==", "T===", "====", "TG*y"}) {
    EXPECT_EQ(base64Bytes(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace lk
