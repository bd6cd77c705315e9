// SPDX-License-Identifier: GPL-2.0-or-later
#include "microscope.h"

#include "frames.h"
#include "interpreter.h"
#include "microscope/virtual_microscope.h"

#include <pybind11/stl.h>

#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

namespace tesmor::python {

namespace {

using microscope::Settings;
using microscope::VirtualMicroscope;

// Those whose camera runs; with the GIL.
std::set<VirtualMicroscope*>& running()
{
    static std::set<VirtualMicroscope*>& microscopes = *new std::set<VirtualMicroscope*>;
    return microscopes;
}

py::array arrayOf(const microscope::Image& image)
{
    return toArray(image.pixels.data(), static_cast<std::size_t>(image.width), static_cast<std::size_t>(image.height),
                   false);
}

// The Python side keeps it as long as its camera runs.
class Microscope {
public:
    explicit Microscope(const Settings& settings)
    {
        const GilReleased released;
        microscope_ = std::make_unique<VirtualMicroscope>(settings);
    }

    void start(py::object sink)
    {
        sink_ = std::move(sink);
        try {
            const GilReleased released;
            microscope_->start([this](const microscope::Frame& frame) { show(frame); });
        } catch (const std::system_error& error) {
            sink_ = py::none();
            errno = error.code().value();
            PyErr_SetFromErrno(PyExc_OSError);
            throw py::error_already_set();
        }
        running().insert(microscope_.get());
    }

    void stop()
    {
        requireUsable();
        if (running().erase(microscope_.get()) == 0)
            return;
        {
            const GilReleased released;
            microscope_->stop();
        }
        sink_ = py::none(); // it may hold the microscope
    }

    // Without the GIL, for which the camera may be waiting while others wait for the camera.
    template <class Ask>
    decltype(auto) ask(Ask ask) const
    {
        const GilReleased released;
        return ask(*microscope_);
    }

private:
    // On the camera's thread. What the sink raises goes to sys.unraisablehook.
    void show(const microscope::Frame& frame) const
    {
        const py::gil_scoped_acquire acquire;
        try {
            sink_(toArray(frame.pixels, static_cast<std::size_t>(frame.width), static_cast<std::size_t>(frame.height),
                          false));
        } catch (py::error_already_set& error) {
            error.discard_as_unraisable("the sink of a tesmor.VirtualMicroscope");
        } catch (const std::bad_alloc&) {
            PyErr_NoMemory();
            PyErr_WriteUnraisable(sink_.ptr());
        }
    }

    std::unique_ptr<VirtualMicroscope> microscope_;
    py::object sink_;
};

py::array heightMap(const VirtualMicroscope& microscope)
{
    const Settings& settings = microscope.settings();
    return py::array_t<float>({settings.height, settings.width}, microscope.heightMap().data());
}

} // namespace

void bindMicroscope(py::module_& module)
{
    py::class_<Microscope>(module, "Microscope")
        .def(py::init([](std::uint16_t magnification, std::int64_t offset, std::int32_t width, std::int32_t height,
                         std::uint64_t seed, double fps, double noise, double timeScale, unsigned unit) {
                 Settings settings;
                 settings.magnification = magnification;
                 settings.startOffset = offset;
                 settings.width = width;
                 settings.height = height;
                 settings.seed = seed;
                 settings.framesPerSecond = fps;
                 settings.noise = noise;
                 settings.timeScale = timeScale;
                 settings.unit = unit;
                 return std::make_unique<Microscope>(settings);
             }),
             py::kw_only(), py::arg("magnification"), py::arg("offset"), py::arg("width"), py::arg("height"),
             py::arg("seed"), py::arg("fps"), py::arg("noise"), py::arg("time_scale"), py::arg("unit"))
        .def("start", &Microscope::start)
        .def("stop", &Microscope::stop)
        .def("position", [](const Microscope& m) { return m.ask([](auto& it) { return it.position(); }); })
        .def("set_position",
             [](const Microscope& m, std::int64_t steps) { m.ask([=](auto& it) { return it.setPosition(steps); }); })
        .def("best_focus", [](const Microscope& m) { return m.ask([](auto& it) { return it.bestFocus(); }); })
        .def("depth_of_field", [](const Microscope& m) { return m.ask([](auto& it) { return it.depthOfField(); }); })
        .def("description", [](const Microscope& m) { return m.ask([](auto& it) { return it.description(); }); })
        .def("truth",
             [](const Microscope& m) {
                 return arrayOf(m.ask([](auto& it) -> const microscope::Image& { return it.truth(); }));
             })
        .def("height_map", [](const Microscope& m) {
            return heightMap(m.ask([](auto& it) -> const VirtualMicroscope& { return it; }));
        });
}

void stopMicroscopes()
{
    const std::set<VirtualMicroscope*> microscopes = std::exchange(running(), {});
    const py::gil_scoped_release release;
    for (VirtualMicroscope* microscope : microscopes)
        microscope->stop();
}

} // namespace tesmor::python
