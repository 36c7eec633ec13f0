"""The judge of what `vgwctl watch` tells, judged: support/watched.py takes a true story and finds what is wrong with others."""
import unittest

from support.projection import project
from support.watched import DATABASE, Story, expected_text

ROW = f"{DATABASE}/logicalSwitch/a"
MAC = "/vgw/ucastMacsLocal/b"


def line(action, path, attribute=None, **more):
    return {"action": action, "path": path, **({"attribute": attribute} if attribute else {}), **more}


def story(*lines):
    told = Story()
    for one in lines:
        told.take(one)
    return told


class WatchedTest(unittest.TestCase):
    def test_a_row_that_is_told_changed_and_deleted_is_no_fault(self):
        told = story(
            line("initial", ROW),
            line("initial", ROW, "desc", value="x"),
            line("modify", ROW, "desc", value="y"),
            line("delete", ROW),
        )
        self.assertEqual((told.faults, told.rows, told.told, told.repeats), ([], {}, 4, 0))

    def test_a_row_that_is_back_after_its_deletion_is_a_fault_unless_it_is_a_mac(self):
        for path, count in ((ROW, 1), (MAC, 0)):
            told = story(line("initial", path), line("delete", path), line("insert", path))
            self.assertEqual(len(told.faults), count, told.faults)

    def test_a_row_that_is_told_anew_while_it_is_there_is_a_fault(self):
        self.assertEqual(len(story(line("initial", ROW), line("insert", ROW)).faults), 1)

    def test_what_is_told_of_a_row_that_is_not_there_is_a_fault(self):
        self.assertEqual(len(story(line("modify", ROW, "desc", value="x")).faults), 1)
        self.assertEqual(len(story(line("delete", ROW)).faults), 1)

    def test_a_value_that_is_told_again_is_counted(self):
        told = story(line("initial", ROW), line("initial", ROW, "desc", value="x"), line("modify", ROW, "desc", value="x"))
        self.assertEqual(told.repeats, 1)

    def test_what_is_no_row_is_passed_over(self):
        told = story(line("modify", "/vgw/status", "running", value=True), line("modify", ROW, "_state", value="stale"))
        self.assertEqual((told.told, told.faults), (0, []))

    def test_members_that_come_and_go_add_up(self):
        tables = {"Logical_Switch": {"a": {"name": "red", "description": "", "tunnel_key": -1}}}
        expected = project(tables)
        text = expected_text(expected)
        told = story(
            line("initial", ROW),
            line("initial", ROW, "displayName", value="red"),
            line("initial", ROW, "invalidAttrib", value=["set", ["desc", "tunnelKey"]]),
            line("initial", ROW, "tunnelKey", value=0x1000000),
        )
        self.assertNotEqual(told.told_text(expected), text)
        told.take(line("modify", ROW, "invalidAttrib", key="desc", value=None))
        self.assertEqual(told.told_text(expected), text)
        told.take(line("insert", f"{DATABASE}/logicalSwitch/b"))
        self.assertNotEqual(told.told_text(expected), text)


if __name__ == "__main__":
    unittest.main()
