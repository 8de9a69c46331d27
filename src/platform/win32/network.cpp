#include "platform/network.h"

#include <windows.h>
// After windows.h, which it needs.
#include <wininet.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstddef>
#include <optional>

namespace rastrel {

namespace {

using Clock = std::chrono::steady_clock;

/// What belongs to one fetch, closed when it ends or when its time is over, whichever is first:
/// closing the session ends whatever call waits on one of its connections.
class Session {
  public:
    Session()
        : handle_(InternetOpenA("Rastrel", INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0)) {
        if (handle_ == nullptr) return;
        SetTimeout(INTERNET_OPTION_CONNECT_TIMEOUT, kMostConnectTime);
        SetTimeout(INTERNET_OPTION_SEND_TIMEOUT, kMostFetchTime);
        SetTimeout(INTERNET_OPTION_RECEIVE_TIMEOUT, kMostFetchTime);
        if (!CreateTimerQueueTimer(&timer_, nullptr, &TimeIsOver, this,
                                   Milliseconds(kMostFetchTime), 0, WT_EXECUTEONLYONCE))
            Close();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session() {
        // Waits for the timer's call, should it run right now.
        if (timer_ != nullptr) DeleteTimerQueueTimer(nullptr, timer_, INVALID_HANDLE_VALUE);
        Close();
    }

    /// Null without a session and after its time.
    [[nodiscard]] HINTERNET Handle() const { return handle_; }

  private:
    static DWORD Milliseconds(std::chrono::milliseconds time) {
        return static_cast<DWORD>(time.count());
    }
    static VOID CALLBACK TimeIsOver(PVOID session, BOOLEAN /*fired*/) {
        static_cast<Session*>(session)->Close();
    }
    void SetTimeout(DWORD option, std::chrono::milliseconds time) {
        DWORD value = Milliseconds(time);
        InternetSetOptionA(handle_, option, &value, sizeof(value));
    }
    void Close() {
        HINTERNET handle = handle_.exchange(nullptr);
        if (handle != nullptr) InternetCloseHandle(handle);
    }

    std::atomic<HINTERNET> handle_;
    HANDLE timer_ = nullptr;
};

/// The answer to one request.
class Answer {
  public:
    Answer(const Session& session, const std::string& address) {
        constexpr DWORD kFlags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_COOKIES |
                                 INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_RELOAD |
                                 INTERNET_FLAG_NO_UI | INTERNET_FLAG_PRAGMA_NOCACHE;
        if (HINTERNET handle = session.Handle())
            handle_ = InternetOpenUrlA(handle, address.c_str(), nullptr, 0, kFlags, 0);
    }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() {
        if (handle_ != nullptr) InternetCloseHandle(handle_);
    }

    [[nodiscard]] HINTERNET Handle() const { return handle_; }
    /// A header of the answer, or its status; none when it has none.
    [[nodiscard]] std::optional<std::string> Header(DWORD which) const {
        std::array<char, 4096> text = {};
        auto length = static_cast<DWORD>(text.size());
        if (handle_ == nullptr || !HttpQueryInfoA(handle_, which, text.data(), &length, nullptr))
            return std::nullopt;
        return std::string(text.data(), length);
    }
    [[nodiscard]] int Status() const {
        const auto text = Header(HTTP_QUERY_STATUS_CODE);
        int status = 0;
        if (text) std::from_chars(text->data(), text->data() + text->size(), status);
        return status;
    }

  private:
    HINTERNET handle_ = nullptr;
};

bool IsRedirection(int status) {
    constexpr std::array kRedirections = {301, 302, 303, 307, 308};
    return std::find(kRedirections.begin(), kRedirections.end(), status) != kRedirections.end();
}

/// Where an answer at an address redirects to; none when that is no address of the web.
std::optional<std::string> RedirectedTo(const Answer& answer, const std::string& address) {
    const auto location = answer.Header(HTTP_QUERY_LOCATION);
    if (!location) return std::nullopt;
    std::array<char, INTERNET_MAX_URL_LENGTH> whole = {};
    auto length = static_cast<DWORD>(whole.size());
    if (!InternetCombineUrlA(address.c_str(), location->c_str(), whole.data(), &length,
                             ICU_NO_ENCODE))
        return std::nullopt;
    URL_COMPONENTSA parts = {};
    parts.dwStructSize = sizeof(parts);
    if (!InternetCrackUrlA(whole.data(), length, 0, &parts) ||
        (parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS))
        return std::nullopt;
    return std::string(whole.data(), length);
}

/// Hands the body on. False when it is cut short.
bool ReceiveBody(const Answer& answer, const BodyReceiver& receive, Clock::time_point end) {
    const std::string type = answer.Header(HTTP_QUERY_CONTENT_TYPE).value_or("");
    std::uint64_t received = 0;
    std::array<std::uint8_t, std::size_t{16} << 10> buffer;
    for (;;) {
        // A read alone would wait until the buffer is full.
        DWORD available = 0;
        DWORD got = 0;
        if (!InternetQueryDataAvailable(answer.Handle(), &available, 0, 0)) return false;
        const auto ask = std::clamp<DWORD>(available, 1, static_cast<DWORD>(buffer.size()));
        if (!InternetReadFile(answer.Handle(), buffer.data(), ask, &got)) return false;
        if (got == 0) break;
        received += got;
        if (!receive(type, std::span(buffer).first(got)) || Clock::now() > end) return false;
    }
    // A connection that closes early looks like the end.
    const auto text = answer.Header(HTTP_QUERY_CONTENT_LENGTH);
    std::uint64_t stated = received;
    if (text) std::from_chars(text->data(), text->data() + text->size(), stated);
    return stated == received;
}

}  // namespace

bool Fetch(const std::string& address, const BodyReceiver& receive) {
    const Clock::time_point end = Clock::now() + kMostFetchTime;
    const Session session;
    std::string at = address;
    for (int i = 0; i <= kMostRedirections; ++i) {
        const Answer answer(session, at);
        const int status = answer.Status();
        if (status >= 200 && status < 300) return ReceiveBody(answer, receive, end);
        if (!IsRedirection(status)) return false;
        const auto next = RedirectedTo(answer, at);
        if (!next) return false;
        at = *next;
    }
    return false;
}

}  // namespace rastrel
