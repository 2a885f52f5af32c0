#pragma once

#include <csetjmp>
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

namespace sentrel::simulation {

/// Turns the library's errors, which end the program by default, into a jump back. Damage that loses pixels counts as
/// an error; other warnings pass. Nothing is printed.
class JpegErrors {
public:
    JpegErrors();
    JpegErrors(const JpegErrors&) = delete;
    JpegErrors& operator=(const JpegErrors&) = delete;

    [[nodiscard]] jpeg_error_mgr* manager() { return &manager_; }

    /// Calls the function; false if the library failed inside it. The jump passes over everything in between, so
    /// nothing there may need a destructor: the function only calls the library and sets plain values.
    template <class Function> [[nodiscard]] bool guard(Function function)
    {
        if (setjmp(jump_) != 0) {
            return false;
        }
        function();
        return true;
    }

private:
    static JpegErrors& of(j_common_ptr codec);
    [[noreturn]] static void exitOnError(j_common_ptr codec);
    static void judgeWarning(j_common_ptr codec, int level);

    jpeg_error_mgr manager_{}; // first, so that the library's pointer to it leads back here
    std::jmp_buf jump_{};
};

} // namespace sentrel::simulation
