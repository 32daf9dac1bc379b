// libcurl's start and the header list.
#include <corlith/environment/Curl.h>

namespace corlith {

CurlEasy MakeCurlEasy() {
  // A function-local static starts libcurl exactly once, also when the first transfers
  // begin on several threads at the same time.
  static const bool started = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
  if (!started) return nullptr;
  return CurlEasy(curl_easy_init());
}

bool AppendCurlHeader(CurlList& list, const char* line) {
  curl_slist* const longer = curl_slist_append(list.get(), line);
  if (longer == nullptr) return false;
  // On success the list's head stays the same, unless the list was empty.
  (void)list.release();
  list.reset(longer);
  return true;
}

}  // namespace corlith
