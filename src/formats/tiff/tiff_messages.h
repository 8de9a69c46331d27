#pragma once

#include <string>
#include <string_view>

namespace rastrel {

/// What libtiff and the classes around it have to say about one file. It goes to the end of
/// "RASTER.LOG" in the current folder when the work on the file ends; a log that cannot be written
/// is done without.
class TiffMessages {
  public:
    TiffMessages() = default;
    TiffMessages(const TiffMessages&) = delete;
    TiffMessages& operator=(const TiffMessages&) = delete;
    ~TiffMessages();

    /// An empty module: the text alone.
    void Error(std::string_view module, std::string_view text) noexcept;
    void Warning(std::string_view module, std::string_view text) noexcept;
    void Plain(std::string_view text) noexcept;

  private:
    void Add(std::string_view head, std::string_view prefix, std::string_view module,
             std::string_view text, std::string_view tail) noexcept;

    std::string text_;
    int count_ = 0;
};

}  // namespace rastrel
