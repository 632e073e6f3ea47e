// SPDX-License-Identifier: MIT
// The public headers say the same in C and in C++, and a host in C works with a client.
#include "tests/dll/c_host.h"

#include <type_traits>

#include "tests/dll/library.h"

namespace {

// The function that a C host calls for a member function of the client.
template <typename Member>
struct Function;
template <typename Result, typename... Arguments>
struct Function<Result (TQXIPIFInt::*)(Arguments...)> {
  using Type = Result (*)(TQXIPIFInt*, Arguments...);
};

#define QX_SLOT(number, operation, arguments)                                                               \
  static_assert(                                                                                            \
      std::is_same_v<decltype(QXClientTable::operation), Function<decltype(&TQXIPIFInt::operation)>::Type>, \
      #operation);                                                                                          \
  static_assert(offsetof(QXClientTable, operation) == (number) * sizeof(void*), #operation);
#include "tests/dll/slots.inc"
#undef QX_SLOT
static_assert(std::is_same_v<decltype(QXClientTable::DeletingDestructor),
                             Function<decltype(&TQXIPIFInt::DeletingDestructor)>::Type>);
static_assert(offsetof(QXClientTable, DeletingDestructor) == QX_SLOT_DESTRUCTOR * sizeof(void*));

// The fields of the object that C has, and those of the class.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#define QX_RECORD(record)
#define QX_FIELD(record, field)
#define QX_OBJECT_FIELD(field)                                                           \
  static_assert(offsetof(TQXIPIFInt, field) == offsetof(QXClientObject, field), #field); \
  static_assert(std::is_same_v<decltype(TQXIPIFInt::field), decltype(QXClientObject::field)>, #field);
#include "tests/dll/layout.inc"
#undef QX_RECORD
#undef QX_FIELD
#undef QX_OBJECT_FIELD
static_assert(sizeof(TQXIPIFInt) == sizeof(QXClientObject));

constexpr CMember kMembers[] = {
#define QX_RECORD(record) {#record, 0, sizeof(record)},
#define QX_FIELD(record, field) {#field, offsetof(record, field), sizeof(record::field)},
#define QX_OBJECT_FIELD(field) {#field, offsetof(TQXIPIFInt, field), sizeof(TQXIPIFInt::field)},
#include "tests/dll/layout.inc"
#undef QX_RECORD
#undef QX_FIELD
#undef QX_OBJECT_FIELD
};
#pragma GCC diagnostic pop

class CHost : public ClientTest {};

TEST_F(CHost, SeesEveryRecordAsCppDoes) {
  const CMember* member = cLayout();
  for (const CMember& expected : kMembers) {
    ASSERT_NE(member->pszName, nullptr);
    EXPECT_STREQ(member->pszName, expected.pszName);
    EXPECT_EQ(member->nOffset, expected.nOffset) << expected.pszName;
    EXPECT_EQ(member->nSize, expected.nSize) << expected.pszName;
    ++member;
  }
  EXPECT_EQ(member->pszName, nullptr);
}

TEST_F(CHost, FindsEverySlotAtItsNumber) {
  for (std::size_t slot = 0; slot < QX_SLOT_COUNT; ++slot) {
    EXPECT_EQ(cSlotOffsets()[slot], slot * sizeof(void*));
  }
}

TEST_F(CHost, CallsThroughTheTableAndReadsFields) { EXPECT_EQ(cSetsLogin(client.get()), 1); }

TEST_F(CHost, HooksOneClientAlone) {
  const Client other = makeClient(library(), nullptr);
  QXHooks hooks;
  int ends = 0;
  cInstallHooks(client.get(), &hooks, &ends);
  EXPECT_EQ(other->FTPDisconnect(), 1);
  EXPECT_EQ(ends, 0);
  EXPECT_EQ(client->FTPDisconnect(), 1);
  EXPECT_EQ(ends, 1);
  QXRemoveHooks(client.get(), &hooks);
  EXPECT_EQ(client->FTPDisconnect(), 1);
  EXPECT_EQ(ends, 1);
}

TEST_F(CHost, HooksSeeTheEndOfTheirClient) {
  QXHooks hooks;
  int ends = 0;
  cInstallHooks(client.get(), &hooks, &ends);
  EXPECT_EQ(hooks.bEnded, 0);
  client.reset();
  EXPECT_EQ(ends, 1) << "a client that ends disconnects";
  EXPECT_EQ(hooks.bEnded, 1);
}

}  // namespace
