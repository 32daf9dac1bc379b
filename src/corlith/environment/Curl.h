// libcurl for the HTTP members of KTUtility: owners for the library's handles (move-only,
// released in their destructors) and the library's one start per process. Internal to
// the environment layer.
#pragma once

#include <curl/curl.h>

#include <memory>

namespace corlith {

struct CurlEasyDeleter {
  void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
};
struct CurlListDeleter {
  void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
};
struct CurlUrlDeleter {
  void operator()(CURLU* url) const noexcept { curl_url_cleanup(url); }
};

/// One transfer handle.
using CurlEasy = std::unique_ptr<CURL, CurlEasyDeleter>;
/// A header list.
using CurlList = std::unique_ptr<curl_slist, CurlListDeleter>;
/// A parsed URL.
using CurlUrl = std::unique_ptr<CURLU, CurlUrlDeleter>;

/// A new transfer handle, starting libcurl first when this is the process's first one;
/// null when libcurl could not start or no handle could be made. libcurl is never shut
/// down again: the host may use it elsewhere, and shutting it down is not thread-safe.
CurlEasy MakeCurlEasy();

/// Appends one header line; false (the list unchanged) when memory ran out.
bool AppendCurlHeader(CurlList& list, const char* line);

}  // namespace corlith
