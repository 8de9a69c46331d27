#include "imaging/mosaic.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "imaging/image_colors.h"

namespace rastrel {

namespace {

bool IsSound(const Placement& place) {
    return std::isfinite(place.x) && std::isfinite(place.y) && std::isfinite(place.pixel_size) &&
           place.pixel_size > 0;
}

/// For the columns, or rows, of the target from first on, the source's.
struct Axis {
    int first = 0;
    std::vector<int> source;

    /// Whether each is the one behind the one before.
    [[nodiscard]] bool IsConsecutive() const {
        return source.back() - source.front() == static_cast<int>(source.size()) - 1;
    }
};

/// position(i) is the place of the i-th centre in source pixels, which grows with i; is_inside
/// tells whether it is within the clip.
template <class Position, class IsInside>
Axis MakeAxis(int target_length, int source_length, Position position, IsInside is_inside) {
    Axis axis;
    for (int i = 0; i < target_length; ++i) {
        const double at = std::floor(position(i));
        if (!(at >= 0 && at < source_length) || !is_inside(i)) {
            if (!axis.source.empty()) break;
            continue;
        }
        if (axis.source.empty()) axis.first = i;
        axis.source.push_back(static_cast<int>(at));
    }
    return axis;
}

Axis ColumnAxis(const RasterImage& target, const Placement& target_place, const RasterImage& source,
                const Placement& source_place, const std::optional<MapBox>& clip) {
    const auto center = [&](int i) { return target_place.x + (i + 0.5) * target_place.pixel_size; };
    return MakeAxis(
        target.Width(), source.Width(),
        [&](int i) { return (center(i) - source_place.x) / source_place.pixel_size; },
        [&](int i) { return !clip || (center(i) >= clip->x_min && center(i) < clip->x_max); });
}

Axis RowAxis(const RasterImage& target, const Placement& target_place, const RasterImage& source,
             const Placement& source_place, const std::optional<MapBox>& clip) {
    const auto center = [&](int i) { return target_place.y - (i + 0.5) * target_place.pixel_size; };
    return MakeAxis(
        target.Height(), source.Height(),
        [&](int i) { return (source_place.y - center(i)) / source_place.pixel_size; },
        [&](int i) { return !clip || (center(i) > clip->y_min && center(i) <= clip->y_max); });
}

/// Takes out of a row of source pixels those of an axis, three bytes each.
void Gather(const Axis& columns, std::span<const std::uint8_t> row, std::span<std::uint8_t> out) {
    const int first = columns.source.front();
    for (std::size_t i = 0; i < columns.source.size(); ++i) {
        const auto from = static_cast<std::size_t>(columns.source[i] - first);
        std::copy_n(row.data() + 3 * from, 3, out.data() + 3 * i);
    }
}

/// The rows of one lay, and which of their pixels are written.
class Layer {
  public:
    Layer(const RasterImage& source, const Axis& columns, const MosaicLimits& limits)
        : reader_(source),
          columns_(columns),
          limits_(limits),
          gathers_(!columns.IsConsecutive()),
          span_(static_cast<std::size_t>(columns.source.back() - columns.source.front()) + 1),
          source_row_(3 * span_),
          has_color_(span_),
          row_(gathers_ ? 3 * columns.source.size() : 0),
          writes_(gathers_ ? columns.source.size() : 0) {
        if (limits.mask != nullptr) mask_reader_.emplace(*limits.mask);
    }

    /// Reads what a row of the source gives to the target.
    void Read(int source_y) {
        const int x = columns_.source.front();
        reader_.Read(x, source_y, source_row_, has_color_);
        if (mask_reader_) DropMasked(x, source_y);
        if (limits_.key) DropKey();
        if (!gathers_) return;
        Gather(columns_, source_row_, row_);
        for (std::size_t i = 0; i < writes_.size(); ++i)
            writes_[i] = has_color_[static_cast<std::size_t>(columns_.source[i] - x)];
    }
    [[nodiscard]] std::span<const std::uint8_t> Colors() const {
        return gathers_ ? row_ : source_row_;
    }
    /// Which of them are written; empty when all are.
    [[nodiscard]] std::span<const std::uint8_t> Writes() const {
        const auto& writes = gathers_ ? writes_ : has_color_;
        const bool all = std::memchr(writes.data(), 0, writes.size()) == nullptr;
        return all ? std::span<const std::uint8_t>() : writes;
    }

