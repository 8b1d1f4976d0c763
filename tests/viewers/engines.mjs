// SPDX-License-Identifier: Apache-2.0
// engines.mjs NODE_MODULES [ENGINE...]: where the viewers' own engines lead for the links of PDF files. Reads file names
// from the standard input, one a line. Prints the engines' versions, then a JSON object for each file. It has for each
// engine an array of pages, each an array with the target of each link annotation in their order: UTF-8 as hexadecimal
// digits, or null where the engine makes no link of it (Poppler leaves these out). On a failure it has {"error": text}.
import { createRequire } from "node:module";
import { execFileSync, spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { createInterface } from "node:readline";
import { dirname, join, resolve } from "node:path";
import { pathToFileURL } from "node:url";

const [folder, ...names] = process.argv.slice(2);
const modules = resolve(folder);
const require = createRequire(join(modules, "anchor.js"));
const load = (path) => import(pathToFileURL(require.resolve(path)).href);
const version = (name) => JSON.parse(readFileSync(join(modules, name, "package.json"), "utf8")).version;
const hex = (text) => Buffer.from(text).toString("hex");

const pdfjs = await load("pdfjs-dist/legacy/build/pdf.mjs");
const { init } = await load("@embedpdf/pdfium");
const wasm = join(dirname(require.resolve("@embedpdf/pdfium")), "pdfium.wasm");
const pdfium = await init({ wasmBinary: readFileSync(wasm) });
pdfium.PDFiumExt_Init();
const mupdf = await load("mupdf");

async function withPdfJs(bytes) {
  const task = pdfjs.getDocument({ data: new Uint8Array(bytes), verbosity: 0, isEvalSupported: false });
  try {
    const document = await task.promise;
    const pages = [];
    for (let number = 1; number <= document.numPages; ++number) {
      const annotations = await (await document.getPage(number)).getAnnotations();
      const links = annotations.filter((annotation) => annotation.subtype === "Link");
      pages.push(links.map((link) => (link.url === undefined ? null : hex(link.url))));
    }
    return pages;
  } finally {
    await task.destroy();
  }
}

function uriWithPdfium(document, link) {
  const runtime = pdfium.pdfium;
  const action = pdfium.FPDFLink_GetAction(link);
  const size = action ? pdfium.FPDFAction_GetURIPath(document, action, 0, 0) : 0;
  if (size === 0) return null;
  const text = runtime.wasmExports.malloc(size);
  pdfium.FPDFAction_GetURIPath(document, action, text, size);
  const uri = hex(runtime.HEAPU8.slice(text, text + size - 1));
  runtime.wasmExports.free(text);
  return uri;
}

function withPdfium(bytes) {
  const runtime = pdfium.pdfium;
  const data = runtime.wasmExports.malloc(bytes.length);
  const place = runtime.wasmExports.malloc(8);
  runtime.HEAPU8.set(bytes, data);
  const document = pdfium.FPDF_LoadMemDocument(data, bytes.length, "");
  try {
    if (!document) throw new Error("cannot open");
    const pages = [];
    for (let number = 0; number < pdfium.FPDF_GetPageCount(document); ++number) {
      const page = pdfium.FPDF_LoadPage(document, number);
      const links = [];
      runtime.setValue(place, 0, "i32");
      while (page && pdfium.FPDFLink_Enumerate(page, place, place + 4)) {
        links.push(uriWithPdfium(document, runtime.getValue(place + 4, "i32")));
      }
      if (page) pdfium.FPDF_ClosePage(page);
      pages.push(links);
    }
    return pages;
  } finally {
    if (document) pdfium.FPDF_CloseDocument(document);
    runtime.wasmExports.free(place);
    runtime.wasmExports.free(data);
  }
}

function withMuPdf(bytes) {
  const document = mupdf.Document.openDocument(bytes, "application/pdf");
  const pages = [];
  for (let number = 0; number < document.countPages(); ++number) {
    const page = document.loadPage(number);
    pages.push(page.getLinks().map((link) => hex(link.getURI())));
    page.destroy();
  }
  document.destroy();
  return pages;
}

// A line for each link: page, "Annotation", URL in columns. A URL may have line ends of its own.
function withPoppler(file) {
  const text = execFileSync("pdfinfo", ["-url", file], { encoding: "latin1", stdio: ["ignore", "pipe", "ignore"], maxBuffer: 1 << 28 });
  const pages = [];
  let last = null;
  for (const line of text.replace(/\n$/, "").split("\n").slice(1)) {
    const found = /^ *(\d+)  Annotation {4}(.*)$/s.exec(line);
    if (found) {
      last = pages[found[1] - 1] ??= [];
      last.push(found[2]);
    } else if (last) {
      last.push(last.pop() + "\n" + line);
    }
  }
  return Array.from(pages, (page) => (page ?? []).map((url) => Buffer.from(url, "latin1").toString("hex")));
}

async function attempt(read) {
  try {
    return await read();
  } catch (error) {
    return { error: String(error) };
  }
}

const poppler = /version (\S+)/.exec(spawnSync("pdfinfo", ["-v"], { encoding: "utf8" }).stderr)?.[1];
const print = (object) => new Promise((done) => process.stdout.write(JSON.stringify(object) + "\n", done));
await print({
  pdfjs: "pdfjs-dist " + version("pdfjs-dist"),
  pdfium: "@embedpdf/pdfium " + version("@embedpdf/pdfium"),
  mupdf: "mupdf " + version("mupdf"),
  poppler: "pdfinfo " + poppler,
});
const engines = {
  pdfjs: (file, bytes) => withPdfJs(bytes),
  pdfium: (file, bytes) => withPdfium(bytes),
  mupdf: (file, bytes) => withMuPdf(bytes),
  poppler: (file) => withPoppler(file),
};
for await (const file of createInterface({ input: process.stdin })) {
  const bytes = readFileSync(file);
  const answers = {};
  for (const name of names.length > 0 ? names : Object.keys(engines)) {
    answers[name] = await attempt(() => engines[name](file, bytes));
  }
  await print(answers);
}
process.exit(0);
