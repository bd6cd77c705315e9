// SPDX-License-Identifier: GPL-2.0-or-later
#include "frames.h"

#include "interpreter.h"

namespace tesmor::python {

Picture::Layout::Layout(const py::array& array)
    : red(static_cast<const std::uint8_t*>(array.data())), height(static_cast<std::size_t>(array.shape(0))),
      width(static_cast<std::size_t>(array.shape(1))), rowStride(array.strides(0)), columnStride(array.strides(1)),
      colourStride(array.ndim() == 3 ? array.strides(2) : 0)
{
}

bool Picture::Layout::isLibraryLayout() const
{
    return width % 4 == 0 && colourStride == -1 && columnStride == 3 &&
           rowStride == static_cast<std::ptrdiff_t>(rowBytes(width));
}

const std::uint8_t* Picture::pixelsOf(const Layout& layout, Room& room)
{
    if (layout.isLibraryLayout())
        return layout.red - 2;
    const std::size_t size = rowBytes(layout.width) * layout.height;
    if (room.size < size) {
        room.bytes = std::make_unique_for_overwrite<std::uint8_t[]>(size);
        room.size = size;
    }
    for (std::size_t y = 0; y < layout.height; ++y) {
        const std::uint8_t* from = layout.red + layout.rowStride * static_cast<std::ptrdiff_t>(y);
        std::uint8_t* to = room.bytes.get() + rowBytes(layout.width) * y;
        for (std::size_t x = 0; x < layout.width; ++x, from += layout.columnStride, to += 3) {
            to[2] = from[0];
            to[1] = from[layout.colourStride];
            to[0] = from[2 * layout.colourStride];
        }
    }
    return room.bytes.get();
}

Picture::Picture(const py::array& array)
{
    const Layout layout(array);
    if (layout.isLibraryLayout())
        array_ = array;
    const GilReleased released;
    pixels_ = pixelsOf(layout, room_);
}

py::array toArray(const std::uint8_t* pixels, std::size_t width, std::size_t height, bool grey)
{
    const std::size_t colours = grey ? 1 : 3;
    py::array::ShapeContainer shape{height, width};
    if (!grey)
        shape->push_back(3);
    py::array_t<std::uint8_t> array(shape);
    std::uint8_t* to = array.mutable_data();
    for (std::size_t y = 0; y < height; ++y) {
        const std::uint8_t* from = pixels + rowBytes(width) * y;
        for (std::size_t x = 0; x < width; ++x, from += 3, to += colours) {
            to[0] = from[2];
            if (!grey) {
                to[1] = from[1];
                to[2] = from[0];
            }
        }
    }
    return array;
}

} // namespace tesmor::python
