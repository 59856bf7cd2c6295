"""Reads an exported workbook or page back and compares it, cell by cell, with the grid that
selvane-cli grid printed (tab-separated, header line first). Prints the first difference and
exits 1; exits 0 when every cell agrees.

usage: export_readback.py xlsx|html EXPORT GRID_TSV
"""
import sys

NUMERIC = {10, 11, 16, 17, 18, 20, 21, 22, 23}  # grid columns written as numbers when they are


def grid_rows(path):
    with open(path, encoding="utf-8") as f:
        return [line.rstrip("\n").split("\t") for line in f]


def number(text):
    try:
        return float(text.strip().lstrip("+"))
    except ValueError:
        return None


def xlsx_rows(path):
    import openpyxl
    sheet = openpyxl.load_workbook(path)["sheet1"]
    if sheet.freeze_panes != "A2" or not sheet["A1"].font.b:
        sys.exit("header row not frozen and bold")
    return [[cell.value for cell in row] for row in sheet.iter_rows()]


def html_rows(path):
    import html5lib
    with open(path, "rb") as f:
        doc = html5lib.HTMLParser(strict=True, namespaceHTMLElements=False).parse(f)
    head = [[th.text or "" for th in tr.findall("th")] for tr in doc.findall(".//thead/tr")]
    body = [[td.text or "" for td in tr.findall("td")] for tr in doc.findall(".//tbody/tr")]
    return head + body


def main():
    kind, export, tsv = sys.argv[1:4]
    want = grid_rows(tsv)
    got = xlsx_rows(export) if kind == "xlsx" else html_rows(export)
    if len(got) != len(want):
        sys.exit(f"{len(got)} rows, the grid has {len(want)}")
    for r, (g_row, w_row) in enumerate(zip(got, want)):
        g_row = list(g_row) + [None] * (len(w_row) - len(g_row))
        for c, (g, w) in enumerate(zip(g_row, w_row), start=1):
            if kind == "xlsx" and r > 0 and c in NUMERIC and number(w) is not None:
                ok = isinstance(g, float | int) and abs(g - number(w)) < 1e-9
            else:
                ok = (g if g is not None else "") == w
            if not ok:
                sys.exit(f"row {r} column {c}: {g!r}, the grid has {w!r}")


main()
