#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""set-base-url.py URL OUTPUT-FOLDER FILE...: sets the base URL with pikepdf."""
import pathlib
import sys

import pikepdf

url, folder = sys.argv[1:3]
for name in sys.argv[3:]:
    with pikepdf.open(name) as pdf:
        pdf.Root.URI = pikepdf.Dictionary(Base=pikepdf.String(url))
        pdf.save(pathlib.Path(folder) / pathlib.Path(name).name)
