#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace rastrel {

constexpr std::chrono::seconds kMostConnectTime{10};
/// From the first connection to the last byte, redirections included.
constexpr std::chrono::seconds kMostFetchTime{30};
constexpr int kMostRedirections = 5;

/// Takes a part of an answer's body, in order, and the type that the answer states for its content,
/// as it stands there, or nothing. False ends the transfer.
using BodyReceiver =
    std::function<bool(std::string_view content_type, std::span<const std::uint8_t> part)>;

/// Fetches what stands at an "http://" or "https://" address, with one GET and at most
/// kMostRedirections more to which it is redirected. True when an answer of success came whole
/// within the time. The receiver gets nothing of other answers.
[[nodiscard]] bool Fetch(const std::string& address, const BodyReceiver& receive);

}  // namespace rastrel
