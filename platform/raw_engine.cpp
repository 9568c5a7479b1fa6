#include "platform/raw_engine.h"

#include "platform/checkpoint.h"
#include "platform/input_file.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <utility>

#include <dlfcn.h>
#include <libraw/libraw.h>

namespace tamlo::platform {
namespace {

constexpr unsigned kQuiet = LIBRAW_OPIONS_NO_MEMERR_CALLBACK | LIBRAW_OPIONS_NO_DATAERR_CALLBACK;

void need(int code)
{
    if (code < 0) throw PlatformError(LibRaw::strerror(code));
    if (code > 0) throw PlatformError(std::string("system error ") + std::to_string(code));
}

/// The file as the engine reads it, watched for data that are not there: the engine's decoders take a missing
/// byte for some value and go on.
class WatchedFile : public LibRaw_bigfile_datastream {
public:
    using LibRaw_bigfile_datastream::LibRaw_bigfile_datastream;

    /// The engine whose decoders read from here; a checkpoint that says no makes them stop.
    void setReader(LibRaw& reader) { reader_ = &reader; }
    void rethrowStop()
    {
        if (stop_) std::rethrow_exception(std::exchange(stop_, nullptr));
    }
    /// Whether the work shall end. Exceptions don't pass through the engine: it waits for rethrowStop.
    bool stopAsked() noexcept
    {
        if (stop_) return true;
        try {
            checkpoint();
        } catch (...) {
            stop_ = std::current_exception();
        }
        return stop_ != nullptr;
    }

    int seek(INT64 offset, int whence) override
    {
        readBytes_.fetch_add(tell() - runStart_, std::memory_order_relaxed);
        const int result = LibRaw_bigfile_datastream::seek(offset, whence);
        runStart_ = tell();
        if (tell() > size()) missedSeeks_.fetch_add(1, std::memory_order_relaxed);
        return result;
    }
    int read(void* to, std::size_t size, std::size_t count) override
    {
        if (currentCheckpoint() && reader_ && stopAsked()) reader_->setCancelFlag();
        const int got = LibRaw_bigfile_datastream::read(to, size, count);
        const std::size_t missing = count - std::min(count, static_cast<std::size_t>(std::max(got, 0)));
        if (missing > 0) missedBytes_.fetch_add(missing * size, std::memory_order_relaxed);
        return got;
    }
    int get_char() override
    {
        const int c = LibRaw_bigfile_datastream::get_char();
        if (c < 0) missedChars_.fetch_add(1, std::memory_order_relaxed);
        return c;
    }

    void startWatching()
    {
        missedSeeks_ = missedBytes_ = missedChars_ = 0;
        readBytes_ = 0;
        runStart_ = tell();
    }

    /// Bytes read since then.
    INT64 readBytes() { return readBytes_ + tell() - runStart_; }

    /// A decoder may look ahead by a word, or fill its last block beyond the end.
    bool missedMuch() const
    {
        constexpr std::size_t kLookAheadBytes = 64, kBlockBytes = 65'536;
        return missedSeeks_ > 0 || missedChars_ > kLookAheadBytes || missedBytes_ > kBlockBytes;
    }

private:
    // Some decoders read from several threads.
    std::atomic<std::size_t> missedSeeks_{0}, missedBytes_{0}, missedChars_{0};
    std::atomic<INT64> readBytes_{0}, runStart_{0}; // of finished runs between seeks; where this one began
    LibRaw* reader_ = nullptr;
    std::exception_ptr stop_; // thrown by a checkpoint of the thread that began the work
};

/// The engine and the file it reads, which it does not own.
struct Session {
    explicit Session(const std::string& path) : file((checkFile(path), path.c_str())) {}

    void open()
    {
        need(raw.open_datastream(&file));
        if (raw.imgdata.sizes.width == 0 || raw.imgdata.sizes.height == 0)
            throw PlatformError("it holds no picture");
    }

