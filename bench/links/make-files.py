#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""make-files.py FOLDER: files whose pages have five relative links each, as a table and with object streams."""
import pathlib
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tests/support"))
from pdf_file import pdf_file

LINKS = 5


def write(path, pages):
    objects = [b"<< /Type /Catalog /Pages 2 0 R /URI << /Base (https://example.org/manuals/) >> >>",
               b"<< /Type /Pages /Count %d /Kids [ %s ] >>" % (
                   pages, b" ".join(b"%d 0 R" % (3 + i * (2 + LINKS)) for i in range(pages)))]
    content = b"BT /F1 12 Tf 72 720 Td (A page with links) Tj ET"
    for page in range(pages):
        number = len(objects) + 1
        annotations = b" ".join(b"%d 0 R" % (number + 2 + i) for i in range(LINKS))
        objects.append(b"<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 612 792 ] /Resources << >> /Contents %d 0 R "
                       b"/Annots [ %s ] >>" % (number + 1, annotations))
        objects.append(b"<< /Length %d >>\nstream\n%s\nendstream" % (len(content), content))
        objects += [b"<< /Type /Annot /Subtype /Link /Border [ 0 0 0 ] /Rect [ 72 %d 300 %d ] "
                    b"/A << /S /URI /URI (chapter%d/section%d.html) >> >>" % (700 - 20 * i, 712 - 20 * i, page, i)
                    for i in range(LINKS)]
    path.write_bytes(pdf_file(objects))


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for pages in (1000, 20000):
        table = folder / f"{pages}-pages-table.pdf"
        write(table, pages)
        subprocess.run(["qpdf", "--object-streams=generate", table, folder / f"{pages}-pages-streams.pdf"], check=True)


if __name__ == "__main__":
    main()
