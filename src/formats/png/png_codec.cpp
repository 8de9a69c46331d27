#include "formats/png/png_codec.h"

namespace rastrel {

namespace {

[[noreturn]] void JumpBack(png_structp png, png_const_charp /*message*/) {
    auto* recovery = static_cast<RecoveryPoint*>(png_get_error_ptr(png));
    std::longjmp(recovery->place, 1);  // NOLINT(cert-err52-cpp): libpng goes no other way
}

void SayNothing(png_structp /*png*/, png_const_charp /*message*/) {}

}  // namespace

PngCodec::PngCodec(Direction direction) : direction_(direction) {
    const auto create =
        direction == Direction::kRead ? png_create_read_struct : png_create_write_struct;
    png_ = create(PNG_LIBPNG_VER_STRING, &recovery_, JumpBack, SayNothing);
    if (png_ == nullptr) return;
    const bool made = Run([this] {
        info_ = png_create_info_struct(png_);
        // Beyond its own limit of a million, which some scans exceed: bitmaps have one.
        png_set_user_limits(png_, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        return true;
    });
    if (!made) info_ = nullptr;
}

PngCodec::~PngCodec() {
    if (direction_ == Direction::kRead)
        png_destroy_read_struct(&png_, &info_, nullptr);
    else
        png_destroy_write_struct(&png_, &info_);
}

}  // namespace rastrel
