// Damaged profiles and presets: each is a message or a success, never a crash or a hang, and what passes the
// check also goes through a render. TAMLO_MUTATIONS sets how many are tried, TAMLO_MUTATION_SEED where they
// begin; the case that runs is told on standard error where TAMLO_MUTATIONS is set, so that one can be run
// again alone.
#include "core/image/tamlo_error.h"
#include "core/pipeline/pipeline.h"
#include "core/profiles/catalogue/profile_store.h"
#include "core/profiles/catalogue/profile_validator.h"
#include "core/profiles/catalogue/user_files.h"
#include "core/profiles/formats/decode_error.h"
#include "core/profiles/formats/profile_error.h"
#include "core/profiles/formats/profile_json.h"
#include "core/profiles/presets/process_settings.h"
#include "core/text/bundled_profiles.h"
#include "tests/support/json_mutator.h"
#include "tests/support/pictures.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include <unistd.h>

namespace tamlo::test {
namespace {

namespace fs = std::filesystem;
using Kind = ProfileKind;

constexpr std::uint64_t kUsualRuns = 400;

struct Runs {
    std::uint64_t count;
    std::uint64_t seed = 1;
    bool told = false;
};

Runs runs(std::uint64_t usual)
{
    Runs out{usual};
    if (const char* count = std::getenv("TAMLO_MUTATIONS")) {
        out.count = std::strtoull(count, nullptr, 10);
        out.told = true;
    }
    if (const char* seed = std::getenv("TAMLO_MUTATION_SEED")) out.seed = std::strtoull(seed, nullptr, 10);
    return out;
}

std::vector<std::string> corpusOf(std::string_view folder)
{
    std::vector<std::string> out;
    for (const auto& [key, text] : BundledProfiles::files())
        if (key.starts_with(folder)) out.emplace_back(text);
    return out;
}

/// The carried profiles of a folder that hold one of some words.
std::vector<std::string> corpusWith(std::string_view folder, const std::vector<std::string>& words)
{
    std::vector<std::string> out;
    for (std::string& text : corpusOf(folder))
        if (std::ranges::any_of(
                words, [&](const std::string& word) { return text.find(word) != std::string::npos; }))
            out.push_back(std::move(text));
    return out;
}

/// Runs the work on damaged texts; a type of error that is none of ours fails the test. Returns how many
/// passed without a message.
template <typename Work>
std::uint64_t tryMutations(const std::vector<std::string>& corpus, const Runs& how, Work&& work)
{
    std::uint64_t passed = 0;
    for (std::uint64_t i = 0; i < how.count; ++i) {
        const std::uint64_t seed = how.seed + i;
        if (how.told) std::fprintf(stderr, "\rcase %llu ", static_cast<unsigned long long>(seed));
        const std::string text = JsonMutator(seed, corpus).next();
        try {
            work(text);
            ++passed;
        } catch (const ProfileValidator::Failure& failure) {
            EXPECT_FALSE(failure.messages().empty());
        } catch (const PresetError& error) {
            EXPECT_FALSE(error.message().empty());
        } catch (const ProfileError&) {
        } catch (const DecodeError&) {
        } catch (const TamloError&) {
        } catch (const std::exception& error) {
            ADD_FAILURE() << "case " << seed << ": " << error.what() << "\n" << text.substr(0, 2000);
        }
    }
    return passed;
}

class MutationTest : public testing::Test {
protected:
    MutationTest() : root_(fs::temp_directory_path() / ("tamlo_mutation_" + std::to_string(getpid())))
    {
        setenv("TAMLO_USER_DIR", root_.c_str(), 1);
        store_.emplace();
    }
    ~MutationTest() override
    {
        unsetenv("TAMLO_USER_DIR");
        fs::remove_all(root_);
    }

    /// Decodes under every kind, and checks under the kind that the file looks like.
    Kind check(const std::string& text) const
    {
        const auto kind = ProfileValidator::guessKind(text);
        if (!kind) throw PresetError("no kind");
        ProfileValidator::validate(*kind, text, *store_);
        EXPECT_FALSE(ProfileValidator::stamped(text).empty());
        return *kind;
    }

