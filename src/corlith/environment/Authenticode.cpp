#include <corlith/environment/Authenticode.h>

#include <corlith/framework/Utf.h>
#include <corlith/platform/File.h>
#include <corlith/platform/Trace.h>

#include <openssl/asn1.h>
#include <openssl/bio.h>
#include <openssl/bn.h>
#include <openssl/crypto.h>
#include <openssl/objects.h>
#include <openssl/pkcs7.h>
#include <openssl/ts.h>
#include <openssl/x509.h>

#include <chrono>
#include <climits>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string_view>
#include <vector>

namespace corlith {

namespace {

// --- OpenSSL ownership -----------------------------------------------------------------

struct Pkcs7Free {
  void operator()(PKCS7* p) const { PKCS7_free(p); }
};
struct SignerInfoFree {
  void operator()(PKCS7_SIGNER_INFO* p) const { PKCS7_SIGNER_INFO_free(p); }
};
struct TstInfoFree {
  void operator()(TS_TST_INFO* p) const { TS_TST_INFO_free(p); }
};
struct ObjectFree {
  void operator()(ASN1_OBJECT* p) const { ASN1_OBJECT_free(p); }
};
struct BioFree {
  void operator()(BIO* p) const { BIO_free(p); }
};
struct BignumFree {
  void operator()(BIGNUM* p) const { BN_free(p); }
};
struct OpenSslStringFree {
  void operator()(char* p) const { OPENSSL_free(p); }
};

using Pkcs7Ptr = std::unique_ptr<PKCS7, Pkcs7Free>;
using SignerInfoPtr = std::unique_ptr<PKCS7_SIGNER_INFO, SignerInfoFree>;

// --- reading the image -----------------------------------------------------------------

// Reads byte ranges of the image; every range asked for lies inside Size().
class ImageSource {
 public:
  virtual ~ImageSource() = default;
  virtual std::uint64_t Size() const = 0;
  /// 0 or a report code.
  virtual std::uint32_t ReadAt(std::uint64_t offset, std::size_t size, std::vector<std::uint8_t>& out) = 0;
};

class MemorySource final : public ImageSource {
 public:
  explicit MemorySource(std::span<const std::uint8_t> image) : m_image(image) {}
  std::uint64_t Size() const override { return m_image.size(); }
  std::uint32_t ReadAt(std::uint64_t offset, std::size_t size, std::vector<std::uint8_t>& out) override {
    const auto first = m_image.subspan(static_cast<std::size_t>(offset), size);
    out.assign(first.begin(), first.end());
    return 0;
  }

 private:
  std::span<const std::uint8_t> m_image;
};

std::uint32_t CodeForOsError(int error) {
  switch (platform::ClassifyOsError(error)) {
    case platform::FileErrorKind::NotFound:
    case platform::FileErrorKind::BadPath:
      return kFileNotFound;
    case platform::FileErrorKind::AccessDenied:
      return kAccessDenied;
    default:
      return kFileError;
  }
}

class FileSource final : public ImageSource {
 public:
  std::uint32_t Open(const std::filesystem::path& path) {
    if (const int error = m_file.Open(path, platform::FileOpenOptions{}); error != 0)
      return CodeForOsError(error);
    if (const int error = m_file.GetSize(m_size); error != 0) return CodeForOsError(error);
    return 0;
  }
  std::uint64_t Size() const override { return m_size; }
  std::uint32_t ReadAt(std::uint64_t offset, std::size_t size, std::vector<std::uint8_t>& out) override {
    out.resize(size);
    std::uint64_t position = 0;
    std::size_t done = 0;
    if (const int error =
            m_file.Seek(static_cast<std::int64_t>(offset), platform::SeekOrigin::Begin, position);
        error != 0) {
      return CodeForOsError(error);
    }
    if (const int error = m_file.Read(out.data(), size, done); error != 0) return CodeForOsError(error);
    // A file that shrank since its size was taken.
    return done == size ? 0 : kFileError;
  }

