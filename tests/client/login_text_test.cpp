// SPDX-License-Identifier: MIT
// Login texts and the fields in which hosts see them. Hosts of more than 32 characters, users of more than 64
// and passwords of more than 257 could not log in at all.
#include "Src/LoginText.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "tests/client/RecordingClient.h"

namespace {

constexpr std::size_t kMost = 20;

class LoginTextTest : public testing::Test {
 protected:
  void hostWrites(const char* own) { std::memcpy(field.data(), own, std::strlen(own) + 1); }

  std::array<char, 9> field{};
  LoginText text{field, kMost};
};

TEST_F(LoginTextTest, IsItsFieldWhereThatHoldsIt) {
  text.Store("12345678");
  EXPECT_STREQ(field.data(), "12345678");
  EXPECT_EQ(text.Text(), field.data());
}

TEST_F(LoginTextTest, IsKeptWholeBesideAFieldThatHasItsBeginning) {
  text.Store("123456789");
  EXPECT_STREQ(field.data(), "12345678");
  EXPECT_STREQ(text.Text(), "123456789");
  EXPECT_TRUE(text.Fits());
}

TEST_F(LoginTextTest, IsWhatAHostHasWrittenIntoTheField) {
  for (const char* own : {"other", "", "1234567", "1234567x", "x2345678"}) {
    text.Store("123456789");
    hostWrites(own);
    EXPECT_STREQ(text.Text(), own);
  }
}

TEST_F(LoginTextTest, CountsAgainOnceTheFieldIsAsItWas) {
  text.Store("123456789");
  hostWrites("other");
  hostWrites("12345678");
  EXPECT_STREQ(text.Text(), "123456789");
}

TEST_F(LoginTextTest, TakesAsMuchAsItMay) {
  const std::string fits(kMost, 'x');
  text.Store(fits.c_str());
  EXPECT_EQ(text.Text(), fits);
  EXPECT_TRUE(text.Fits());
}

TEST_F(LoginTextTest, IsMissingWhereMoreWasGiven) {
  text.Store("123456789");
  text.Store(std::string(kMost + 1, 'x').c_str());
  EXPECT_FALSE(text.Fits());
  EXPECT_STREQ(field.data(), "");
  EXPECT_STREQ(text.Text(), "");
  hostWrites("own");
  EXPECT_TRUE(text.Fits());
}

TEST_F(LoginTextTest, AFieldThatIsGivenStandsForTheWhole) {
  text.Store("1234567890");
  text.Store(field.data());
  EXPECT_STREQ(text.Text(), "1234567890");
  text.Store(field.data() + 1);
  EXPECT_STREQ(text.Text(), "234567890");
  EXPECT_STREQ(field.data(), "23456789");
  text.Store(field.data() + 2);
  EXPECT_STREQ(text.Text(), "4567890");
  text.Store(field.data() + 3);
  EXPECT_STREQ(text.Text(), "7890");
}

TEST_F(LoginTextTest, AFieldThatIsGivenDoesNotStandForARefusedText) {
  text.Store(std::string(kMost + 1, 'x').c_str());
  text.Store(field.data());
  EXPECT_FALSE(text.Fits());
  text.Store("");
  EXPECT_TRUE(text.Fits());
}

TEST_F(LoginTextTest, LeavesNothingOfTheOneBeforeInTheField) {
  text.Store("123456789");
  text.Store("ab");
  EXPECT_EQ(field, (std::array<char, 9>{'a', 'b'}));
}

TEST_F(LoginTextTest, IsCutBetweenTwoCharacters) {
  text.Store("1234567\xC3\xBC!");
  EXPECT_STREQ(field.data(), "1234567");
  EXPECT_STREQ(text.Text(), "1234567\xC3\xBC!");
  text.Store("12345\xE6\x96\x87!");
  EXPECT_STREQ(field.data(), "12345\xE6\x96\x87");
}

// The fields and limits of a client.
TEST(LongLogin, IsSeenInTheFieldsAsFarAsTheyGo) {
  const RecordingClient client;
  auto& fields = const_cast<RecordingClient&>(client);
  const std::string host(255, 'h');
  const std::string user(255, 'u');
  const std::string password(1023, 'p');
  fields.FTPSetLogin(("ftp://" + host).c_str(), user.c_str(), password.c_str(), 21, 1);
  EXPECT_EQ(client.m_RemoteSystem, host.substr(0, 32));
  EXPECT_EQ(client.m_UserName, user.substr(0, 64));
  EXPECT_EQ(client.m_Password, password.substr(0, 257));
  EXPECT_EQ(client.Login().host, host);
  EXPECT_EQ(client.Login().user, user);
  EXPECT_EQ(client.Login().password, password);
  EXPECT_TRUE(client.LoginFits());
}

TEST(LongLogin, IsForgottenByTheNextOneThatIsShort) {
  RecordingClient client;
  client.FTPSetLogin("h", std::string(200, 'u').c_str(), "p", 21, 1);
  client.FTPSetLogin("h", "bob", "p", 21, 1);
  EXPECT_STREQ(client.Login().user, "bob");
  EXPECT_EQ(client.Login().user, client.m_UserName);
}

TEST(LongLogin, IsKeptByTheObjectsOwnFields) {
  RecordingClient client;
  const std::string host(59, 'h');
  const std::string user(200, 'u');
  const std::string password(1000, 'p');
  client.FTPSetLogin(host.c_str(), user.c_str(), password.c_str(), 21, 1);
  client.FTPSetLogin(client.m_RemoteSystem, client.m_UserName, client.m_Password, 22, 0);
  EXPECT_EQ(client.Login().host, host);
  EXPECT_EQ(client.Login().user, user);
  EXPECT_EQ(client.Login().password, password);
}

// What a client kept of a password does not stay in memory.
TEST_F(LoginTextTest, IsOverwrittenByTheNext) {
  text.Store("123456789");
  const char* const kept = text.Text();
  text.Store("short");
  EXPECT_EQ(std::string(kept, 9), std::string(9, '\0'));
}

}  // namespace
