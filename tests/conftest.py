"""What holds for every test in Python."""

import atexit
import os
import pathlib
import shutil
import signal
import tempfile

# The variables that name places in a home: those that must go, and those that a test process has of its
# own, each with its folder. macOS asks the second one for the home, and never HOME alone.
HOME_VARIABLES = ("XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME")
PRIVATE_FOLDERS = (("HOME", "home"), ("CFFIXED_USER_HOME", "home"), ("TMPDIR", "tmp"))


def end(*_):
    """As when it is interrupted by hand: browsers are ended, folders removed."""
    raise KeyboardInterrupt


def remove(private):
    """Removes even a folder that a test has made read-only."""
    for place, folders, _ in os.walk(private):
        for name in folders:
            inner = os.path.join(place, name)
            if not os.path.islink(inner):
                os.chmod(inner, 0o700)
    shutil.rmtree(private, ignore_errors=True)


def hear_signals():
    """What is started in the background, or by nohup, ignores signals, and so would all that the tests
    start and end."""
    signal.signal(signal.SIGTERM, end)
    signal.signal(signal.SIGINT, signal.default_int_handler)
    signal.signal(signal.SIGHUP, signal.SIG_DFL)


def pytest_configure(config):
    """Gives every process of pytest a home and a temporary folder of its own, before anything can ask
    for them. Some tests run the program as another user, who must get through."""
    hear_signals()
    private = pathlib.Path(tempfile.mkdtemp(prefix="browsersweep-pytest.")).resolve()
    private.chmod(0o711)
    if not hasattr(config, "workerinput"):  # the folders of workers lie in the one of the first process
        atexit.register(remove, private)
    for name in HOME_VARIABLES:
        os.environ.pop(name, None)
    for name, folder in PRIVATE_FOLDERS:
        (private / folder).mkdir(exist_ok=True)
        os.environ[name] = str(private / folder)
    tempfile.tempdir = None
