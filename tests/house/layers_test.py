"""The reader of the layers finds what it is there to find."""
import unittest

import layers

STATEMENT = """
low:
# a comment
qor/mid:  low
qor/high: qor/mid   | simdjson.h
qor:      qor/high
low/Base.h:
"""


class LayersTest(unittest.TestCase):
    def setUp(self):
        layers.LAYERED = ("qor", "low")
        self.layers = layers.Layers(STATEMENT)

    def complaints(self, path, text, statement=STATEMENT):
        return layers.check(layers.Layers(statement), [(path, text)])

    def test_an_include_downwards_is_fine(self):
        self.assertEqual(self.complaints("qor/high/A.cc", "#include <low/B.h>\n#include <qor/mid/C.h>\n"), [])

    def test_an_include_upwards_is_refused(self):
        self.assertEqual(
            self.complaints("qor/mid/A.h", "#include <qor/high/B.h>\n"),
            ["qor/mid/A.h: qor/mid may not include qor/high (<qor/high/B.h>)"],
        )

    def test_a_folder_without_a_line_has_its_parents(self):
        self.assertEqual(self.complaints("qor/other/A.h", "#include <qor/high/B.h>\n"), [])

    def test_a_library_is_refused_where_it_is_not_named(self):
        self.assertEqual(self.complaints("qor/high/A.h", "#include <simdjson.h>\n"), [])
        self.assertEqual(len(self.complaints("qor/mid/A.h", "#include <simdjson.h>\n")), 1)

    def test_the_standard_library_is_open_to_all(self):
        self.assertEqual(self.complaints("low/A.h", "#include <vector>\n"), [])

    def test_a_header_may_have_a_line_of_its_own(self):
        statement = "low/Chief.h: qor\nqor: low\nlow:\n"
        self.assertEqual(self.complaints("low/Chief.h", "#include <qor/A.h>\n", statement), [])
        self.assertEqual(len(self.complaints("low/A.h", "#include <qor/A.h>\n", statement)), 1)
        self.assertEqual(len(self.complaints("qor/A.h", "#include <low/Chief.h>\n", statement)), 1)

    def test_a_circle_is_refused(self):
        self.assertEqual(
            self.complaints("low/A.h", "", "low: qor/mid\nqor/mid: low\n"),
            ["cmake/layers.txt: low may include itself through others"],
        )

    def test_a_folder_of_which_nothing_is_said_is_refused(self):
        self.assertEqual(len(self.complaints("elsewhere/A.h", "#include <vector>\n")), 1)

    def test_what_is_only_quoted_is_no_include(self):
        text = 'auto s = R"(\n#include <qor/high/B.h>\n)";\n/*\n#include <qor/high/B.h>\n*/\n'
        self.assertEqual(self.complaints("low/A.h", text), [])


if __name__ == "__main__":
    unittest.main()
