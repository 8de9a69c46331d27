#include "core/line_reader.h"

namespace rastrel {

std::optional<LinePiece> LineReader::NextPiece() {
    const bool starts_line = !in_line_;
    std::size_t length = 0;
    while (length < piece_.size() && Refill()) {
        const char c = static_cast<char>(buffer_[at_++]);
        piece_[length++] = c;
        in_line_ = c != '\n';
        if (!in_line_) break;
    }
    if (length == 0) return std::nullopt;
    return LinePiece{{piece_.data(), length}, starts_line};
}

std::optional<std::string_view> LineReader::NextLine() {
    auto piece = NextPiece();
    while (piece && !piece->starts_line)
        piece = NextPiece();
    if (!piece) return std::nullopt;
    return piece->text;
}

bool LineReader::Refill() {
    if (at_ < end_) return true;
    at_ = 0;
    end_ = source_.Read(buffer_);
    return end_ > 0;
}

}  // namespace rastrel
