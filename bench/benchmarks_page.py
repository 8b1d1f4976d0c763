# SPDX-License-Identifier: Apache-2.0
"""docs/benchmarks.md: each benchmark script writes one section of it."""
import pathlib
import re

PAGE = pathlib.Path(__file__).resolve().parent.parent / "docs/benchmarks.md"


def write_section(text):
    """Replaces the section that has the same first line as `text`, "# ...", or adds it at the end."""
    heading = text.split("\n", 1)[0]
    sections = [section.strip("\n") for section in re.split(r"^(?=# )", PAGE.read_text(encoding="utf-8"), flags=re.M) if section]
    places = [number for number, section in enumerate(sections) if section.split("\n", 1)[0] == heading]
    if places:
        sections[places[0]] = text.strip("\n")
    else:
        sections.append(text.strip("\n"))
    PAGE.write_text("\n\n".join(sections) + "\n", encoding="utf-8")