    void render(const FilmProfile& film, const LensProfile& lens, const PaperProfile& paper,
                const RenderOptions& options) const
    {
        const RGBImage picture = noisePicture(36, 24, 5, 8.0f);
        const RGBImage out = Pipeline::process(RGBImage(picture), film, lens, paper, options, {});
        EXPECT_GT(out.pixelCount(), 0);
    }

    /// Where hardly anything passes the check, hardly anything is tried behind it.
    static void expectSomePassed(std::uint64_t passed)
    {
        const std::uint64_t count = runs(kUsualRuns).count;
        if (count >= kUsualRuns) {
            EXPECT_GT(passed, count / 40);
        }
    }

    fs::path root_;
    std::optional<ProfileStore> store_;
};

TEST_F(MutationTest, ProfilesThatPassAlsoRender)
{
    RenderOptions options;
    options.printCm = 10;
    const FilmProfile film = store_->film("portra400");
    const LensProfile lens = store_->lens("petzval1900");
    const PaperProfile color = store_->paper("color_ra4"), silver = store_->paper("bw_neutral");
    for (const char* folder : {"films/", "lenses/", "papers/", "filters/"}) {
        const std::uint64_t passed =
            tryMutations(corpusOf(folder), runs(kUsualRuns), [&](const std::string& text) {
                switch (check(text)) {
                case Kind::films: {
                    const auto mutant = ProfileJSON::decode<FilmProfile>(text);
                    return render(mutant, lens, mutant.isBW() ? silver : color, options);
                }
                case Kind::lenses:
                    return render(film, ProfileJSON::decode<LensProfile>(text), color, options);
                case Kind::papers:
                    return render(film, lens, ProfileJSON::decode<PaperProfile>(text), options);
                case Kind::filters: {
                    RenderOptions filtered = options;
                    filtered.filterCut = filtered.filterDiffusion = filtered.filterRays =
                        filtered.filterGrad = "mutant";
                    store_->saveUserProfile(Kind::filters, "mutant", text);
                    return render(film, lens, color, filtered);
                }
                case Kind::presets:
                    return;
                }
            });
        expectSomePassed(passed);
    }
}

TEST_F(MutationTest, PlatesThatPassAlsoRender)
{
    RenderOptions options;
    options.push = options.platePour = 3.0;
    const FilmProfile wet = store_->film("collodion_wet");
    const LensProfile lens = store_->lens("petzval1900");
    const PaperProfile view = store_->paper("ambrotype"), silver = store_->paper("bw_neutral");
    expectSomePassed(tryMutations(corpusWith("films/", {"\"collodion\"", "\"dryplate\""}), runs(kUsualRuns),
                                  [&](const std::string& text) {
                                      check(text);
                                      const auto film = ProfileJSON::decode<FilmProfile>(text);
                                      render(film, lens, film.isCollodion() ? view : silver, options);
                                  }));
    expectSomePassed(tryMutations(corpusWith("papers/", {"\"plate_view\""}), runs(kUsualRuns),
                                  [&](const std::string& text) {
                                      check(text);
                                      render(wet, lens, ProfileJSON::decode<PaperProfile>(text), options);
                                  }));
}

// Every instant film, damaged: what passes the check is developed and laid in its card.
TEST_F(MutationTest, InstantFilmsThatPassGetTheirCard)
{
    std::vector<std::string> corpus = corpusOf("films/");
    std::erase_if(
        corpus, [](const std::string& text) { return !ProfileJSON::decode<FilmProfile>(text).isInstant(); });
    const PaperProfile paper = store_->paper("color_scan");
    const std::uint64_t passed = tryMutations(corpus, runs(kUsualRuns), [&](const std::string& text) {
        if (check(text) != Kind::films) return;
        render(ProfileJSON::decode<FilmProfile>(text), {}, paper, {});
    });
    expectSomePassed(passed);
}

// Every tube and three-colour film, damaged.
TEST_F(MutationTest, TubesAndThreePlatesThatPassAlsoRender)
{
    const LensProfile lens = store_->lens("petzval1900");
    const FilmProfile film = store_->film("portra400");
    const PaperProfile scan = store_->paper("color_scan");
    RenderOptions near;
    near.crtZoom = 7.0;
    expectSomePassed(
        tryMutations(corpusWith("papers/", {"\"crt\": {"}), runs(kUsualRuns), [&](const std::string& text) {
            check(text);
            const auto paper = ProfileJSON::decode<PaperProfile>(text);
            render(film, lens, paper, {});
            render(film, lens, paper, near);
        }));
    expectSomePassed(tryMutations(corpusWith("films/", {"\"tricolor\": {"}), runs(kUsualRuns),
                                  [&](const std::string& text) {
                                      check(text);
                                      render(ProfileJSON::decode<FilmProfile>(text), lens, scan, {});
                                  }));
}

TEST_F(MutationTest, PresetsAreTakenInOrLeaveNothing)
{
    const std::uint64_t passed =
        tryMutations(corpusOf("presets/"), runs(kUsualRuns), [&](const std::string& text) {
            UserFiles::write(root_ / "inbox.tpreset", text);
            PresetImportResult result;
            try {
                result = store_->importPreset(root_ / "inbox.tpreset", PresetConflict::replace);
            } catch (const PresetError&) {
                EXPECT_FALSE(fs::exists(root_ / "presets") && !fs::is_empty(root_ / "presets"));
                throw;
            }
            const PresetDocument document = store_->presetDocument(result.id);
            ProcessSettings frame;
            frame.apply(document.typed(document.blocks()), "x");
            EXPECT_EQ(
                PresetDocument::validate(PresetDocument::decode(document.encoded()), *store_, true).json,
                document.json);
            store_->deletePreset(result.id);
        });
    expectSomePassed(passed);
}

// Numbers that pass the check and once asked for kernels larger than the memory.
TEST_F(MutationTest, AbsurdReachesAreHeld)
{
    const FilmProfile film = store_->film("velvia50");
    const LensProfile lens = store_->lens("petzval1900");
    const PaperProfile paper = store_->paper("scan_film");
    for (const double huge : {1e9, 1e300}) {
        PaperProfile soft = paper;
        soft.scan->mtf = huge;
        render(film, lens, soft, {});
        PaperProfile sharp = paper;
        sharp.scan->sharpen = 1.0;
        sharp.scan->sharpenFrac = huge;
        render(film, lens, sharp, {});
        FilmProfile glowing = film;
        glowing.halation->radiusUm = huge;
        glowing.adjacency->um = huge;
        glowing.softenFrac = huge;
        glowing.grain->sizeUm = huge;
        render(glowing, lens, paper, {});
        for (const char* name : {"polaroid_sx70", "fp100c_silk"}) {
            FilmProfile instant = store_->film(name);
            instant.softenFrac = instant.texture->mottleScale = instant.texture->silkScaleUm = huge;
            instant.texture->silkAmp = instant.texture->streaksAmp = huge;
            if (instant.texture->chatter) {
                ChatterParams& chatter = *instant.texture->chatter;
                chatter.alongMm = chatter.isoMm = chatter.clusterMm = chatter.pasteMm = huge;
                chatter.amp = chatter.endMm = chatter.clusterMod = chatter.pasteAmp = huge;
                SilkLatticeParams& lattice = *instant.texture->silkLattice;
                lattice.amp = lattice.pitchMm = lattice.jitterMm = lattice.modSigmaMm = huge;
                lattice.grainMm = huge;
            }
            instant.frame->imageLongMm = instant.frame->chips = instant.frame->edgeYellow = huge;
            instant.frame->embossUm = huge;
            render(instant, lens, paper, {});
        }
        LensProfile dreamy = lens;
        dreamy.optics.soften = dreamy.optics.bloomSigma2 = dreamy.optics.glowRadius = huge;
        dreamy.optics.glow = 0.5;
        render(film, dreamy, paper, {});
    }
}

} // namespace
} // namespace tamlo::test
