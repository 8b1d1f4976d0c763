#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""show-report.py [--failed] REPORT.json: prints a report of vorlane-run for people, or the names of the files that failed."""
import json
import os
import sys


def quoted(url):
    return url if url else "(none)"


def shortest(path):
    relative = os.path.relpath(path)
    return path if relative.startswith("..") else relative


def show(record):
    print(os.path.basename(record["file"]))
    if record["status"] != "done":
        print(f"  {record['status']}: {record['reason']}")
        return
    print(f"  before  {quoted(record['baseUrlBefore'])}")
    print(f"  after   {quoted(record['baseUrlAfter'])}")
    mode = {"incremental": "the old bytes kept, the change appended", "rewrite": "written anew",
            "unchanged": "a copy, nothing to change"}.get(record.get("saveMode"), "")
    print(f"  result  {shortest(record['output'])}" + (f"  ({mode})" if mode else ""))
    for warning in record.get("warnings", []):
        print(f"  warning: {warning}")


def main():
    # File names need not be valid in the locale's encoding.
    sys.stdout.reconfigure(encoding="utf-8", errors="surrogateescape")
    with open(sys.argv[-1], encoding="utf-8", errors="surrogateescape") as report:
        records = sorted(json.load(report), key=lambda record: record["file"])
    failed = [record for record in records if record["status"] != "done"]
    if "--failed" in sys.argv:
        print(" ".join(os.path.basename(record["file"]) for record in failed))
        return
    for record in records:
        show(record)
    print(f"\n{len(records) - len(failed)} of {len(records)} files have the new base URL.")


main()
