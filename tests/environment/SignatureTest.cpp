// The code-signature report on PE images written here by hand and signed offline with
// osslsigncode, with certificates made by openssl: unsigned, signed, signed with an
// RFC 3161 time-stamp, and with a legacy counter-signature (built here with OpenSSL,
// as osslsigncode only asks a server for one). The printed report is checked through
// the environment fixture, in a child with the time zone it is given.
#include <corlith/environment/Authenticode.h>
#include <corlith/platform/Process.h>
#include <corlith/test/Bytes.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/objects.h>
#include <openssl/pem.h>
#include <openssl/pkcs7.h>
#include <openssl/x509.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::SignatureReport;
using corlith::SignatureStage;
using corlith::test::Bytes;
using corlith::test::Put16;
using corlith::test::Put32;
using corlith::test::Put64;

// --- a minimal PE image: headers and one section holding a "ret" -------------------------

constexpr std::uint32_t kNtHeaders = 0x40;
constexpr std::uint32_t kFileAlignment = 0x200;

// The file offset of the security directory's entry.
std::size_t SecurityEntryOffset(bool plus) { return kNtHeaders + 24 + (plus ? 112 : 96) + 4 * 8; }

Bytes BuildPe(bool plus) {
  Bytes pe(kNtHeaders, 0);
  pe[0] = 'M';
  pe[1] = 'Z';
  pe[0x3c] = kNtHeaders;
  for (const char c : {'P', 'E', '\0', '\0'}) pe.push_back(static_cast<BYTE>(c));
  const std::uint16_t optionalSize = plus ? 240 : 224;
  Put16(pe, plus ? 0x8664 : 0x14c);  // machine
  Put16(pe, 1);                      // one section
  Put32(pe, 0);
  Put32(pe, 0);
  Put32(pe, 0);
  Put16(pe, optionalSize);
  Put16(pe, plus ? 0x0022 : 0x0102);  // executable image (large-address aware / 32-bit)
  const std::size_t optionalStart = pe.size();
  Put16(pe, plus ? 0x20b : 0x10b);
  Put16(pe, 14);              // linker version
  Put32(pe, kFileAlignment);  // size of code
  Put32(pe, 0);               // initialised data
  Put32(pe, 0);               // uninitialised data
  Put32(pe, 0x1000);          // entry point
  Put32(pe, 0x1000);          // base of code
  if (plus) {
    Put64(pe, 0x140000000);
  } else {
    Put32(pe, 0x1000);  // base of data
    Put32(pe, 0x400000);
  }
  Put32(pe, 0x1000);  // section alignment
  Put32(pe, kFileAlignment);
  for (const std::uint16_t v : {6, 0, 0, 0, 6, 0}) Put16(pe, v);  // OS, image and subsystem versions
  Put32(pe, 0);                                                   // Win32 version
  Put32(pe, 0x2000);                                              // size of image
  Put32(pe, kFileAlignment);                                      // size of headers
  Put32(pe, 0);                                                   // checksum
  Put16(pe, 3);                                                   // console
  Put16(pe, plus ? 0x8160 : 0x8140);
  for (int i = 0; i < 4; ++i)
    plus ? Put64(pe, i % 2 == 0 ? 0x100000 : 0x1000) : Put32(pe, i % 2 == 0 ? 0x100000 : 0x1000);
  Put32(pe, 0);   // loader flags
  Put32(pe, 16);  // data directories
  pe.resize(pe.size() + std::size_t{16} * 8, 0);
  EXPECT_EQ(pe.size() - optionalStart, optionalSize);
  for (const char c : {'.', 't', 'e', 'x', 't', '\0', '\0', '\0'}) pe.push_back(static_cast<BYTE>(c));
  for (const std::uint32_t v : {0x1000u, 0x1000u, kFileAlignment, kFileAlignment, 0u, 0u}) Put32(pe, v);
  Put16(pe, 0);
  Put16(pe, 0);
  Put32(pe, 0x60000020);  // code, execute, read
  pe.resize(kFileAlignment, 0);
  pe.push_back(0xc3);
  pe.resize(std::size_t{2} * kFileAlignment, 0);
  return pe;
}

