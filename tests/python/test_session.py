# SPDX-License-Identifier: GPL-2.0-or-later
import asyncio
import gc
import resource
import signal
import subprocess
import sys
import threading

import numpy as np
import pytest

import tesmor

FRAME = np.random.default_rng(1).integers(0, 256, (16, 20, 3), dtype=np.uint8)


@pytest.fixture
def session():
    with tesmor.Session() as session:
        yield session


@pytest.fixture
def microscope(session):
    with tesmor.VirtualMicroscope(session.video, width=160, height=120, time_scale=50, fps=100) as microscope:
        yield microscope


class Camera:
    """Hands the same frame over again and again, on a thread of its own."""

    def __init__(self, session, frame):
        self.session, self.frame, self.count = session, frame, 0
        self.ending = threading.Event()
        self.thread = threading.Thread(target=self.run)

    def run(self):
        while not self.ending.wait(0.0001):
            self.session.video(self.frame)
            self.count += 1

    def __enter__(self):
        self.thread.start()
        return self

    def __exit__(self, *_):
        self.ending.set()
        self.thread.join()


def test_commands_reach_the_microscope(session, microscope):
    session.autofocus(10)
    assert abs(microscope.position - microscope.best_focus) < microscope.depth_of_field
    in_focus, truth = session.capture().astype(int), microscope.truth
    assert np.abs(in_focus - truth).mean() < np.abs(in_focus[..., ::-1] - truth).mean()
    start = microscope.position
    frames = session.stack(10, 3, -2)
    assert [frame.shape for frame in frames] == [(120, 160, 3)] * 3
    assert microscope.position == start
    session.move(-90.001)
    assert microscope.position == start - 3200
    assert microscope.height_map.shape == (120, 160)


def test_every_failure_has_its_exception(session):
    cases = [
        (lambda: session.autofocus(10), tesmor.NoDrive, "driver is running"),
        (lambda: session.stack(10, 1), tesmor.NoDrive, "driver is running"),
        (lambda: session.move(1), tesmor.NoDrive, "driver is running"),
        (session.capture, tesmor.NoFrame, "live view"),
        (lambda: session.autofocus(-1), ValueError, "magnification is -1"),
        (lambda: session.stack(10, 70000), ValueError, "number of frames is 70000"),
        (lambda: session.stack(10, 2, 0.5), ValueError, "spacing is 0.5"),
        (lambda: session.move(float("nan")), ValueError, "angle is nan"),
        (lambda: session.move(-1843.2), ValueError, "less than 1843.2"),
        (lambda: session.video(FRAME.astype(np.uint16)), ValueError, "the frame has dtype uint16"),
        (tesmor.Session, RuntimeError, "close"),
        (lambda: tesmor.VirtualMicroscope(width=1), ValueError, "width"),
    ]
    for command, error, words in cases:
        with pytest.raises(error, match=words):
            command()
    with tesmor.VirtualMicroscope(time_scale=0, fps=0):  # a drive without frames
        with pytest.raises(OSError, match="unit is taken"):
            tesmor.VirtualMicroscope().start()
        with pytest.raises(tesmor.NoFrame):
            session.stack(10, 1)
    session.close()
    with pytest.raises(RuntimeError, match="closed"):
        session.capture()


def test_stop_raises_aborted_in_the_command(session):
    with tesmor.VirtualMicroscope(time_scale=0, fps=0) as microscope:  # commands wait for frames
        for command in lambda: session.autofocus(10), lambda: session.stack(10, 5), session.capture:
            raised = []

            def run():
                try:
                    command()
                except tesmor.Error as error:
                    raised.append(type(error))

            thread = threading.Thread(target=run)
            thread.start()
            while thread.is_alive():  # a stop that comes before the command does nothing
                session.stop()
            assert raised == [tesmor.Aborted]


def test_frames_come_back_as_the_camera_gave_them(session):
    for frame in FRAME, FRAME[..., 0], FRAME[::-2, ::3], np.array(FRAME[..., ::-1])[..., ::-1]:
        with Camera(session, frame):
            np.testing.assert_array_equal(session.capture(), frame)


def test_a_hundred_thousand_frames_leave_nothing_behind(session):
    frame = FRAME.copy()

    def capture_until(camera, count):
        while camera.count < count:
            session.capture()

    with Camera(session, frame) as camera:
        camera.ending.wait = lambda _: camera.ending.is_set()  # no pause
        capture_until(camera, 20_000)
        before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
        capture_until(camera, 120_000)
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 1000  # kB; a kept frame each would be 96,000
    del camera
    gc.collect()
    assert sys.getrefcount(frame) == 2


def test_a_sink_that_raises_is_told_of_and_ends_nothing(monkeypatch):
    told = []
    enough = threading.Event()
    monkeypatch.setattr(sys, "unraisablehook", lambda what: told.append(what.exc_type) or len(told) > 2 and enough.set())

    def sink(frame):
        raise LookupError

    with tesmor.VirtualMicroscope(sink, width=64, height=64):
        assert enough.wait(60)
    assert set(told) == {LookupError}


def test_awaited_commands_leave_the_loop_free_and_can_be_cancelled():
    async def run():
        async with tesmor.AsyncSession() as session:
            with tesmor.VirtualMicroscope(session.video, width=160, height=120, time_scale=50, fps=100) as microscope:
                ticks = 0
                focusing = asyncio.ensure_future(session.autofocus(10))
                while not focusing.done():
                    await asyncio.sleep(0.001)
                    ticks += 1
                await focusing
                assert ticks > 2
                assert len(await session.stack(10, 2)) == 2
                assert (await session.capture()).shape == (120, 160, 3)
            with tesmor.VirtualMicroscope(fps=0, time_scale=0):
                with pytest.raises(asyncio.TimeoutError):
                    await asyncio.wait_for(session.autofocus(10), 0.2)
                with pytest.raises(tesmor.NoFrame):
                    await session.stack(10, 1)

    asyncio.run(run())


def test_ctrl_c_ends_an_autofocus():
    program = """
import tesmor
with tesmor.Session() as session, tesmor.VirtualMicroscope(time_scale=0, fps=0):  # it waits for frames
    try:
        print("focusing", flush=True)
        session.autofocus(10)
    except KeyboardInterrupt:
        print("interrupted")
"""
    with subprocess.Popen([sys.executable, "-c", program], stdout=subprocess.PIPE, text=True) as process:
        assert process.stdout.readline() == "focusing\n"
        process.send_signal(signal.SIGINT)
        assert process.stdout.read() == "interrupted\n"
    assert process.returncode == 0


@pytest.mark.parametrize("left_running", [
    "threading.Thread(target=feed, daemon=True).start(); time.sleep(0.1)",
    "threading.Thread(target=focus, daemon=True).start(); started.wait()",
    "tesmor.VirtualMicroscope(feed_one, fps=1000, width=64, height=64, unit=1).start(); started.wait()",
    "threading.Thread(target=fuse, daemon=True).start(); started.wait()",
])  # fmt: skip
def test_python_ends_in_the_middle_of_anything(child, left_running):
    program = """
import numpy, sys, tesmor, threading, time
frame = numpy.zeros((16, 16, 3), "u1")
started = threading.Event()
session = tesmor.Session()
microscope = tesmor.VirtualMicroscope(lambda frame: started.set(), width=64, height=64)
microscope.start()
def feed():
    while True: session.video(frame)
def feed_one(frame):
    started.set(); session.video(frame)
def focus(): session.autofocus(10)
def fuse(): tesmor.fuse([frame] * 128, progress=lambda percent: started.set())
""" + left_running
    for _ in range(3):
        assert child(program) == []
