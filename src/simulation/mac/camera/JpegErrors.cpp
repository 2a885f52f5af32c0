#include "simulation/mac/camera/JpegErrors.hpp"

#include <type_traits>

#include <jerror.h>

namespace sentrel::simulation {

static_assert(std::is_standard_layout_v<JpegErrors>);

JpegErrors::JpegErrors()
{
    jpeg_std_error(&manager_);
    manager_.error_exit = &exitOnError;
    manager_.emit_message = &judgeWarning;
    manager_.output_message = [](j_common_ptr) {};
}

JpegErrors& JpegErrors::of(j_common_ptr codec)
{
    return *reinterpret_cast<JpegErrors*>(codec->err);
}

void JpegErrors::exitOnError(j_common_ptr codec)
{
    std::longjmp(of(codec).jump_, 1);
}

void JpegErrors::judgeWarning(j_common_ptr codec, int level)
{
    if (level >= 0) {
        return; // a trace
    }
    switch (codec->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
    case JWRN_BOGUS_PROGRESSION:
        exitOnError(codec);
    default:
        return;
    }
}

} // namespace sentrel::simulation
