// SPDX-License-Identifier: MIT
#include "framework/internet/ftp/FtpReply.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "framework/internet/ftp/FtpTraits.h"
#include "framework/internet/net/InternetLimits.h"

namespace internet {
namespace {

std::vector<FtpReply> replies(std::string_view bytes, std::size_t piece) {
  FtpReplyReader reader;
  std::vector<FtpReply> taken;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
    EXPECT_TRUE(reader.feed(bytes.substr(0, piece)));
    while (auto reply = reader.take()) taken.push_back(*reply);
  }
  return taken;
}

TEST(FtpReplyReader, CutsTheStreamWhereverItIsCutIntoPieces) {
  const std::string stream = "220-Hello\r\n220 end\r\n331 Password\r\n150 data\r\n226 done\r\n";
  for (const std::size_t piece : {std::size_t{1}, std::size_t{2}, std::size_t{7}, stream.size()}) {
    const auto taken = replies(stream, piece);
    ASSERT_EQ(taken.size(), 4u) << piece;
    EXPECT_EQ(taken[0].code, 220);
    EXPECT_EQ(taken[0].text, "220-Hello\r\n220 end");
    EXPECT_EQ(taken[1].text, "331 Password");
    EXPECT_TRUE(taken[2].preliminary());
    EXPECT_TRUE(taken[3].completed());
  }
}

TEST(FtpReplyReader, EndsALongReplyOnlyAtItsOwnCodeAndABlank) {
  const auto taken = replies(
      "230-Welcome\r\n"
      "230-another\r\n"
      " 230 not at the start\r\n"
      "231 another code\r\n"
      "230x\r\n"
      "2300 four digits\r\n"
      "\r\n"
      "230 end\r\n",
      1000);
  ASSERT_EQ(taken.size(), 1u);
  EXPECT_EQ(taken[0].code, 230);
  EXPECT_TRUE(taken[0].text.ends_with("\r\n230 end"));
}

TEST(FtpReplyReader, TakesBareLineFeedsBareCodesAndNulBytes) {
  const auto taken = replies(std::string_view("200\n250 a\0b\n\n257 x\r\n", 20), 3);
  ASSERT_EQ(taken.size(), 3u);
  EXPECT_EQ(taken[0].code, 200);
  EXPECT_EQ(taken[1].text, std::string("250 a\0b", 7));
  EXPECT_EQ(taken[2].code, 257);
}

TEST(FtpReplyReader, RefusesWhatIsNoReply) {
  for (const char* line :
       {"HTTP/1.1 400 Bad Request\r\n", "22 x\r\n", "620 x\r\n", "020 x\r\n", "2200\r\n", "220x\r\n"}) {
    FtpReplyReader reader;
    EXPECT_FALSE(reader.feed(line)) << line;
    EXPECT_FALSE(reader.feed("220 fine\r\n")) << "stays refused";
  }
}

TEST(FtpReplyReader, LimitsALineAndAReply) {
  FtpReplyReader line;
  EXPECT_TRUE(line.feed("220 " + std::string(kMaxReplyLine - 4, 'x')));
  EXPECT_FALSE(line.feed("x"));

  FtpReplyReader reply;
  const std::string row = "220-" + std::string(1020, 'x') + "\r\n";
  std::size_t rows = 0;
  while (rows < 10'000 && reply.feed(row)) ++rows;
  EXPECT_GT(rows, 1000u);
  EXPECT_LT(rows, kMaxReply / 1000);
}

TEST(FtpReplyReader, GarbageBehindAReplyDoesNotSpoilTheReply) {
  FtpReplyReader reader;
  EXPECT_TRUE(reader.feed("220 fine\r\ngarbage\r\n"));
  EXPECT_TRUE(reader.take().has_value());
  EXPECT_FALSE(reader.feed("220 more\r\n"));
}

TEST(FtpReply, TellsCommandsThatTheServerDoesNotKnow) {
  for (const int code : {500, 501, 502, 504, 522}) EXPECT_TRUE((FtpReply{code, ""}.unsupported())) << code;
  for (const int code : {550, 530, 425, 450, 200}) EXPECT_FALSE((FtpReply{code, ""}.unsupported())) << code;
}

TEST(FtpReply, FindsThePassivePort) {
  EXPECT_EQ(parsePassivePort("227 Entering Passive Mode (127,0,0,1,4,1)"), 1025);
  EXPECT_EQ(parsePassivePort("227 Entering Passive Mode 10,1,2,3,255,255."), 65535);
  EXPECT_EQ(parsePassivePort("227 =192,168,1,2,0,21"), 21);
  EXPECT_EQ(parsePassivePort("227 v1,2 (1,2,3,4,5,6)"), 5 * 256 + 6);
  for (const char* text : {"227", "227 none", "227 (1,2,3,4,5)", "227 (1,2,3,4,0,0)", "227 (1,2,3,4,256,1)",
                           "227 (1,2,3,4,99999999999999999999,1)"}) {
    EXPECT_EQ(parsePassivePort(text), std::nullopt) << text;
  }
}

TEST(FtpReply, FindsTheExtendedPassivePort) {
  EXPECT_EQ(parseExtendedPassivePort("229 Entering Extended Passive Mode (|||6446|)"), 6446);
  EXPECT_EQ(parseExtendedPassivePort("229 ok (!!!1!)"), 1);
  for (const char* text : {"229", "229 (|||)", "229 (||||)", "229 (|||0|)", "229 (|||65536|)", "229 (||1|2|)",
                           "229 (|||12", "229 (|||12|", "229 (1111111)"}) {
    EXPECT_EQ(parseExtendedPassivePort(text), std::nullopt) << text;
  }
}

TEST(FtpReply, FindsTheDirectoryOnlyWhereItIsSane) {
  EXPECT_EQ(parseQuotedPath("257 \"/pub\" is the current directory"), "/pub");
  EXPECT_EQ(parseQuotedPath("257 \"/a \"\"quoted\"\" name\""), "/a \"quoted\" name");
  EXPECT_EQ(parseQuotedPath("257 \"/gr\xc3\xbc\xc3\x9f\""), "/gr\xc3\xbc\xc3\x9f");
  EXPECT_EQ(parseQuotedPath("257 /pub"), std::nullopt);
  EXPECT_EQ(parseQuotedPath("257 \"\""), std::nullopt);
  EXPECT_EQ(parseQuotedPath("257 \"/open"), std::nullopt);
  EXPECT_EQ(parseQuotedPath("257 \"/a\rDELE b\""), std::nullopt);
  EXPECT_EQ(parseQuotedPath(std::string("257 \"/a\0b\"", 10)), std::nullopt);
  EXPECT_EQ(parseQuotedPath("257 \"/" + std::string(kMaxArgument, 'x') + "\""), std::nullopt);
}

TEST(FtpReply, FindsTheAnnouncedSize) {
  EXPECT_EQ(parseAnnouncedSize("150 Opening BINARY mode data connection for f (5368709120 bytes)."),
            5368709120u);
  EXPECT_EQ(parseAnnouncedSize("150 for name (3 bytes) (12 bytes)"), 12u) << "a name may look like a size";
  EXPECT_EQ(parseAnnouncedSize("150 for a (1 byte)"), 1u);
  EXPECT_EQ(parseAnnouncedSize("150 (0 bytes)"), 0u);
  for (const char* text : {"150 Here it comes", "150 12 bytes", "150 (12 kbytes)", "150 (12.5 bytes)",
                           "150 (x bytes)", "150 (99999999999999999999999 bytes)"}) {
    EXPECT_EQ(parseAnnouncedSize(text), std::nullopt) << text;
  }
}

TEST(FtpReply, ReadsSizes) {
  EXPECT_EQ(parseSizeReply({213, "213 5368709120"}), 5368709120u);
  EXPECT_EQ(parseSizeReply({213, "213 x"}), std::nullopt);
  EXPECT_EQ(parseSizeReply({213, "213"}), std::nullopt);
  EXPECT_EQ(parseSizeReply({550, "550 12"}), std::nullopt);
}

TEST(FtpTraits, ReadsTheFeatureLines) {
  FtpTraits traits;
  readFeatures("211-Features:\r\n MDTM\r\n mlst type*;size*;\r\n UTF8\r\n X-UNKNOWN\r\n211 End", traits);
  EXPECT_TRUE(traits.mdtm && traits.mlst && traits.utf8);
  EXPECT_FALSE(traits.size);
  readFeatures("211-Extensions\r\n211-SIZE\r\n211-TVFS\r\n211 End", traits);
  EXPECT_TRUE(traits.size);
  EXPECT_FALSE(traits.mdtm || traits.mlst || traits.utf8);
  readFeatures("", traits);
  EXPECT_FALSE(traits.size);
}

TEST(FtpTraits, AreKeptPerServer) {
  forgetCachedTraits();
  changeCachedTraits("a:21:u", [](FtpTraits& traits) { traits.noExtendedPassive = true; });
  changeCachedTraits("a:21:u", [](FtpTraits& traits) { traits.mlst = true; });
  EXPECT_TRUE(cachedTraits("a:21:u").noExtendedPassive && cachedTraits("a:21:u").mlst);
  EXPECT_FALSE(cachedTraits("b:21:u").mlst);
  forgetCachedTraits();
  EXPECT_FALSE(cachedTraits("a:21:u").mlst);
}

}  // namespace
}  // namespace internet
