"""src follows the include rule, and the check detects violations."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent


def check(root):
    return subprocess.run([sys.executable, HERE / "check-includes", root], capture_output=True, text=True)


class CheckIncludes(unittest.TestCase):
    def test_src_keeps_the_rule(self):
        result = check(HERE.parent.parent / "src")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_each_kind_of_breach_is_seen(self):
        breaches = {
            "platform/foundation/A.h": '#include "platform/media/UIImage.h"',
            "platform/uikit/A.h": '#include "share/AttachmentIntake.h"',
            "store/A.cpp": '#include "platform/media/AVAsset.h"',
            "store/A.h": "#include <sqlite3.h>",
            "platform/media/A.cpp": '#include "mediaservice/Sandbox.h"',
            "share/A.cpp": "#include <QImage>",
            "host/A.cpp": "#include <libavcodec/avcodec.h>",
            "unlock/A.cpp": '#include "share/MediaHelpers.h"',
            "vault/A.cpp": '#include "platform/uikit/UIView.h"',
            "elsewhere/A.cpp": "",
        }
        for name, line in breaches.items():
            with tempfile.TemporaryDirectory() as root:
                file = pathlib.Path(root, name)
                file.parent.mkdir(parents=True)
                file.write_text(line + "\n")
                self.assertEqual(check(root).returncode, 1, name)


if __name__ == "__main__":
    unittest.main()
