"""Owns the commands that the documentation and the help show: run_examples.py ZELVO

In the pages, a block of the language sh is run line by line: status 0, or what a comment "# status N" says. The
commands of a block of the language console must print what follows them; "…" is any text. A block below a comment
"not run" is not run."""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
TOOL = Path(sys.argv[1])
NOT_RUN = 6  # blocks
BOOK = "quarterly-sales.xlsx"
FILES = {"book.xlsx": BOOK, "uploads/book.xlsx": BOOK, "dataset.json": "research-dataset.json",
         "datasets.json": "research-datasets.json", "deck.json": "research-presentation.json",
         "report.md": "research-report.md"}
PATH = f"{TOOL.parent}:{os.environ['PATH']}"
BLOCK = re.compile(r"(<!-- not run: [^\n]+ -->\n)?^```([^\n]*)\n(.*?)^```$", re.S | re.M)


class Examples(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        shutil.copytree(ROOT / "examples", folder.name, dirs_exist_ok=True)
        os.chdir(folder.name)
        os.symlink(".", "examples")
        os.mkdir("uploads")
        for name, source in FILES.items():
            shutil.copy(source, name)
        Path("request.json").write_text('{"operation":"inspect","data":"","sourceName":"book.xlsx"}')

    def run_line(self, line, status=0):
        run = subprocess.run(["bash", "-o", "pipefail", "-c", line], env={**os.environ, "PATH": PATH}, check=False,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        output = run.stdout.decode(errors="replace")
        self.assertIn(run.returncode, [0, 1] if status is None else [status], line + "\n" + output)
        return output

    def test_pages(self):
        Path("uploads/torn.xlsx").write_bytes(b"PK")
        shutil.copy(BOOK, "report.xlsx")
        with zipfile.ZipFile("report.xlsx", "a") as archive:
            for number in "12":
                archive.writestr(f"xl/media/image{number}.png", "")
        not_run = 0
        for page in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
            text = page.read_text()
            for name, block in re.findall(r"<!-- schema: (\w+) -->\n```json\n(.*?)```", text, re.S):
                Path(name + ".json").write_text(block)
            for mark, language, block in BLOCK.findall(text):
                not_run += bool(mark)
                if language == "sh" and not mark:
                    for line in block.replace("\\\n", "").splitlines():
                        self.run_line(line, int((re.findall(r"# status (\d+)", line) or ["0"])[0]))
                transcript = block if language == "console" and not mark else ""
                for line, output in re.findall(r"^\$ (.*)\n((?:(?!\$ ).*\n)*)", transcript, re.M):
                    self.assertRegex(self.run_line(line, None), re.escape(output).replace("…", r"(?s:.*)"))
                self.assertNotIn(language, ("", "bash", "shell"), page)
            self.assertNotRegex(BLOCK.sub("", text), r"(?m)^    \S", page)
        self.assertEqual(not_run, NOT_RUN)

    def test_help(self):
        commands, count, pages = [""], 0, "# Commands\n\nWhat `zelvo help` prints, written by `script/update-goldens`.\n"
        for command in commands:
            text = self.run_line("zelvo help " + command)
            self.assertEqual(text, self.run_line(f"zelvo {command} --help"))
            pages += f"\n## zelvo{command}\n\n```text\n{text}```\n"
            below = re.search(r"\nSubcommands:\n(.*?)\n\n", text, re.S)
            commands += [f"{command} {line.split()[0]}" for line in below[1].splitlines()] if below else []
            examples = re.findall(r"^  (.+?)  # ", text.split("Examples:")[1], re.M)
            self.assertGreaterEqual(len(examples), 2, command)
            for line in examples:
                self.run_line(line)
                count += 1
        self.assertGreater(count, 36)
        page = ROOT / "docs/commands.md"
        if "ZELVO_UPDATE_GOLDENS" in os.environ:
            page.write_text(pages)
        self.assertMultiLineEqual(pages, page.read_text())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
