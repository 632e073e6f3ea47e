// SPDX-License-Identifier: MIT
#include "framework/internet/InternetException.h"

#include <gtest/gtest.h>

#include <string>

#include "framework/internet/Raising.h"
#include "framework/internet/net/InternetErrors.h"
#include "framework/platform/last_error.h"

namespace {

std::string textOf(CInternetException* exception, std::uint32_t size = 1024) {
  std::string buffer(size + 1, '#');
  const bool told = exception->GetErrorMessage(buffer.data(), size);
  EXPECT_EQ(buffer[size], '#') << "written past the end";
  const std::string text = buffer.c_str();
  EXPECT_EQ(told, !text.empty());
  exception->Delete();
  return text;
}

TEST(InternetException, HasATextForEachOfItsNumbers) {
  for (const std::uint32_t error :
       {12002u, 12003u, 12007u, 12014u, 12015u, 12019u, 12029u, 12030u, 12031u, 12110u, 12152u}) {
    const std::string text = textOf(new CInternetException(error));
    EXPECT_FALSE(text.empty()) << error;
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
  }
  EXPECT_EQ(textOf(new CInternetException(12002)), "The operation timed out");
}

TEST(InternetException, PrefersTheServersText) {
  EXPECT_EQ(textOf(new CInternetException(12003, "550 No such file")), "550 No such file");
}

TEST(InternetException, TakesTheSystemsTextWithoutItsLineEnd) {
  const std::string text = textOf(new CInternetException(2));
  EXPECT_FALSE(text.empty());
  EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos);
}

TEST(InternetException, CutsTheTextToTheBuffer) {
  EXPECT_EQ(textOf(new CInternetException(12003, "550 No such file"), 8), "550 No ");
  EXPECT_EQ(textOf(new CInternetException(12003, "550 No such file"), 17), "550 No such file");
  char untouched = '#';
  CInternetException* const exception = new CInternetException(12002);
  EXPECT_FALSE(exception->GetErrorMessage(&untouched, 0));
  EXPECT_FALSE(exception->GetErrorMessage(nullptr, 10));
  EXPECT_FALSE(exception->GetErrorMessage(&untouched, 1));
  EXPECT_EQ(untouched, '\0');
  exception->Delete();
}

TEST(InternetException, IsThrownByPointer) {
  std::uint32_t error = 0;
  try {
    AfxThrowInternetException(12029);
  } catch (CInternetException* exception) {
    // The last error was set, too, but the system's own throwing may change it on the way here.
    error = exception->m_dwError;
    EXPECT_EQ(exception->m_dwContext, 1u);
    exception->Delete();
  }
  EXPECT_EQ(error, 12029u);
}

TEST(Failure, BecomesALastErrorOrAnException) {
  platform::setLastError(4711);
  EXPECT_TRUE(internet::answer([] { platform::setLastError(1); }));
  EXPECT_EQ(platform::lastError(), 4711u) << "a success disturbs nothing";
  EXPECT_FALSE(internet::answer([] { internet::fail(12002); }));
  EXPECT_EQ(platform::lastError(), 12002u);
  EXPECT_FALSE(internet::answer([] { throw std::bad_alloc(); }));
  EXPECT_EQ(platform::lastError(), 8u);

  std::string text;
  try {
    internet::raising([] { internet::fail(12003, "550 bell\a and nul" + std::string(1, '\0')); });
  } catch (CInternetException* exception) {
    text = textOf(exception);
  }
  EXPECT_EQ(text, "550 bell? and nul?");
}

}  // namespace
