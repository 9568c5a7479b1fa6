// Convolution in the frequency domain, for kernels too wide and too irregular for separable filtering: the
// rays of a star filter, the ring of old glass. The result has the image's size; outside the image there
// is 0. The same bits for any number of workers.
#pragma once

#include "core/image/page_buffer.h"
#include "core/image/plane.h"
#include "core/image/rgb_image.h"

namespace tamlo::FFTConvolve {

/// out(x, y) = sum over i, j of kernel(i, j) × image(x + cx - i, y + cy - j), the kernel's centre at
/// cx = (kw - 1) / 2, cy = (kh - 1) / 2 in integers. A unique image is convolved in place.
/// Domain: finite samples of either sign; about 1e-6 of the peak is lost to rounding.
/// Errors: invalidArgument for a kernel without samples; io when the memory can't be had.
Plane same(Plane image, const Plane& kernel);

/// The same on channel c of an image, in place. The kernels of several channels may follow one another: the
/// memory of the spectra in `workspace` is used again where it is large enough, since fresh pages cost as
/// much as the transforms.
struct Workspace {
    PageBuffer image, kernel;
};
void sameChannel(RGBImage& image, int c, const Plane& kernel, Workspace& workspace);

} // namespace tamlo::FFTConvolve
