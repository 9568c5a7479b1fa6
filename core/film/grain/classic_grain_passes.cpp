#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/film/grain/classic_grain_passes.cpp"
#include <hwy/foreach_target.h>

#include "core/film/grain/classic_grain_passes.h"

#include "core/image/bands.h"
#include "core/image/position_hash.h"
#include "core/image/vector_fold-inl.h"
#include "core/image/vector_noise-inl.h"
#include "core/image/vector_pixels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace tamlo {
namespace HWY_NAMESPACE {

/// gaussNoise along a row: columnHashes holds the hash of (x, seed), rowTerm the part of y and layer. count
/// is a multiple of the widest vector.
void noiseRun(const std::uint32_t* columnHashes, std::uint32_t rowTerm, float* out, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    for (std::size_t i = 0; i < count; i += hn::Lanes(d)) {
        const auto mixed = hn::Add(hn::LoadU(du, columnHashes + i), hn::Set(du, rowTerm));
        const auto b = hashLanes(du, mixed);
        const auto c = hashLanes(du, hn::Xor(b, hn::Set(du, 0x27D4EB2Fu)));
        hn::StoreU(normalLanes(d, b, c), d, out + i);
    }
}

/// Writes the k-th vector of a fold behind the ones before it.
template <class D>
HWY_INLINE auto storeTo(D d, float* out)
{
    return [=](std::size_t k, hn::Vec<D> sum) HWY_ATTR { hn::StoreU(sum, d, out + k * hn::Lanes(d)); };
}

/// Along a row: from holds radius samples ahead of the first output.
void foldRowRun(const float* from, const std::vector<float>& w, float* out, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const float* centre = from + w.size() - 1;
    for (std::size_t x = 0; x < count; x += 4 * hn::Lanes(d))
        foldFour(
            d, w.data(), w.size() - 1, [&](std::size_t j) HWY_ATTR { return centre + x - j; },
            [&](std::size_t j) HWY_ATTR { return centre + x + j; }, storeTo(d, out + x));
}

/// Across rows: rows[radius] is the centre.
void foldColumnRun(const float* const* rows, const std::vector<float>& w, float* out, std::size_t count)
{
    const hn::ScalableTag<float> d;
    const std::size_t radius = w.size() - 1;
    for (std::size_t x = 0; x < count; x += 4 * hn::Lanes(d))
        foldFour(
            d, w.data(), radius, [&](std::size_t j) HWY_ATTR { return rows[radius - j] + x; },
            [&](std::size_t j) HWY_ATTR { return rows[radius + j] + x; }, storeTo(d, out + x));
}

/// The vector form of GrainEnvelope::at.
template <class D, class V>
HWY_INLINE V grainAmplitude(D d, const GrainEnvelope& envelope, V density)
{
    const V above = hn::Mul(hn::Sub(density, hn::Set(d, envelope.dmin)), hn::Set(d, envelope.invSpan));
    const V dn = hn::Min(hn::Max(above, hn::Zero(d)), hn::Set(d, 1.0f));
    const V rise = hn::Add(dn, hn::Set(d, GrainEnvelope::kFogFloor));
    const V fall = hn::Sub(hn::Set(d, 1.0f), hn::Mul(hn::Set(d, GrainEnvelope::kShoulder), dn));
    return hn::Mul(hn::Set(d, envelope.scale), hn::Sqrt(hn::Mul(rise, fall)));
}

template <class D, class V>
HWY_INLINE V grained(D d, const GrainEnvelope& envelope, V density, V field)
{
    return hn::Add(density, hn::Mul(grainAmplitude(d, envelope, density), field));
}

/// field is readable up to a whole number of vectors past count.
void grainBWRun(float* density, const float* field, std::size_t count, const GrainEnvelope& envelope)
{
    const hn::ScalableTag<float> d;
    const std::size_t lanes = hn::Lanes(d);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes)
        hn::StoreU(grained(d, envelope, hn::LoadU(d, density + i), hn::LoadU(d, field + i)), d, density + i);
    if (i == count) return;
    HWY_ALIGN float block[hn::MaxLanes(d)];
    hn::Store(grained(d, envelope, loadRun(d, density + i, count - i), hn::LoadU(d, field + i)), d, block);
    std::copy_n(block, count - i, density + i);
}

