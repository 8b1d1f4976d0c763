// SPDX-License-Identifier: Apache-2.0
// Where the viewers' own engines lead for the links of a PDF file: reads file names from the standard input, one a line,
// and prints for each a JSON object of arrays, one element for each link annotation in order, null where the engine
// makes no link of it. Run with NODE_PATH-independent packages: the folder of node_modules is the first argument.
import { createRequire } from "node:module";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { createInterface } from "node:readline";
import { dirname, join } from "node:path";
import { pathToFileURL } from "node:url";

const require = createRequire(join(process.argv[2], "anchor.js"));
const load = (path) => import(pathToFileURL(require.resolve(path)).href);

const pdfjs = await load("pdfjs-dist/legacy/build/pdf.mjs");
const { init } = await load("@embedpdf/pdfium");
const wasm = join(dirname(require.resolve("@embedpdf/pdfium")), "pdfium.wasm");
const pdfium = await init({ wasmBinary: readFileSync(wasm) });
pdfium.FPDF_InitLibrary ? pdfium.FPDF_InitLibrary() : pdfium.PDFiumExt_Init();
const mupdf = await load("mupdf");

async function withPdfJs(bytes) {
  const task = pdfjs.getDocument({ data: new Uint8Array(bytes), verbosity: 0, isEvalSupported: false });
  const document = await task.promise;
  const links = [];
  for (let number = 1; number <= document.numPages; ++number) {
    const page = await document.getPage(number);
    for (const annotation of await page.getAnnotations()) {
      if (annotation.subtype === "Link") links.push(annotation.url ?? null);
    }
  }
  await task.destroy();
  return links;
}

function withPdfium(bytes) {
  const runtime = pdfium.pdfium;
  const data = runtime.wasmExports.malloc(bytes.length);
  runtime.HEAPU8.set(bytes, data);
  const document = pdfium.FPDF_LoadMemDocument(data, bytes.length, "");
  const links = [];
  const place = runtime.wasmExports.malloc(8);
  for (let number = 0; number < pdfium.FPDF_GetPageCount(document); ++number) {
    const page = pdfium.FPDF_LoadPage(document, number);
    runtime.setValue(place, 0, "i32");
    while (pdfium.FPDFLink_Enumerate(page, place, place + 4)) {
      const action = pdfium.FPDFLink_GetAction(runtime.getValue(place + 4, "i32"));
      const size = action ? pdfium.FPDFAction_GetURIPath(document, action, 0, 0) : 0;
      if (size === 0) {
        links.push(null);
        continue;
      }
      const text = runtime.wasmExports.malloc(size);
      pdfium.FPDFAction_GetURIPath(document, action, text, size);
      links.push(Buffer.from(runtime.HEAPU8.slice(text, text + size - 1)).toString("utf8"));
      runtime.wasmExports.free(text);
    }
    pdfium.FPDF_ClosePage(page);
  }
  pdfium.FPDF_CloseDocument(document);
  runtime.wasmExports.free(data);
  return links;
}

function withMuPdf(bytes) {
  const document = mupdf.Document.openDocument(bytes, "application/pdf");
  const links = [];
  for (let number = 0; number < document.countPages(); ++number) {
    const page = document.loadPage(number);
    for (const link of page.getLinks()) links.push({ y: link.getBounds()[1], uri: link.getURI() });
  }
  return links.map((link) => link.uri);
}

function withPoppler(file) {
  const lines = execFileSync("pdfinfo", ["-url", file], { encoding: "utf8", stdio: ["ignore", "pipe", "ignore"] });
  return lines.split("\n").slice(1).filter(Boolean).map((line) => line.replace(/^\s*\d+\s+\S+\s/, ""));
}

async function attempt(read) {
  try {
    return await read();
  } catch (error) {
    return { error: String(error) };
  }
}

for await (const file of createInterface({ input: process.stdin })) {
  const bytes = readFileSync(file);
  const answer = {
    pdfjs: await attempt(() => withPdfJs(bytes)),
    pdfium: await attempt(() => withPdfium(bytes)),
    mupdf: await attempt(() => withMuPdf(bytes)),
    poppler: await attempt(() => withPoppler(file)),
  };
  process.stdout.write(JSON.stringify(answer) + "\n");
}
process.exit(0);
