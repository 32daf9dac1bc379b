#include <corlith/framework/Exceptions.h>
#include <corlith/framework/File.h>
#include <corlith/text/MD5Main.h>

#include <openssl/evp.h>

#include <array>
#include <cstddef>

namespace {

// The original keeps one provider handle for the process; so do we.
EVP_MD* g_provider = nullptr;

EVP_MD_CTX* Handle(const MD5Context* ctx) { return static_cast<EVP_MD_CTX*>(ctx->hHash); }

}  // namespace

int CMD5Main::CryptStartup() {
  if (g_provider) return 1;
  g_provider = EVP_MD_fetch(nullptr, "MD5", nullptr);
  return g_provider ? 1 : 0;
}

void CMD5Main::CryptCleanup() {
  EVP_MD_free(g_provider);
  g_provider = nullptr;
}

void CMD5Main::MD5Init(MD5Context* ctx) {
  if (!ctx || !g_provider) return;
  EVP_MD_CTX* hash = EVP_MD_CTX_new();
  if (hash && EVP_DigestInit_ex2(hash, g_provider, nullptr) != 1) {
    EVP_MD_CTX_free(hash);
    hash = nullptr;
  }
  ctx->hHash = hash;
}

void CMD5Main::MD5Update(MD5Context* ctx, const unsigned char* data, unsigned int length) {
  if (!ctx || !Handle(ctx) || (!data && length != 0)) return;
  EVP_DigestUpdate(Handle(ctx), data, length);
}

void CMD5Main::MD5Final(MD5Context* ctx) {
  if (!ctx || !Handle(ctx)) return;
  unsigned int length = sizeof ctx->digest;
  EVP_DigestFinal_ex(Handle(ctx), ctx->digest, &length);
  EVP_MD_CTX_free(Handle(ctx));
  ctx->hHash = nullptr;
}

int CMD5Main::CalculateMD5(const CString& strPath, CString& strMD5) {
  if (!CryptStartup()) return 0;
  CFile file;
  if (!file.Open(strPath, CFile::modeRead | CFile::typeBinary)) {
    CryptCleanup();
    return 0;
  }
  MD5Context ctx{};
  MD5Init(&ctx);
  std::array<unsigned char, 4096> block{};
  try {
    for (;;) {
      const UINT got = file.Read(block.data(), static_cast<UINT>(block.size()));
      MD5Update(&ctx, block.data(), got);
      if (got == 0) break;
    }
  } catch (const CFileException&) {
    // A read error (the path names a folder, say) is a failure, not a digest of the
    // bytes read so far.
    EVP_MD_CTX_free(Handle(&ctx));
    CryptCleanup();
    return 0;
  }
  MD5Final(&ctx);
  file.Close();
  static constexpr char kHex[] = "0123456789abcdef";
  char text[33];
  for (std::size_t i = 0; i < 16; ++i) {
    text[2 * i] = kHex[ctx.digest[i] >> 4];
    text[2 * i + 1] = kHex[ctx.digest[i] & 0x0F];
  }
  text[32] = '\0';
  CryptCleanup();
  strMD5 = text;
  return 1;
}
