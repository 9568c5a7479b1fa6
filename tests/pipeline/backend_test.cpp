#include "core/pipeline/backend.h"
#include "tests/support/pictures.h"

#include <vector>

namespace tamlo {
namespace {

/// An executor that aborts a number of times before it gives the picture back.
class FaultyBackend : public RenderBackend {
public:
    explicit FaultyBackend(int aborts) : abortsLeft(aborts) {}
    std::string_view name() const override { return "faulty"; }
    mutable int abortsLeft;
    mutable std::vector<float> seen;

protected:
    RGBImage render(RGBImage image, const RenderChoices&) const override
    {
        seen.push_back(image.data[0]);
        image.mutableData()[0] = -1.0f; // a render may spoil its own copy
        if (abortsLeft-- > 0) throw TamloError::gpuAborted({GPUAbort::Kind::timeout, 3, "too long"});
        return image;
    }
};

TEST(RenderBackend, RetriesAnAbortOnceOnTheSameInput)
{
    const RGBImage source(4, 4, {0.5f, 0.5f, 0.5f});
    int recovered = 0;
    const auto run = [&](FaultyBackend& backend) {
        backend.onRecovered = [&](const GPUAbort& abort) { recovered += abort.code; };
        return backend.process(source, {});
    };
    FaultyBackend sound(0), once(1), twice(2);
    run(sound);
    EXPECT_EQ(recovered, 0);
    run(once);
    EXPECT_EQ(recovered, 3);
    EXPECT_EQ(once.seen, (std::vector<float>{0.5f, 0.5f}));
    try {
        run(twice);
        FAIL() << "the second abort was swallowed";
    } catch (const TamloError& error) {
        EXPECT_STREQ(error.what(), "GPU aborted (timeout, code 3): too long");
    }
    EXPECT_EQ(twice.seen.size(), 2u);
    EXPECT_EQ(recovered, 3);
    EXPECT_EQ(source.data[0], 0.5f);
}

TEST(RenderBackend, KindsAndReducedCopies)
{
    EXPECT_EQ(makeBackend(BackendKind::cpu)->name(), "cpu");
    EXPECT_THROW(makeBackend(BackendKind::metal), TamloError);

    const RGBImage image = test::noisePicture(30, 20, 1);
    EXPECT_EQ(resized(image, 30).data.data(), image.data.data());
    EXPECT_EQ(resized(image, 15).size(), (Size{15, 10}));
    EXPECT_EQ(resized(RGBImage(1000, 1), 10).size(), (Size{10, 1}));
    const RGBImage filled = resized(Size{8, 4}, 4, [](float* p) { std::fill_n(p, 8 * 4 * 3, 0.25f); });
    EXPECT_EQ(filled.size(), (Size{4, 2}));
    for (const float v : filled.data) EXPECT_NEAR(v, 0.25f, 1e-6f);
}

} // namespace
} // namespace tamlo
