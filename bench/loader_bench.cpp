// Files in: a 24-megapixel JPEG from disk to the bitmap and on to scene light, the conversion of a profile
// that is not sRGB, and the pass over a RAW frame.
#include "bench/unit_e.h"
#include "core/io/encoded_decode.h"
#include "core/io/raw_colour.h"
#include "core/io/raw_decode.h"

#include "core/image/bands.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace tamlo {
namespace {

constexpr std::int64_t kSamples24MP = 6000LL * 4000 * 3;

/// The picture to decode: TAMLO_BENCH_JPEG, any JPEG; figures in E are per its own pixels.
std::string benchPicture()
{
    const char* path = std::getenv("TAMLO_BENCH_JPEG");
    return path ? path : std::string(TAMLO_SAMPLES) + "/color/fig-srgb.jpg";
}

void decodeJPEG(benchmark::State& state)
{
    const std::string path = benchPicture();
    const ImageLoader::EncodedDecode probe = ImageLoader::decodeEncoded(path);
    bench::inE(state, probe.width * probe.height * 3,
               [&] { benchmark::DoNotOptimize(ImageLoader::decodeEncoded(path)); });
}
BENCHMARK(decodeJPEG)->UseManualTime()->Unit(benchmark::kMillisecond);

void decodeDisplayP3(benchmark::State& state)
{
    const std::string path = std::string(TAMLO_SAMPLES) + "/color/fig-display-p3.jpg";
    const ImageLoader::EncodedDecode probe = ImageLoader::decodeEncoded(path);
    bench::inE(state, probe.width * probe.height * 3,
               [&] { benchmark::DoNotOptimize(ImageLoader::decodeEncoded(path)); });
}
BENCHMARK(decodeDisplayP3)->UseManualTime()->Unit(benchmark::kMillisecond);

void linearize24MP(benchmark::State& state)
{
    ImageLoader::EncodedDecode decode;
    decode.width = 6000;
    decode.height = 4000;
    decode.rgba = PageBuffer(static_cast<std::size_t>(kSamples24MP / 3 * 4));
    const auto bytes = decode.rgba.bytes(decode.rgba.byteCount());
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 2654435761u >> 24);
    RGBImage image(6000, 4000);
    const std::span<float> into{image.mutableData(), image.data.size()};
    bench::inE(state, kSamples24MP, [&] { decode.linearize(into); });
}
BENCHMARK(linearize24MP)->UseManualTime()->Unit(benchmark::kMillisecond);

void rawToLinear24MP(benchmark::State& state)
{
    std::vector<std::uint16_t> samples(static_cast<std::size_t>(kSamples24MP / 3 * 4), 12345);
    const ImageLoader::RawSamples from{samples.data(), 6000, 4000, static_cast<int>(state.range(0))};
    ImageLoader::RawToLinear params;
    for (std::size_t r = 0; r < 3; ++r)
        for (std::size_t c = 0; c < 3; ++c) params.matrix[r][c] = r == c ? 2e-5f : -3e-6f;
    RGBImage image(from.uprightSize().width, from.uprightSize().height);
    float* to = image.mutableData();
    bench::inE(state, kSamples24MP, [&] {
        parallelBands(image.height, image.width, [&](std::int64_t start, std::int64_t end) {
            ImageLoader::raw_to_linear(from, params, to, start, end);
        });
    });
}
BENCHMARK(rawToLinear24MP)->Arg(0)->Arg(6)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo

BENCHMARK_MAIN();
