"""LibreOffice, as the scripts here use it, and the frame of their tests."""

import os
import pathlib
import subprocess
import tempfile
import unittest


def convert(paths, target, folder):
    """Writes every document to `folder` as `target`, a file name's ending with perhaps a filter behind a colon.

    One start for all of them: starting takes longer than converting. The user's own profile is left alone."""
    subprocess.run(
        ["soffice", "-env:UserInstallation=" + (folder / "profile").as_uri(), "--headless", "--convert-to", target,
         "--outdir", folder, *paths],
        check=True, stdout=subprocess.DEVNULL, env={**os.environ, "LC_ALL": "C.UTF-8"})


class Case(unittest.TestCase):
    """Tests that share a folder of their own, which `prepare` fills once."""

    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        cls.folder = pathlib.Path(temporary.name)
        cls.prepare()
