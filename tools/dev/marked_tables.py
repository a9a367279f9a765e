"""Tables of a Markdown document that programs write: each stands between two comments that name it,

    <!-- table NAME -->
    | ... |
    <!-- end -->

so that a report replaces its own tables and cannot touch another's, nor the text between them.
"""
import re

BEGIN = re.compile(r"<!-- table (\S+) -->")
END = "<!-- end -->"


class Misplaced(Exception):
    """Why a document's markers cannot be used."""


def parts_of(text):
    """The lines of a document as (name, lines): name is None outside the markers, and the markers stand outside."""
    parts = [(None, [])]
    for number, line in enumerate(text.split("\n"), 1):
        begin = BEGIN.fullmatch(line)
        inside = parts[-1][0]
        if line == END:
            if inside is None:
                raise Misplaced(f"line {number}: a table ends that has not begun")
            parts.append((None, [line]))
        elif begin:
            if inside is not None:
                raise Misplaced(f"line {number}: the table {begin[1]} begins inside {inside}")
            if any(name == begin[1] for name, _ in parts):
                raise Misplaced(f"line {number}: there are two tables {begin[1]}")
            parts[-1][1].append(line)
            parts.append((begin[1], []))
        else:
            parts[-1][1].append(line)
    if parts[-1][0] is not None:
        raise Misplaced(f"the table {parts[-1][0]} has no end")
    return parts


def tables_of(text):
    """The text of each table by its name."""
    return {name: "\n".join(lines) for name, lines in parts_of(text) if name is not None}


def replaced(text, tables):
    """The document with new tables, given as text by name. Every one must have its place in the document."""
    parts = parts_of(text)
    missing = sorted(set(tables) - {name for name, _ in parts})
    if missing:
        raise Misplaced(f"there is no place for the table {', '.join(missing)}")
    return "\n".join("\n".join(tables[name].split("\n") if name in tables else lines) for name, lines in parts if name in tables or lines)


def markdown(heads, rows):
    """A table as Markdown: the first column to the left, the others to the right, all cells as wide as the widest of their column."""
    cells = [list(map(str, row)) for row in [heads, *rows]]
    widths = [max(3, *(len(row[column]) for row in cells)) for column in range(len(heads))]
    lines = ["| " + " | ".join(f"{cell:{'>' if column else '<'}{widths[column]}}" for column, cell in enumerate(row)) + " |"
             for row in cells]
    lines.insert(1, "|" + "|".join("-" * (width + 1) + (":" if column else "-") for column, width in enumerate(widths)) + "|")
    return "\n".join(lines)
