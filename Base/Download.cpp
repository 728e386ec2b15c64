#include "Base/Download.h"

#include <curl/curl.h>
#include <fmt/format.h>

#include <memory>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace Base {

namespace {

using End = DownloadResult::End;

constexpr std::size_t largestHeaders = 256 * 1024; // Of all answers together.
constexpr long mostRedirects = 3;

using Transfer = std::unique_ptr<CURL, decltype(&curl_easy_cleanup)>;
using Transfers = std::unique_ptr<CURLM, decltype(&curl_multi_cleanup)>;

struct Received {
    std::string body;
    std::size_t headers = 0, largest = 0;
    bool isTooLarge = false;
};

// Taking fewer bytes than were offered ends the transfer.
std::size_t takeBody(const char* bytes, std::size_t, std::size_t count, void* target)
{
    auto& received = *static_cast<Received*>(target);
    if (count > received.largest - received.body.size()) {
        received.isTooLarge = true;
        return 0;
    }
    received.body.append(bytes, count);
    return count;
}

std::size_t takeHeader(const char*, std::size_t, std::size_t count, void* target)
{
    auto& received = *static_cast<Received*>(target);
    received.headers += count;
    received.isTooLarge = received.headers > largestHeaders;
    return received.isTooLarge ? 0 : count;
}

// An option that isn't taken mustn't pass: the transfer could be less safe than it is meant to be.
template <typename Value> void set(CURL* transfer, CURLoption option, Value value)
{
    if (const auto code = curl_easy_setopt(transfer, option, value); code != CURLE_OK)
        throw std::runtime_error(curl_easy_strerror(code));
}

void prepare(CURL* transfer, const DownloadRequest& request, Received& received)
{
    set(transfer, CURLOPT_URL, request.address.c_str());
    set(transfer, CURLOPT_PROTOCOLS_STR, "https");
    set(transfer, CURLOPT_REDIR_PROTOCOLS_STR, "https");
    set(transfer, CURLOPT_FOLLOWLOCATION, 1L);
    set(transfer, CURLOPT_MAXREDIRS, mostRedirects);
    set(transfer, CURLOPT_SSLVERSION, long { CURL_SSLVERSION_TLSv1_2 });
    set(transfer, CURLOPT_HTTP_VERSION, long { CURL_HTTP_VERSION_1_1 });
    set(transfer, CURLOPT_USERAGENT, "Pallisande");
    set(transfer, CURLOPT_TIMEOUT_MS, static_cast<long>(request.time.count()));
    set(transfer, CURLOPT_NOSIGNAL, 1L);
    set(transfer, CURLOPT_QUICK_EXIT, 1L); // Else the end would wait for a name server that doesn't answer.
    if (!request.authorities.empty()) {
        set(transfer, CURLOPT_CAINFO, request.authorities.c_str());
        set(transfer, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    set(transfer, CURLOPT_WRITEFUNCTION, &takeBody);
    set(transfer, CURLOPT_WRITEDATA, &received);
    set(transfer, CURLOPT_HEADERFUNCTION, &takeHeader);
    set(transfer, CURLOPT_HEADERDATA, &received);
}

// Until the transfer has ended or a stop is asked for; nothing in the second case.
std::optional<CURLcode> run(CURLM* transfers, CURL* transfer, const std::stop_token& cancel)
{
    const std::stop_callback wake(cancel, [transfers] { curl_multi_wakeup(transfers); });
    curl_multi_add_handle(transfers, transfer);
    std::optional<CURLcode> code;
    int running = 1;
    while (!code && !cancel.stop_requested()) {
        if (curl_multi_perform(transfers, &running) != CURLM_OK)
            code = CURLE_FAILED_INIT;
        int left = 0;
        while (const auto* message = curl_multi_info_read(transfers, &left)) {
            if (message->msg == CURLMSG_DONE)
                code = message->data.result;
        }
        if (!code && curl_multi_poll(transfers, nullptr, 0, 1000, nullptr) != CURLM_OK)
            code = CURLE_FAILED_INIT;
    }
    curl_multi_remove_handle(transfers, transfer);
    return code;
}

std::string reasonOf(CURLcode code, std::string_view details)
{
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return "the server couldn’t be found";
    case CURLE_COULDNT_CONNECT:
        return "the server couldn’t be reached";
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
        return "the server couldn’t prove that it is the right one";
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
        return "the address isn’t an HTTPS address";
    case CURLE_TOO_MANY_REDIRECTS:
        return "the server redirects too often";
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_GOT_NOTHING:
        return "the connection broke off";
    default:
        return fmt::format("the connection failed ({})", details);
    }
}

DownloadResult finished(CURL* transfer, CURLcode code, Received received)
{
    DownloadResult result;
    curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &result.status);
    if (received.isTooLarge) {
        result.end = End::tooLarge;
        result.reason = "the file is larger than expected";
    } else if (code == CURLE_OPERATION_TIMEDOUT) {
        result.end = End::tookTooLong;
        result.reason = "it took too long";
    } else if (code != CURLE_OK) {
        result.reason = reasonOf(code, curl_easy_strerror(code));
    } else if (result.status != 200) {
        result.end = End::refused;
        result.reason = fmt::format("the server answered with an error ({})", result.status);
    } else {
        result.end = End::done;
        result.body = std::move(received.body);
    }
    return result;
}

} // namespace

DownloadResult download(const DownloadRequest& request)
{
    static const CURLcode ready = curl_global_init(CURL_GLOBAL_DEFAULT);
    const Transfer transfer(ready == CURLE_OK ? curl_easy_init() : nullptr, &curl_easy_cleanup);
    const Transfers transfers(transfer ? curl_multi_init() : nullptr, &curl_multi_cleanup);
    if (!transfers)
        return { .reason = "this computer can’t make connections" };
    Received received { .largest = request.largest };
    try {
        prepare(transfer.get(), request, received);
    } catch (const std::runtime_error& error) {
        return { .reason = reasonOf(CURLE_FAILED_INIT, error.what()) };
    }
    const auto code = run(transfers.get(), transfer.get(), request.cancel);
    if (!code)
        return { .end = End::cancelled, .reason = "it was cancelled" };
    return finished(transfer.get(), *code, std::move(received));
}

} // namespace Base
