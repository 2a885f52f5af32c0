#include "ports/DurableFile.hpp"

#include "ports/FileSystem.hpp"

namespace sentrel::ports {

namespace {

int writeAndSynchronize(FileSystem& files, const std::filesystem::path& file, BytesView content, std::uint32_t mode)
{
    int error = 0;
    const auto open = files.create(file, mode, error);
    if (open == nullptr) {
        return error;
    }
    error = open->write(content);
    return error != 0 ? error : open->synchronize();
}

} // namespace

int writeDurably(FileSystem& files, const std::filesystem::path& file, BytesView content, std::uint32_t mode)
{
    // A file has one writer at a time, so that this name suffices; a power cut's leftover is overwritten.
    std::filesystem::path temporary = file;
    temporary += temporaryExtension;
    int error = writeAndSynchronize(files, temporary, content, mode);
    if (error == 0) {
        error = files.rename(temporary, file);
    }
    if (error != 0) {
        files.remove(temporary);
        return error;
    }
    return files.synchronizeDirectory(file.parent_path());
}

} // namespace sentrel::ports
