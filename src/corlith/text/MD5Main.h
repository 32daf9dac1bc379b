// CMD5Main: the MD5 digest of a file as 32 lower-case hexadecimal digits, computed with
// OpenSSL's EVP MD5. The "provider" is the process-wide fetched MD5 algorithm; callers
// that hash in pieces bracket MD5Init/MD5Update/MD5Final with CryptStartup/CryptCleanup.
#pragma once

#include <corlith/framework/String.h>

/// The state of one digest in progress.
struct MD5Context {
  /// The 16 digest bytes, filled by MD5Final.
  unsigned char digest[16];
  /// The EVP digest context (an EVP_MD_CTX*); null when none. MD5Final frees it.
  void* hHash;
};

class CMD5Main {
 public:
  CMD5Main() = default;
  virtual ~CMD5Main() = default;

  /// Takes the process-wide MD5 provider; 1 on success, 0 when OpenSSL offers no MD5
  /// (a FIPS-only configuration). Unguarded: hash from one thread at a time.
  static int CryptStartup();
  /// Releases the provider if one is held.
  static void CryptCleanup();
  /// Starts a digest; without a provider the handle stays null and the digest is never
  /// written (the caller zeroes the context first).
  static void MD5Init(MD5Context* ctx);
  /// Hashes the bytes; nothing happens without a handle.
  static void MD5Update(MD5Context* ctx, const unsigned char* data, unsigned int length);
  /// Writes the 16 digest bytes and frees the handle (which becomes null).
  static void MD5Final(MD5Context* ctx);

  /// The digest of the file, read in 4096-byte blocks, as 32 lower-case hexadecimal
  /// digits into strMD5; 1 on success. 0, with strMD5 unchanged, when no provider can be
  /// had or the file cannot be opened or read (a folder, say).
  static int CalculateMD5(const CString& strPath, CString& strMD5);
};
