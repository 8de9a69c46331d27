#include "color_ramp.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "text.h"

namespace rastrel_cli {

namespace {

/// Far beyond any; so that differences stay finite.
constexpr double kMostElevation = 1e40;

struct NamedColor {
    std::string_view name;
    PaletteEntry color;
};

/// The names that ramp files use.
constexpr std::array<NamedColor, 18> kNamedColors = {{{"white", {255, 255, 255}},
                                                      {"black", {0, 0, 0}},
                                                      {"red", {255, 0, 0}},
                                                      {"green", {0, 255, 0}},
                                                      {"blue", {0, 0, 255}},
                                                      {"yellow", {255, 255, 0}},
                                                      {"magenta", {255, 0, 255}},
                                                      {"cyan", {0, 255, 255}},
                                                      {"aqua", {0, 191, 191}},
                                                      {"grey", {191, 191, 191}},
                                                      {"gray", {191, 191, 191}},
                                                      {"orange", {255, 127, 0}},
                                                      {"brown", {191, 127, 64}},
                                                      {"purple", {127, 0, 255}},
                                                      {"violet", {127, 0, 255}},
                                                      {"indigo", {0, 127, 255}},
                                                      {"pink", {255, 191, 203}},
                                                      {"turquoise", {0, 191, 127}}}};

bool IsDivider(char c) {
    return IsBlank(c) || c == ',' || c == ':' || c == ';';
}

std::vector<std::string_view> Fields(std::string_view line) {
    std::vector<std::string_view> fields;
    auto at = line.begin();
    while (true) {
        at = std::find_if_not(at, line.end(), IsDivider);
        if (at == line.end()) return fields;
        const auto end = std::find_if(at, line.end(), IsDivider);
        fields.push_back(line.substr(static_cast<std::size_t>(at - line.begin()),
                                     static_cast<std::size_t>(end - at)));
        at = end;
    }
}

std::optional<PaletteEntry> ColorByName(std::string_view name) {
    const std::string lower = LowerCase(name);
    const auto found = std::find_if(kNamedColors.begin(), kNamedColors.end(),
                                    [&lower](const NamedColor& c) { return c.name == lower; });
    if (found == kNamedColors.end()) return std::nullopt;
    return found->color;
}

/// The colour after the position.
std::optional<PaletteEntry> ParseColor(const std::vector<std::string_view>& fields,
                                       std::string& why) {
    if (fields.size() > 1) {
        if (const auto named = ColorByName(fields[1])) return named;
    }
    if (fields.size() < 4) {
        why = "a colour is red, green and blue, or a name such as yellow";
        return std::nullopt;
    }
    std::array<std::uint8_t, 3> channels{};
    for (std::size_t i = 0; i < channels.size(); ++i) {
        const auto channel = ParseWhole(fields[i + 1], 0, 255);
        if (!channel) {
            why = fmt::format("{} is no number from 0 to 255", Shown(fields[i + 1]));
            return std::nullopt;
        }
        channels[i] = static_cast<std::uint8_t>(*channel);
    }
    const bool has_alpha = fields.size() > 4 && ParseFinite(fields[4]);
    if (has_alpha && !ParseWhole(fields[4], 0, 255)) {
        why = fmt::format("{} is no alpha from 0 to 255", Shown(fields[4]));
        return std::nullopt;
    }
    return PaletteEntry{channels[0], channels[1], channels[2]};
}

/// Adds what a line with these fields says.
bool AddLine(const std::vector<std::string_view>& fields, ColorRamp& ramp, std::string& why) {
    const std::string first = LowerCase(fields[0]);
    if (first == "interpolation") {
        if (fields.size() == 2 && LowerCase(fields[1]) == "interpolated") return true;
        why = "only ramps whose colours blend (interpolation:interpolated) can be used";
        return false;
    }
    const std::optional<PaletteEntry> color = ParseColor(fields, why);
    if (!color) return false;
    if (first == "nv") {
        ramp.no_data = *color;
        return true;
    }
    const bool is_share = first.back() == '%';
    const auto position =
        ParseFinite(std::string_view(first).substr(0, first.size() - (is_share ? 1 : 0)));
    if (!position || std::abs(*position) > kMostElevation) {
        why = fmt::format("{} is no elevation, no percentage and not nv", Shown(fields[0]));
        return false;
    }
    ramp.stops.push_back({is_share ? *position / 100.0 : *position, is_share, *color});
    return true;
}

}  // namespace

std::optional<ColorRamp> ParseColorRamp(std::string_view text, std::string& why) {
    ColorRamp ramp;
    for (int line = 1; !text.empty(); ++line) {
        const std::string_view whole = TakeLine(text);
        const std::vector<std::string_view> fields = Fields(whole.substr(0, whole.find('#')));
        if (!fields.empty() && !AddLine(fields, ramp, why)) {
            why = fmt::format("line {}: {}", line, why);
            return std::nullopt;
        }
    }
    if (ramp.stops.empty()) {
        why = "it holds no colours for elevations";
        return std::nullopt;
    }
    return ramp;
}

}  // namespace rastrel_cli
