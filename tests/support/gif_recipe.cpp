#include "support/gif_recipe.h"

#include <algorithm>
#include <bit>

namespace rastrel_test {

namespace {

/// The field for a table of a power of two entries.
int SizeField(const std::vector<Rgb>& table) {
    return table.empty() ? 0 : static_cast<int>(std::bit_width(table.size())) - 2;
}

void PutTable(FieldWriter& out, const std::vector<Rgb>& table) {
    for (const Rgb& color : table)
        out.U8({color[0], color[1], color[2]});
}

}  // namespace

Bytes GifRecipe::File() const {
    FieldWriter out;
    out.Text(signature)
        .U16(static_cast<std::uint32_t>(width))
        .U16(static_cast<std::uint32_t>(height))
        .U8({screen_flags | SizeField(global_table), 0, 0});
    PutTable(out, global_table);
    out.Raw(extensions).U8({0x2c}).U16(0).U16(0);
    out.U16(static_cast<std::uint32_t>(width)).U16(static_cast<std::uint32_t>(height));
    out.U8({image_flags | SizeField(local_table)});
    PutTable(out, local_table);
    out.U8({code_size});
    for (std::size_t at = 0; at < data.size(); at += block) {
        const std::size_t count = std::min(block, data.size() - at);
        const auto from = data.begin() + static_cast<std::ptrdiff_t>(at);
        out.U8({static_cast<int>(count)});
        out.Raw(Bytes(from, from + static_cast<std::ptrdiff_t>(count)));
    }
    if (has_end) out.U8({0, 0x3b});
    return out.Done();
}

Bytes GraphicControl(int flags, int transparent_index) {
    return FieldWriter().U8({0x21, 0xf9, 4, flags, 0, 0, transparent_index, 0}).Done();
}

}  // namespace rastrel_test
