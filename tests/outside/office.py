"""The frame of all tests with outside readers: a shared folder, the tool (the last argument), LibreOffice."""

import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ZELVO = sys.argv.pop()


def zelvo(*arguments, stdin=None):
    """What the tool prints; `stdin` is a text."""
    run = subprocess.run([ZELVO, *arguments], check=True, stdout=subprocess.PIPE, input=stdin, text=True)
    return run.stdout


class Case(unittest.TestCase):
    """Tests that share a folder of their own, which `prepare` fills once."""

    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = pathlib.Path(temporary.name)
        cls.prepare()

    @classmethod
    def convert(cls, pattern, target):
        """Converts the documents of a pattern to `target`, an ending and perhaps a filter after a colon, into
        the folder "office". One start for all, since starting takes longer than converting; two for many,
        since each uses one core."""
        files = sorted(cls.folder.glob(pattern))
        starts = 2 if len(files) > 20 else 1
        runs = []
        for i in range(starts):
            profile = "-env:UserInstallation=" + (cls.folder / f"profile{i}").as_uri()
            to = ["--headless", "--convert-to", target, "--outdir", cls.folder / "office"]
            runs.append(subprocess.Popen(["soffice", profile, *to, *files[i::starts]], stdout=subprocess.DEVNULL,
                                         env={**os.environ, "LC_ALL": "C.UTF-8"}))
        assert not any([run.wait() for run in runs])
