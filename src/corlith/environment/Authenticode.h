// The code-signature report of a PE image: our own bounded reader of the image's
// security directory, then OpenSSL for the PKCS #7 signature it holds. ReadSignatureReport
// gathers what is there into a SignatureReport; FormatSignatureReport turns that into the
// text KTUtility::GetTimeStampSignerInfoByGetAuthenticode prints.
//
// The file is hostile input: every offset and length is checked against the file's size,
// only the headers and the first certificate entry are read, and the entry is capped at
// kMaxCertificateEntrySize. No signature is verified; the report says what the file claims.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>

namespace corlith {

/// The largest certificate entry read; a larger one counts as no signature (kNoMatch).
inline constexpr std::uint32_t kMaxCertificateEntrySize = 16u << 20;

/// The stable codes a failed report prints in hexadecimal. They are the codes the
/// original platform gives for the same failures, so logs read the same on both.
inline constexpr std::uint32_t kFileNotFound = 0x2;      ///< the file (or a folder on its path) is missing
inline constexpr std::uint32_t kAccessDenied = 0x5;      ///< the file may not be read
inline constexpr std::uint32_t kFileError = 0x80092003;  ///< reading failed otherwise (CRYPT_E_FILE_ERROR)
inline constexpr std::uint32_t kNoMatch = 0x80092009;  ///< not a PE image, or no signature (CRYPT_E_NO_MATCH)
inline constexpr std::uint32_t kBadEncoding =
    0x8009310B;  ///< a signature part that does not decode (CRYPT_E_ASN1_BADTAG)
inline constexpr std::uint32_t kNoSigner =
    0x80091008;  ///< the signature holds no signer (CRYPT_E_INVALID_INDEX)
inline constexpr std::uint32_t kCertificateNotFound = 0x80092004;  ///< CRYPT_E_NOT_FOUND

/// Where a report ended early; each stage prints its own failure line.
enum class SignatureStage {
  None,                  ///< no failure: the report is complete
  Convert,               ///< "Unable to convert to unicode.\n" (a path holding a NUL character)
  Query,                 ///< "CryptQueryObject failed with %x\n": file, PE image or PKCS #7 envelope
  SignerInfo,            ///< "CryptMsgGetParam failed with %x\n": no signer in the signature
  OpusInfo,              ///< "CryptDecodeObject failed with %x\n": program name and links
  SignerCertificate,     ///< "CertFindCertificateInStore failed with %x\n"
  TimeStamp,             ///< "CryptDecodeObject failed with %x\n": counter-signature or token
  TimeStampCertificate,  ///< "CertFindCertificateInStore failed with %x\n"
};

/// How the signer's time-stamp is attached.
enum class TimeStampKind {
  None,
  CounterSignature,  ///< the legacy PKCS #9 counter-signature with its signing time
  Rfc3161,           ///< an RFC 3161 time-stamp token (beyond the original)
};

/// A certificate's details, each printed on a line of its own.
struct CertificateDetails {
  std::string serialNumber;  ///< upper-case hexadecimal, no separators ("0EB76A...")
  std::string issuerName;    ///< one line, RFC 2253 order, UTF-8 ("CN=Signer,O=Orvane")
  std::string subjectName;   ///< as issuerName
};

/// The publisher's description in the signer's authenticated attributes (SPC_SP_OPUS_INFO).
/// A link given as a moniker has no text and counts as absent.
struct OpusInfo {
  std::optional<std::string> programName;  ///< UTF-8, from either string choice
  std::optional<std::string> publisherLink;
  std::optional<std::string> moreInfoLink;
};

/// What ReadSignatureReport found, in report order, up to the stage that failed.
struct SignatureReport {
  SignatureStage failedStage = SignatureStage::None;
  std::uint32_t errorCode = 0;  ///< one of the k... codes above when failedStage is set
  OpusInfo opus;
  std::optional<CertificateDetails> signer;
  TimeStampKind timeStampKind = TimeStampKind::None;
  std::optional<CertificateDetails> timeStampSigner;
  /// The time-stamp's time in seconds since 1970 (UTC); set only with a decodable time.
  std::optional<std::int64_t> timeStampTime;

  bool Signed() const { return signer.has_value(); }
};

/// The report of the file at `path` (read through the platform layer).
SignatureReport ReadSignatureReport(const std::filesystem::path& path);
/// The same for an image already in memory.
SignatureReport ReadSignatureReport(std::span<const std::uint8_t> image);

/// The report's text, exactly as the utility prints it; the time-stamp date in local time.
std::string FormatSignatureReport(const SignatureReport& report);

/// Decodes the DER of an SPC_SP_OPUS_INFO value: SEQUENCE { [0] EXPLICIT SpcString
/// OPTIONAL, [1] EXPLICIT SpcLink OPTIONAL, [2] EXPLICIT SpcLink OPTIONAL (the publisher,
/// written by old signing tools) }. SpcString is [0] BMPString or [1] IA5String; SpcLink
/// is [0] IA5String URL, [1] moniker or [2] EXPLICIT SpcString file. False when malformed.
bool DecodeOpusInfo(std::span<const std::uint8_t> der, OpusInfo& info);

/// The local calendar time of a time-stamp (localtime_r); false when it has none.
bool LocalTimeStampDate(const SignatureReport& report, int& year, int& month, int& day, int& hour,
                        int& minute);

}  // namespace corlith
