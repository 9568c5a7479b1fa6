#include "core/image/gaussian.h"
#include "core/image/resample.h"
#include "tests/image/test_pictures.h"

#include <hwy/targets.h>

namespace tamlo {
namespace {

class VectorTargets : public ::testing::Test {
protected:
    void TearDown() override { hwy::SetSupportedTargetsForTest(0); }
};

// Vector widths from two to eight doubles: no sum may depend on them.
TEST_F(VectorTargets, AllGiveTheSameBytes)
{
    const RGBImage image = test::testImage(119, 83);
    const RGBImage blurred = gaussianFilter(image, 2.7, EdgeMode::reflect);
    const RGBImage resized = pilResize(image, 61, 101, Resampling::lanczos);
    const Plane plane = pilResize(image.plane(0), 61, 39, Resampling::bicubic);
    std::size_t seen = 0;
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        EXPECT_TRUE(test::sameBytes(gaussianFilter(image, 2.7, EdgeMode::reflect), blurred))
            << hwy::TargetName(target);
        EXPECT_TRUE(test::sameBytes(pilResize(image, 61, 101, Resampling::lanczos), resized))
            << hwy::TargetName(target);
        EXPECT_TRUE(test::sameBytes(pilResize(image.plane(0), 61, 39, Resampling::bicubic), plane))
            << hwy::TargetName(target);
        hwy::SetSupportedTargetsForTest(0);
        ++seen;
    }
    EXPECT_GE(seen, 1u);
}

} // namespace
} // namespace tamlo
