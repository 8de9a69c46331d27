#include "formats/jpeg/jpeg_errors.h"

namespace rastrel {

namespace {

[[noreturn]] void JumpBack(j_common_ptr codec) {
    auto* errors = reinterpret_cast<JpegErrors*>(codec->err);
    std::longjmp(errors->recovery.place, 1);  // NOLINT(cert-err52-cpp): libjpeg goes no other way
}

void SayNothing(j_common_ptr /*codec*/) {}

}  // namespace

jpeg_error_mgr* InstallJpegErrors(JpegErrors& errors) {
    jpeg_std_error(&errors.manager);
    errors.manager.error_exit = JumpBack;
    errors.manager.output_message = SayNothing;
    return &errors.manager;
}

}  // namespace rastrel
