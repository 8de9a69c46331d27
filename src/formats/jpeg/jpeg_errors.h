#pragma once

// libjpeg's header needs these two first.
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include "formats/recovery.h"

namespace rastrel {

/// libjpeg's error manager, with a way back into our code in place of the end of the process, and
/// without a word on the standard error stream.
struct JpegErrors {
    jpeg_error_mgr manager;  // first: libjpeg hands back its address, which is ours then
    RecoveryPoint recovery;
};

/// Makes the errors ready to be given to a codec object.
[[nodiscard]] jpeg_error_mgr* InstallJpegErrors(JpegErrors& errors);

}  // namespace rastrel
