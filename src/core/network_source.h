#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/temporary_file.h"

namespace rastrel {

/// No more is fetched from one address.
constexpr std::uint64_t kMostFetchedBytes = std::uint64_t{256} << 20;

/// Whether a name is an address, by its scheme in any case: "http://", "https://" or "file://".
[[nodiscard]] bool IsAddress(std::string_view name);

/// A local copy of what stands at an address, with the extension of a format: the one of the
/// content type that the server states, else the address's own, else the one that the content
/// shows. Null for names that are no addresses, on any failure, and for more than
/// kMostFetchedBytes.
///
/// "file://" takes absolute paths of this machine, percent signs decoded (RFC 8089).
[[nodiscard]] std::unique_ptr<TemporaryFile> FetchLocalCopy(const std::string& address);

}  // namespace rastrel
