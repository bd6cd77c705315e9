# SPDX-License-Identifier: GPL-2.0-or-later
import ctypes
import os
import signal
import subprocess
import sys

import numpy as np
import pytest

import tesmor


def slices(count, *shape):
    return list(np.random.default_rng(1).integers(0, 256, (count, *shape), dtype=np.uint8))


def fused_in_c(images):
    """RGB images of one size, merged by the shared library's own function."""
    library = ctypes.CDLL(os.environ["TESMOR_LIBRARY"])
    height, width = images[0].shape[:2]
    row = (width * 24 + 31) // 32 * 4
    frames = np.zeros((len(images) + 1, height, row), np.uint8)
    for frame, image in zip(frames, images):
        frame[:, : 3 * width] = image[..., ::-1].reshape(height, 3 * width)
    ended = []
    callback_type = ctypes.CFUNCTYPE(None, ctypes.c_void_p, *[ctypes.c_int32] * 2, ctypes.c_void_p, ctypes.c_int32)
    callback = callback_type(lambda image, w, h, context, result: ended.append(result) if image else None)
    pointers = (ctypes.c_void_p * len(images))(*[frame.ctypes.data for frame in frames[:-1]])
    library.tesmor_fusion(pointers, ctypes.c_uint64(len(images)), width, height, ctypes.c_void_p(frames[-1].ctypes.data),
                          callback, None)
    library.tesmor_reset()  # returns when the fusion has ended
    assert ended == [0]
    return frames[-1][:, : 3 * width].reshape(height, width, 3)[..., ::-1]


@pytest.mark.parametrize("shape", [(40, 64, 3), (41, 63, 3), (40, 64), (41, 63)])
def test_every_layout_gives_what_the_c_interface_gives(shape):
    images = slices(3, *shape)
    fused = tesmor.fuse(images)
    assert fused.shape == shape and fused.dtype == np.uint8 and fused.flags.c_contiguous and fused.flags.owndata
    colour = [image if image.ndim == 3 else np.repeat(image[..., None], 3, 2) for image in images]
    expected = fused_in_c(colour)
    np.testing.assert_array_equal(fused if fused.ndim == 3 else np.repeat(fused[..., None], 3, 2), expected)
    for same in (np.asfortranarray(image) for image in images), [np.array(i[..., ::-1])[..., ::-1] for i in images]:
        np.testing.assert_array_equal(tesmor.fuse(same), fused)


@pytest.mark.parametrize("images, words", [
    ([], "no images"),
    (np.zeros((9, 9, 3), np.uint8), "list of images"),
    (slices(2, 9, 9, 3) + slices(1, 9, 8, 3), r"images\[2\] has shape \(9, 8, 3\), images\[0\] \(9, 9, 3\)"),
    (slices(1, 9, 9, 3) + slices(1, 9, 9), r"images\[1\] has shape \(9, 9\)"),
    ([np.zeros((9, 9), np.uint16)], r"images\[0\] has dtype uint16; .*Scale"),
    (slices(1, 9, 9, 4), "transparency"),
    (["a.tif"], "read the file"),
    (slices(1, 1, 9, 3), "2 x 2"),
    (slices(1, 9, 0, 3), "no pixels"),
    ((image for image in slices(129, 2, 2)), "more than 128"),
])  # fmt: skip
def test_names_the_image_and_the_remedy(images, words):
    with pytest.raises(ValueError, match=words):
        tesmor.fuse(images)


def test_progress_rises_to_a_hundred_and_what_it_raises_ends_the_fusion():
    images = slices(4, 64, 64, 3)
    percents = []
    tesmor.fuse(images, progress=percents.append)
    assert percents == sorted(set(percents)) and percents[-1] == 100

    def give_up(percent):
        raise LookupError(percent)

    with pytest.raises(LookupError):
        tesmor.fuse(images, progress=give_up)
    tesmor.fuse(images)  # the library is ready again


def test_leaves_no_reference_behind():
    images = slices(3, 16, 16, 3) + [np.zeros((16, 16, 3), np.uint8)[..., ::-1]]
    before = [sys.getrefcount(image) for image in images]
    tesmor.fuse(images)
    for culprit in np.zeros((3, 3), np.uint8), None:
        with pytest.raises(ValueError):
            tesmor.fuse([*images, culprit])
    assert [sys.getrefcount(image) for image in images] == before


def test_ctrl_c_ends_a_fusion():
    program = """
import numpy as np, tesmor
try:
    tesmor.fuse([np.zeros((600, 800, 3), np.uint8)] * 128, progress=lambda percent: print(percent, flush=True))
except KeyboardInterrupt:
    print("interrupted", flush=True)
    print(tesmor.fuse([np.full((8, 8), 7, np.uint8)])[0, 0])
"""
    with subprocess.Popen([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True) as process:
        assert process.stdout.readline() == "0\n"
        process.send_signal(signal.SIGINT)
        lines = process.stdout.read().split("\n")
    assert lines[-3:] == ["interrupted", "7", ""] and "100" not in lines
    assert process.returncode == 0


def test_too_little_memory_is_a_memory_error(child):
    assert child("""
import numpy as np, resource, tesmor
image = np.zeros((2000, 2000, 3), np.uint8)
tesmor.fuse([image[:4, :4]])
used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (used + 100_000_000, -1))
try:
    tesmor.fuse([image])
except MemoryError as error:
    print(error)
""")[0].startswith("There is not enough memory")  # fmt: skip


def test_refuses_sub_interpreters_and_forks(child):
    program = """
import sys, _xxsubinterpreters as interpreters
if sys.argv[1] == "imported": import tesmor
other = interpreters.create()
try:
    interpreters.run_string(other, "import tesmor")
except interpreters.RunFailedError as error:
    print(error)
interpreters.destroy(other)
import numpy, os, tesmor
print(tesmor.fuse(numpy.zeros((1, 8, 8), "u1")).max(), flush=True)
if os.fork() == 0:
    try:
        tesmor.fuse(numpy.zeros((1, 8, 8), "u1"))
    except RuntimeError as error:
        print(error)
else:
    os.wait()
"""
    for first in "imported", "not imported":
        refusal, result, fork = child(program, first)
        assert "ImportError" in refusal and "main interpreter only" in refusal
        assert result == "0"
        assert "created by fork" in fork