void grainColorRun(float* pixels, const std::array<const float*, 3>& fields, std::size_t count,
                   const std::array<GrainEnvelope, 3>& envelopes)
{
    const hn::ScalableTag<float> d;
    using V = hn::Vec<decltype(d)>;
    const auto layer = [&](V density, std::size_t c, std::size_t first) HWY_ATTR {
        if (!fields[c]) return density;
        return grained(d, envelopes[c], density, hn::LoadU(d, fields[c] + first));
    };
    eachTriple(d, pixels, count, [&](Triple<V> density, std::size_t first, std::size_t) HWY_ATTR {
        return Triple<V>{layer(density.r, 0, first), layer(density.g, 1, first), layer(density.b, 2, first)};
    });
}

} // namespace HWY_NAMESPACE
} // namespace tamlo
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tamlo {

HWY_EXPORT(noiseRun);
HWY_EXPORT(foldRowRun);
HWY_EXPORT(foldColumnRun);
HWY_EXPORT(grainBWRun);
HWY_EXPORT(grainColorRun);

namespace {

/// Scratch rows are whole groups of four vectors of any width.
constexpr std::int64_t kRowGroup = 64;

std::int64_t padded(std::int64_t n)
{
    return (n + kRowGroup - 1) / kRowGroup * kRowGroup;
}

/// A tile's rows of one field, made in rising order. The noise rows, blurred along x, are held in a ring as
/// far as the fold across rows reaches.
class FieldRows {
public:
    FieldRows(const GrainField& field, std::int64_t x0, std::int64_t columns)
        : field_(field),
          radius_(field.radius()),
          columns_(padded(columns)),
          noiseColumns_(padded(columns_ + 2 * radius_)),
          hashes_(static_cast<std::size_t>(noiseColumns_)),
          noise_(static_cast<std::size_t>(noiseColumns_)),
          out_(static_cast<std::size_t>(columns_)),
          ring_(static_cast<std::size_t>((2 * radius_ + 1) * columns_)),
          rows_(static_cast<std::size_t>(2 * radius_ + 1))
    {
        for (std::int64_t i = 0; i < noiseColumns_; ++i)
            hashes_[static_cast<std::size_t>(i)] =
                hash32(static_cast<std::uint32_t>(x0 - radius_ + i) * 0x9E3779B1u + field.seed * 0x2545F491u);
    }

    /// Makes the noise ahead of the field's row y.
    void start(std::int64_t y)
    {
        for (std::int64_t i = y - radius_; i < y + radius_; ++i) makeRow(i);
    }

    /// The field's row y, the one after the last that was asked for.
    const float* next(std::int64_t y)
    {
        makeRow(y + radius_);
        for (std::int64_t i = -radius_; i <= radius_; ++i)
            rows_[static_cast<std::size_t>(i + radius_)] = ringRow(y + i);
        HWY_DYNAMIC_DISPATCH(foldColumnRun)
        (rows_.data(), field_.columnKernel, out_.data(), out_.size());
        return out_.data();
    }

private:
    float* ringRow(std::int64_t y)
    {
        const std::int64_t slots = 2 * radius_ + 1;
        return ring_.data() + ((y % slots) + slots) % slots * columns_;
    }

    void makeRow(std::int64_t y)
    {
        const std::uint32_t rowTerm =
            static_cast<std::uint32_t>(y) * 0x85EBCA77u + field_.layer * 0xC2B2AE3Du;
        HWY_DYNAMIC_DISPATCH(noiseRun)(hashes_.data(), rowTerm, noise_.data(), noise_.size());
        HWY_DYNAMIC_DISPATCH(foldRowRun)
        (noise_.data(), field_.rowKernel, ringRow(y), static_cast<std::size_t>(columns_));
    }

    const GrainField& field_;
    std::int64_t radius_, columns_, noiseColumns_;
    std::vector<std::uint32_t> hashes_;
    std::vector<float> noise_, out_, ring_;
    std::vector<const float*> rows_;
};

/// work(tile's first column, columns, first row, end row) over a picture, a band of rows to a worker. A tile
/// keeps the rings of its rows in the second-level cache.
template <typename Work>
void eachTile(Size size, std::int64_t radius, const Work& work)
{
    constexpr std::int64_t kTileColumns = 1024;
    const std::int64_t columns = std::max(kTileColumns, padded(4 * radius));
    parallelBands(size.height, size.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t x = 0; x < size.width; x += columns)
            work(x, std::min(columns, size.width - x), start, end);
    });
}

} // namespace

void grain_field(Plane& out, const GrainField& field)
{
    float* data = out.mutableData();
    eachTile(out.size(), field.radius(),
             [&](std::int64_t x0, std::int64_t columns, std::int64_t start, std::int64_t end) {
                 FieldRows rows(field, x0, columns);
                 rows.start(start);
                 for (std::int64_t y = start; y < end; ++y)
                     std::copy_n(rows.next(y), columns, data + y * out.width + x0);
             });
}

void grain_bw(Plane& density, const GrainField& field, const GrainEnvelope& envelope)
{
    float* data = density.mutableData();
    eachTile(density.size(), field.radius(),
             [&](std::int64_t x0, std::int64_t columns, std::int64_t start, std::int64_t end) {
                 FieldRows rows(field, x0, columns);
                 rows.start(start);
                 for (std::int64_t y = start; y < end; ++y) HWY_DYNAMIC_DISPATCH(grainBWRun)
                 (data + y * density.width + x0, rows.next(y), static_cast<std::size_t>(columns), envelope);
             });
}

void grain_color(RGBImage& density, const GrainColorParams& params)
{
    std::int64_t radius = 0;
    for (const GrainField& field : params.fields) radius = std::max(radius, field.radius());
    float* data = density.mutableData();
    eachTile(density.size(), radius,
             [&](std::int64_t x0, std::int64_t columns, std::int64_t start, std::int64_t end) {
                 std::vector<FieldRows> layers;
                 layers.reserve(3);
                 for (const GrainField& field : params.fields) layers.emplace_back(field, x0, columns);
                 const auto active = [&](std::size_t c) { return params.envelopes[c].scale > 0.0f; };
                 for (std::size_t c = 0; c < 3; ++c)
                     if (active(c)) layers[c].start(start);
                 std::array<const float*, 3> rows{};
                 for (std::int64_t y = start; y < end; ++y) {
                     for (std::size_t c = 0; c < 3; ++c)
                         if (active(c)) rows[c] = layers[c].next(y);
                     HWY_DYNAMIC_DISPATCH(grainColorRun)
                     (data + (y * density.width + x0) * 3, rows, static_cast<std::size_t>(columns),
                      params.envelopes);
                 }
             });
}

} // namespace tamlo
#endif