// Appends a WIN_CERTIFICATE holding `signature` and points the security directory at it.
Bytes AttachSignature(Bytes pe, bool plus, const Bytes& signature, std::uint16_t type = 2) {
  pe.resize((pe.size() + 7) & ~std::size_t{7}, 0);
  const auto offset = static_cast<std::uint32_t>(pe.size());
  const auto length = static_cast<std::uint32_t>(8 + signature.size());
  Put32(pe, length);
  Put16(pe, 0x0200);
  Put16(pe, type);
  pe.insert(pe.end(), signature.begin(), signature.end());
  pe.resize((pe.size() + 7) & ~std::size_t{7}, 0);
  Bytes entry;
  Put32(entry, offset);
  Put32(entry, static_cast<std::uint32_t>(pe.size() - offset));
  std::copy(entry.begin(), entry.end(), pe.begin() + static_cast<std::ptrdiff_t>(SecurityEntryOffset(plus)));
  return pe;
}

std::string Text(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
Bytes ToBytes(const std::string& text) { return {text.begin(), text.end()}; }

// --- programs ------------------------------------------------------------------------------

corlith::platform::RunResult RunChild(const fs::path& program, std::vector<std::string> arguments,
                                      std::vector<std::string> environment = {}) {
  corlith::platform::SpawnOptions options;
  options.program = program;
  options.arguments = std::move(arguments);
  options.environment = std::move(environment);
  options.output = corlith::platform::StreamTarget::Pipe();
  options.error = corlith::platform::StreamTarget::Pipe();
  return corlith::platform::RunHidden(options, std::chrono::minutes(1));
}

void RunOk(const fs::path& program, std::vector<std::string> arguments) {
  const auto result = RunChild(program, std::move(arguments));
  ASSERT_EQ(result.error, 0) << program;
  ASSERT_EQ(result.status.code, 0) << program << ": " << result.output << result.errorOutput;
}

// --- OpenSSL in the test --------------------------------------------------------------------

template <typename T, void (*Free)(T*)>
struct Deleter {
  void operator()(T* p) const { Free(p); }
};
using Pkcs7Ptr = std::unique_ptr<PKCS7, Deleter<PKCS7, PKCS7_free>>;
using SignerInfoPtr = std::unique_ptr<PKCS7_SIGNER_INFO, Deleter<PKCS7_SIGNER_INFO, PKCS7_SIGNER_INFO_free>>;
using X509Ptr = std::unique_ptr<X509, Deleter<X509, X509_free>>;
using KeyPtr = std::unique_ptr<EVP_PKEY, Deleter<EVP_PKEY, EVP_PKEY_free>>;
using BioPtr = std::unique_ptr<BIO, Deleter<BIO, BIO_free_all>>;

X509Ptr LoadCertificate(const fs::path& path) {
  const BioPtr bio(BIO_new_file(path.c_str(), "r"));
  return X509Ptr(bio ? PEM_read_bio_X509(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}
KeyPtr LoadKey(const fs::path& path) {
  const BioPtr bio(BIO_new_file(path.c_str(), "r"));
  return KeyPtr(bio ? PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr) : nullptr);
}

// The 2023-11-14 22:13:20 UTC every time-stamp here carries.
constexpr std::int64_t kStampTime = 1700000000;

// Adds a legacy counter-signature by the time-stamping key over the first signer's
// signature; with `withCertificate` false its certificate is left out of the message.
Bytes AddCounterSignature(const Bytes& signature, const fs::path& certificateFile, const fs::path& keyFile,
                          bool withCertificate) {
  const unsigned char* cursor = signature.data();
  const Pkcs7Ptr message(d2i_PKCS7(nullptr, &cursor, static_cast<long>(signature.size())));
  const X509Ptr certificate = LoadCertificate(certificateFile);
  const KeyPtr key = LoadKey(keyFile);
  if (!message || !certificate || !key) return {};
  PKCS7_SIGNER_INFO* signer = sk_PKCS7_SIGNER_INFO_value(PKCS7_get_signer_info(message.get()), 0);

  const SignerInfoPtr counter(PKCS7_SIGNER_INFO_new());
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned int digestSize = 0;
  if (!counter || PKCS7_SIGNER_INFO_set(counter.get(), certificate.get(), key.get(), EVP_sha256()) != 1 ||
      PKCS7_add_signed_attribute(counter.get(), NID_pkcs9_contentType, V_ASN1_OBJECT,
                                 OBJ_nid2obj(NID_pkcs7_data)) != 1 ||
      EVP_Digest(ASN1_STRING_get0_data(signer->enc_digest),
                 static_cast<std::size_t>(ASN1_STRING_length(signer->enc_digest)), digest, &digestSize,
                 EVP_sha256(), nullptr) != 1 ||
      PKCS7_add1_attrib_digest(counter.get(), digest, static_cast<int>(digestSize)) != 1) {
    return {};
  }
  ASN1_UTCTIME* time = ASN1_UTCTIME_set(nullptr, static_cast<time_t>(kStampTime));
  if (PKCS7_add_signed_attribute(counter.get(), NID_pkcs9_signingTime, V_ASN1_UTCTIME, time) != 1) {
    ASN1_UTCTIME_free(time);
    return {};
  }
  if (PKCS7_SIGNER_INFO_sign(counter.get()) != 1) return {};

  unsigned char* der = nullptr;
  const int derSize = i2d_PKCS7_SIGNER_INFO(counter.get(), &der);
  if (derSize <= 0) return {};
  ASN1_STRING* sequence = ASN1_STRING_new();
  ASN1_STRING_set(sequence, der, derSize);
  OPENSSL_free(der);
  if (PKCS7_add_attribute(signer, NID_pkcs9_countersignature, V_ASN1_SEQUENCE, sequence) != 1) {
    ASN1_STRING_free(sequence);
    return {};
  }
  if (withCertificate && PKCS7_add_certificate(message.get(), certificate.get()) != 1) return {};
  unsigned char* out = nullptr;
  const int outSize = i2d_PKCS7(message.get(), &out);
  if (outSize <= 0) return {};
  Bytes result(out, out + outSize);
  OPENSSL_free(out);
  return result;
}

// --- the suite's certificates and images -------------------------------------------------

constexpr const char* kSignerName = "CN=Corlith Test Signer,O=Orvane";
constexpr const char* kTsaName = "CN=Corlith Test TSA,O=Orvane";

std::string Details(const std::string& heading, const std::string& serial, const std::string& name) {
  return heading + "\n\nSerial Number: " + serial + "\nIssuer Name: " + name + "\nSubject Name: " + name +
         "\n\n";
}
std::string SignerBlock() { return Details("Signer Certificate:", "1234ABCD", kSignerName); }
std::string TsaBlock() { return Details("TimeStamp Certificate:", "5A5A0001", kTsaName); }

class SignatureTest : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_folder = new corlith::test::TempFolder("signature");
    const auto make = [](const std::string& stem, const std::string& subject, const std::string& serial,
                         const std::string& usage) {
      RunOk("openssl", {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", At(stem + "-key.pem"),
                        "-out", At(stem + ".pem"), "-days", "3650", "-subj", subject, "-set_serial", serial,
                        "-addext", "extendedKeyUsage=" + usage, "-addext", "basicConstraints=CA:FALSE"});
    };
    make("signer", "/O=Orvane/CN=Corlith Test Signer", "0x1234ABCD", "codeSigning");
    make("tsa", "/O=Orvane/CN=Corlith Test TSA", "0x5A5A0001", "critical,timeStamping");
    for (const bool plus : {false, true}) {
      const std::string bits = plus ? "64" : "32";
      ASSERT_TRUE(corlith::test::WriteFile(At("unsigned" + bits + ".exe"), Text(BuildPe(plus))));
      Sign("unsigned" + bits + ".exe", "signed" + bits + ".exe", {});
      Sign("unsigned" + bits + ".exe", "stamped" + bits + ".exe",
           {"-TSA-certs", At("tsa.pem"), "-TSA-key", At("tsa-key.pem"), "-TSA-time",
            std::to_string(kStampTime)});
      // osslsigncode's own extraction, then our counter-signature, attached by hand.
      RunOk("osslsigncode",
            {"extract-signature", "-in", At("signed" + bits + ".exe"), "-out", At("sig" + bits)});
      const Bytes signature = ToBytes(corlith::test::ReadFile(At("sig" + bits)));
      for (const bool withCertificate : {true, false}) {
        const Bytes countered =
            AddCounterSignature(signature, At("tsa.pem"), At("tsa-key.pem"), withCertificate);
        ASSERT_FALSE(countered.empty());
        const std::string name = (withCertificate ? "legacy" : "legacy-nocert") + bits + ".exe";
        ASSERT_TRUE(
            corlith::test::WriteFile(At(name), Text(AttachSignature(BuildPe(plus), plus, countered))));
      }
    }
  }
  static void TearDownTestSuite() {
    delete s_folder;
    s_folder = nullptr;
  }

  static void Sign(const std::string& in, const std::string& out, std::vector<std::string> extra) {
    std::vector<std::string> arguments = {
        "sign",         "-certs", At("signer.pem"),          "-key", At("signer-key.pem"), "-n",
        "Corlith Demo", "-i",     "https://example.com/more"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    arguments.insert(arguments.end(), {"-in", At(in), "-out", At(out)});
    RunOk("osslsigncode", std::move(arguments));
  }

  static std::string At(const std::string& name) { return s_folder->PathOf(name); }
  static Bytes Image(const std::string& name) { return ToBytes(corlith::test::ReadFile(At(name))); }

  // The fixture's output for "signature PATH" in the time zone `tz`.
  static std::string FixtureReport(const std::string& path, const std::string& tz) {
    const auto result = RunChild(CORLITH_ENVIRONMENT_FIXTURE, {"signature", path}, {"TZ=" + tz});
    EXPECT_EQ(result.error, 0);
    EXPECT_EQ(result.status.code, 0) << result.errorOutput;
    return result.output;
  }

  static inline corlith::test::TempFolder* s_folder = nullptr;
};

// --- the printed report -------------------------------------------------------------------

TEST_F(SignatureTest, PrintedReportMatchesEachKindOfFile) {
  const std::string opus = "Program Name : Corlith Demo\nMoreInfo Link : https://example.com/more\n";
  struct Row {
    std::string file;
    std::string tz;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {"missing.exe", "UTC", "CryptQueryObject failed with 2\n-1 -1 -1\n"},
      {"signer.pem", "UTC", "CryptQueryObject failed with 80092009\n-1 -1 -1\n"},
      {"unsigned32.exe", "UTC", "CryptQueryObject failed with 80092009\n-1 -1 -1\n"},
      {"unsigned64.exe", "UTC", "CryptQueryObject failed with 80092009\n-1 -1 -1\n"},
      {"signed32.exe", "UTC", opus + SignerBlock() + "-1 -1 -1\n"},
      {"signed64.exe", "UTC", opus + SignerBlock() + "-1 -1 -1\n"},
      {"stamped32.exe", "UTC",
       opus + SignerBlock() + TsaBlock() + "Date of TimeStamp : 11/14/2023 22:13\n2023 11 14\n"},
      // Local time: nine hours ahead the stamp falls on the next day.
      {"stamped64.exe", "JST-9",
       opus + SignerBlock() + TsaBlock() + "Date of TimeStamp : 11/15/2023 07:13\n2023 11 15\n"},
      {"legacy32.exe", "UTC",
       opus + SignerBlock() + TsaBlock() + "Date of TimeStamp : 11/14/2023 22:13\n2023 11 14\n"},
      {"legacy64.exe", "EST5",
       opus + SignerBlock() + TsaBlock() + "Date of TimeStamp : 11/14/2023 17:13\n2023 11 14\n"},
      // The time-stamp's signer is not among the certificates: the report ends there.
      {"legacy-nocert32.exe", "UTC",
       opus + SignerBlock() + "CertFindCertificateInStore failed with 80092004\n-1 -1 -1\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file + " in " + row.tz);
    EXPECT_EQ(FixtureReport(At(row.file), row.tz), row.expected);
  }
}

TEST_F(SignatureTest, ReportFieldsNameTheKindOfTimeStamp) {
  struct Row {
    std::string file;
    corlith::TimeStampKind kind;
    bool hasTime;
  };
  const std::vector<Row> rows = {
      {"signed32.exe", corlith::TimeStampKind::None, false},
      {"stamped32.exe", corlith::TimeStampKind::Rfc3161, true},
      {"legacy64.exe", corlith::TimeStampKind::CounterSignature, true},
      {"legacy-nocert64.exe", corlith::TimeStampKind::CounterSignature, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file);
    const SignatureReport fromFile = corlith::ReadSignatureReport(fs::path(At(row.file)));
    const Bytes image = Image(row.file);
    const SignatureReport fromMemory = corlith::ReadSignatureReport(std::span<const std::uint8_t>(image));
    EXPECT_EQ(fromFile.timeStampKind, row.kind);
    EXPECT_EQ(fromFile.timeStampTime.has_value(), row.hasTime);
    EXPECT_EQ(fromFile.timeStampTime.value_or(0), row.hasTime ? kStampTime : 0);
    EXPECT_TRUE(fromFile.Signed());
    // The file and the image in memory give the same text whatever the time zone.
    EXPECT_EQ(corlith::FormatSignatureReport(fromFile), corlith::FormatSignatureReport(fromMemory));
  }
}

TEST_F(SignatureTest, UnicodePathCannotHoldNul) {
  const SignatureReport report = corlith::ReadSignatureReport(fs::path(std::string("a\0b", 3)));
  EXPECT_EQ(report.failedStage, SignatureStage::Convert);
  EXPECT_EQ(corlith::FormatSignatureReport(report), "Unable to convert to unicode.\n");
}

// The corlith tool: the same text as the utility, its fields as JSON, exit status 0 only
// when signed.
TEST_F(SignatureTest, ToolPrintsTheReportAndSaysWhetherSigned) {
#ifndef CORLITH_TOOL
  GTEST_SKIP() << "the corlith tool is not part of this build";
#else
  struct Row {
    std::string file;
    bool json;
    int status;
    std::vector<std::string> expected;  // the whole text, or for JSON lines it holds
  };
  const std::vector<Row> rows = {
      {"missing.exe", false, 1, {"CryptQueryObject failed with 2\n"}},
      {"unsigned64.exe", false, 1, {"CryptQueryObject failed with 80092009\n"}},
      {"legacy-nocert64.exe",
       false,
       0,
       {"Program Name : Corlith Demo\nMoreInfo Link : https://example.com/more\n" + SignerBlock() +
        "CertFindCertificateInStore failed with 80092004\n"}},
      {"stamped64.exe",
       true,
       0,
       {R"("kind": "rfc3161")", R"("time": "2023-11-14T22:13:20Z")", R"("localTime": "2023-11-14 22:13")",
        R"("serialNumber": "5A5A0001")", R"("failure": null)", R"("signed": true)"}},
      {"unsigned32.exe",
       true,
       1,
       {R"("code": 2148081673)", R"("stage": "query")",
        R"("message": "CryptQueryObject failed with 80092009")", R"("signed": false)",
        R"("timeStamp": null)"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.file);
    std::vector<std::string> arguments = {"signature", At(row.file)};
    if (row.json) arguments.emplace_back("--json");
    const auto result = RunChild(CORLITH_TOOL, arguments, {"TZ=UTC"});
    EXPECT_EQ(result.status.code, row.status) << result.errorOutput;
    if (!row.json) {
      EXPECT_EQ(result.output, row.expected.front());
    } else {
      for (const std::string& part : row.expected)
        EXPECT_NE(result.output.find(part), std::string::npos) << part;
    }
  }
#endif
}

// --- hostile images --------------------------------------------------------------------------

void Poke32(Bytes& b, std::size_t at, std::uint32_t v) {
  for (int i = 0; i < 4; ++i) b[at + static_cast<std::size_t>(i)] = static_cast<BYTE>(v >> (8 * i));
}
std::uint32_t Peek32(const Bytes& b, std::size_t at) {
  return static_cast<std::uint32_t>(b[at] | b[at + 1] << 8 | b[at + 2] << 16) |
         static_cast<std::uint32_t>(b[at + 3]) << 24;
}

TEST_F(SignatureTest, DamagedImagesEndAtTheQueryWithAStableCode) {
  const Bytes good = Image("signed64.exe");
  const std::size_t entry = SecurityEntryOffset(true);
  const std::uint32_t table = Peek32(good, entry);
  struct Row {
    const char* what;
    std::function<void(Bytes&)> damage;
    std::uint32_t code;
  };
  const std::vector<Row> rows = {
      {"no MZ", [](Bytes& b) { b[0] = 'X'; }, corlith::kNoMatch},
      {"NT headers past the end", [](Bytes& b) { Poke32(b, 0x3c, static_cast<std::uint32_t>(b.size()) - 8); },
       corlith::kNoMatch},
      {"NT headers at 4 GiB", [](Bytes& b) { Poke32(b, 0x3c, 0xfffffff0); }, corlith::kNoMatch},
      {"no PE signature", [](Bytes& b) { b[kNtHeaders + 1] = 'X'; }, corlith::kNoMatch},
      {"unknown magic", [](Bytes& b) { b[kNtHeaders + 24] = 0x07; }, corlith::kNoMatch},
      {"optional header too small",
       [](Bytes& b) {
         b[kNtHeaders + 20] = 100;
         b[kNtHeaders + 21] = 0;
       },
       corlith::kNoMatch},
      {"four directories", [](Bytes& b) { Poke32(b, kNtHeaders + 24 + 108, 4); }, corlith::kNoMatch},
      {"empty directory", [entry](Bytes& b) { Poke32(b, entry + 4, 0); }, corlith::kNoMatch},
      {"table past the end",
       [entry](Bytes& b) { Poke32(b, entry + 4, static_cast<std::uint32_t>(b.size())); }, corlith::kNoMatch},
      {"table offset wraps", [entry](Bytes& b) { Poke32(b, entry, 0xfffffff8); }, corlith::kNoMatch},
      {"X.509 entry", [table](Bytes& b) { b[table + 6] = 1; }, corlith::kNoMatch},
      {"revision 1", [table](Bytes& b) { b[table + 5] = 1; }, corlith::kNoMatch},
      {"entry longer than the table", [table](Bytes& b) { Poke32(b, table, 0xffffffff); }, corlith::kNoMatch},
      {"entry of its header only", [table](Bytes& b) { Poke32(b, table, 8); }, corlith::kNoMatch},
      {"cut in the signature", [](Bytes& b) { b.resize(b.size() - 100); }, corlith::kNoMatch},
      {"cut in the DOS header", [](Bytes& b) { b.resize(40); }, corlith::kNoMatch},
      {"not PKCS #7", [table](Bytes& b) { b[table + 8] = 0x04; }, corlith::kBadEncoding},
      {"PKCS #7 truncated inside", [table](Bytes& b) { Poke32(b, table, 64); }, corlith::kBadEncoding},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Bytes image = good;
    row.damage(image);
    const SignatureReport report = corlith::ReadSignatureReport(std::span<const std::uint8_t>(image));
    EXPECT_EQ(report.failedStage, SignatureStage::Query);
    EXPECT_EQ(report.errorCode, row.code);
    std::ostringstream expected;
    expected << "CryptQueryObject failed with " << std::hex << row.code << "\n";
    EXPECT_EQ(corlith::FormatSignatureReport(report), expected.str());
  }
}

TEST_F(SignatureTest, SignatureWithoutSignerOrCertificateEndsAtItsStage) {
  // A signed-data message with no signer and no certificates, made by OpenSSL itself.
  const Pkcs7Ptr empty(PKCS7_new());
  ASSERT_TRUE(empty && PKCS7_set_type(empty.get(), NID_pkcs7_signed) == 1 &&
              PKCS7_content_new(empty.get(), NID_pkcs7_data) == 1);
  unsigned char* der = nullptr;
  const int size = i2d_PKCS7(empty.get(), &der);
  ASSERT_GT(size, 0);
  const Bytes emptySignature(der, der + size);
  OPENSSL_free(der);
  const SignatureReport noSigner = corlith::ReadSignatureReport(
      std::span<const std::uint8_t>(AttachSignature(BuildPe(false), false, emptySignature)));
  EXPECT_EQ(corlith::FormatSignatureReport(noSigner), "CryptMsgGetParam failed with 80091008\n");

  // The signer's own certificate taken out of the message.
  const Bytes signature = ToBytes(corlith::test::ReadFile(At("sig32")));
  const unsigned char* cursor = signature.data();
  const Pkcs7Ptr message(d2i_PKCS7(nullptr, &cursor, static_cast<long>(signature.size())));
  ASSERT_TRUE(message);
  sk_X509_pop_free(message->d.sign->cert, X509_free);
  message->d.sign->cert = nullptr;
  der = nullptr;
  const int strippedSize = i2d_PKCS7(message.get(), &der);
  ASSERT_GT(strippedSize, 0);
  const Bytes stripped(der, der + strippedSize);
  OPENSSL_free(der);
  const SignatureReport noCertificate = corlith::ReadSignatureReport(
      std::span<const std::uint8_t>(AttachSignature(BuildPe(false), false, stripped)));
  EXPECT_EQ(corlith::FormatSignatureReport(noCertificate),
            "Program Name : Corlith Demo\nMoreInfo Link : https://example.com/more\n"
            "CertFindCertificateInStore failed with 80092004\n");
}

// --- SPC_SP_OPUS_INFO ---------------------------------------------------------------------------

// A DER element with a short length.
Bytes Der(BYTE tag, const Bytes& content) {
  Bytes out(content.size() + 2);
  out[0] = tag;
  out[1] = static_cast<BYTE>(content.size());
  std::copy(content.begin(), content.end(), out.begin() + 2);
  return out;
}
Bytes Cat(std::initializer_list<Bytes> parts) {
  Bytes out;
  for (const Bytes& part : parts) out.insert(out.end(), part.begin(), part.end());
  return out;
}
Bytes Ascii(const char* text) { return ToBytes(text); }

TEST(OpusInfoTest, DecodesBothStringChoicesAndEveryLinkChoice) {
  // "Ωmega" in BMPString (UTF-16 big-endian).
  const Bytes omega = {0x03, 0xa9, 0x00, 'm', 0x00, 'e', 0x00, 'g', 0x00, 'a'};
  struct Row {
    const char* what;
    Bytes der;
    std::optional<std::string> program;
    std::optional<std::string> publisher;
    std::optional<std::string> moreInfo;
  };
  const std::vector<Row> rows = {
      {"empty", Der(0x30, {}), {}, {}, {}},
      {"BMP program name", Der(0x30, Der(0xa0, Der(0x80, omega))), "\xce\xa9mega", {}, {}},
      {"IA5 program name", Der(0x30, Der(0xa0, Der(0x81, Ascii("Tool")))), "Tool", {}, {}},
      {"URL link", Der(0x30, Der(0xa1, Der(0x80, Ascii("http://a")))), {}, {}, "http://a"},
      {"file link in BMP", Der(0x30, Der(0xa1, Der(0xa2, Der(0x80, omega)))), {}, {}, "\xce\xa9mega"},
      {"file link in IA5", Der(0x30, Der(0xa1, Der(0xa2, Der(0x81, Ascii("f.txt"))))), {}, {}, "f.txt"},
      {"moniker link", Der(0x30, Der(0xa1, Der(0xa1, Der(0x04, Bytes(16, 0))))), {}, {}, {}},
      {"all three",
       Der(0x30, Cat({Der(0xa0, Der(0x81, Ascii("P"))), Der(0xa1, Der(0x80, Ascii("m"))),
                      Der(0xa2, Der(0x80, Ascii("p")))})),
       "P", "p", "m"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    corlith::OpusInfo info;
    ASSERT_TRUE(corlith::DecodeOpusInfo(row.der, info));
    EXPECT_EQ(info.programName, row.program);
    EXPECT_EQ(info.publisherLink, row.publisher);
    EXPECT_EQ(info.moreInfoLink, row.moreInfo);
  }
}

TEST(OpusInfoTest, RefusesMalformedEncodings) {
  const Bytes name = Der(0xa0, Der(0x81, Ascii("P")));
  struct Row {
    const char* what;
    Bytes der;
  };
  const std::vector<Row> rows = {
      {"nothing", {}},
      {"not a SEQUENCE", Der(0x31, {})},
      {"bytes after the SEQUENCE", Cat({Der(0x30, {}), Bytes{0}})},
      {"length beyond the data", Bytes{0x30, 0x05, 0xa0}},
      {"indefinite length", Bytes{0x30, 0x80, 0x00, 0x00}},
      {"long length beyond the data", Bytes{0x30, 0x84, 0xff, 0xff, 0xff, 0xff}},
      {"high tag number", Bytes{0x30, 0x02, 0xbf, 0x00}},
      {"odd BMP length", Der(0x30, Der(0xa0, Der(0x80, Bytes{0x00, 'a', 0x00})))},
      {"IA5 above 127", Der(0x30, Der(0xa0, Der(0x81, Bytes{'a', 0xe9})))},
      {"unknown string choice", Der(0x30, Der(0xa0, Der(0x82, Ascii("x"))))},
      {"unknown link choice", Der(0x30, Der(0xa1, Der(0x83, Ascii("x"))))},
      {"unknown field", Der(0x30, Der(0xa3, Der(0x80, Ascii("x"))))},
      {"field twice", Der(0x30, Cat({name, name}))},
      {"fields out of order", Der(0x30, Cat({Der(0xa1, Der(0x80, Ascii("m"))), name}))},
      {"two values in a field", Der(0x30, Der(0xa0, Cat({Der(0x81, Ascii("a")), Der(0x81, Ascii("b"))})))},
      {"empty field", Der(0x30, Der(0xa0, {}))},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    corlith::OpusInfo info;
    info.programName = "kept";
    EXPECT_FALSE(corlith::DecodeOpusInfo(row.der, info));
    EXPECT_EQ(info.programName, "kept");  // a failed decoding changes nothing
  }
}

}  // namespace
