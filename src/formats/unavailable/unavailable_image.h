#pragma once

#include "core/raster_image.h"

namespace rastrel {

/// A format that is known by name alone: there is no public description or decoder of its files.
/// Every operation on them fails, as the base class has it; images read elsewhere can have its type
/// and be drawn and saved in other formats.
class UnavailableImage final : public RasterImage {};

}  // namespace rastrel
