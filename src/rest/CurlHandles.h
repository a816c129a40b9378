#pragma once

#include <curl/curl.h>

#include <memory>

// Owners for libcurl's easy handles and header lists.
struct CurlEasyCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct CurlSlistFree {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using CurlEasyPtr = std::unique_ptr<CURL, CurlEasyCleanup>;
using CurlSlistPtr = std::unique_ptr<curl_slist, CurlSlistFree>;
