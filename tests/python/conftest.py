# SPDX-License-Identifier: GPL-2.0-or-later
import subprocess
import sys

import pytest


@pytest.fixture
def child():
    """Runs a program in an interpreter of its own and returns what it printed; it must end by itself, with status 0."""

    def run(program, *arguments):
        done = subprocess.run([sys.executable, "-c", program, *arguments], capture_output=True, text=True, timeout=120)
        assert done.returncode == 0, done.stderr
        return done.stdout.split("\n")[:-1]

    return run
