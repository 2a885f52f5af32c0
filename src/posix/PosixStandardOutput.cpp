#include "posix/PosixStandardOutput.hpp"

#include <iostream>

namespace sentrel::posix {

void PosixStandardOutput::printLine(std::string_view text)
{
    const std::lock_guard guard{mutex_};
    std::cout << text << '\n' << std::flush;
}

} // namespace sentrel::posix
