#include "conformance/Suite.hpp"
#include "ports/ImageCodec.hpp"
#include "support/Hex.hpp"

#include <cstdlib>

namespace sentrel::conformance {

namespace {

/// 16 by 8 pixels of one red (200, 60, 20), as a JPEG file.
constexpr std::string_view redJpeg =
    "ffd8ffe000104a46494600010100000100010000ffdb004300080606070605080707070909080a0c140d0c0b0b0c1912130f"
    "141d1a1f1e1d1a1c1c20242e2720222c231c1c2837292c30313434341f27393d38323c2e333432ffdb0043010909090c0b0c"
    "180d0d1832211c21323232323232323232323232323232323232323232323232323232323232323232323232323232323232"
    "3232323232323232ffc00011080008001003012200021101031101ffc4001500010100000000000000000000000000000005"
    "ffc40014100100000000000000000000000000000000ffc4001501010100000000000000000000000000000607ffc4001411"
    "0100000000000000000000000000000000ffda000c03010002110311003f008000c282ffd9";

/// An EXIF segment that says: turn by a quarter (orientation 6).
constexpr std::string_view quarterTurn = "ffe1001e45786966000049492a00080000000100120103000100000006000000";

std::string sizeText(std::optional<ports::PixelSize> size)
{
    return size ? std::to_string(size->width) + " by " + std::to_string(size->height) : "none";
}

/// Whether each part of the color is within the distance, which lossy compression needs.
bool isRed(const std::optional<ports::ImageCodec::Rgba>& color)
{
    constexpr int most = 8;
    return color && std::abs((*color)[0] - 200) <= most && std::abs((*color)[1] - 60) <= most &&
           std::abs((*color)[2] - 20) <= most && (*color)[3] == 255;
}

/// The size of the thumbnail, as a file of its own tells it.
std::string thumbnailSize(ports::ImageCodec& codec, BytesView photo, std::uint32_t most, bool transform)
{
    const auto thumbnail = codec.createThumbnail(photo, most, transform);
    if (thumbnail == nullptr) {
        return "no thumbnail";
    }
    const auto file = codec.encode(*thumbnail, "public.jpeg", 0.8);
    return file && isRed(codec.areaAverage(*file)) ? sizeText(codec.pixelSize(*file)) : "another image";
}

} // namespace

void checkImageCodec(const Subject& subject, Report& report)
{
    ports::ImageCodec& codec = subject.platform.imageCodec;
    const Bytes photo = bytesOfHex(redJpeg);
    Bytes turned = bytesOfHex(std::string{"ffd8"} + std::string{quarterTurn} + std::string{redJpeg.substr(4)});

    report.expect(sizeText(codec.pixelSize(photo)) == "16 by 8", "the size of a photo",
                  sizeText(codec.pixelSize(photo)));
    report.expect(sizeText(codec.pixelSize(turned)) == "16 by 8", "the stored size ignores the orientation",
                  sizeText(codec.pixelSize(turned)));
    report.expect(isRed(codec.areaAverage(photo)), "the average color, without color matching");

    const auto expectThumbnail = [&](BytesView of, std::uint32_t most, bool transform, const char* size) {
        const std::string found = thumbnailSize(codec, of, most, transform);
        report.expect(found == size, std::string{"a thumbnail of "} + size, found);
    };
    expectThumbnail(photo, 8, true, "8 by 4");
    expectThumbnail(photo, 100, true, "16 by 8");
    expectThumbnail(turned, 8, true, "4 by 8");
    expectThumbnail(turned, 8, false, "8 by 4");

    const auto again = codec.jpegRepresentation(photo);
    report.expect(again && sizeText(codec.pixelSize(*again)) == "16 by 8", "a photo as a JPEG file");
    const auto thumbnail = codec.createThumbnail(photo, 8, true);
    report.expect(thumbnail != nullptr && !codec.encode(*thumbnail, "no.such.type", 0.8),
                  "an unknown type of file is refused");
    for (const Bytes& broken : {Bytes{}, Bytes{0xff}, bytesOfHex("ffd8ffe0"), Bytes(100, 'x')}) {
        report.expect(!codec.pixelSize(broken) && !codec.areaAverage(broken) &&
                          codec.createThumbnail(broken, 8, true) == nullptr && !codec.jpegRepresentation(broken),
                      "no image gives nothing", std::to_string(broken.size()) + " bytes");
    }
}

} // namespace sentrel::conformance
