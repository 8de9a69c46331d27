#pragma once

#include <utility>

#include "core/raster_image.h"

namespace rastrel {

/// An image of the raster's size and resolution at another depth, to be filled row by row; without
/// a block when memory does not suffice.
class ConvertedImage : public RasterImage {
  public:
    ConvertedImage(const RasterImage& raster, int bits) {
        DibBlock block = DibBlock::Create(raster.Width(), raster.Height(), bits);
        if (!block) return;
        CopyResolution(raster.Block(), block);
        ReplaceBlock(std::move(block));
    }
};

}  // namespace rastrel
