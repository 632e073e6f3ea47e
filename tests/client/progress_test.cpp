// SPDX-License-Identifier: MIT
// Where the counters of an upload go: through the record of the worker that it is a part of, whose flag keeps
// OnPoll away meanwhile, else straight to its client.
#include "Src/Progress.h"

#include <gtest/gtest.h>

#include "tests/client/PlainClient.h"

namespace {

class UploadCounters : public testing::Test {
 protected:
  static void expectCounts(const QXTransfer& counters, std::uint64_t transferred, std::uint64_t total) {
    EXPECT_EQ(counters.bValid, 1);
    EXPECT_EQ(counters.nTransferred, transferred);
    EXPECT_EQ(counters.nTotal, total);
  }
  static void expectNone(const QXTransfer& counters) { EXPECT_EQ(counters.bValid, 0); }

  PlainClient client{nullptr};
  QXTransfer ofRecord{};
  QXFtpThread record{.pQXIP = &client, .pTransfer = &ofRecord};
};

TEST_F(UploadCounters, AreTheClientsWhereNoWorkerIs) {
  StoreUploadProgress(client, 5, 9);
  expectCounts(client.m_Transfer, 5, 9);
}

TEST_F(UploadCounters, GoThroughTheRecordOfTheirWorker) {
  {
    const WorkerOnThread worker(record);
    StoreUploadProgress(client, 5, 9);
    expectCounts(ofRecord, 5, 9);
    EXPECT_EQ(record.bUpdating, 0);
    expectNone(client.m_Transfer);
  }
  StoreUploadProgress(client, 6, 9);
  expectCounts(ofRecord, 5, 9);
  expectCounts(client.m_Transfer, 6, 9);
}

TEST_F(UploadCounters, OfAnotherClientAreNoneOfTheWorkers) {
  const WorkerOnThread worker(record);
  PlainClient other(nullptr);
  StoreUploadProgress(other, 5, 9);
  expectNone(ofRecord);
  expectCounts(other.m_Transfer, 5, 9);
}

}  // namespace
