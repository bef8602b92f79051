#include "melodex/ui/cached_image_manager.h"

#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace melodex {
namespace {

TEST(CachedImageTest, KnowsImagesByTheirFirstBytes) {
    struct Case {
        std::string bytes;
        ImageFormat format;
    };
    const Case cases[] = {
        {std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16), ImageFormat::Png},
        {"\xFF\xD8\xFF\xE0\0\x10JFIF", ImageFormat::Jpeg},
        {"GIF89a\x01\0\x01\0", ImageFormat::Gif},
        {"GIF87a\x01\0\x01\0", ImageFormat::Gif},
        {std::string("RIFF\x24\0\0\0WEBPVP8 ", 16), ImageFormat::WebP},
        {std::string("RIFF\x24\0\0\0WAVEfmt ", 16), ImageFormat::None},  // a sound
        {std::string("BM\x46\0\0\0\0\0\0\0\x36\0\0\0", 14), ImageFormat::Bmp},
        {"BMW drivers club minutes", ImageFormat::None},  // "BM" alone is no bitmap
        {"<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"/>", ImageFormat::Svg},
        {"\xEF\xBB\xBF  <svg width=\"1\"/>", ImageFormat::Svg},
        {"<html><body><svg/></body></html>", ImageFormat::Svg},  // text that holds an svg element
        {"Amazing grace, how sweet the sound <svg", ImageFormat::None},
        {"\x89PN", ImageFormat::None},
        {"", ImageFormat::None},
    };
    for (const Case& c : cases)
        EXPECT_EQ(imageFormatOf(c.bytes), c.format) << c.bytes;
    EXPECT_STREQ(imageMimeType(ImageFormat::Svg), "image/svg+xml");
}

TEST(CachedImageTest, ReadsTheFormatOfItsFileAndKeepsAnAbsolutePath) {
    const CachedImage red(test::testDataPath("display/red.png"));
    EXPECT_TRUE(red.isValid());
    EXPECT_EQ(red.format(), ImageFormat::Png);
    EXPECT_EQ(red.path().front(), '/');
    EXPECT_FALSE(CachedImage(test::testDataPath("display/not-an-image.png")).isValid());
    EXPECT_FALSE(CachedImage("/no/such/picture.png").isValid());
}

TEST(CachedImageManagerTest, SharesOneCopyPerPathUntilTheLastHolderLetsGo) {
    CachedImageManager cache;
    const CachedImage request(test::testDataPath("display/red.png"));
    CachedImage* first = cache.add(&request);
    ASSERT_NE(first, nullptr);
    EXPECT_NE(first, &request);  // the cache's own copy
    CachedImage* second = cache.add(test::testDataPath("display/red.png"));
    EXPECT_EQ(second, first);
    EXPECT_EQ(cache.holders(first), 2);
    EXPECT_EQ(cache.count(), 1);
    EXPECT_EQ(cache.find(request.path()), first);

    cache.remove(first);
    EXPECT_EQ(cache.holders(first), 1);
    cache.remove(second);
    EXPECT_EQ(cache.count(), 0);
    EXPECT_EQ(cache.find(request.path()), nullptr);
}

TEST(CachedImageManagerTest, IgnoresNullAndPointersItDidNotGiveOut) {
    CachedImageManager cache;
    EXPECT_EQ(cache.add(static_cast<const CachedImage*>(nullptr)), nullptr);
    cache.remove(nullptr);
    CachedImage* held = cache.add(test::testDataPath("display/blue.png"));
    CachedImage stranger(test::testDataPath("display/blue.png"));  // same path, not the cache's
    cache.remove(&stranger);
    EXPECT_EQ(cache.holders(held), 1);
    EXPECT_EQ(cache.holders(&stranger), 0);
    cache.remove(held);
    EXPECT_EQ(cache.count(), 0);
}

}  // namespace
}  // namespace melodex
