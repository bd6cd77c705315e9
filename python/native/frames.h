// SPDX-License-Identifier: GPL-2.0-or-later
// Pictures on their way between NumPy, where they are height x width x 3 in the order red, green, blue, or height x
// width in grey, and the library's frame layout: blue, green, red, rows padded to a multiple of 4 bytes.
#pragma once

#include <pybind11/numpy.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace tesmor::python {

namespace py = pybind11;

constexpr std::size_t rowBytes(std::size_t width)
{
    return (width * 24 + 31) / 32 * 4;
}

// An array's pixels in the library's layout. Those of a contiguous array in the order blue, green, red, seen the other
// way round (`bgr[..., ::-1]`), are used where they are if their rows need no padding; all others are copied.
class Picture {
public:
    // `array` is of uint8, height x width x 3 or height x width; the Python side has checked that. Throws
    // std::bad_alloc.
    explicit Picture(const py::array& array);

    // Uses, and replaces when it is too small, `room` for the copy. `array` must outlive the picture. Needs no GIL.
    struct Room {
        std::unique_ptr<std::uint8_t[]> bytes;
        std::size_t size = 0;
    };
    struct Layout { // what is read off an array, with the GIL
        explicit Layout(const py::array& array);
        bool isLibraryLayout() const;

        const std::uint8_t* red;
        std::size_t height, width;
        std::ptrdiff_t rowStride, columnStride, colourStride; // bytes; no colourStride: grey
    };
    static const std::uint8_t* pixelsOf(const Layout& layout, Room& room);

    const std::uint8_t* pixels() const
    {
        return pixels_;
    }

private:
    py::array array_;
    Room room_;
    const std::uint8_t* pixels_;
};

// A new array of the picture that `pixels` hold in the library's layout; grey keeps one of its three equal colours.
// With the GIL.
py::array toArray(const std::uint8_t* pixels, std::size_t width, std::size_t height, bool grey);

} // namespace tesmor::python
