#include "simulation/mac/camera/TurboImageCodec.hpp"
#include "outputs/PhotoProcessing.hpp"
#include "simulation/mac/camera/JpegReader.hpp"
#include "simulation/mac/camera/JpegWriter.hpp"
#include "simulation/mac/camera/scene/CafeScene.hpp"
#include "support/Files.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace sentrel::simulation {
namespace {

const std::filesystem::path photoFolder = std::filesystem::path{SENTREL_SOURCE_DIR} / "../shared/data/photos";

std::vector<std::string> cellsOf(const std::string& line)
{
    std::vector<std::string> cells;
    std::istringstream in{line};
    for (std::string cell; std::getline(in, cell, '\t');) {
        cells.push_back(cell);
    }
    return cells;
}

RgbxImage decoded(const Bytes& jpeg)
{
    JpegReader reader{jpeg};
    const auto size = reader.readHeader();
    if (!size || !reader.start(8, 1'000'000)) {
        ADD_FAILURE() << "no JPEG";
        return {};
    }
    RgbxImage image{static_cast<int>(size->width), static_cast<int>(size->height)};
    for (int y = 0; y < image.height(); ++y) {
        EXPECT_TRUE(reader.readRow(image.row(y)));
    }
    EXPECT_TRUE(reader.finish());
    return image;
}

/// The upright thumbnail's pixels.
RgbxImage thumbnailOf(const Bytes& jpeg, std::uint32_t maxPixelSize)
{
    TurboImageCodec codec;
    const auto thumbnail = codec.createThumbnail(jpeg, maxPixelSize, true);
    const auto encoded = thumbnail ? codec.encode(*thumbnail, "public.jpeg", 0.95) : std::nullopt;
    EXPECT_TRUE(encoded);
    return encoded ? decoded(*encoded) : RgbxImage{};
}

int orientationOf(const Bytes& jpeg)
{
    JpegReader reader{jpeg};
    EXPECT_TRUE(reader.readHeader());
    return reader.orientation();
}

TEST(TurboImageCodec, EveryPhotoOfTheTableIsAsBrightAsItSays)
{
    std::ifstream table{photoFolder / "manifest.tsv"};
    std::string line;
    if (!std::getline(table, line)) {
        GTEST_SKIP() << "the photos are missing: no " << photoFolder / "manifest.tsv";
    }
    const auto names = cellsOf(line);
    TurboImageCodec codec;
    int measured = 0;
    while (std::getline(table, line)) {
        const auto cells = cellsOf(line);
        const auto row = [&](const char* name) {
            return cells.at(static_cast<std::size_t>(std::ranges::find(names, name) - names.begin()));
        };
        SCOPED_TRACE(row("file"));
        const std::string content = test::contentOf(photoFolder / row("file"));
        const Bytes photo = bytesOf(content);
        const double brightness = photoBrightness(codec, photo);
        const Bytes reencoded = reencodedPhoto(codec, photo);
        if (row("pillow_verdict") != "decodes" && row("luma709_0_1") == "-") {
            EXPECT_EQ(brightness, 1.0);
            // A header that lost bytes may leave a picture, here a white one.
            EXPECT_TRUE(reencoded == photo || row("property").find("either verdict") != std::string::npos);
            continue;
        }
        ++measured;
        EXPECT_NEAR(brightness, std::stod(row("luma709_0_1")), row("mode") == "CMYK" ? 0.4 : 0.01);
        EXPECT_NEAR(photoBrightness(codec, reencoded), brightness, 0.02);
        const ports::PixelSize stored{static_cast<std::uint32_t>(std::stoul(row("width_stored"))),
                                      static_cast<std::uint32_t>(std::stoul(row("height_stored")))};
        EXPECT_EQ(codec.pixelSize(photo), stored);
        EXPECT_EQ(orientationOf(photo), row("exif_orientation") == "-" ? 1 : std::stoi(row("exif_orientation")));
    }
    EXPECT_GE(measured, 20);
}

/// A picture whose four quarters are black, dark, light and white, row by row.
Bytes quarteredJpeg(int width, int height)
{
    RgbxImage image{width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int quarter = (y * 2 >= height ? 2 : 0) + (x * 2 >= width ? 1 : 0);
            std::fill_n(image.row(y) + x * 4, 4, static_cast<std::uint8_t>(quarter * 85));
        }
    }
    return *encodeJpeg(image, 95);
}

