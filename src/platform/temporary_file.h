#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace rastrel {

/// A file of its own in the system's folder for temporary files, which ends with its object. Its
/// name begins with "TMP".
class TemporaryFile {
  public:
    /// An empty file, closed, with an extension (without the point). Null when there is no such
    /// folder, its name has more than 260 characters, or it takes no file.
    [[nodiscard]] static std::unique_ptr<TemporaryFile> Create(std::string_view extension);
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    /// Puts another's content, and that file itself, in the place of this one; the other's is gone.
    [[nodiscard]] bool TakeContentOf(TemporaryFile& other);
    [[nodiscard]] const std::string& Path() const { return path_; }

  private:
    explicit TemporaryFile(std::string path) : path_(std::move(path)) {}

    std::string path_;
};

}  // namespace rastrel
