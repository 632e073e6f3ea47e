// SPDX-License-Identifier: MIT
// Operations that this version does not carry out: each answers 0, says so, and touches nothing else.
#include <gtest/gtest.h>

#include <string>

#include "tests/client/ErrorRecord.h"
#include "tests/client/RecordingClient.h"

namespace {

struct Later {
  const char* name;
  int line;
  std::uint32_t (*run)(TQXIP& client);
};

const Later kLater[] = {
    {"HTTPDownloadFile", 0,
     [](TQXIP& c) { return c.HTTPDownloadFile("server", "/object", 80, "file", nullptr, 0, 0); }},
};

class NotAvailable : public testing::TestWithParam<Later> {
 protected:
  const std::string message = std::string("TQXIP::") + GetParam().name + " is not available in this version!";
};

TEST_P(NotAvailable, AnswersZeroSaysSoAndReportsError120) {
  QXErrorInfo record{};
  RecordingClient client(&record);
  EXPECT_EQ(GetParam().run(client), 0u);
  EXPECT_EQ(client.m_szMessage, message);
  EXPECT_THAT(record, ReportsLastError(message, 120u, GetParam().line));
}

TEST_P(NotAvailable, WithoutAnErrorRecordSaysSoInTheMessageAlone) {
  RecordingClient client;
  EXPECT_EQ(GetParam().run(client), 0u);
  EXPECT_EQ(client.m_szMessage, message);
  EXPECT_TRUE(client.calls().empty());
}

INSTANTIATE_TEST_SUITE_P(Operations, NotAvailable, testing::ValuesIn(kLater),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
