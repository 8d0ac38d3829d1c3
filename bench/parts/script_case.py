"""What the tests of the scripts share."""
import os
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.dirname(os.path.abspath(__file__))
HEADER = "group,subject,stream,burst,parameter,figure,unit,median,low,high,runs"


class ScriptCase(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def run_script(self, name, *arguments, **others):
        return subprocess.run([sys.executable, os.path.join(FOLDER, name), *arguments],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, **others)