    WatchedFile file;
    LibRaw raw{kQuiet};

private:
    /// Says what is wrong with a path in the words of every decoder.
    static void checkFile(const std::string& path) { static_cast<void>(InputFile(path)); }
};

/// Kelvin of an EXIF LightSource value, by which a DNG names its calibration illuminants.
double illuminantKelvin(int lightSource)
{
    switch (lightSource) {
    case 2:
    case 14:
        return 4150.0; // fluorescent, cool white
    case 3:
    case 17:
        return 2856.0; // tungsten, standard light A
    case 11:
    case 22:
        return 7500.0; // shade, D75
    case 12:
        return 6400.0; // daylight fluorescent
    case 13:
        return 5050.0; // day white fluorescent
    case 15:
        return 3525.0; // white fluorescent
    case 1:
    case 4:
    case 9:
    case 18:
    case 20:
        return 5500.0; // daylight, flash, fine weather, standard light B, D55
    case 23:
        return 5000.0; // D50
    case 24:
        return 3200.0; // studio tungsten
    default:
        return 6504.0; // D65, C, cloudy, and what is not told
    }
}

using Matrix4x3 = std::array<std::array<double, 3>, 4>;

bool isZero(const Matrix4x3& m)
{
    return std::all_of(m.begin(), m.end(), [](const auto& row) { return row == std::array<double, 3>{}; });
}

/// AnalogBalance × CameraCalibration × ColorMatrix (DNG 1.4, "Mapping Camera Color Space to CIE XYZ").
Matrix4x3 dngMatrix(const libraw_dng_color_t& colour, const libraw_dng_levels_t& levels, int channels)
{
    // The engine leaves what the file does not tell at zero.
    bool isCalibrated = true;
    for (int i = 0; i < channels; ++i) isCalibrated = isCalibrated && colour.calibration[i][i] > 0.0f;
    Matrix4x3 out{};
    for (int i = 0; i < channels; ++i)
        for (int j = 0; j < 3; ++j) {
            double sum = colour.colormatrix[i][j];
            if (isCalibrated) {
                sum = 0.0;
                for (int k = 0; k < channels; ++k)
                    sum += double{colour.calibration[i][k]} * double{colour.colormatrix[k][j]};
            }
            if (levels.analogbalance[i] > 0.0f) sum *= double{levels.analogbalance[i]};
            out[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] = sum;
        }
    return out;
}

/// The DNG's own matrices, which know two illuminants, before the one of the engine's table.
std::vector<RawMatrix> matricesOf(const libraw_data_t& data)
{
    std::vector<RawMatrix> out;
    const int channels = std::clamp(data.idata.colors, 1, 4);
    if (data.idata.dng_version)
        for (const libraw_dng_color_t& colour : data.color.dng_color) {
            const Matrix4x3 m = dngMatrix(colour, data.color.dng_levels, channels);
            if (!isZero(m)) out.push_back({illuminantKelvin(colour.illuminant), m});
        }
    if (!out.empty()) return out;
    RawMatrix known;
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 3; ++j) known.xyzToCamera[i][j] = data.color.cam_xyz[i][j];
    if (!isZero(known.xyzToCamera)) out.push_back(known);
    return out;
}

std::array<double, 4> gainsOf(const float (&multipliers)[4])
{
    std::array<double, 4> gains{};
    if (!(multipliers[0] > 0.0f) || !(multipliers[1] > 0.0f) || !(multipliers[2] > 0.0f)) return gains;
    std::copy_n(multipliers, 4, gains.begin());
    if (!(gains[3] > 0.0)) gains[3] = gains[1];
    return gains;
}

} // namespace

void useOneRawThread()
{
    // The engine's own threads are OpenMP's where it was built with them; the setting is the caller's own.
    using SetThreads = void (*)(int);
    static const auto set = reinterpret_cast<SetThreads>(::dlsym(RTLD_DEFAULT, "omp_set_num_threads"));
    if (set) set(1);
}

