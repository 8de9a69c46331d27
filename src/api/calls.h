#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "api/handle_table.h"
#include "core/image_object.h"

namespace rastrel {

/// A colour from arguments, of which the lowest eight bits count.
[[nodiscard]] inline Color ColorOf(int red, int green, int blue) {
    return {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green),
            static_cast<std::uint8_t>(blue)};
}

/// A key colour from arguments; none when its flag is 0.
[[nodiscard]] inline std::optional<Color> KeyColor(int flag, int red, int green, int blue) {
    return flag != 0 ? std::optional(ColorOf(red, green, blue)) : std::nullopt;
}

/// The body of every exported function: runs it and turns whatever it throws, which is only
/// exhausted memory, into the failure value. Nothing crosses the module's border.
template <class Result, class Body>
[[nodiscard]] Result Guarded(Result failure, Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return failure;
    }
}

/// The body of functions on images: fetches the handles' images one after the other, each under its
/// own hold of the lock, and hands them to use. A handle without an image ends the call with the
/// failure value before any work.
template <class Result, class Use, class... Handles>
[[nodiscard]] Result WithImages(Result failure, Use use, Handles... handles) noexcept {
    return Guarded(failure, [&] {
        // Braces: fetched in the order of the arguments.
        const HandleTable::ImagePointer images[] = {ImageTable().Fetch(handles)...};
        for (const auto& image : images) {
            if (!image) return failure;
        }
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return use(*images[I]...);
        }
        (std::index_sequence_for<Handles...>());
    });
}

/// The same for one image.
template <class Result, class Use>
[[nodiscard]] Result WithImage(int handle, Result failure, Use use) noexcept {
    return WithImages(failure, std::move(use), handle);
}

/// The same for one image's raster; an image without one gives the failure value too.
template <class Result, class Use>
[[nodiscard]] Result WithRaster(int handle, Result failure, Use use) noexcept {
    return WithImage(handle, failure, [&](const ImageObject& image) {
        RasterImage* raster = image.Raster();
        return raster != nullptr ? use(*raster) : failure;
    });
}

/// The body of functions that give a handle a new image, which must hold one already. The old image
/// ends first, unless a call has it in use, so that the two need not stand in memory together. The
/// new one stays, whether or not it came to hold a raster: result 1 or 0.
template <class Build>
[[nodiscard]] int ReplaceImage(int handle, Build build) noexcept {
    return Guarded(0, [&] {
        const auto fresh = std::make_shared<ImageObject>();
        if (!ImageTable().Replace(handle, fresh)) return 0;
        build(*fresh);
        return fresh->IsValid() ? 1 : 0;
    });
}

/// The body of functions that make a new image out of another one, which may be the target: make is
/// given the source's raster and an empty one, and tells whether it filled it. The target then
/// becomes an image of the source's type; until then, and on failure, it stays as it is.
template <class Make>
[[nodiscard]] int MakeImageFrom(int target, int source, Make make) noexcept {
    return WithImages(
        0,
        [&](const ImageObject& /*old*/, const ImageObject& original) {
            RasterImage result;
            if (!original.IsValid() || !make(*original.Raster(), result)) return 0;
            const auto fresh = std::make_shared<ImageObject>();
            return fresh->TakeOver(original.Type(), result) && ImageTable().Replace(target, fresh)
                       ? 1
                       : 0;
        },
        target, source);
}

}  // namespace rastrel