  private:
    void DropMasked(int x, int y) {
        mask_row_.assign(3 * span_, 0);
        mask_reader_->Read(x, y, mask_row_, {});
        for (std::size_t i = 0; i < span_; ++i) {
            if (mask_row_[3 * i] == 0 && mask_row_[3 * i + 1] == 0 && mask_row_[3 * i + 2] == 0)
                has_color_[i] = 0;
        }
    }
    void DropKey() {
        const Color& key = *limits_.key;
        for (std::size_t i = 0; i < span_; ++i) {
            if (source_row_[3 * i] == key.blue && source_row_[3 * i + 1] == key.green &&
                source_row_[3 * i + 2] == key.red)
                has_color_[i] = 0;
        }
    }

    ColorReader reader_;
    std::optional<ColorReader> mask_reader_;
    const Axis& columns_;
    const MosaicLimits& limits_;
    bool gathers_;  ///< columns are left out or repeated
    std::size_t span_;
    std::vector<std::uint8_t> source_row_;
    std::vector<std::uint8_t> mask_row_;
    std::vector<std::uint8_t> has_color_;
    std::vector<std::uint8_t> row_;
    std::vector<std::uint8_t> writes_;
};

/// Whether every pixel of the source's runs goes into the target as the bytes that it is.
bool CopiesBytes(const RasterImage& target, const RasterImage& source, const Axis& columns,
                 const MosaicLimits& limits) {
    return !limits.key && limits.mask == nullptr && columns.IsConsecutive() &&
           target.Bits() == 24 && source.Bits() == 24 && IsTrueColor(target) && ReadsByRows(source);
}

void CopyRows(RasterImage& target, const RasterImage& source, const Axis& columns,
              const Axis& rows) {
    const auto from = static_cast<std::size_t>(columns.source.front()) * 3;
    const auto to = static_cast<std::size_t>(columns.first) * 3;
    const std::size_t bytes = columns.source.size() * 3;
    for (std::size_t i = 0; i < rows.source.size(); ++i)
        std::memcpy(&target.PictureRow(rows.first + static_cast<int>(i))[to],
                    &source.PictureRow(rows.source[i])[from], bytes);
}

}  // namespace

bool LayInto(RasterImage& target, const Placement& target_place, const RasterImage& source,
             const Placement& source_place, const MosaicLimits& limits) {
    if (!IsSound(target_place) || !IsSound(source_place)) return false;
    if (limits.mask != nullptr && limits.mask->PixelSize() != source.PixelSize()) return false;
    const Axis columns = ColumnAxis(target, target_place, source, source_place, limits.clip);
    const Axis rows = RowAxis(target, target_place, source, source_place, limits.clip);
    if (columns.source.empty() || rows.source.empty()) return true;
    RasterImage copy;
    if (&source == &target || limits.mask == &target) {
        // What is read must not be what was written before.
        if (!copy.CopyFrom(target)) return false;
        MosaicLimits other_limits = limits;
        if (limits.mask == &target) other_limits.mask = &copy;
        return LayInto(target, target_place, &source == &target ? copy : source, source_place,
                       other_limits);
    }
    if (CopiesBytes(target, source, columns, limits)) {
        CopyRows(target, source, columns, rows);
        return true;
    }
    Layer layer(source, columns, limits);
    ColorWriter writer(target);
    for (std::size_t i = 0; i < rows.source.size(); ++i) {
        layer.Read(rows.source[i]);
        writer.Write(columns.first, rows.first + static_cast<int>(i), layer.Colors(),
                     layer.Writes());
    }
    return true;
}

}  // namespace rastrel