RawHead readRawHead(const std::string& path)
{
    const auto session = std::make_unique<Session>(path); // too large for a stack
    session->open();
    LibRaw& raw = session->raw;
    RawHead head;
    head.colour.channels = std::clamp(raw.imgdata.idata.colors, 1, 4);
    head.colour.matrices = matricesOf(raw.imgdata);
    head.colour.asShotGains = gainsOf(raw.imgdata.color.cam_mul);
    head.colour.daylightGains = gainsOf(raw.imgdata.color.pre_mul);
    need(raw.adjust_sizes_info_only()); // turns the sizes upright; nothing can be developed after it
    head.width = raw.imgdata.sizes.iwidth;
    head.height = raw.imgdata.sizes.iheight;
    if (head.width < 1 || head.height < 1) throw PlatformError("it holds no picture");
    return head;
}

struct RawFrame::Engine : Session {
    using Session::Session;
    bool damaged = false;

    static void onDamage(void* self, const char*, int) { static_cast<Engine*>(self)->damaged = true; }
    static int onProgress(void* self, LibRaw_progress, int, int)
    {
        return static_cast<Engine*>(self)->file.stopAsked() ? 1 : 0;
    }

    /// One long step of the engine.
    void run(int (LibRaw::*step)())
    {
        const int code = (raw.*step)();
        file.rethrowStop();
        need(code);
    }
};

RawFrame::RawFrame(const std::string& path, const std::array<double, 4>& gains, Demosaic demosaic)
    : engine_(std::make_unique<Engine>(path))
{
    LibRaw& raw = engine_->raw;
    raw.set_dataerror_handler(Engine::onDamage, engine_.get());
    raw.set_progress_handler(Engine::onProgress, engine_.get());
    engine_->file.setReader(raw);
    libraw_output_params_t& params = raw.imgdata.params;
    params.output_color = 0; // the camera's own
    params.output_bps = 16;
    params.gamm[0] = params.gamm[1] = 1.0;
    params.no_auto_bright = 1;
    params.adjust_maximum_thr = 0.0f; // white is the camera's, not the brightest pixel of this frame
    params.highlight = 2;
    params.use_camera_wb = 0;
    params.use_auto_wb = 0;
    params.threshold = 0.0f;
    params.med_passes = 0;
    params.fbdd_noiserd = 0;
    params.half_size = demosaic == Demosaic::halfSize;
    params.user_qual = demosaic == Demosaic::best ? 3 : 0; // adaptive homogeneity-directed, or bilinear
    for (std::size_t c = 0; c < 4; ++c) params.user_mul[c] = static_cast<float>(gains[c]);
    engine_->open();
    engine_->file.startWatching();
    engine_->run(&LibRaw::unpack);
    if (engine_->file.missedMuch()) throw PlatformError("the file is cut short");
    if (engine_->damaged || raw.error_count() != 0) throw PlatformError("its picture data are damaged");
    // Behind a head without picture the engine hands out whatever its memory held.
    constexpr INT64 kMostPixelsPerByte = 1024; // no coder packs a sensor's frame tighter
    const INT64 pixels = INT64{raw.imgdata.sizes.raw_width} * raw.imgdata.sizes.raw_height;
    if (engine_->file.readBytes() < pixels / kMostPixelsPerByte) throw PlatformError("the file is cut short");
    engine_->run(&LibRaw::dcraw_process);
    if (!raw.imgdata.image || width() < 1 || height() < 1) throw PlatformError("it holds no picture");
}

RawFrame::~RawFrame() = default;

std::int64_t RawFrame::width() const noexcept
{
    return engine_->raw.imgdata.sizes.width;
}

std::int64_t RawFrame::height() const noexcept
{
    return engine_->raw.imgdata.sizes.height;
}

const std::uint16_t* RawFrame::samples() const noexcept
{
    return &engine_->raw.imgdata.image[0][0];
}

int RawFrame::flip() const noexcept
{
    const int flip = engine_->raw.imgdata.sizes.flip;
    switch ((flip + 3600) % 360) { // some makers give degrees
    case 270:
        return 5;
    case 180:
        return 3;
    case 90:
        return 6;
    default:
        return flip & 7;
    }
}

} // namespace tamlo::platform