/// The same with an Exif segment of this TIFF structure behind the start.
Bytes withExif(Bytes jpeg, const Bytes& tiff)
{
    const auto length = static_cast<std::uint8_t>(tiff.size() + 8);
    Bytes segment{0xFF, 0xE1, 0, length, 'E', 'x', 'i', 'f', 0, 0};
    segment.insert(segment.end(), tiff.begin(), tiff.end());
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
}

Bytes bigEndianTiff(std::uint8_t orientation)
{
    return {'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0x12, 0, 3, 0, 0, 0, 1, 0, orientation, 0, 0};
}

TEST(TurboImageCodec, EachOrientationMovesTheCornersToTheirPlaces)
{
    // The quarter of the stored picture that comes to stand at the top left, top right, bottom left, bottom right.
    const std::vector<std::array<int, 4>> corners{{0, 1, 2, 3}, {1, 0, 3, 2}, {3, 2, 1, 0}, {2, 3, 0, 1},
                                                  {0, 2, 1, 3}, {2, 0, 3, 1}, {3, 1, 2, 0}, {1, 3, 0, 2}};
    for (std::uint8_t orientation = 1; orientation <= 8; ++orientation) {
        const RgbxImage image = thumbnailOf(withExif(quarteredJpeg(96, 48), bigEndianTiff(orientation)), 48);
        const bool isUpended = orientation >= 5;
        EXPECT_EQ(image.width(), isUpended ? 24 : 48);
        EXPECT_EQ(image.height(), isUpended ? 48 : 24);
        for (int i = 0; i < 4; ++i) {
            const int x = image.width() * (i % 2 == 0 ? 1 : 3) / 4;
            const int y = image.height() * (i < 2 ? 1 : 3) / 4;
            const int expected = corners[orientation - 1U][static_cast<std::size_t>(i)] * 85;
            EXPECT_NEAR(image.row(y)[x * 4], expected, 6) << "orientation " << int{orientation} << " corner " << i;
        }
    }
}

TEST(TurboImageCodec, ExifThatLiesCountsAsUpright)
{
    const Bytes plain = quarteredJpeg(16, 16);
    const Bytes honest = bigEndianTiff(6);
    EXPECT_EQ(orientationOf(withExif(plain, honest)), 6);
    std::vector<Bytes> lies{bigEndianTiff(0), bigEndianTiff(9), Bytes{}, Bytes{'I'}};
    for (const auto& [place, value] : std::vector<std::pair<std::size_t, std::uint8_t>>{
             {3, 43}, {4, 0xFF}, {7, 0xFF}, {7, 21}, {10, 2}, {13, 4}, {18, 0xFF}, {0, 'I'}}) {
        lies.push_back(honest);
        lies.back()[place] = value;
    }
    for (const Bytes& lie : lies) {
        EXPECT_EQ(orientationOf(withExif(plain, lie)), 1);
        EXPECT_NE(TurboImageCodec{}.createThumbnail(withExif(plain, lie), 1600, true), nullptr);
    }
    Bytes manyEntries = honest;
    manyEntries[8] = manyEntries[9] = 0xFF; // more entries than there are bytes
    EXPECT_EQ(orientationOf(withExif(plain, manyEntries)), 6);
    manyEntries[11] = 0;
    EXPECT_EQ(orientationOf(withExif(plain, manyEntries)), 1);
}

void expectRefused(BytesView jpeg, std::size_t what)
{
    TurboImageCodec codec;
    EXPECT_EQ(photoBrightness(codec, jpeg), 1.0) << what;
    EXPECT_EQ(codec.createThumbnail(jpeg, 1600, true), nullptr) << what;
}

TEST(TurboImageCodec, AFileThatIsCutAnywhereIsRefused)
{
    TurboImageCodec codec;
    const Bytes whole = withExif(quarteredJpeg(64, 48), bigEndianTiff(8));
    for (std::size_t length = 0; length < whole.size(); ++length) {
        expectRefused(BytesView{whole}.first(length), length);
    }
    EXPECT_LT(photoBrightness(codec, whole), 0.6);
}

TEST(TurboImageCodec, DamagedBytesNeverDoHarm)
{
    TurboImageCodec codec;
    const Bytes whole = withExif(quarteredJpeg(64, 48), bigEndianTiff(5));
    for (std::size_t place = 0; place < whole.size(); ++place) {
        for (const std::uint8_t value : Bytes{0x00, 0x01, 0x7F, 0xFF}) {
            Bytes damaged = whole;
            damaged[place] = value;
            const double brightness = photoBrightness(codec, damaged);
            EXPECT_TRUE(brightness >= 0 && brightness <= 1);
            EXPECT_LE(reencodedPhoto(codec, damaged).size(), damaged.size());
        }
    }
}

/// A progressive grey JPEG of many scans that each say in a few bytes that nothing changes.
Bytes jpegOfScans(int scans, std::uint8_t widthHigh)
{
    Bytes jpeg{0xFF, 0xD8, 0xFF, 0xDB, 0, 67, 0};
    jpeg.insert(jpeg.end(), 64, 1);
    const auto add = [&](std::initializer_list<std::uint8_t> bytes) { jpeg.insert(jpeg.end(), bytes); };
    add({0xFF, 0xC2, 0, 11, 8, 0, 64, widthHigh, 0, 1, 1, 0x11, 0});
    // One code of one bit in each table: DC "no difference", AC "so many blocks end here" (EOB14).
    add({0xFF, 0xC4, 0, 20, 0x00, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x00});
    add({0xFF, 0xC4, 0, 20, 0x10, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xE0});
    add({0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 0, 0});
    jpeg.insert(jpeg.end(), std::size_t{widthHigh} * 32, 0); // 8 rows of 32 x widthHigh blocks, a bit each
    for (int i = 1; i < scans; ++i) {
        add({0xFF, 0xDA, 0, 8, 1, 1, 0, 1, 63, 0, 0, 0});
    }
    add({0xFF, 0xD9});
    return jpeg;
}

TEST(TurboImageCodec, ImagesThatCostFarMoreThanTheirBytesAreRefused)
{
    TurboImageCodec codec;
    EXPECT_NEAR(photoBrightness(codec, jpegOfScans(JpegReader::mostScans, 1)), 0.5, 0.01);
    expectRefused(jpegOfScans(JpegReader::mostScans + 1, 1), 1);
    expectRefused(jpegOfScans(5000, 0xFF), 2);
    // More pixels than a camera takes, and coefficients beyond the memory limit, before anything is decoded.
    Bytes huge = quarteredJpeg(16, 16);
    const auto frame = std::ranges::search(huge, Bytes{0xFF, 0xC0}).begin();
    for (const auto& [height, width] : {std::pair{0xFFDC, 0xFFDC}, std::pair{0x8000, 0x0C00}}) {
        frame[1] = height == 0xFFDC ? 0xC0 : 0xC2;
        frame[5] = static_cast<std::uint8_t>(height >> 8);
        frame[6] = static_cast<std::uint8_t>(height);
        frame[7] = static_cast<std::uint8_t>(width >> 8);
        frame[8] = static_cast<std::uint8_t>(width);
        expectRefused(huge, static_cast<std::size_t>(height));
    }
}

TEST(CafeScene, APhotoMeasuresTheBrightnessThatWasAskedFor)
{
    CafeScene scene;
    TurboImageCodec codec;
    const Date morning{8.5 * 3600};
    for (const double brightness : {0.0, 0.05, 0.12, 0.5, 0.9, 1.0}) {
        EXPECT_NEAR(photoBrightness(codec, scene.photograph(morning, brightness)), brightness, 0.006);
    }
    const Bytes photo = scene.photograph(morning, std::nullopt);
    EXPECT_GT(photoBrightness(codec, photo), 0.25);
    EXPECT_EQ(codec.pixelSize(photo), (ports::PixelSize{1920, 1080}));
    EXPECT_EQ(CafeScene{}.photograph(morning, std::nullopt), photo);
    EXPECT_NE(scene.photograph(morning.addingSeconds(60), std::nullopt), photo) << "the clock on the wall stands still";
    EXPECT_FALSE(scene.photograph(Date{std::nan("")}, 0.5).empty());
}

} // namespace
} // namespace sentrel::simulation
