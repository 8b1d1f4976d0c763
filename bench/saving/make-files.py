#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""make-files.py FOLDER: writes the PDF files that compare-saving measures with. Deterministic."""
import pathlib
import random
import subprocess
import sys
import zlib


class Writer:
    """A PDF file with a cross-reference table (ISO 32000-1, 7.5)."""

    def __init__(self, path):
        self.out = open(path, "wb")
        self.offsets = []
        self.out.write(b"%PDF-1.5\n%\xe2\xe3\xcf\xd3\n")

    def add(self, body):
        self.offsets.append(self.out.tell())
        self.out.write(b"%d 0 obj\n%s\nendobj\n" % (len(self.offsets), body))

    def finish(self):
        start = self.out.tell()
        self.out.write(b"xref\n0 %d\n0000000000 65535 f \n" % (len(self.offsets) + 1))
        self.out.write(b"".join(b"%010d 00000 n \n" % offset for offset in self.offsets))
        self.out.write(b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(self.offsets) + 1, start))
        self.out.close()


def stream(data, extra=b""):
    return b"<< %s /Length %d >>\nstream\n%s\nendstream" % (extra, len(data), data)


def pages(path, count, content_size, image_size=0):
    """`count` pages, each with a content stream of its own and, if asked for, an image of its own."""
    noise = random.Random(1)
    writer = Writer(path)
    each = 3 if image_size else 2
    kids = b" ".join(b"%d 0 R" % (3 + each * i) for i in range(count))
    writer.add(b"<< /Type /Catalog /Pages 2 0 R >>")
    writer.add(b"<< /Type /Pages /Count %d /Kids [%s] >>" % (count, kids))
    for i in range(count):
        number = 3 + each * i
        resources = b"/XObject << /I %d 0 R >>" % (number + 2) if image_size else b""
        writer.add(b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Resources << %s >> /Contents %d 0 R >>"
                   % (resources, number + 1))
        text = b"BT /F1 12 Tf 72 720 Td (Page %d) Tj ET" % (i + 1)
        if content_size:  # compressed, as producers write it: hexadecimal digits shrink to half
            packed = zlib.compress(text + b" " + noise.randbytes(content_size).hex().encode())
            writer.add(stream(packed, b"/Filter /FlateDecode"))
        else:
            writer.add(stream(text))
        if image_size:
            # Noise does not compress, so the stream is as long as the image.
            side = int(image_size ** 0.5)
            packed = zlib.compress(noise.randbytes(side * side), 1)
            writer.add(stream(packed, b"/Type /XObject /Subtype /Image /Width %d /Height %d /ColorSpace /DeviceGray "
                              b"/BitsPerComponent 8 /Filter /FlateDecode" % (side, side)))
    writer.finish()


def as_object_streams(source, target):
    subprocess.run(["qpdf", "--object-streams=generate", source, target], check=True)


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    pages(folder / "one-page.pdf", 1, 0)
    pages(folder / "2-mb.pdf", 100, 20_000)
    pages(folder / "100-mb.pdf", 100, 0, 1_000_000)
    for count in (1_000, 20_000, 200_000):
        table = folder / f"{count}-pages-table.pdf"
        pages(table, count, 0)
        as_object_streams(table, folder / f"{count}-pages-streams.pdf")
    (folder / "small").mkdir(exist_ok=True)
    for i in range(5_000):
        pages(folder / "small" / f"{i:04}.pdf", 1 + i % 3, 100)


if __name__ == "__main__":
    main()