 private:
  platform::FileHandle m_file;
  std::uint64_t m_size = 0;
};

std::uint16_t Le16(const std::vector<std::uint8_t>& b, std::size_t at) {
  return static_cast<std::uint16_t>(b[at] | (b[at + 1] << 8));
}
std::uint32_t Le32(const std::vector<std::uint8_t>& b, std::size_t at) {
  return static_cast<std::uint32_t>(b[at]) | (static_cast<std::uint32_t>(b[at + 1]) << 8) |
         (static_cast<std::uint32_t>(b[at + 2]) << 16) | (static_cast<std::uint32_t>(b[at + 3]) << 24);
}

constexpr std::size_t kDosHeaderSize = 64;
constexpr std::size_t kLfanewOffset = 0x3c;
constexpr std::size_t kCoffHeaderSize = 20;
constexpr std::uint16_t kPe32Magic = 0x10b;
constexpr std::uint16_t kPe32PlusMagic = 0x20b;
constexpr std::size_t kSecurityDirectory = 4;
constexpr std::uint16_t kCertificateRevision2 = 0x0200;
constexpr std::uint16_t kCertificateTypePkcsSignedData = 0x0002;
constexpr std::size_t kCertificateHeaderSize = 8;

// The bytes of the first certificate entry (bCertificate), or a report code.
std::uint32_t ReadCertificateBlob(ImageSource& source, std::vector<std::uint8_t>& blob) {
  const std::uint64_t fileSize = source.Size();
  if (fileSize < kDosHeaderSize) return kNoMatch;
  std::vector<std::uint8_t> bytes;
  if (const std::uint32_t code = source.ReadAt(0, kDosHeaderSize, bytes); code != 0) return code;
  if (bytes[0] != 'M' || bytes[1] != 'Z') return kNoMatch;
  const std::uint64_t ntHeaders = Le32(bytes, kLfanewOffset);

  // "PE\0\0", the COFF header, then the optional header's magic.
  constexpr std::size_t kFixedPart = 4 + kCoffHeaderSize + 2;
  if (ntHeaders + kFixedPart > fileSize) return kNoMatch;
  if (const std::uint32_t code = source.ReadAt(ntHeaders, kFixedPart, bytes); code != 0) return code;
  if (bytes[0] != 'P' || bytes[1] != 'E' || bytes[2] != 0 || bytes[3] != 0) return kNoMatch;
  const std::uint16_t optionalSize = Le16(bytes, 4 + 16);
  const std::uint16_t magic = Le16(bytes, 4 + kCoffHeaderSize);
  std::size_t countOffset = 0;
  if (magic == kPe32Magic) {
    countOffset = 92;
  } else if (magic == kPe32PlusMagic) {
    countOffset = 108;
  } else {
    return kNoMatch;
  }
  const std::size_t directoriesOffset = countOffset + 4;
  const std::size_t entryOffset = directoriesOffset + kSecurityDirectory * 8;
  if (optionalSize < entryOffset + 8) return kNoMatch;
  const std::uint64_t optionalStart = ntHeaders + 4 + kCoffHeaderSize;
  if (optionalStart + entryOffset + 8 > fileSize) return kNoMatch;
  if (const std::uint32_t code = source.ReadAt(optionalStart, entryOffset + 8, bytes); code != 0) return code;
  if (Le32(bytes, countOffset) <= kSecurityDirectory) return kNoMatch;

  // The security directory's address is a file offset, not a virtual address.
  const std::uint64_t tableOffset = Le32(bytes, entryOffset);
  const std::uint64_t tableSize = Le32(bytes, entryOffset + 4);
  if (tableOffset == 0 || tableSize < kCertificateHeaderSize || tableOffset + tableSize > fileSize)
    return kNoMatch;
  if (const std::uint32_t code = source.ReadAt(tableOffset, kCertificateHeaderSize, bytes); code != 0)
    return code;
  const std::uint32_t length = Le32(bytes, 0);
  if (Le16(bytes, 4) != kCertificateRevision2 || Le16(bytes, 6) != kCertificateTypePkcsSignedData)
    return kNoMatch;
  if (length <= kCertificateHeaderSize || length > tableSize || length > kMaxCertificateEntrySize)
    return kNoMatch;
  return source.ReadAt(tableOffset + kCertificateHeaderSize, length - kCertificateHeaderSize, blob);
}

// --- a small bounded DER reader (SPC_SP_OPUS_INFO) -----------------------------------------

struct Tlv {
  std::uint8_t tag = 0;
  std::span<const std::uint8_t> content;
};

// Reads the next definite-length, low-tag-number element; false at the end or when
// the bytes do not form one.
bool NextTlv(std::span<const std::uint8_t>& rest, Tlv& tlv) {
  if (rest.size() < 2) return false;
  const std::uint8_t tag = rest[0];
  if ((tag & 0x1f) == 0x1f) return false;
  std::size_t length = rest[1];
  std::size_t header = 2;
  if (length & 0x80) {
    const std::size_t count = length & 0x7f;
    if (count == 0 || count > 4 || rest.size() < 2 + count) return false;  // indefinite or huge
    length = 0;
    for (std::size_t i = 0; i < count; ++i) length = (length << 8) | rest[2 + i];
    header += count;
  }
  if (length > rest.size() - header) return false;
  tlv.tag = tag;
  tlv.content = rest.subspan(header, length);
  rest = rest.subspan(header + length);
  return true;
}

// The one element `outer` holds, nothing after it.
bool OnlyTlv(std::span<const std::uint8_t> outer, Tlv& tlv) { return NextTlv(outer, tlv) && outer.empty(); }

bool DecodeIa5(std::span<const std::uint8_t> content, std::string& text) {
  for (const std::uint8_t c : content) {
    if (c >= 0x80) return false;
  }
  text.assign(content.begin(), content.end());
  return true;
}

bool DecodeBmp(std::span<const std::uint8_t> content, std::string& text) {
  if (content.size() % 2 != 0) return false;
  std::u16string wide;
  wide.reserve(content.size() / 2);
  for (std::size_t i = 0; i < content.size(); i += 2) {
    wide.push_back(static_cast<char16_t>((content[i] << 8) | content[i + 1]));
  }
  text = Utf16ToUtf8(wide);
  return true;
}

// SpcString: [0] IMPLICIT BMPString or [1] IMPLICIT IA5String.
bool DecodeSpcString(const Tlv& tlv, std::string& text) {
  if (tlv.tag == 0x80) return DecodeBmp(tlv.content, text);
  if (tlv.tag == 0x81) return DecodeIa5(tlv.content, text);
  return false;
}

// SpcLink: [0] IMPLICIT IA5String url, [1] IMPLICIT moniker, [2] EXPLICIT SpcString file.
bool DecodeSpcLink(const Tlv& tlv, std::optional<std::string>& link) {
  std::string text;
  switch (tlv.tag) {
    case 0x80:
      if (!DecodeIa5(tlv.content, text)) return false;
      break;
    case 0xa1:
      return true;  // a moniker has no text to show
    case 0xa2: {
      Tlv inner;
      if (!OnlyTlv(tlv.content, inner) || !DecodeSpcString(inner, text)) return false;
      break;
    }
    default:
      return false;
  }
  link = std::move(text);
  return true;
}

// --- certificates and attributes ------------------------------------------------------

std::string NameText(const X509_NAME* name) {
  const std::unique_ptr<BIO, BioFree> bio(BIO_new(BIO_s_mem()));
  if (!bio) return {};
  // UTF-8 as it is; control characters stay escaped, so a name is always one line.
  if (X509_NAME_print_ex(bio.get(), name, 0, XN_FLAG_RFC2253 & ~ASN1_STRFLGS_ESC_MSB) < 0) return {};
  char* data = nullptr;
  const long size = BIO_get_mem_data(bio.get(), &data);
  return size > 0 ? std::string(data, static_cast<std::size_t>(size)) : std::string();
}

CertificateDetails Details(const X509* certificate) {
  CertificateDetails details;
  const std::unique_ptr<BIGNUM, BignumFree> serial(
      ASN1_INTEGER_to_BN(X509_get0_serialNumber(certificate), nullptr));
  if (serial) {
    const std::unique_ptr<char, OpenSslStringFree> hex(BN_bn2hex(serial.get()));
    if (hex) details.serialNumber = hex.get();
  }
  details.issuerName = NameText(X509_get_issuer_name(certificate));
  details.subjectName = NameText(X509_get_subject_name(certificate));
  return details;
}

X509* FindCertificate(STACK_OF(X509) * certificates, const PKCS7_ISSUER_AND_SERIAL* id) {
  if (certificates == nullptr || id == nullptr) return nullptr;
  return X509_find_by_issuer_and_serial(certificates, id->issuer, id->serial);
}

// The first value of the attribute `oid` as the DER of a SEQUENCE; empty when absent.
// False when the attribute is there but its value is not a SEQUENCE.
bool SequenceAttribute(STACK_OF(X509_ATTRIBUTE) * attributes, const ASN1_OBJECT* oid,
                       std::span<const std::uint8_t>& der) {
  der = {};
  const int index = X509at_get_attr_by_OBJ(attributes, oid, -1);
  if (index < 0) return true;
  const ASN1_TYPE* value = X509_ATTRIBUTE_get0_type(X509at_get_attr(attributes, index), 0);
  if (value == nullptr || value->type != V_ASN1_SEQUENCE || value->value.sequence == nullptr) return false;
  const ASN1_STRING* sequence = value->value.sequence;
  der = {ASN1_STRING_get0_data(sequence), static_cast<std::size_t>(ASN1_STRING_length(sequence))};
  return true;
}

std::unique_ptr<ASN1_OBJECT, ObjectFree> Oid(const char* text) {
  return std::unique_ptr<ASN1_OBJECT, ObjectFree>(OBJ_txt2obj(text, 1));
}

// UTCTime or GeneralizedTime (fractions of a second ignored) to seconds since 1970.
bool TimeSeconds(const ASN1_TIME* time, std::int64_t& seconds) {
  std::tm parts{};
  if (time == nullptr || ASN1_TIME_to_tm(time, &parts) != 1) return false;
  using namespace std::chrono;
  const year_month_day date{year{parts.tm_year + 1900}, month{static_cast<unsigned>(parts.tm_mon + 1)},
                            day{static_cast<unsigned>(parts.tm_mday)}};
  if (!date.ok()) return false;
  seconds = sys_days(date).time_since_epoch().count() * 86400LL + parts.tm_hour * 3600LL +
            parts.tm_min * 60LL + parts.tm_sec;
  return true;
}

void Fail(SignatureReport& report, SignatureStage stage, std::uint32_t code) {
  report.failedStage = stage;
  report.errorCode = code;
}

// The legacy counter-signature: a SignerInfo over the signer's signature.
void ReadCounterSignature(std::span<const std::uint8_t> der, PKCS7* outer, SignatureReport& report) {
  report.timeStampKind = TimeStampKind::CounterSignature;
  const unsigned char* cursor = der.data();
  const SignerInfoPtr counter(d2i_PKCS7_SIGNER_INFO(nullptr, &cursor, static_cast<long>(der.size())));
  if (!counter) return Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  const X509* certificate = FindCertificate(outer->d.sign->cert, counter->issuer_and_serial);
  if (certificate == nullptr) return Fail(report, SignatureStage::TimeStampCertificate, kCertificateNotFound);
  report.timeStampSigner = Details(certificate);

  const ASN1_TYPE* signingTime = PKCS7_get_signed_attribute(counter.get(), NID_pkcs9_signingTime);
  if (signingTime == nullptr) return;  // a counter-signature without a time: no date
  std::int64_t seconds = 0;
  if ((signingTime->type != V_ASN1_UTCTIME && signingTime->type != V_ASN1_GENERALIZEDTIME) ||
      !TimeSeconds(signingTime->value.utctime, seconds)) {
    return Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  }
  report.timeStampTime = seconds;
}

// An RFC 3161 token: SignedData over a TSTInfo whose genTime is the time-stamp.
void ReadTimeStampToken(std::span<const std::uint8_t> der, PKCS7* outer, SignatureReport& report) {
  report.timeStampKind = TimeStampKind::Rfc3161;
  const unsigned char* cursor = der.data();
  const Pkcs7Ptr token(d2i_PKCS7(nullptr, &cursor, static_cast<long>(der.size())));
  if (!token || !PKCS7_type_is_signed(token.get()) || token->d.sign == nullptr) {
    return Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  }
  const std::unique_ptr<TS_TST_INFO, TstInfoFree> info(PKCS7_to_TS_TST_INFO(token.get()));
  STACK_OF(PKCS7_SIGNER_INFO)* signers = PKCS7_get_signer_info(token.get());
  if (!info || signers == nullptr || sk_PKCS7_SIGNER_INFO_num(signers) < 1) {
    return Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  }
  const PKCS7_ISSUER_AND_SERIAL* id = sk_PKCS7_SIGNER_INFO_value(signers, 0)->issuer_and_serial;
  const X509* certificate = FindCertificate(token->d.sign->cert, id);
  if (certificate == nullptr) certificate = FindCertificate(outer->d.sign->cert, id);
  if (certificate == nullptr) return Fail(report, SignatureStage::TimeStampCertificate, kCertificateNotFound);
  report.timeStampSigner = Details(certificate);

  std::int64_t seconds = 0;
  if (!TimeSeconds(TS_TST_INFO_get_time(info.get()), seconds)) {
    return Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  }
  report.timeStampTime = seconds;
}

SignatureReport ReportFromBlob(std::span<const std::uint8_t> blob) {
  SignatureReport report;
  if (blob.size() > static_cast<std::size_t>(LONG_MAX)) {
    Fail(report, SignatureStage::Query, kNoMatch);
    return report;
  }
  const unsigned char* cursor = blob.data();
  const Pkcs7Ptr message(d2i_PKCS7(nullptr, &cursor, static_cast<long>(blob.size())));
  if (!message || !PKCS7_type_is_signed(message.get()) || message->d.sign == nullptr) {
    Fail(report, SignatureStage::Query, kBadEncoding);
    return report;
  }
  STACK_OF(PKCS7_SIGNER_INFO)* signers = PKCS7_get_signer_info(message.get());
  if (signers == nullptr || sk_PKCS7_SIGNER_INFO_num(signers) < 1) {
    Fail(report, SignatureStage::SignerInfo, kNoSigner);
    return report;
  }
  PKCS7_SIGNER_INFO* signer = sk_PKCS7_SIGNER_INFO_value(signers, 0);

  const auto opusOid = Oid("1.3.6.1.4.1.311.2.1.12");
  const auto tokenOid = Oid("1.3.6.1.4.1.311.3.3.1");
  const auto counterOid = Oid("1.2.840.113549.1.9.6");
  if (!opusOid || !tokenOid || !counterOid) {
    Fail(report, SignatureStage::Query, kBadEncoding);
    return report;
  }
  std::span<const std::uint8_t> der;
  if (!SequenceAttribute(signer->auth_attr, opusOid.get(), der) ||
      (!der.empty() && !DecodeOpusInfo(der, report.opus))) {
    report.opus = {};
    Fail(report, SignatureStage::OpusInfo, kBadEncoding);
    return report;
  }

  const X509* certificate = FindCertificate(message->d.sign->cert, signer->issuer_and_serial);
  if (certificate == nullptr) {
    Fail(report, SignatureStage::SignerCertificate, kCertificateNotFound);
    return report;
  }
  report.signer = Details(certificate);

  // The legacy counter-signature first, as the original looked for it alone.
  std::span<const std::uint8_t> counter;
  std::span<const std::uint8_t> token;
  const bool counterReadable = SequenceAttribute(signer->unauth_attr, counterOid.get(), counter);
  const bool tokenReadable =
      !counterReadable || !counter.empty() || SequenceAttribute(signer->unauth_attr, tokenOid.get(), token);
  if (!counterReadable || !tokenReadable) {
    Fail(report, SignatureStage::TimeStamp, kBadEncoding);
  } else if (!counter.empty()) {
    ReadCounterSignature(counter, message.get(), report);
  } else if (!token.empty()) {
    ReadTimeStampToken(token, message.get(), report);
  }
  return report;
}

SignatureReport ReportFromSource(ImageSource& source) {
  std::vector<std::uint8_t> blob;
  if (const std::uint32_t code = ReadCertificateBlob(source, blob); code != 0) {
    SignatureReport report;
    Fail(report, SignatureStage::Query, code);
    return report;
  }
  return ReportFromBlob(blob);
}

void AppendFormat(std::string& out, const char* format, auto... values) {
  char line[128];
  const int length = std::snprintf(line, sizeof line, format, values...);
  if (length > 0) out.append(line, std::min(static_cast<std::size_t>(length), sizeof line - 1));
}

void AppendDetails(std::string& out, const CertificateDetails& details) {
  out += "Serial Number: " + details.serialNumber + "\n";
  out += "Issuer Name: " + details.issuerName + "\n";
  out += "Subject Name: " + details.subjectName + "\n\n";
}

}  // namespace

bool DecodeOpusInfo(std::span<const std::uint8_t> der, OpusInfo& info) {
  Tlv sequence;
  if (!OnlyTlv(der, sequence) || sequence.tag != 0x30) return false;
  OpusInfo decoded;
  std::span<const std::uint8_t> rest = sequence.content;
  int lastField = -1;
  while (!rest.empty()) {
    Tlv field;
    Tlv inner;
    if (!NextTlv(rest, field) || !OnlyTlv(field.content, inner)) return false;
    const int number = field.tag - 0xa0;
    if (number < 0 || number > 2 || number <= lastField) return false;  // DER: each once, in order
    lastField = number;
    if (number == 0) {
      std::string text;
      if (!DecodeSpcString(inner, text)) return false;
      decoded.programName = std::move(text);
    } else if (!DecodeSpcLink(inner, number == 1 ? decoded.moreInfoLink : decoded.publisherLink)) {
      return false;
    }
  }
  info = std::move(decoded);
  return true;
}

SignatureReport ReadSignatureReport(const std::filesystem::path& path) {
  SignatureReport report;
  if (path.native().find('\0') != std::string::npos) {
    Fail(report, SignatureStage::Convert, 0);
    return report;
  }
  FileSource source;
  if (const std::uint32_t code = source.Open(path); code != 0) {
    Fail(report, SignatureStage::Query, code);
    return report;
  }
  return ReportFromSource(source);
}

SignatureReport ReadSignatureReport(std::span<const std::uint8_t> image) {
  MemorySource source(image);
  return ReportFromSource(source);
}

bool LocalTimeStampDate(const SignatureReport& report, int& year, int& month, int& day, int& hour,
                        int& minute) {
  if (!report.timeStampTime) return false;
  std::tm local{};
  if (!platform::LocalTime(static_cast<std::time_t>(*report.timeStampTime), local)) return false;
  year = local.tm_year + 1900;
  month = local.tm_mon + 1;
  day = local.tm_mday;
  hour = local.tm_hour;
  minute = local.tm_min;
  return true;
}

std::string FormatSignatureReport(const SignatureReport& report) {
  std::string out;
  if (report.failedStage == SignatureStage::Convert) return "Unable to convert to unicode.\n";
  if (report.opus.programName) out += "Program Name : " + *report.opus.programName + "\n";
  if (report.opus.publisherLink) out += "Publisher Link : " + *report.opus.publisherLink + "\n";
  if (report.opus.moreInfoLink) out += "MoreInfo Link : " + *report.opus.moreInfoLink + "\n";
  if (report.signer) {
    out += "Signer Certificate:\n\n";
    AppendDetails(out, *report.signer);
  }
  if (report.timeStampSigner) {
    out += "TimeStamp Certificate:\n\n";
    AppendDetails(out, *report.timeStampSigner);
  }
  int year = 0;
  int month = 0;
  int day = 0;
  int hour = 0;
  int minute = 0;
  if (LocalTimeStampDate(report, year, month, day, hour, minute)) {
    AppendFormat(out, "Date of TimeStamp : %02d/%02d/%04d %02d:%02d\n", month, day, year, hour, minute);
  }
  const char* failure = nullptr;
  switch (report.failedStage) {
    case SignatureStage::None:
    case SignatureStage::Convert:
      break;
    case SignatureStage::Query:
      failure = "CryptQueryObject failed with %x\n";
      break;
    case SignatureStage::SignerInfo:
      failure = "CryptMsgGetParam failed with %x\n";
      break;
    case SignatureStage::OpusInfo:
    case SignatureStage::TimeStamp:
      failure = "CryptDecodeObject failed with %x\n";
      break;
    case SignatureStage::SignerCertificate:
    case SignatureStage::TimeStampCertificate:
      failure = "CertFindCertificateInStore failed with %x\n";
      break;
  }
  if (failure != nullptr) AppendFormat(out, failure, static_cast<unsigned>(report.errorCode));
  return out;
}

}  // namespace corlith
