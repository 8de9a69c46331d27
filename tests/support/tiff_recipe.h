#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "support/images.h"

namespace rastrel_test {

// Tags, by their names in TIFF 6.0.
constexpr int kImageWidth = 256;
constexpr int kImageLength = 257;
constexpr int kBitsPerSample = 258;
constexpr int kCompression = 259;
constexpr int kPhotometric = 262;
constexpr int kImageDescription = 270;
constexpr int kStripOffsets = 273;
constexpr int kOrientation = 274;
constexpr int kSamplesPerPixel = 277;
constexpr int kRowsPerStrip = 278;
constexpr int kStripByteCounts = 279;
constexpr int kXResolution = 282;
constexpr int kYResolution = 283;
constexpr int kPlanarConfiguration = 284;
constexpr int kT4Options = 292;
constexpr int kResolutionUnit = 296;
constexpr int kColorMap = 320;
constexpr int kTileWidth = 322;
constexpr int kTileLength = 323;
constexpr int kTileOffsets = 324;
constexpr int kTileByteCounts = 325;
constexpr int kSampleFormat = 339;
constexpr int kModelPixelScale = 33550;
constexpr int kModelTiepoint = 33922;
constexpr int kModelTransformation = 34264;
constexpr int kGeoKeyDirectory = 34735;

/// A TIFF file's tags and the bytes of its strips or tiles, to be put together or spoilt.
struct TiffRecipe {
    /// An image of one strip; further tags and strips are added by the test.
    TiffRecipe(int width, int height, int bits, int samples, int photometric, Bytes strip);

    /// 16-bit values of a tag; a second call replaces them, no values remove it.
    TiffRecipe& Set(int tag, std::vector<std::uint32_t> values);
    TiffRecipe& SetDoubles(int tag, const std::vector<double>& values);
    TiffRecipe& SetText(int tag, const char* text);
    /// Tiles in place of strips.
    TiffRecipe& Tiled(int width, int height);
    [[nodiscard]] Bytes File() const;

    std::vector<Bytes> chunks;
    /// Where the file says that all its chunks are, in place of the truth.
    std::optional<std::uint32_t> stated_offset;

  private:
    struct Field {
        std::uint16_t type = 0;
        std::uint32_t count = 0;
        Bytes bytes;
    };
    std::map<int, Field> fields_;
    bool tiled_ = false;
};

/// The fields of a little-endian file's first directory, in the file's order: tags and their
/// values, rational ones as whole numbers.
using TiffTags = std::vector<std::pair<int, std::vector<std::uint32_t>>>;
[[nodiscard]] TiffTags TagsOf(const Bytes& file);
/// The values of one; empty when the file does not have it.
[[nodiscard]] std::vector<std::uint32_t> TagOf(const Bytes& file, int tag);

/// Runs in a folder of its own, and knows what the log there says.
class LogFolder {
  public:
    LogFolder();
    LogFolder(const LogFolder&) = delete;
    LogFolder& operator=(const LogFolder&) = delete;
    ~LogFolder();
    /// What "RASTER.LOG" says since the last call.
    [[nodiscard]] std::string NewText();
    [[nodiscard]] const TestFolder& Folder() const { return folder_; }

  private:
    TestFolder folder_;
    std::string old_folder_;
    std::size_t seen_ = 0;
};

}  // namespace rastrel_test
