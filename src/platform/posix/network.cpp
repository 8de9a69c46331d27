#include "platform/network.h"

#include <curl/curl.h>
#include <pthread.h>

#include <csignal>
#include <cstddef>
#include <ctime>
#include <memory>

namespace rastrel {

namespace {

struct CurlCloser {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};

/// Keeps the signal of a broken connection, which would end the process, from this thread.
class PipeSignalBlock {
  public:
    PipeSignalBlock() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        was_pending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &old_mask_);
    }
    PipeSignalBlock(const PipeSignalBlock&) = delete;
    PipeSignalBlock& operator=(const PipeSignalBlock&) = delete;
    ~PipeSignalBlock() {
        const timespec at_once = {};
        if (!was_pending_) sigtimedwait(&pipe_, nullptr, &at_once);
        pthread_sigmask(SIG_SETMASK, &old_mask_, nullptr);
    }

  private:
    sigset_t pipe_ = {};
    sigset_t old_mask_ = {};
    bool was_pending_ = false;
};

struct Transfer {
    CURL* curl;
    const BodyReceiver& receive;
};

/// Called by libcurl for every part of the body; any other number than what came ends the transfer.
std::size_t TakePart(char* bytes, std::size_t unit, std::size_t count, void* user) {
    const auto& transfer = *static_cast<const Transfer*>(user);
    try {
        const char* type = nullptr;
        curl_easy_getinfo(transfer.curl, CURLINFO_CONTENT_TYPE, &type);
        const std::size_t size = unit * count;
        const std::span part(reinterpret_cast<const std::uint8_t*>(bytes), size);
        return transfer.receive(type != nullptr ? type : "", part) ? size : size + 1;
    } catch (...) {
        // Nothing may be thrown through a C library.
        return unit * count + 1;
    }
}

long Milliseconds(std::chrono::milliseconds time) {
    return static_cast<long>(time.count());
}

}  // namespace

bool Fetch(const std::string& address, const BodyReceiver& receive) {
    static const bool ready = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    if (!ready) return false;
    const PipeSignalBlock no_signal;
    const std::unique_ptr<CURL, CurlCloser> owner(curl_easy_init());
    CURL* curl = owner.get();
    if (curl == nullptr) return false;
    Transfer transfer{curl, receive};
    const auto set = [curl](auto option, auto value) {
        return curl_easy_setopt(curl, option, value) == CURLE_OK;
    };
    constexpr long kYes = 1;
    constexpr const char* kSchemes = "http,https";
    return set(CURLOPT_URL, address.c_str()) && set(CURLOPT_PROTOCOLS_STR, kSchemes) &&
           set(CURLOPT_REDIR_PROTOCOLS_STR, kSchemes) && set(CURLOPT_FOLLOWLOCATION, kYes) &&
           set(CURLOPT_MAXREDIRS, long{kMostRedirections}) && set(CURLOPT_FAILONERROR, kYes) &&
           set(CURLOPT_NOSIGNAL, kYes) &&
           set(CURLOPT_CONNECTTIMEOUT_MS, Milliseconds(kMostConnectTime)) &&
           set(CURLOPT_TIMEOUT_MS, Milliseconds(kMostFetchTime)) &&
           set(CURLOPT_WRITEFUNCTION, TakePart) && set(CURLOPT_WRITEDATA, &transfer) &&
           curl_easy_perform(curl) == CURLE_OK;
}

}  // namespace rastrel
