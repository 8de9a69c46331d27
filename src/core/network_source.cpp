#include "core/network_source.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "core/ascii.h"
#include "core/byte_source.h"
#include "core/format_table.h"
#include "platform/network.h"

namespace rastrel {

namespace {

constexpr std::string_view kFileScheme = "file://";

bool HasScheme(std::string_view name, std::string_view scheme) {
    return name.size() > scheme.size() && EqualsInAnyCase(name.substr(0, scheme.size()), scheme);
}

struct ContentType {
    std::string_view name;
    std::string_view extension;
};

/// As registered, and as servers say instead.
constexpr std::array kContentTypes = {
    ContentType{"image/bmp", "bmp"},          ContentType{"image/x-bmp", "bmp"},
    ContentType{"image/x-ms-bmp", "bmp"},     ContentType{"image/x-windows-bmp", "bmp"},
    ContentType{"image/jpeg", "jpg"},         ContentType{"image/jpg", "jpg"},
    ContentType{"image/pjpeg", "jpg"},        ContentType{"image/gif", "gif"},
    ContentType{"image/png", "png"},          ContentType{"image/x-png", "png"},
    ContentType{"image/tiff", "tif"},         ContentType{"image/tiff-fx", "tif"},
    ContentType{"image/jp2", "jp2"},          ContentType{"image/jpx", "jp2"},
    ContentType{"image/x-mrsid-image", "sid"}};

/// Parameters, behind a semicolon, do not matter.
std::string_view ExtensionOfContentType(std::string_view type) {
    type = type.substr(0, type.find(';'));
    type = type.substr(0, type.find_last_not_of(" \t") + 1);
    const auto* found = std::find_if(
        kContentTypes.begin(), kContentTypes.end(),
        [type](const ContentType& known) { return EqualsInAnyCase(type, known.name); });
    return found != kContentTypes.end() ? found->extension : std::string_view();
}

std::string_view ExtensionOfType(int type) {
    const FormatRow* format = FindFormat(type);
    return format != nullptr ? format->extensions.front() : std::string_view();
}

/// Of its path: neither host, query nor fragment have extensions.
std::string_view ExtensionOfAddress(std::string_view address) {
    address = address.substr(0, address.find_first_of("?#"));
    const std::size_t path = address.find('/', address.find("://") + 3);
    if (path == std::string_view::npos) return {};
    return ExtensionOfType(ImageTypeFromName(address.substr(address.rfind('/'))));
}

/// Gathers a body in a temporary file, and names it when all has come.
class LocalCopy {
  public:
    explicit LocalCopy(std::string_view address)
        : address_(address), file_(TemporaryFile::Create("tmp")) {
        if (file_) out_ = ReplacingFile::CreateInPlace(file_->Path());
    }

    [[nodiscard]] bool Receive(std::span<const std::uint8_t> part) {
        received_ += part.size();
        return received_ <= kMostFetchedBytes && out_ && out_->Write(part);
    }
    /// The file; null when nothing came or it cannot be kept.
    [[nodiscard]] std::unique_ptr<TemporaryFile> Finish(std::string_view content_type) {
        if (received_ == 0 || !out_->Commit()) return nullptr;
        out_.reset();
        auto named = TemporaryFile::Create(Extension(content_type));
        return named && named->TakeContentOf(*file_) ? std::move(named) : nullptr;
    }

  private:
    [[nodiscard]] std::string_view Extension(std::string_view content_type) const {
        std::string_view extension = ExtensionOfContentType(content_type);
        if (extension.empty()) extension = ExtensionOfAddress(address_);
        if (!extension.empty()) return extension;
        const auto source = FileSource::Open(file_->Path());
        return source ? ExtensionOfType(ImageTypeFromContent(*source)) : extension;
    }

    std::string_view address_;
    std::uint64_t received_ = 0;
    std::unique_ptr<TemporaryFile> file_;
    std::unique_ptr<ReplacingFile> out_;
};

std::unique_ptr<TemporaryFile> FetchFromServer(const std::string& address) {
    LocalCopy copy(address);
    std::string stated_type;
    const bool whole = Fetch(address, [&](std::string_view type, auto part) {
        stated_type = type;
        return copy.Receive(part);
    });
    return whole ? copy.Finish(stated_type) : nullptr;
}

/// "%41" as "A"; none for other uses of the percent sign and for zero bytes.
std::optional<std::string> DecodePercents(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        unsigned value = 0;
        const std::string_view digits = text.substr(i + 1, 2);
        const auto parsed =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (digits.size() < 2 || parsed.ptr != digits.data() + 2 || value == 0) return std::nullopt;
        decoded += static_cast<char>(value);
        i += 2;
    }
    return decoded;
}

/// The path that a "file://" address stands for; none when it lies on another machine.
std::optional<std::string> PathOfFileAddress(std::string_view address) {
    address.remove_prefix(kFileScheme.size());
    constexpr std::string_view kThisMachine = "localhost";
    if (EqualsInAnyCase(address.substr(0, kThisMachine.size()), kThisMachine))
        address.remove_prefix(kThisMachine.size());
    const auto starts_with_drive = [](std::string_view path) {
        return path.size() > 1 && path[1] == ':';
    };
    // "/C:/maps" is the way to write a drive, "C:/maps" a common one.
    if (starts_with_drive(address.substr(std::min<std::size_t>(1, address.size()))))
        address.remove_prefix(1);
    else if (!starts_with_drive(address) && !address.starts_with('/'))
        return std::nullopt;
    return address.starts_with("//") ? std::nullopt : DecodePercents(address);
}

std::unique_ptr<TemporaryFile> CopyFile(const std::string& address) {
    const auto path = PathOfFileAddress(address);
    const auto source = path ? FileSource::Open(*path) : nullptr;
    if (!source) return nullptr;
    LocalCopy copy(address);
    std::vector<std::uint8_t> buffer(std::size_t{64} << 10);
    while (const std::size_t got = source->Read(buffer)) {
        if (!copy.Receive(std::span(buffer).first(got))) return nullptr;
    }
    return copy.Finish({});
}

}  // namespace

bool IsAddress(std::string_view name) {
    return HasScheme(name, "http://") || HasScheme(name, "https://") ||
           HasScheme(name, kFileScheme);
}

std::unique_ptr<TemporaryFile> FetchLocalCopy(const std::string& address) {
    if (!IsAddress(address)) return nullptr;
    return HasScheme(address, kFileScheme) ? CopyFile(address) : FetchFromServer(address);
}

}  // namespace rastrel
