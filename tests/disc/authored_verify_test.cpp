// verify on discs authored at test time by ffmpeg, spumux and dvdauthor, clean and with faults
// whose findings are worked out from the discs' own bytes.
#include <gtest/gtest.h>

#include "disc/authored_disc.h"
#include "disc/disc_test_support.h"
#include "disc/verify.h"

namespace tarvex {
namespace {

VerifyResult Verify(const std::string& path) {
  std::string error;
  std::optional<Disc> disc = LoadDisc(path, error);
  EXPECT_TRUE(disc) << error;
  return disc ? VerifyDisc(*disc) : VerifyResult{};
}

class AuthoredVerify : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(test::HaveAuthoringTools()) << "ffmpeg, spumux or dvdauthor missing";
  }
};

// DTS stream 1 (0x89) and sub-picture stream 17 (0x31) are DVD-Video streams like the first
// ones of their kinds.
TEST_F(AuthoredVerify, DtsAfterTheFirstAndSubpicturesAboveFifteenVerifyClean) {
  VerifyResult r = Verify(test::WidePalDisc());
  EXPECT_TRUE(r.findings.empty()) << VerifyText(r);
}

TEST_F(AuthoredVerify, TwoTitlesAndTwoMenuLanguagesVerifyClean) {
  VerifyResult r = Verify(test::NtscTwoTitleDisc());
  EXPECT_TRUE(r.findings.empty()) << VerifyText(r);
}

}  // namespace
}  // namespace tarvex
