// The HTTP form upload beside libcurl alone, each posting the same bytes to the same
// loopback server, which reads every request to its end and discards it: KTUtility::
// GetComplate of a 64 MiB multipart form (two small fields and one 64 MiB field without
// "%"), and libcurl posting that very body, built beforehand, with the same headers.
#include <corlith/environment/Utility.h>
#include <corlith/test/LoopbackServer.h>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <string>

namespace {

using corlith::test::LoopbackReply;
using corlith::test::LoopbackServer;

constexpr std::size_t kFieldBytes = 64U << 20;
constexpr const char* kBoundary = "FFF3F395A90B452BB8BEDC878DDBD152";

// The server and the form, made once per run.
struct Fixture {
  static Fixture& Get() {
    static Fixture fixture;
    return fixture;
  }

  LoopbackServer server{LoopbackReply{LoopbackReply::Mode::Answer, 200, "", false}};
  CStringArray names;
  CStringArray values;
  std::string body;  // the bytes GetComplate sends, for the peer

 private:
  Fixture() {
    std::string big(kFieldBytes, '\0');
    for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>('A' + i % 53 % 26);
    const char* fieldNames[] = {"project", "comment", "file"};
    const std::string fieldValues[] = {"bench", "64 MiB of text", std::move(big)};
    for (int i = 0; i < 3; ++i) {
      names.Add(CString(fieldNames[i]));
      values.Add(CString(fieldValues[i]));
      body += KTUtility::GetInstance()->MakeResultFileData(fieldNames[i], kBoundary, values[i]).str();
    }
    body += std::string("--") + kBoundary + "--\r\n\r\n";
  }
};

void Upload(benchmark::State& state) {
  Fixture& fixture = Fixture::Get();
  const std::size_t before = fixture.server.RequestCount();
  for (auto _ : state) {
    CString url(fixture.server.Url("/upload"));
    if (KTUtility::GetInstance()->GetComplate(url, fixture.names, fixture.values, 1) != 1) {
      state.SkipWithError("the upload failed");
      return;
    }
  }
  if (fixture.server.RequestCount() - before != static_cast<std::size_t>(state.iterations())) {
    state.SkipWithError("the server missed requests");
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fixture.body.size()));
}

struct EasyDeleter {
  void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};
struct ListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

std::size_t Discard(char*, std::size_t size, std::size_t count, void*) { return size * count; }

void UploadPeer(benchmark::State& state) {
  Fixture& fixture = Fixture::Get();
  const std::string url = fixture.server.Url("/upload");
  for (auto _ : state) {
    const std::unique_ptr<CURL, EasyDeleter> curl(curl_easy_init());
    curl_slist* list = curl_slist_append(
        nullptr, "Content-Type: multipart/form-data; boundary=FFF3F395A90B452BB8BEDC878DDBD152");
    list = curl_slist_append(list, "Expect:");
    list = curl_slist_append(list, "Accept:");
    const std::unique_ptr<curl_slist, ListDeleter> headers(list);
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl.get(), CURLOPT_USERAGENT, "HTTPFILE");
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDS, fixture.body.data());
    curl_easy_setopt(curl.get(), CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(fixture.body.size()));
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &Discard);
    if (curl_easy_perform(curl.get()) != CURLE_OK) {
      state.SkipWithError("libcurl's post failed");
      return;
    }
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fixture.body.size()));
}

}  // namespace

BENCHMARK(Upload)->Name("GetComplate/64MiB_form")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(UploadPeer)
    ->Name("GetComplate/64MiB_form/real_time/peer:curl POSTFIELDS")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
