#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <stop_token>
#include <string>

namespace Base {

struct DownloadRequest {
    std::string address; // HTTPS only, and so are the addresses that it may redirect to.
    std::size_t largest = 8 * 1024 * 1024; // Bytes of body.
    std::chrono::milliseconds time { 20'000 }; // For everything together.
    std::filesystem::path authorities; // Certificates (PEM) to trust instead of the system's.
    std::stop_token cancel;
};

struct DownloadResult {
    enum class End { done, refused, tooLarge, tookTooLong, cancelled, failed };
    End end = End::failed;
    long status = 0; // HTTP's, once the server has answered: `refused` is an answer that isn't 200.
    std::string body; // Only of `done`; never a part of it.
    std::string reason; // Why it isn't `done`, to stand inside a sentence: “the server couldn’t be found”.
};

// Fetches one file: no cookies, no credentials, at most three redirects. It takes as long as it takes, so it
// is called off the main thread. In a library of its own, for programs that fetch something.
DownloadResult download(const DownloadRequest& request);

} // namespace Base
