#include <algorithm>
#include <array>

#include "color_ramp.h"
#include "text.h"

namespace rastrel_cli {

namespace {

struct NamedRamp {
    std::string_view name;
    std::string_view text;
};

// Percentages fit a ramp to the range of each grid; the ramps with a sea stand at metres.
constexpr std::array<NamedRamp, 7> kRamps = {{
    {"elevation", R"(
0%   79 133 84
12%  124 166 96
25%  178 196 124
40%  229 216 154
55%  216 180 118
70%  176 130 86
85%  158 132 118
100% 247 246 244
)"},
    {"atlas", R"(
-11000 10 30 72
-6000 22 58 112
-4000 36 84 146
-2000 62 120 178
-500  104 162 206
-150  142 192 222
-30   178 216 234
0     206 232 242
0     112 164 104
60    138 182 112
200   180 202 128
500   226 218 152
1000  214 178 116
1800  174 126 84
2800  150 124 112
3800  214 212 212
5000  252 252 252
8900  255 255 255
nv    255 255 255
)"},
    {"alpine", R"(
0%   62 102 66
20%  98 132 76
40%  150 158 102
55%  168 152 126
70%  148 140 136
82%  206 208 212
100% 255 255 255
)"},
    {"desert", R"(
0%   112 62 40
25%  176 104 58
50%  216 158 92
75%  238 204 146
100% 252 240 210
)"},
    {"grey", R"(
0%   0 0 0
100% 255 255 255
)"},
    {"heat", R"(
0%   10 0 20
30%  130 10 50
55%  226 70 20
80%  252 180 40
100% 255 250 200
)"},
    {"spectrum", R"(
0%   48 40 130
20%  40 110 200
40%  50 180 150
60%  160 210 60
80%  250 190 40
100% 190 30 30
)"},
}};

}  // namespace

std::optional<std::string_view> BuiltInRamp(std::string_view name) {
    std::string lower = LowerCase(name);
    if (lower == "gray") lower = "grey";
    const auto found = std::find_if(kRamps.begin(), kRamps.end(),
                                    [&lower](const NamedRamp& ramp) { return ramp.name == lower; });
    if (found == kRamps.end()) return std::nullopt;
    return found->text;
}

std::string BuiltInRampNames() {
    std::string names;
    for (const NamedRamp& ramp : kRamps) {
        if (!names.empty()) names += ", ";
        names += ramp.name;
    }
    return names;
}

}  // namespace rastrel_cli
