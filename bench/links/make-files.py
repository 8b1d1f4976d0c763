#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""make-files.py FOLDER: files whose pages have five relative links each, as a table and with object streams."""
import pathlib
import subprocess
import sys

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
    out = bytearray(b"%PDF-1.5\n")
    offsets = []
    for number, text in enumerate(objects, 1):
        offsets.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, text)
    start = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objects) + 1)
    out += b"".join(b"%010d 00000 n \n" % offset for offset in offsets)
    out += b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(objects) + 1, start)
    path.write_bytes(out)


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for pages in (1000, 20000):
        table = folder / f"{pages}-pages-table.pdf"
        write(table, pages)
        subprocess.run(["qpdf", "--object-streams=generate", table, folder / f"{pages}-pages-streams.pdf"], check=True)


if __name__ == "__main__":
    main()
