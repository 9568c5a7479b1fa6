#include "core/process/mat/mat_passes.h"

#include "core/image/bands.h"

#include <algorithm>

namespace tamlo {
namespace {

float unit(float v)
{
    return std::clamp(v, 0.0f, 1.0f);
}

float* put(float* to, const Vec3f& colour)
{
    for (const float v : colour) *to++ = v;
    return to;
}

void fill(float* row, std::int64_t from, std::int64_t to, const Vec3f& colour)
{
    float* p = row + from * 3;
    for (std::int64_t x = from; x < to; ++x) p = put(p, colour);
}

/// One row of the board at x, where the opening lies dv rows away (0 or less beside it).
class BoardRow {
public:
    BoardRow(const MatParams& params, std::int64_t y)
        : params_(params),
          reach_(static_cast<std::int64_t>(params.board[0].size()) - 1),
          side_(params.top - y >= y - params.bot ? 0 : 1),
          dv_(std::max(params.top - y, y - params.bot))
    {}

    std::int64_t rowsAway() const { return dv_; }

    /// Everything of the row that is board.
    void draw(float* row) const
    {
        const std::int64_t width = params_.width;
        if (dv_ > reach_) return fill(row, 0, width, params_.surf);
        const auto inside = [&](std::int64_t x) { return std::clamp<std::int64_t>(x, 0, width); };
        const std::int64_t first = inside(params_.left - reach_), left = inside(params_.left);
        const std::int64_t after = std::max(left, inside(params_.right + 1));
        const std::int64_t last = std::max(after, inside(params_.right + 1 + reach_));
        fill(row, 0, first, params_.surf);
        for (std::int64_t x = first; x < left; ++x) put(row + x * 3, at(x));
        if (dv_ > 0) fill(row, left, after, params_.board[side_][static_cast<std::size_t>(dv_)]);
        for (std::int64_t x = after; x < last; ++x) put(row + x * 3, at(x));
        fill(row, last, width, params_.surf);
    }

private:
    Vec3f at(std::int64_t x) const
    {
        const std::int64_t dh = std::max(params_.left - x, x - params_.right), d = std::max(dv_, dh);
        if (d > reach_) return params_.surf;
        const std::size_t side = dv_ >= dh ? side_ : (params_.left - x >= x - params_.right ? 2 : 3);
        Vec3f v = params_.board[side][static_cast<std::size_t>(d)];
        const auto inSquare = [&](std::int64_t k) {
            return k >= params_.squareFirst && k <= params_.squareLast;
        };
        if (inSquare(dv_) && inSquare(dh))
            for (std::size_t c = 0; c < 3; ++c) v[c] = unit(v[c] * params_.squareKeep + params_.square[c]);
        return v;
    }

    const MatParams& params_;
    std::int64_t reach_;
    std::size_t side_;
    std::int64_t dv_;
};

/// One row of the sheet in the opening.
void openingRow(const float* sheet, float* row, std::int64_t y, const MatParams& params)
{
    const std::int64_t reach = static_cast<std::int64_t>(params.shade[0].size());
    const std::int64_t up = y - params.top, down = params.bot - y, ev = std::min(up, down);
    const std::size_t vside = up <= down ? 0 : 1;
    const auto factor = [&](std::size_t side, std::int64_t depth) {
        return depth < reach ? params.shade[side][static_cast<std::size_t>(depth)] : 1.0f;
    };
    const auto draw = [&](std::int64_t x, float light) {
        for (int c = 0; c < 3; ++c) row[x * 3 + c] = unit(sheet[(x - params.sheetX) * 3 + c] * light);
    };
    const auto ring = [&](std::int64_t x) {
        const std::int64_t eh = std::min(x - params.left, params.right - x);
        draw(x, ev <= eh ? factor(vside, ev) : factor(x - params.left <= params.right - x ? 2 : 3, eh));
    };
    const std::int64_t innerFirst = std::min(params.left + reach, params.right + 1);
    const std::int64_t innerEnd = std::max(params.right + 1 - reach, innerFirst);
    for (std::int64_t x = params.left; x < innerFirst; ++x) ring(x);
    const float light = factor(vside, ev);
    const float* from = sheet + (innerFirst - params.sheetX) * 3;
    float* to = row + innerFirst * 3;
    for (std::int64_t i = 0; i < (innerEnd - innerFirst) * 3; ++i) to[i] = unit(from[i] * light);
    for (std::int64_t x = innerEnd; x <= params.right; ++x) ring(x);
}

} // namespace

RGBImage mat_compose(const RGBImage& sheet, const MatParams& params)
{
    RGBImage out(params.width, params.height);
    float* data = out.mutableData();
    // Beside the opening every row of the board is the same.
    std::vector<float> beside(static_cast<std::size_t>(params.width) * 3);
    if (params.top <= params.bot) BoardRow(params, params.top).draw(beside.data());
    parallelBands(params.height, params.width * 3, [&](std::int64_t start, std::int64_t end) {
        for (std::int64_t y = start; y < end; ++y) {
            float* row = data + y * params.width * 3;
            const BoardRow board(params, y);
            if (board.rowsAway() > 0) {
                board.draw(row);
                continue;
            }
            std::copy(beside.begin(), beside.end(), row);
            if (params.left <= params.right) openingRow(sheet.row(y - params.sheetY), row, y, params);
        }
    });
    return out;
}

} // namespace tamlo
