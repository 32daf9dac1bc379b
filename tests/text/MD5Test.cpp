// CMD5Main over real files: the RFC 1321 test suite, the block boundary at 4096 bytes,
// the failures that leave the output untouched, and hashing in pieces.
#include <corlith/test/TempFolder.h>
#include <corlith/text/MD5Main.h>

#include <gtest/gtest.h>

#include <string>

namespace {

class MD5Files : public testing::Test {
 protected:
  CString Write(const std::string& name, const std::string& bytes) const {
    return CString(m_folder.Write(name, bytes));
  }

  corlith::test::TempFolder m_folder{"md5"};
};

std::string Pattern(std::size_t n) {
  std::string s(n, '\0');
  for (std::size_t i = 0; i < n; ++i) s[i] = static_cast<char>(i % 251);
  return s;
}

TEST_F(MD5Files, Rfc1321SuiteAndBlockBoundaries) {
  const struct {
    std::string bytes;
    const char* digest;
  } rows[] = {
      {"", "d41d8cd98f00b204e9800998ecf8427e"},
      {"a", "0cc175b9c0f1b6a831c399e269772661"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
      {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789", "d174ab98d277d9f5a5611c2c9f419d9f"},
      {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
       "57edf4a22be3c955ac49da2e2107b67a"},
      // one full block then an empty read; one full block and one byte; several blocks
      {Pattern(4096), "a0c16616c91907bd14e999986cf822d5"},
      {Pattern(4097), "e4df5b23488e51a7998f218196a6ef6d"},
      {Pattern(10000), "bbf1c77538f97ceeb1e03126edaa3594"},
  };
  int n = 0;
  for (const auto& row : rows) {
    SCOPED_TRACE(testing::Message() << row.bytes.size() << " bytes: " << row.bytes.substr(0, 20));
    CString out("before");
    const std::string name = std::to_string(n++);
    EXPECT_EQ(CMD5Main::CalculateMD5(Write(name, row.bytes), out), 1);
    EXPECT_EQ(out, CString(row.digest));
  }
}

TEST_F(MD5Files, FailuresReturnZeroAndLeaveTheOutput) {
  for (const CString& path :
       {CString(m_folder.PathOf("missing")), CString(m_folder.Path().string()), CString("")}) {
    SCOPED_TRACE(path.GetString());
    CString out("unchanged");
    EXPECT_EQ(CMD5Main::CalculateMD5(path, out), 0);
    EXPECT_EQ(out, CString("unchanged"));
  }
  // A failure releases the provider like a success does: the next call still works.
  CString out;
  EXPECT_EQ(CMD5Main::CalculateMD5(Write("abc", "abc"), out), 1);
  EXPECT_EQ(out, CString("900150983cd24fb0d6963f7d28e17f72"));
}

TEST(MD5Pieces, InitUpdateFinalBetweenStartupAndCleanup) {
  ASSERT_EQ(CMD5Main::CryptStartup(), 1);
  MD5Context ctx{};
  CMD5Main::MD5Init(&ctx);
  ASSERT_NE(ctx.hHash, nullptr);
  const std::string text = "message digest";
  CMD5Main::MD5Update(&ctx, reinterpret_cast<const unsigned char*>(text.data()), 7);
  CMD5Main::MD5Update(&ctx, nullptr, 0);
  CMD5Main::MD5Update(&ctx, reinterpret_cast<const unsigned char*>(text.data()) + 7, 7);
  CMD5Main::MD5Final(&ctx);
  EXPECT_EQ(ctx.hHash, nullptr);
  const unsigned char expected[16] = {0xf9, 0x6b, 0x69, 0x7d, 0x7c, 0xb7, 0x93, 0x8d,
                                      0x52, 0x5a, 0x2f, 0x31, 0xaa, 0xf1, 0x61, 0xd0};
  EXPECT_EQ(std::string(ctx.digest, ctx.digest + 16), std::string(expected, expected + 16));
  CMD5Main::CryptCleanup();
}

TEST(MD5Pieces, WithoutStartupNothingIsHashed) {
  CMD5Main::CryptCleanup();
  MD5Context ctx{};
  CMD5Main::MD5Init(&ctx);
  EXPECT_EQ(ctx.hHash, nullptr);
  CMD5Main::MD5Update(&ctx, reinterpret_cast<const unsigned char*>("abc"), 3);
  CMD5Main::MD5Final(&ctx);
  EXPECT_EQ(std::string(ctx.digest, ctx.digest + 16), std::string(16, '\0'));
}

}  // namespace
