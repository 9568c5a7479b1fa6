#include "platform/heif_decoder.h"

#include "platform/input_file.h"
#include "platform/picture_rows.h"
#include "platform/platform_error.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include <libheif/heif.h>

namespace tamlo::platform {
namespace {

struct Freer {
    void operator()(heif_context* p) const noexcept { heif_context_free(p); }
    void operator()(const heif_image_handle* p) const noexcept { heif_image_handle_release(p); }
    void operator()(const heif_image* p) const noexcept { heif_image_release(p); }
    void operator()(heif_decoding_options* p) const noexcept { heif_decoding_options_free(p); }
    void operator()(heif_color_profile_nclx* p) const noexcept { heif_nclx_color_profile_free(p); }
};
template <typename T>
using Held = std::unique_ptr<T, Freer>;

void need(const heif_error& error)
{
    if (error.code != heif_error_Ok)
        throw PlatformError(error.message && *error.message ? error.message : "its picture data are damaged");
}

Held<heif_image_handle> primaryPicture(heif_context* context)
{
    heif_image_handle* handle = nullptr;
    need(heif_context_get_primary_image_handle(context, &handle));
    return Held<heif_image_handle>(handle);
}

NamedSpace spaceOf(const heif_color_profile_nclx& nclx)
{
    NamedSpace space;
    if (nclx.color_primaries != heif_color_primaries_unspecified && nclx.color_primary_white_y > 0.0f)
        space.primaries = {nclx.color_primary_red_x,   nclx.color_primary_red_y,  nclx.color_primary_green_x,
                           nclx.color_primary_green_y, nclx.color_primary_blue_x, nclx.color_primary_blue_y,
                           nclx.color_primary_white_x, nclx.color_primary_white_y};
    switch (nclx.transfer_characteristics) {
    case heif_transfer_characteristic_ITU_R_BT_709_5:
    case heif_transfer_characteristic_ITU_R_BT_601_6:
    case heif_transfer_characteristic_ITU_R_BT_2020_2_10bit:
    case heif_transfer_characteristic_ITU_R_BT_2020_2_12bit:
        space.transfer = Transfer::bt709;
        break;
    case heif_transfer_characteristic_ITU_R_BT_470_6_System_M:
        space = {space.primaries, Transfer::gamma, 2.2};
        break;
    case heif_transfer_characteristic_ITU_R_BT_470_6_System_B_G:
        space = {space.primaries, Transfer::gamma, 2.8};
        break;
    case heif_transfer_characteristic_linear:
        space.transfer = Transfer::linear;
        break;
    case heif_transfer_characteristic_ITU_R_BT_2100_0_PQ:
        space.transfer = Transfer::pq;
        break;
    case heif_transfer_characteristic_ITU_R_BT_2100_0_HLG:
        space.transfer = Transfer::hlg;
        break;
    default:
        break; // sRGB, and what no photograph uses
    }
    return space;
}

ColourTag tagOf(const heif_image_handle* handle)
{
    ColourTag tag;
    const std::size_t bytes = heif_image_handle_get_raw_color_profile_size(handle);
    if (bytes > 0) {
        tag.iccProfile.resize(bytes);
        need(heif_image_handle_get_raw_color_profile(handle, tag.iccProfile.data()));
        return tag;
    }
    heif_color_profile_nclx* nclx = nullptr;
    if (heif_image_handle_get_nclx_color_profile(handle, &nclx).code == heif_error_Ok) {
        const Held<heif_color_profile_nclx> held(nclx);
        tag.space = spaceOf(*nclx);
    }
    return tag;
}

Held<heif_image> decode(const heif_image_handle* handle, bool deep)
{
    const Held<heif_decoding_options> options(heif_decoding_options_alloc());
    options->strict_decoding = 1;
    heif_image* image = nullptr;
    need(heif_decode_image(handle, &image, heif_colorspace_RGB,
                           deep ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RGBA,
                           options.get()));
    return Held<heif_image>(image);
}

/// Samples of 9 to 15 bits to the full range of 16.
void widen(std::uint16_t* samples, std::size_t count, int bits)
{
    const std::uint32_t top = (1u << bits) - 1;
    for (std::size_t i = 0; i < count; ++i)
        samples[i] =
            static_cast<std::uint16_t>((std::min<std::uint32_t>(samples[i], top) * 65535u + top / 2) / top);
}

} // namespace

bool isHEIF(std::string_view head)
{
    // The library calls a head too short to tell a picture that it may yet be.
    if (!head.substr(std::min<std::size_t>(head.size(), 4)).starts_with("ftyp")) return false;
    return heif_check_filetype(reinterpret_cast<const std::uint8_t*>(head.data()),
                               static_cast<int>(head.size())) != heif_filetype_no;
}

EncodedImage drawHEIF(const std::string& path, const DrawRequest& request)
{
    static_cast<void>(InputFile(path)); // says what is wrong with a path in the words of every codec
    const Held<heif_context> context(heif_context_alloc());
    need(heif_context_read_from_file(context.get(), path.c_str(), nullptr));
    const Held<heif_image_handle> handle = primaryPicture(context.get());
    checkPictureSize(heif_image_handle_get_width(handle.get()), heif_image_handle_get_height(handle.get()));
    const ColourTag tag = tagOf(handle.get());
    const bool deep = heif_image_handle_get_luma_bits_per_pixel(handle.get()) > 8;
    const Held<heif_image> image = decode(handle.get(), deep);

    PictureRows rows;
    rows.width = heif_image_get_width(image.get(), heif_channel_interleaved);
    rows.height = heif_image_get_height(image.get(), heif_channel_interleaved);
    checkPictureSize(rows.width, rows.height);
    rows.format = {deep ? SampleType::u16 : SampleType::u8, ColourModel::rgb, 4, Alpha::none};
    if (heif_image_handle_has_alpha_channel(handle.get()))
        rows.format.alpha =
            heif_image_handle_is_premultiplied_alpha(handle.get()) ? Alpha::premultiplied : Alpha::straight;
    int stride = 0;
    const std::uint8_t* pixels =
        heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (!pixels) throw PlatformError("its picture data are damaged");
    const int bits = heif_image_get_bits_per_pixel_range(image.get(), heif_channel_interleaved);
    rows.read = [&](std::int64_t y, std::int64_t count, std::byte* to) {
        const std::size_t rowBytes = static_cast<std::size_t>(rows.width) * rows.format.bytesPerPixel();
        for (std::int64_t i = 0; i < count; ++i, to += rowBytes) {
            std::memcpy(to, pixels + (y + i) * stride, rowBytes);
            if (deep && bits < 16)
                widen(reinterpret_cast<std::uint16_t*>(to), static_cast<std::size_t>(rows.width) * 4, bits);
        }
    };
    if (std::uint8_t* rgba = request.memory(rows.width, rows.height)) drawRows(rows, tag, rgba);
    return {.width = rows.width,
            .height = rows.height,
            .pictures = heif_context_get_number_of_top_level_images(context.get())};
}

} // namespace tamlo::platform
