// The way out of the pipeline at 24 megapixels: linear light to bytes, and bytes to JPEG, beside
// libjpeg-turbo on one core in the same run. The picture is a photograph, tiled, not scaled up: the time of
// an entropy coder is in the detail.
#include "bench/unit_e.h"
#include "core/image/zcolor.h"
#include "core/io/jpeg_encoder.h"
#include "core/io/srgb_encode.h"
#include "platform/worker_pool.h"
#include "tests/support/jpeg_reference.h"

namespace {

using namespace tamlo;

constexpr std::int64_t kWidth = 6000, kHeight = 4000, kSamples = kWidth * kHeight * 3;

/// The photograph repeated over 6000 × 4000, every second tile mirrored so that no edge shows.
const std::vector<std::uint8_t>& photograph()
{
    static const std::vector<std::uint8_t> rgb = [] {
        const test::DecodedJpeg tile = test::decodeJpegFile(TAMLO_SAMPLES "/photos/fig.jpg");
        const auto fold = [](std::int64_t i, std::int64_t n) {
            return (i / n) % 2 == 0 ? i % n : n - 1 - i % n;
        };
        std::vector<std::uint8_t> out(kSamples);
        for (std::int64_t y = 0; y < kHeight; ++y)
            for (std::int64_t x = 0; x < kWidth; ++x)
                for (std::int64_t c = 0; c < 3; ++c)
                    out[static_cast<std::size_t>((y * kWidth + x) * 3 + c)] =
                        tile.rgb[static_cast<std::size_t>(
                            (fold(y, tile.height) * tile.width + fold(x, tile.width)) * 3 + c)];
        return out;
    }();
    return rgb;
}

void jpegEncoder(benchmark::State& state)
{
    const platform::WorkerLimit limit(static_cast<int>(state.range(0)));
    const auto& rgb = photograph();
    std::size_t bytes = 0;
    bench::inE(state, kSamples, [&] { bytes = JPEGEncoder::encode({rgb, kWidth, kHeight}, 95).size(); });
    state.counters["file_bytes"] = static_cast<double>(bytes);
}
BENCHMARK(jpegEncoder)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);

void libjpegTurboOneCore(benchmark::State& state)
{
    const auto& rgb = photograph();
    std::size_t bytes = 0;
    bench::inE(state, kSamples, [&] { bytes = test::encodeJpegByLibrary(rgb, kWidth, kHeight, 95).size(); });
    state.counters["file_bytes"] = static_cast<double>(bytes);
}
BENCHMARK(libjpegTurboOneCore)->UseManualTime()->Unit(benchmark::kMillisecond);

RGBImage linearPhotograph()
{
    RGBImage image(kWidth, kHeight);
    float* to = image.mutableData();
    const auto& rgb = photograph();
    for (std::int64_t i = 0; i < kSamples; ++i)
        to[i] = ZColor::srgbToLinear(static_cast<float>(rgb[static_cast<std::size_t>(i)]) / 255.0f);
    return image;
}

void encodeSRGB8RGB(benchmark::State& state)
{
    const platform::WorkerLimit limit(static_cast<int>(state.range(0)));
    const RGBImage image = linearPhotograph();
    bench::inE(state, kSamples, [&] { benchmark::DoNotOptimize(ImageWriter::encodeSRGB8RGB(image).base()); });
}
BENCHMARK(encodeSRGB8RGB)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);

void encodeSRGB16(benchmark::State& state)
{
    const RGBImage image = linearPhotograph();
    std::vector<std::uint16_t> to(kSamples);
    bench::inE(state, kSamples, [&] { ImageWriter::encodeSRGB16Rows(image, 0, kHeight, to); });
}
BENCHMARK(encodeSRGB16)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
