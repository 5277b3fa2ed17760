"""Shows that includes.py finds each kind of violation, in a small tree made for it, and nothing in a clean one."""
import pathlib
import tempfile
import unittest

import includes

CLEAN = {
    "include/kapdf/kapdf.h": "#include <stdint.h>\n",
    "src/base/bytes.h": "#include <vector>\n",
    "src/platform/file.h": '#include "base/bytes.h"\n',
    "src/platform/win32/file.cpp": '#include "platform/file.h"\n#include <windows.h>\n#ifdef _WIN32\n#endif\n',
    "src/io/source.h": '#include "platform/file.h"\n#include "kapdf/kapdf.h"\n',
    "src/content/page.h": '#include "io/source.h"\n',
    "tools/kapdf/system/posix/os.h": "#include <unistd.h>\n",
    "tools/kapdf/records/kinds.h": '#include "kapdf/kapdf.h"\n#include "base/bytes.h"\n',
    "tools/kapdf/commands/import.cpp": '#include "records/kinds.h"\n',
}

CASES = [
    # file, its text, what the report must say
    ("src/io/bad.h", '#include "content/page.h"\n', "io may not include content"),
    ("src/raster/bad.h", '#include "fonts/font.h"\n', "raster may not include fonts"),
    ("src/base/bad.h", '  #  include "platform/file.h"\n', "base may not include platform"),
    ("src/io/bad.h", '#include "source.h"\n', "not found from this place"),
    ("src/io/bad.cpp", "#include <unistd.h>\n", "<unistd.h> is no portable header"),
    ("src/io/bad.cpp", "#if defined(_WIN32)\n#endif\n", "asks for the operating system"),
    ("src/io/posix/bad.cpp", "#ifdef __linux__\n#endif\n", "asks for the operating system"),
    ("src/extra/bad.h", "\n", "extra is no room"),
    ("src/io/source.h", '#include "io/ring.h"\n', "circle: src/io/source.h -> src/io/ring.h -> src/io/source.h"),
    ("src/io/bad.h", '#include "../tools/kapdf/records/kinds.h"\n', "through include/kapdf and src/base only"),
    ("tools/other/bad.h", "\n", "whose rooms are not known"),
    ("tools/kapdf/bad.h", "\n", "bad.h is no room of tools/kapdf"),
    ("tools/kapdf/system/bad.h", '#include "records/kinds.h"\n', "system may not include records"),
    ("tools/kapdf/records/bad.h", '#include "kinds.h"\n', "not found from this place"),
    ("tools/kapdf/commands/bad.h", '#include "system/posix/os.h"\n', "belongs to the inside of system"),
    ("tools/kapdf/svg/bad.cpp", '#include "../../src/io/source.h"\n', "through include/kapdf and src/base only"),
    ("tools/kapdf/svg/bad.cpp", '#include "io/source.h"\n', "through include/kapdf and src/base only"),
]


class Includes(unittest.TestCase):
    def report(self, extra):
        with tempfile.TemporaryDirectory() as folder:
            files = {**CLEAN, "src/fonts/font.h": "\n", "src/io/ring.h": '#include "io/source.h"\n', **extra}
            for name, text in files.items():
                path = pathlib.Path(folder).resolve() / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            return includes.check(pathlib.Path(folder).resolve())[0]

    def test_clean_tree(self):
        self.assertEqual([], self.report({}))

    def test_violations(self):
        for name, text, expected in CASES:
            with self.subTest(name=name, text=text):
                report = self.report({name: text})
                self.assertEqual(1, len(report), report)
                self.assertIn(expected, report[0])


if __name__ == "__main__":
    unittest.main()
