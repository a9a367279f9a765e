"""Tests of tools/dev/marked_tables.py, and of docs/benchmarks.md against the report that writes its tables."""
import importlib.machinery
import importlib.util
import pathlib
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools" / "dev"))
import marked_tables  # noqa: E402

DOCUMENT = "text\n<!-- table a -->\nold a\n\nold a\n<!-- end -->\n\nbetween\n<!-- table b -->\n<!-- end -->"


class MarkedTables(unittest.TestCase):
    def test_replaces_what_stands_between_the_markers_and_nothing_else(self):
        both = marked_tables.replaced(DOCUMENT, {"a": "new a", "b": "new b\nin two lines"})
        self.assertEqual(both, "text\n<!-- table a -->\nnew a\n<!-- end -->\n\nbetween\n<!-- table b -->\nnew b\nin two lines\n<!-- end -->")
        self.assertEqual(marked_tables.replaced(both, {"a": "old a\n\nold a", "b": ""}), DOCUMENT.replace("b -->\n", "b -->\n\n"))
        self.assertEqual(marked_tables.replaced(both, {}), both)
        self.assertEqual(marked_tables.tables_of(both), {"a": "new a", "b": "new b\nin two lines"})

    def test_refuses_documents_in_which_a_table_has_no_place_of_its_own(self):
        for text, reason in (
            (DOCUMENT, "no place for the table c, d"),
            (DOCUMENT.replace("<!-- end -->", "", 1), "line 9: the table b begins inside a"),
            (DOCUMENT.removesuffix("<!-- end -->"), "the table b has no end"),
            (DOCUMENT.replace("table b", "table a"), "line 9: there are two tables a"),
            ("<!-- end -->", "line 1: a table ends that has not begun"),
        ):
            with self.subTest(reason), self.assertRaisesRegex(marked_tables.Misplaced, reason):
                marked_tables.replaced(text, {"d": "", "c": ""})

    def test_aligns_cells(self):
        self.assertEqual(marked_tables.markdown(["", "b"], [["long one", 2], ["c", "33333"]]),
                         "|          |     b |\n|----------|------:|\n| long one |     2 |\n| c        | 33333 |")


class BenchmarkDocument(unittest.TestCase):
    def test_has_a_place_for_each_table_of_the_report_and_no_table_besides(self):
        path = str(ROOT / "tools" / "dev" / "benchmark-report")
        loader = importlib.machinery.SourceFileLoader("benchmark_report", path)
        report = importlib.util.module_from_spec(importlib.util.spec_from_loader("benchmark_report", loader))
        loader.exec_module(report)
        text = (ROOT / "docs" / "benchmarks.md").read_text(encoding="utf-8")
        self.assertEqual(sorted(marked_tables.tables_of(text)), sorted(report.TABLES))
        for name, lines in marked_tables.parts_of(text):
            if name is None:
                self.assertEqual([line for line in lines if line.startswith("|")], [], "a table outside the markers")
            else:
                self.assertEqual([line for line in lines if not line.startswith("|")], [], f"{name} is not a table alone")


unittest.main()
