# SPDX-License-Identifier: Apache-2.0
"""PDF files made from the texts of their objects."""


def pdf_file(objects):
    """The bytes of a file with a cross-reference table (ISO 32000-1, 7.5). Object 1, the first one, is the catalog."""
    out, rows = bytearray(b"%PDF-1.7\n"), [b"0000000000 65535 f \n"]
    for number, text in enumerate(objects, 1):
        rows.append(b"%010d 00000 n \n" % len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, text)
    start, size = len(out), len(rows)
    out += b"xref\n0 %d\n%s" % (size, b"".join(rows))
    return bytes(out + b"trailer\n<</Size %d/Root 1 0 R>>\nstartxref\n%d\n%%%%EOF\n" % (size, start))
