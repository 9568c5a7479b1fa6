// The whole colour chain, in E: decoded pixels in, 8-bit sRGB out, Portra 400 on RA-4 paper.
#include "bench/unit_e.h"

#include "core/io/image_loader.h"
#include "core/io/srgb_encode.h"
#include "core/pipeline/backend.h"
#include "core/profiles/catalogue/profile_store.h"

namespace tamlo::bench {
namespace {

RenderChoices choices()
{
    const ProfileStore& store = ProfileStore::shared();
    RenderChoices c{store.film("portra400"), store.lens("modern_clean"), store.paper("color_ra4"), {}};
    c.options.grainMult = 0.0;
    return c;
}

void chain(benchmark::State& state)
{
    const RGBImage source =
        resized(ImageLoader::loadEncodedAsLinear(TAMLO_SAMPLES "/photos/fig.jpg"), state.range(0));
    const CPUBackend backend;
    const RenderChoices c = choices();
    inE(state, source.pixelCount() * 3,
        [&] { benchmark::DoNotOptimize(ImageWriter::encodeSRGB8RGB(backend.process(source, c))); });
}

BENCHMARK(chain)->Arg(2048)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tamlo::bench

BENCHMARK_MAIN();
