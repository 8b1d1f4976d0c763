#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""show-coverage.py SUMMARY.json: prints gcovr's summary as a table of folders and one line for the whole."""
import json
import sys
from collections import Counter


def percent(covered, total):
    return f"{100 * covered / total:5.1f} %" if total else "      –"


def main():
    with open(sys.argv[1], encoding="utf-8") as summary:
        files = json.load(summary)["files"]
    folders, whole = {}, Counter()
    for file in files:
        numbers = {key: file[key] for key in ("line_covered", "line_total", "branch_covered", "branch_total")}
        folders.setdefault(file["filename"].split("/")[0], Counter()).update(numbers)
        whole.update(numbers)
    print(f"{'folder':10}  {'lines':>7}  {'branches':>8}")
    for name, sums in sorted(folders.items()):
        print(f"{name:10}  {percent(sums['line_covered'], sums['line_total'])}  "
              f"{percent(sums['branch_covered'], sums['branch_total']):>8}")
    print(f"line coverage {percent(whole['line_covered'], whole['line_total']).strip()} of {whole['line_total']} lines, "
          f"branch coverage {percent(whole['branch_covered'], whole['branch_total']).strip()} of {whole['branch_total']} branches")


main()
