#include "mac/Adapters.hpp"

#include "mac/foundation/FoundationValues.hpp"

#import <AppKit/AppKit.h>
#import <CoreImage/CoreImage.h>
#import <ImageIO/ImageIO.h>

namespace sentrel::mac {

namespace {

class MacImage final : public ports::Image {
public:
    /// Takes ownership.
    explicit MacImage(CGImageRef image) : image_(image) {}
    ~MacImage() override { CGImageRelease(image_); }
    MacImage(const MacImage&) = delete;
    MacImage& operator=(const MacImage&) = delete;
    [[nodiscard]] CGImageRef native() const { return image_; }

private:
    CGImageRef image_;
};

/// An image source; nil if the data is no image.
id imageSource(BytesView data)
{
    return CFBridgingRelease(CGImageSourceCreateWithData((__bridge CFDataRef)unownedData(data), nullptr));
}

/// Image files through Core Image and Image I/O. Images passed in must come from here.
class MacImageCodec final : public ports::ImageCodec {
public:
    [[nodiscard]] std::optional<Rgba> areaAverage(BytesView data) override
    {
        @autoreleasepool {
            CIImage* const image = [CIImage imageWithData:unownedData(data)];
            if (image == nil) {
                return std::nullopt;
            }
            CIVector* const extent = [CIVector vectorWithCGRect:image.extent];
            CIFilter* const filter = [CIFilter filterWithName:@"CIAreaAverage"
                                          withInputParameters:@{kCIInputImageKey : image, kCIInputExtentKey : extent}];
            CIImage* const average = filter.outputImage;
            if (average == nil) {
                return std::nullopt;
            }
            // No colour matching: the average is of the stored values, not of linear light.
            CIContext* const context = [CIContext contextWithOptions:@{kCIContextWorkingColorSpace : NSNull.null}];
            Rgba pixel{};
            [context render:average
                   toBitmap:pixel.data()
                   rowBytes:static_cast<ptrdiff_t>(pixel.size())
                     bounds:CGRectMake(0, 0, 1, 1)
                     format:kCIFormatRGBA8
                 colorSpace:nullptr];
            return pixel;
        }
    }

    [[nodiscard]] std::optional<ports::PixelSize> pixelSize(BytesView data) override
    {
        @autoreleasepool {
            const id source = imageSource(data);
            if (source == nil) {
                return std::nullopt;
            }
            NSDictionary* const properties =
                CFBridgingRelease(CGImageSourceCopyPropertiesAtIndex((__bridge CGImageSourceRef)source, 0, nullptr));
            NSNumber* const width = properties[(__bridge NSString*)kCGImagePropertyPixelWidth];
            NSNumber* const height = properties[(__bridge NSString*)kCGImagePropertyPixelHeight];
            if (width == nil || height == nil) {
                return std::nullopt;
            }
            return ports::PixelSize{width.unsignedIntValue, height.unsignedIntValue};
        }
    }

    [[nodiscard]] std::unique_ptr<ports::Image> createThumbnail(BytesView data, std::uint32_t maxPixelSize,
                                                                bool transform) override
    {
        @autoreleasepool {
            const id source = imageSource(data);
            if (source == nil) {
                return nullptr;
            }
            NSDictionary* const options = @{
                (__bridge NSString*)kCGImageSourceCreateThumbnailFromImageAlways : @YES,
                (__bridge NSString*)kCGImageSourceCreateThumbnailWithTransform : @(transform),
                (__bridge NSString*)kCGImageSourceThumbnailMaxPixelSize : @(maxPixelSize),
            };
            CGImageRef thumbnail = CGImageSourceCreateThumbnailAtIndex((__bridge CGImageSourceRef)source, 0,
                                                                       (__bridge CFDictionaryRef)options);
            return thumbnail == nullptr ? nullptr : std::make_unique<MacImage>(thumbnail);
        }
    }

    [[nodiscard]] std::optional<Bytes> encode(const ports::Image& image, const std::string& type,
                                              double quality) override
    {
        @autoreleasepool {
            NSMutableData* const data = [NSMutableData data];
            CGImageDestinationRef destination = CGImageDestinationCreateWithData(
                (__bridge CFMutableDataRef)data, (__bridge CFStringRef)stringObject(type), 1, nullptr);
            if (destination == nullptr) {
                return std::nullopt;
            }
            NSDictionary* const properties =
                @{(__bridge NSString*)kCGImageDestinationLossyCompressionQuality : @(quality)};
            CGImageDestinationAddImage(destination, static_cast<const MacImage&>(image).native(),
                                       (__bridge CFDictionaryRef)properties);
            const bool isWritten = CGImageDestinationFinalize(destination);
            CFRelease(destination);
            return isWritten ? std::optional{bytesOf(data)} : std::nullopt;
        }
    }

    [[nodiscard]] std::optional<Bytes> jpegRepresentation(BytesView data) override
    {
        @autoreleasepool {
            NSImage* const image = [[NSImage alloc] initWithData:unownedData(data)];
            NSData* const tiff = image.TIFFRepresentation;
            NSBitmapImageRep* const bitmap = tiff == nil ? nil : [NSBitmapImageRep imageRepWithData:tiff];
            NSData* const jpeg = [bitmap representationUsingType:NSBitmapImageFileTypeJPEG properties:@{}];
            return jpeg == nil ? std::nullopt : std::optional{bytesOf(jpeg)};
        }
    }
};

} // namespace

std::unique_ptr<ports::ImageCodec> makeImageCodec()
{
    return std::make_unique<MacImageCodec>();
}

} // namespace sentrel::mac
