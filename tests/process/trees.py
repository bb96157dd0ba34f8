"""What lies in a folder, to be compared with what lay there before."""

import os
import stat

from homes import read_file

LARGEST = 1 << 24  # a sparse file of a terabyte is known by its size
LONGEST = 3000     # the system takes no longer paths


class Tree:
    """Path below the root -> the state of the file. Folders count with their mode; no link is followed."""

    def __init__(self, root, before=None):
        self.states = {}
        self._marks = {}
        self._before = before
        root, waiting = os.fsencode(root), [b""]
        while waiting:
            place = waiting.pop()
            if len(place) > LONGEST:
                continue
            with os.scandir(os.path.join(root, place)) as entries:
                for entry in entries:
                    relative = place + entry.name
                    self._add(os.fsdecode(relative), entry)
                    if entry.is_dir(follow_symlinks=False):
                        waiting.append(relative + b"/")
        self._before = None

    def _add(self, name, entry):
        found = entry.stat(follow_symlinks=False)
        # Whatever changes a file changes this; what is the same need not be read again.
        mark = (found.st_ino, found.st_mode, found.st_size, found.st_mtime_ns, found.st_ctime_ns)
        self._marks[name] = mark
        if self._before is not None and self._before._marks.get(name) == mark:
            self.states[name] = self._before.states[name]
        else:
            self.states[name] = state_of(entry.path, found)

    def differences(self, after):
        return sorted(name for name in self.states.keys() | after.states.keys()
                      if self.states.get(name) != after.states.get(name))

    def is_folder(self, name):
        return name in self.states and stat.S_ISDIR(self.states[name][0])


def state_of(path, found):
    """What a file is: its kind, mode and contents."""
    kind = stat.S_IFMT(found.st_mode)
    if kind == stat.S_IFLNK:
        return (kind, os.readlink(path))
    if kind != stat.S_IFREG:
        return (kind, stat.S_IMODE(found.st_mode))
    contents = b"" if found.st_size > LARGEST else read_file(path)
    return (kind, stat.S_IMODE(found.st_mode), found.st_size, contents)


def files_in(folder):
    """How many files and links lie in a folder, at any depth."""
    count = 0
    for _, folders, names, descriptor in os.fwalk(folder):
        count += len(names) + sum(stat.S_ISLNK(os.lstat(name, dir_fd=descriptor).st_mode) for name in folders)
    return count
