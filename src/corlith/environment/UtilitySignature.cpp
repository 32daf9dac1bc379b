// The code-signature report member; the reading lives in Authenticode.cpp.
#include <corlith/environment/Authenticode.h>
#include <corlith/environment/Utility.h>

#include <cstdio>
#include <string>

void KTUtility::GetTimeStampSignerInfoByGetAuthenticode(const CString& filePath, int& year, int& month,
                                                        int& day) {
  const corlith::SignatureReport report = corlith::ReadSignatureReport(std::filesystem::path(filePath.str()));
  const std::string text = corlith::FormatSignatureReport(report);
  std::fwrite(text.data(), 1, text.size(), stdout);
  std::fflush(stdout);
  int hour = 0;
  int minute = 0;
  int y = 0;
  int m = 0;
  int d = 0;
  if (corlith::LocalTimeStampDate(report, y, m, d, hour, minute)) {
    year = y;
    month = m;
    day = d;
  }
}
